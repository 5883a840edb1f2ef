#include "glu_triangulation/uTriangulate.h"

#include <functional>

#include "immediate/zqglUtils.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

TGLSurfaceTriangulator* CurSurfTri = nullptr;

namespace {

constexpr double kSamplingTolerance = 60.0;

// Each GLU entry the road calls; without them a call gives empty arrays.
bool GluLoaded()
{
    return gluNewNurbsRenderer && gluDeleteNurbsRenderer && gluNurbsProperty && gluNurbsCallback &&
           gluBeginSurface && gluNurbsSurface && gluEndSurface && gluBeginTrim && gluEndTrim &&
           gluNurbsCurve && gluPwlCurve;
}

}  // namespace

// An exception must not unwind through GLU's frames (Mesa's libGLU leaks what the surface
// under way holds), so the callbacks never throw: the first exception is kept, every later
// call is ignored, gluEndSurface finishes, and the kept exception is raised after it.
struct TCallBackGuard {
    template <typename Action>
    static void Run(Action&& action) noexcept
    {
        TGLSurfaceTriangulator* target = CurSurfTri;
        if (target == nullptr || target->FFailure) return;
        try {
            action(*target);
        } catch (...) {
            target->FFailure = std::current_exception();
        }
    }
};

namespace {

void GluBegin(GLenum type) { TCallBackGuard::Run([&](TGLSurfaceTriangulator& t) { t.BeginCallBack(type); }); }
void GluVertex(GLfloat* v) { TCallBackGuard::Run([&](TGLSurfaceTriangulator& t) { t.VertexCallBack(v); }); }
void GluNormal(GLfloat* n) { TCallBackGuard::Run([&](TGLSurfaceTriangulator& t) { t.NormalCallBack(n); }); }
void GluEnd() { TCallBackGuard::Run([](TGLSurfaceTriangulator& t) { t.EndCallBack(); }); }
void GluEndQuad() { TCallBackGuard::Run([](TGLSurfaceTriangulator& t) { t.EndCallBackQuad(); }); }

template <typename Fn>
TGLUFuncPtr AsGluCallBack(Fn* fn)
{
    return reinterpret_cast<TGLUFuncPtr>(fn);
}

// Appends 3 floats at Idx, growing the array first when fewer than 4 floats are free: to 50
// floats below a length of 10, else to twice its length.
void AppendVec3(TDynGLFloat& values, int& idx, const float* source)
{
    const int length = static_cast<int>(values.size());
    if (length - idx < 4) values.resize(length < 10 ? 50 : 2 * static_cast<std::size_t>(length));
    values[idx] = source[0];
    values[idx + 1] = source[1];
    values[idx + 2] = source[2];
    idx += 3;
}

// Runs the end of Triangulate and Quadrilateral on every path.
class TRenderScope {
public:
    explicit TRenderScope(std::function<void()> finish) : FFinish(std::move(finish)) {}
    ~TRenderScope() { FFinish(); }
    TRenderScope(const TRenderScope&) = delete;
    TRenderScope& operator=(const TRenderScope&) = delete;

private:
    std::function<void()> FFinish;
};

}  // namespace

TGLSurfaceTriangulator::TGLSurfaceTriangulator() { CurSurfTri = this; }

TGLSurfaceTriangulator::~TGLSurfaceTriangulator()
{
    // The callbacks must not address a freed instance.
    if (CurSurfTri == this) CurSurfTri = nullptr;
}

void TGLSurfaceTriangulator::Triangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    Run(GeSurf, Tri, Norm, false);
}

void TGLSurfaceTriangulator::Quadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    Run(GeSurf, Tri, Norm, true);
}

void TGLSurfaceTriangulator::Run(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm, bool Quads)
{
    ResetCur();
    FRecTri.Clear();
    FFailure = nullptr;
    Tri.clear();
    Norm.clear();
    // Without GLU there is no road: empty arrays, as for any surface GLU can't take.
    if (!GluLoaded()) return;
    FRender = zqglNewNurbObjRender(kSamplingTolerance);
    if (FRender == nullptr) return;
    const TRenderScope scope([this] {
        ResetCur();
        FRecTri.Clear();
        FFailure = nullptr;
        gluDeleteNurbsRenderer(FRender);
        FRender = nullptr;
    });
    if (Quads)
        SetCallBackQuad();
    else
        SetCallBack();
    DoTriangulate(GeSurf, Tri, Norm);
}

void TGLSurfaceTriangulator::SetCallBack()
{
    gluNurbsProperty(FRender, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);
    gluNurbsCallback(FRender, GLU_NURBS_BEGIN, AsGluCallBack(&GluBegin));
    gluNurbsCallback(FRender, GLU_NURBS_VERTEX, AsGluCallBack(&GluVertex));
    gluNurbsCallback(FRender, GLU_NURBS_END, AsGluCallBack(&GluEnd));
    gluNurbsCallback(FRender, GLU_NURBS_NORMAL, AsGluCallBack(&GluNormal));
}

void TGLSurfaceTriangulator::SetCallBackQuad()
{
    gluNurbsProperty(FRender, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);
    gluNurbsCallback(FRender, GLU_NURBS_BEGIN, AsGluCallBack(&GluBegin));
    gluNurbsCallback(FRender, GLU_NURBS_VERTEX, AsGluCallBack(&GluVertex));
    gluNurbsCallback(FRender, GLU_NURBS_END, AsGluCallBack(&GluEndQuad));
    gluNurbsCallback(FRender, GLU_NURBS_NORMAL, AsGluCallBack(&GluNormal));
}

void TGLSurfaceTriangulator::ResetCur()
{
    FCurType = 0;
    FCurVertIdx = 0;
    FCurNormIdx = 0;
    FCurVert.clear();
    FCurNorm.clear();
}

void TGLSurfaceTriangulator::BeginCallBack(Cardinal DrawType) { FCurType = DrawType; }

void TGLSurfaceTriangulator::VertexCallBack(const float* Vertex) { AppendVec3(FCurVert, FCurVertIdx, Vertex); }

void TGLSurfaceTriangulator::NormalCallBack(const float* Normal) { AppendVec3(FCurNorm, FCurNormIdx, Normal); }

void TGLSurfaceTriangulator::EndCallBack()
{
    FCurVert.resize(FCurVertIdx);
    FCurNorm.resize(FCurNormIdx);
    FRecTri.AddSurfaceData(FCurType, FCurVert, FCurNorm);
    ResetCur();
}

void TGLSurfaceTriangulator::EndCallBackQuad()
{
    FCurVert.resize(FCurVertIdx);
    FCurNorm.resize(FCurNormIdx);
    FRecTri.AddSurfaceDataQuad(FCurType, FCurVert, FCurNorm);
    ResetCur();
}

void TGLSurfaceTriangulator::DoTriangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    try {
        TDynGLFloat vertices;
        TDynGLFloat normals;
        if (const auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(GeSurf))
            DoNurbsTriangulate(*nurbs, vertices, normals);
        else if (const auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(GeSurf))
            DoTrimTriangulate(*trimmed, vertices, normals);
        else if (const auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(GeSurf))
            DoNurbsTriangulate(*ext->Surface, vertices, normals);
        Tri.assign(vertices.begin(), vertices.end());
        Norm.assign(normals.begin(), normals.end());
    } catch (...) {
        Tri.clear();
        Norm.clear();
    }
}

void TGLSurfaceTriangulator::DoNurbsTriangulate(const TGeNurbsSurface& Surf, TDynGLFloat& Vertices,
                                                TDynGLFloat& Normals)
{
    try {
        TGLSurfaceData data = MakeSurfaceData(Surf);
        gluBeginSurface(FRender);
        SendSurface(data);
        gluEndSurface(FRender);
        RaiseKeptFailure();
    } catch (...) {
        // Swallowed: what was recorded before the failure is the result.
    }
    CollectResult(Vertices, Normals);
}

void TGLSurfaceTriangulator::CollectResult(TDynGLFloat& Vertices, TDynGLFloat& Normals)
{
    Vertices.clear();
    Normals.clear();
    FRecTri.GetRes(Vertices, Normals);
}

void TGLSurfaceTriangulator::RaiseKeptFailure()
{
    if (!FFailure) return;
    std::exception_ptr failure = FFailure;
    FFailure = nullptr;
    std::rethrow_exception(failure);
}

void TGLSurfaceTriangulator::NurbsSurface2GL(const TGeNurbsSurface& Surf, TDynGLFloat& GLKnotsU,
                                             TDynGLFloat& GLKnotsV, int& CtrlCountU, int& CtrlCountV,
                                             TDynGLPoint4D& CtrlPoints, int& DegreeU, int& DegreeV)
{
    CtrlCountU = Surf.CtrlCountU;
    CtrlCountV = Surf.CtrlCountV;
    DegreeU = Surf.DegreeU;
    DegreeV = Surf.DegreeV;
    CtrlPoints.assign(static_cast<std::size_t>(CtrlCountU) * CtrlCountV, TGLPoint4D{});
    for (int i = 0; i < CtrlCountU; ++i) {
        for (int j = 0; j < CtrlCountV; ++j) {
            const float w = static_cast<float>(Surf.GetWeight(i, j));
            const TPoint3D p = Surf.GetCtrlPoint(i, j);
            CtrlPoints[static_cast<std::size_t>(i) * CtrlCountV + j] = {
                static_cast<float>(p.X * w), static_cast<float>(p.Y * w), static_cast<float>(p.Z * w), w};
        }
    }
    GLKnotsU.assign(Surf.GetKnotCountU(), 0.0f);
    for (int k = 0; k < static_cast<int>(GLKnotsU.size()); ++k) GLKnotsU[k] = static_cast<float>(Surf.GetKnotsU(k));
    GLKnotsV.assign(Surf.GetKnotCountV(), 0.0f);
    for (int k = 0; k < static_cast<int>(GLKnotsV.size()); ++k) GLKnotsV[k] = static_cast<float>(Surf.GetKnotsV(k));
}

TGLSurfaceTriangulator::TGLSurfaceData TGLSurfaceTriangulator::MakeSurfaceData(const TGeNurbsSurface& Surf)
{
    TGLSurfaceData data;
    NurbsSurface2GL(Surf, data.KnotsU, data.KnotsV, data.CountU, data.CountV, data.CtrlPoints, data.DegreeU,
                    data.DegreeV);
    return data;
}

// s along U, t along V; GL_MAP2_VERTEX_4 for rational and non-rational surfaces alike. With no
// control points nothing is sent, so GLU has nothing to read.
void TGLSurfaceTriangulator::SendSurface(TGLSurfaceData& Data)
{
    if (Data.CtrlPoints.empty()) return;
    gluNurbsSurface(FRender, static_cast<GLint>(Data.KnotsU.size()), Data.KnotsU.data(),
                    static_cast<GLint>(Data.KnotsV.size()), Data.KnotsV.data(), Data.CountV * 4, 4,
                    &Data.CtrlPoints.front().X, Data.DegreeU + 1, Data.DegreeV + 1, GL_MAP2_VERTEX_4);
}

void StartUnit_uTriangulate() { GeSurfTri = new TGLSurfaceTriangulator(); }

void StopUnit_uTriangulate()
{
    delete GeSurfTri;
    GeSurfTri = nullptr;
}

}  // namespace orvane
