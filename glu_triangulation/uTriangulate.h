// The GLU road from a kernel surface to a mesh: the surface goes to a GLU NURBS renderer in
// tessellation mode, GLU samples it in pixels of the current view and hands back OpenGL
// primitives, which the callbacks record as triangles or quads with a normal at every vertex.
// Needs a current context whose matrices and viewport are set, and the GLU entry points.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>

#include "contracts/Cadgeometry.h"
#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "glu_triangulation/RecTriangles.h"
#include "immediate/zqglTypes.h"
#include "immediate/zqglUtils.h"

namespace orvane {

class ORVANE_API TGLSurfaceTriangulator : public TGeSurfaceTriangulator {
public:
    // How a trim curve goes to GLU: as a NURBS curve or as a polyline.
    enum TCurveType : std::uint8_t { ctSpline = 0, ctLines = 1 };

    // Becomes the instance the GLU callbacks address (CurSurfTri).
    TGLSurfaceTriangulator();
    ~TGLSurfaceTriangulator() override;
    TGLSurfaceTriangulator(const TGLSurfaceTriangulator&) = delete;
    TGLSurfaceTriangulator& operator=(const TGLSurfaceTriangulator&) = delete;

    // Tri: x, y, z of each vertex, three vertices a triangle; Norm: the normal of each vertex
    // at the same index. Values of single precision widened to double. Nothing is raised:
    // a failure gives what was recorded before it, or empty arrays.
    void Triangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm) override;
    // The same with four vertices a quad. A primitive that can't become quads (a triangle
    // strip) ends the surface: the quads before it are the result.
    void Quadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm);

    // The surface in GLU's form: knots and homogeneous control points rounded to single,
    // control point i * CtrlCountV + j for i along U and j along V.
    static void NurbsSurface2GL(const TGeNurbsSurface& Surf, TDynGLFloat& GLKnotsU, TDynGLFloat& GLKnotsV,
                                int& CtrlCountU, int& CtrlCountV, TDynGLPoint4D& CtrlPoints, int& DegreeU,
                                int& DegreeV);

    // --- Trim loops -----------------------------------------------------------------------
    // A single bilinear patch: degree 1 and two control points in both directions.
    static bool IsSimpleSurface(const TGeNurbsSurface& Surf);
    // Whether a composite that goes as polylines is a closed chain within 0.01.
    static bool CheckCompositeCurveInternalLink(const TGeCompositeCurve2D& Curve);
    // ctSpline only for a spline that is not clamped at both ends; everything else ctLines.
    static TCurveType ParamCurve2GLType(const TGeCurve2D& Curve);
    // 10 samples for a straight curve (a line, a spline of degree 1 with 2 control points).
    static bool GetCountNumViaBoundType(const TGeCurve2D& Curve, int& Count);
    // The curve sampled by its length, simplified, thinned with UErr and VErr (either 0
    // turns the thinning off); W = 1.
    static void ParamCurve2GLLines(const TGeCurve2D& Curve, TDynGLPointW2D& Points, double UErr, double VErr);
    static void ParamCurve2GLSpline(const TGeCurve2D& Curve, TDynGLPointW2D& CtrlPoints, TDynGLFloat& Knots,
                                    int& Degree);
    // UErr, VErr: the UV extent below which two polyline points count as one, from the first
    // row and column; 0 for a direction whose degree is not 1. ULen, VLen are written only
    // for a direction of degree 1.
    static void ProvideUVError(const TGeNurbsSurface& Surf, double& UErr, double& VErr, double& ULen,
                               double& VLen);

    // --- Callbacks, addressed through CurSurfTri ------------------------------------------
    void BeginCallBack(Cardinal DrawType);
    void VertexCallBack(const float* Vertex);
    void NormalCallBack(const float* Normal);
    void EndCallBack();
    void EndCallBackQuad();

private:
    friend struct TCallBackGuard;

    void Run(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm, bool Quads);
    void DoTriangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm);
    void DoNurbsTriangulate(const TGeNurbsSurface& Surf, TDynGLFloat& Vertices, TDynGLFloat& Normals);
    void DoTrimTriangulate(const TGeTrimmedSurface& Surf, TDynGLFloat& Vertices, TDynGLFloat& Normals);
    // What gluNurbsSurface takes, made by NurbsSurface2GL.
    struct TGLSurfaceData {
        TDynGLFloat KnotsU, KnotsV;
        int CountU = 0, CountV = 0, DegreeU = 0, DegreeV = 0;
        TDynGLPoint4D CtrlPoints;
    };
    static TGLSurfaceData MakeSurfaceData(const TGeNurbsSurface& Surf);
    void SendSurface(TGLSurfaceData& Data);
    void AddTrimLoop(const TGeCurve2D& Curve, double UErr, double VErr);
    void AddTrimCurve(const TGeCurve2D& Curve, double UErr, double VErr);
    std::optional<float> TrimmedSamplingTolerance(const TGeTrimmedSurface& Surf, const TGeNurbsSurface& Base,
                                                  double& UErr, double ULen, double VLen);
    static void FirstRowColumnLengths(const TGeNurbsSurface& Surf, double& ULen, double& VLen);
    void CollectResult(TDynGLFloat& Vertices, TDynGLFloat& Normals);
    void RaiseKeptFailure();
    void SetCallBack();
    void SetCallBackQuad();
    void ResetCur();

    TRecTriangles FRecTri;
    Cardinal FCurType = 0;
    TDynGLFloat FCurVert;
    TDynGLFloat FCurNorm;
    int FCurVertIdx = 0;
    int FCurNormIdx = 0;
    PGLUNurbs FRender = nullptr;
    // What a callback raised: kept, since nothing may unwind through GLU's frames, and raised
    // again after gluEndSurface. While it is set the callbacks ignore every call.
    std::exception_ptr FFailure;
};

// The instance the GLU callbacks address; set by the constructor, cleared by the destructor
// of that instance.
extern TGLSurfaceTriangulator* CurSurfTri;

// Fills the kernel's GeSurfTri with a new TGLSurfaceTriangulator; the stop frees it.
void StartUnit_uTriangulate();
void StopUnit_uTriangulate();

}  // namespace orvane
