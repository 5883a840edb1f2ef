#include "glu_triangulation/RecTriangles.h"

#include <algorithm>

#include "contracts/PrimitiveCodes.h"

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTriangulate";
constexpr int kInitialFloats = 10000;
constexpr int kFirstGrowth = 50;

int VertexCount(const TDynGLFloat& A)
{
    return static_cast<int>(A.size()) / 3;
}

// Sizes both results for Floats floats each; a negative length is a range error, as for a
// dynamic array.
void SetResultLength(TDynGLFloat& ResVert, TDynGLFloat& ResNorm, long Floats)
{
    if (Floats < 0) throw ERangeError(SRangeError);
    ResVert.assign(static_cast<std::size_t>(Floats), 0.0f);
    ResNorm.assign(static_cast<std::size_t>(Floats), 0.0f);
}

// Copies source vertices, each with its normal, one after the other into the results.
class TVertexCopier {
public:
    TVertexCopier(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                  TDynGLFloat& ResNorm)
        : FSrcVert(SrcVert), FResVert(ResVert), FSrcNorm(SrcNorm), FResNorm(ResNorm)
    {
    }

    void Put(int K)
    {
        const std::size_t from = 3 * static_cast<std::size_t>(K);
        // Guards the memory only; the conversions size their results before they copy.
        Assert(from + 3 <= FSrcVert.size() && from + 3 <= FSrcNorm.size() && FIdx + 3 <= FResVert.size());
        for (std::size_t c = 0; c < 3; ++c) {
            FResVert[FIdx + c] = FSrcVert[from + c];
            FResNorm[FIdx + c] = FSrcNorm[from + c];
        }
        FIdx += 3;
    }
    void Put(std::initializer_list<int> Ks)
    {
        for (int k : Ks) Put(k);
    }
    // Writes a point that is no source vertex.
    void PutPoint(const TPoint3D& P, const TPoint3D& N)
    {
        Assert(FIdx + 3 <= FResVert.size());
        const double p[3] = {P.X, P.Y, P.Z};
        const double n[3] = {N.X, N.Y, N.Z};
        for (std::size_t c = 0; c < 3; ++c) {
            FResVert[FIdx + c] = static_cast<float>(p[c]);
            FResNorm[FIdx + c] = static_cast<float>(n[c]);
        }
        FIdx += 3;
    }
    bool HasRoom(std::size_t Vertices) const { return FIdx + 3 * Vertices <= FResVert.size(); }

private:
    const TDynGLFloat& FSrcVert;
    TDynGLFloat& FResVert;
    const TDynGLFloat& FSrcNorm;
    TDynGLFloat& FResNorm;
    std::size_t FIdx = 0;
};

TPoint3D PointAt(const TDynGLFloat& A, int K)
{
    const std::size_t i = 3 * static_cast<std::size_t>(K);
    return {A[i], A[i + 1], A[i + 2]};
}

}  // namespace

TRecTriangles::TRecTriangles()
    : FTriBuf(kInitialFloats, 0.0f), FTriNorm(kInitialFloats, 0.0f)
{
}

void TRecTriangles::AddSurfaceData(Cardinal DrawType, const TDynGLFloat& SrcVert, const TDynGLFloat& SrcNorm)
{
    if (DrawType == GL_TRIANGLES) {
        AppendTri(SrcVert, SrcNorm);
        return;
    }
    TDynGLFloat vert;
    TDynGLFloat norm;
    if (!CanTurnTri(DrawType, SrcVert, vert, SrcNorm, norm)) throw Exception("Error Message");
    AppendTri(vert, norm);
}

void TRecTriangles::AddSurfaceDataQuad(Cardinal DrawType, const TDynGLFloat& SrcVert, const TDynGLFloat& SrcNorm)
{
    if (DrawType == GL_QUADS) {
        AppendTri(SrcVert, SrcNorm);
        return;
    }
    TDynGLFloat vert;
    TDynGLFloat norm;
    if (!CanTurnQuad(DrawType, SrcVert, vert, SrcNorm, norm)) throw Exception("没有对应的数据转换四边形");
    AppendTri(vert, norm);
}

// std::vector cannot share its storage as a reference-counted array does: the caller gets
// its own copy of the trimmed buffers, so the recorder keeps what it collected.
void TRecTriangles::GetRes(TDynGLFloat& Tri, TDynGLFloat& Norm)
{
    FTriBuf.resize(static_cast<std::size_t>(FBufIdx));
    FTriNorm.resize(static_cast<std::size_t>(FBufIdx));
    Tri = FTriBuf;
    Norm = FTriNorm;
}

void TRecTriangles::GetRes(TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    FTriBuf.resize(static_cast<std::size_t>(FBufIdx));
    FTriNorm.resize(static_cast<std::size_t>(FBufIdx));
    Tri.assign(FTriBuf.begin(), FTriBuf.end());
    Norm.assign(FTriNorm.begin(), FTriNorm.end());
}

void TRecTriangles::Clear()
{
    TDynGLFloat().swap(FTriBuf);
    TDynGLFloat().swap(FTriNorm);
    FBufIdx = 0;
    FNormIdx = 0;
}

void TRecTriangles::RequireBufNormSize(int Needed)
{
    Assert(FBufIdx == FNormIdx && FTriBuf.size() == FTriNorm.size());
    // The free room must exceed the need: asking for exactly the free room still grows.
    while (static_cast<long>(FTriBuf.size()) - FBufIdx <= Needed) {
        const std::size_t length = FTriBuf.empty() ? kFirstGrowth : 2 * FTriBuf.size();
        FTriBuf.resize(length, 0.0f);
        FTriNorm.resize(length, 0.0f);
    }
}

void TRecTriangles::AppendTri(const TDynGLFloat& Vert, const TDynGLFloat& Norm)
{
    Assert(Vert.size() == Norm.size());
    const int length = static_cast<int>(Vert.size());
    RequireBufNormSize(length);
    std::copy(Vert.begin(), Vert.end(), FTriBuf.begin() + FBufIdx);
    std::copy(Norm.begin(), Norm.end(), FTriNorm.begin() + FNormIdx);
    FBufIdx += length;
    FNormIdx += length;
    Assert(FBufIdx == FNormIdx);
}

bool TRecTriangles::CanTurnTri(Cardinal DrawType, const TDynGLFloat& SrcVert, TDynGLFloat& ResVert,
                               const TDynGLFloat& SrcNorm, TDynGLFloat& ResNorm)
{
    ResVert.clear();
    ResNorm.clear();
    switch (DrawType) {
    case GL_TRIANGLE_FAN: FanData2Triangles(SrcVert, ResVert, SrcNorm, ResNorm); return true;
    case GL_QUAD_STRIP: QuadStrip2Triangles(SrcVert, ResVert, SrcNorm, ResNorm); return true;
    case GL_QUADS: Quad2Triangles(SrcVert, ResVert, SrcNorm, ResNorm); return true;
    case GL_TRIANGLE_STRIP: TriStrip2Triangles(SrcVert, ResVert, SrcNorm, ResNorm); return true;
    default: return false;
    }
}

bool TRecTriangles::CanTurnQuad(Cardinal DrawType, const TDynGLFloat& SrcVert, TDynGLFloat& ResVert,
                                const TDynGLFloat& SrcNorm, TDynGLFloat& ResNorm)
{
    ResVert.clear();
    ResNorm.clear();
    switch (DrawType) {
    case GL_TRIANGLE_FAN: FanData2Quads(SrcVert, ResVert, SrcNorm, ResNorm); return true;
    case GL_QUAD_STRIP: QuadStrip2Quads(SrcVert, ResVert, SrcNorm, ResNorm); return true;
    default: return false;
    }
}

void TRecTriangles::FanData2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                      TDynGLFloat& ResNorm)
{
    const int n = VertexCount(SrcVert);
    Assert(n >= 3);
    SetResultLength(ResVert, ResNorm, 9L * (n - 2));
    TVertexCopier out(SrcVert, ResVert, SrcNorm, ResNorm);
    for (int k = 1; k <= n - 2; ++k) out.Put({0, k, k + 1});
    Assert(fEqual(SrcVert.back(), ResVert.back(), 1e-6));
}

// Pairs the fan's triangles around s0 into quads; an unpaired last triangle becomes a quad
// whose fourth corner is the midpoint of its closing edge.
void TRecTriangles::FanData2Quads(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                  TDynGLFloat& ResNorm)
{
    const int n = VertexCount(SrcVert);
    SetResultLength(ResVert, ResNorm, 12L * (n / 2 - 1));
    TVertexCopier out(SrcVert, ResVert, SrcNorm, ResNorm);
    int i = 1;
    if (n >= 4)
        for (; i < n && out.HasRoom(4); i += 2) out.Put({0, i, i + 1, i + 2});
    if (i + 1 == n) return;

    ResVert.resize(ResVert.size() + 12, 0.0f);
    ResNorm.resize(ResNorm.size() + 12, 0.0f);
    out.Put({0, i, i + 1});
    const TPoint3D mid = (PointAt(SrcVert, 0) + PointAt(SrcVert, i + 1)) / 2.0;
    const TPoint3D normal = (PointAt(SrcNorm, 0) + PointAt(SrcNorm, i + 1)).Normal();
    out.PutPoint(mid, normal);
}

void TRecTriangles::TriStrip2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                       TDynGLFloat& ResNorm)
{
    const int n = VertexCount(SrcVert);
    SetResultLength(ResVert, ResNorm, 9L * (n - 2));
    TVertexCopier out(SrcVert, ResVert, SrcNorm, ResNorm);
    // Odd triangles are written backwards so that all keep the strip's winding.
    for (int k = 0; k < n - 2; ++k) {
        if (k % 2 == 0)
            out.Put({k, k + 1, k + 2});
        else
            out.Put({k + 2, k + 1, k});
    }
}

void TRecTriangles::QuadStrip2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert,
                                        const TDynGLFloat& SrcNorm, TDynGLFloat& ResNorm)
{
    Assert(SrcVert.size() == SrcNorm.size());
    const int n = VertexCount(SrcVert);
    SetResultLength(ResVert, ResNorm, 9L * (n - 2));
    TVertexCopier out(SrcVert, ResVert, SrcNorm, ResNorm);
    for (int k = 0; out.HasRoom(3); k += 2) {
        out.Put({k, k + 1, k + 2});
        if (out.HasRoom(3)) out.Put({k + 1, k + 3, k + 2});
    }
}

// Each pair of the strip with the next becomes a ring: up one side and back down the other.
void TRecTriangles::QuadStrip2Quads(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                    TDynGLFloat& ResNorm)
{
    Assert(SrcVert.size() == SrcNorm.size());
    const int n = VertexCount(SrcVert);
    SetResultLength(ResVert, ResNorm, 12L * ((n - 2) / 2));
    TVertexCopier out(SrcVert, ResVert, SrcNorm, ResNorm);
    for (int k = 0; out.HasRoom(4); k += 2) out.Put({k, k + 1, k + 3, k + 2});
}

// The diagonal of every quad runs from its corner 0 to its corner 2.
void TRecTriangles::Quad2Triangles(const TDynGLFloat& SrcVert, TDynGLFloat& ResVert, const TDynGLFloat& SrcNorm,
                                   TDynGLFloat& ResNorm)
{
    Assert(SrcVert.size() % 12 == 0);
    const int n = VertexCount(SrcVert);
    SetResultLength(ResVert, ResNorm, 9L * (n / 2));
    TVertexCopier out(SrcVert, ResVert, SrcNorm, ResNorm);
    for (int q = 0; q < n; q += 4) out.Put({q, q + 1, q + 2, q, q + 2, q + 3});
}

}  // namespace orvane
