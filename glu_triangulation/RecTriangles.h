// Recorder of an OpenGL primitive stream: collects primitives, each with flat vertex and normal
// arrays (x, y, z a vertex, single precision), and turns them into one pair of flat arrays of
// triangles (9 floats each) or quads (12 floats each). GL-free: the quad road uses it without a
// context, and the GLU road feeds it what the NURBS renderer hands out.
#pragma once

#include "contracts/Cadtypes.h"
#include "contracts/SysUtils.h"
#include "immediate/zqglTypes.h"

namespace orvane {

// A dynamic array asked for a negative length.
class ERangeError : public Exception {
public:
    using Exception::Exception;
};

inline constexpr const char* SRangeError = "Range check error";

class TRecTriangles {
public:
    // Starts with room for 10000 floats in each buffer.
    TRecTriangles();

    // Appends one primitive as triangles. GL_TRIANGLES goes in as it stands; fans, strips,
    // quads and quad strips are converted. Any other code raises Exception("Error Message").
    void AddSurfaceData(Cardinal DrawType, const TDynGLFloat& SrcVert, const TDynGLFloat& SrcNorm);
    // Appends one primitive as quads. GL_QUADS goes in as it stands; fans and quad strips are
    // converted. Any other code raises Exception("没有对应的数据转换四边形").
    void AddSurfaceDataQuad(Cardinal DrawType, const TDynGLFloat& SrcVert, const TDynGLFloat& SrcNorm);

    // Trims both buffers to what is in use and gives their contents to Tri and Norm, which
    // are replaced. The recorder keeps its data: later appends go on behind it.
    void GetRes(TDynGLFloat& Tri, TDynGLFloat& Norm);
    // The same widened to double precision, element by element.
    void GetRes(TFloatDynArray& Tri, TFloatDynArray& Norm);

    // Drops both buffers altogether (length 0) and both indices; the next append grows the
    // buffers from 50 floats.
    void Clear();

    // The buffers' lengths and the floats in use, for callers that watch the growth.
    int BufferLength() const noexcept { return static_cast<int>(FTriBuf.size()); }
    int UsedLength() const noexcept { return FBufIdx; }

private:
    void RequireBufNormSize(int Needed);
    void AppendTri(const TDynGLFloat& Vert, const TDynGLFloat& Norm);

    static bool CanTurnTri(Cardinal DrawType, const TDynGLFloat& SrcVert, TDynGLFloat& ResVert,
                           const TDynGLFloat& SrcNorm, TDynGLFloat& ResNorm);
    static bool CanTurnQuad(Cardinal DrawType, const TDynGLFloat& SrcVert, TDynGLFloat& ResVert,
                            const TDynGLFloat& SrcNorm, TDynGLFloat& ResNorm);

    static void FanData2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                  TDynGLFloat& ResNorm);
    static void FanData2Quads(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                              TDynGLFloat& ResNorm);
    static void TriStrip2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                   TDynGLFloat& ResNorm);
    static void QuadStrip2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                    TDynGLFloat& ResNorm);
    static void QuadStrip2Quads(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                TDynGLFloat& ResNorm);
    static void Quad2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                               TDynGLFloat& ResNorm);

    TDynGLFloat FTriBuf;
    int FBufIdx = 0;
    TDynGLFloat FTriNorm;
    int FNormIdx = 0;
};

}  // namespace orvane
