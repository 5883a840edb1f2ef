#include "tests/glu_triangulation/GluFakeRenderer.h"

#include <map>

namespace orvane::testing {

using namespace dglOpenGL;

TFakeGlu* TFakeGlu::Active = nullptr;

struct TFakeGlu::TSaved {
    decltype(gluNewNurbsRenderer) NewRenderer = gluNewNurbsRenderer;
    decltype(gluDeleteNurbsRenderer) DeleteRenderer = gluDeleteNurbsRenderer;
    decltype(gluNurbsProperty) Property = gluNurbsProperty;
    decltype(gluNurbsCallback) Callback = gluNurbsCallback;
    decltype(gluBeginSurface) BeginSurface = gluBeginSurface;
    decltype(gluNurbsSurface) Surface = gluNurbsSurface;
    decltype(gluEndSurface) EndSurface = gluEndSurface;
    decltype(gluBeginTrim) BeginTrim = gluBeginTrim;
    decltype(gluEndTrim) EndTrim = gluEndTrim;
    decltype(gluPwlCurve) PwlCurve = gluPwlCurve;
    decltype(gluNurbsCurve) NurbsCurve = gluNurbsCurve;
};

namespace {

// Any non-null address serves as the renderer; the fake never reads it.
GLUnurbs* const kFakeRenderer = reinterpret_cast<GLUnurbs*>(0x1000);
std::map<GLenum, TGLUFuncPtr> gCallbacks;

void Log(std::string call) { TFakeGlu::Active->Calls.push_back(std::move(call)); }

GLUnurbs* FakeNew()
{
    Log("gluNewNurbsRenderer");
    ++TFakeGlu::Active->LiveRenderers;
    gCallbacks.clear();
    return kFakeRenderer;
}

void FakeDelete(GLUnurbs*)
{
    Log("gluDeleteNurbsRenderer");
    --TFakeGlu::Active->LiveRenderers;
}

void FakeProperty(GLUnurbs*, GLenum property, GLfloat value)
{
    Log("gluNurbsProperty " + std::to_string(property) + "=" + std::to_string(value));
}

void FakeCallback(GLUnurbs*, GLenum which, TGLUFuncPtr fn)
{
    Log("gluNurbsCallback " + std::to_string(which));
    gCallbacks[which] = fn;
}

void FakeBeginSurface(GLUnurbs*) { Log("gluBeginSurface"); }

void FakeSurface(GLUnurbs*, GLint sKnotCount, GLfloat* sKnots, GLint tKnotCount, GLfloat* tKnots, GLint sStride,
                 GLint tStride, GLfloat* control, GLint sOrder, GLint tOrder, GLenum type)
{
    Log("gluNurbsSurface");
    TFakeNurbsSurface s;
    s.KnotsS.assign(sKnots, sKnots + sKnotCount);
    s.KnotsT.assign(tKnots, tKnots + tKnotCount);
    s.StrideS = sStride;
    s.StrideT = tStride;
    s.OrderS = sOrder;
    s.OrderT = tOrder;
    s.Type = type;
    const int countS = sKnotCount - sOrder;
    const int countT = tKnotCount - tOrder;
    for (int i = 0; i < countS; ++i)
        for (int j = 0; j < countT; ++j)
            for (int k = 0; k < 4; ++k) s.Control.push_back(control[i * sStride + j * tStride + k]);
    TFakeGlu::Active->Surfaces.push_back(std::move(s));
}

template <typename... Args>
void Call(GLenum which, Args... args)
{
    const auto it = gCallbacks.find(which);
    if (it != gCallbacks.end()) reinterpret_cast<void (*)(Args...)>(it->second)(args...);
}

void FakeEndSurface(GLUnurbs*)
{
    Log("gluEndSurface");
    for (const TFakePrimitive& p : TFakeGlu::Active->Script) {
        Call<GLenum>(GLU_NURBS_BEGIN, p.Type);
        for (std::size_t v = 0; v + 3 <= p.Vertices.size(); v += 3) {
            GLfloat normal[3] = {0.0f, 0.0f, 1.0f};
            GLfloat vertex[3] = {p.Vertices[v], p.Vertices[v + 1], p.Vertices[v + 2]};
            Call<GLfloat*>(GLU_NURBS_NORMAL, normal);
            Call<GLfloat*>(GLU_NURBS_VERTEX, vertex);
        }
        Call<>(GLU_NURBS_END);
    }
}

void FakeBeginTrim(GLUnurbs*) { Log("gluBeginTrim"); }
void FakeEndTrim(GLUnurbs*) { Log("gluEndTrim"); }

void FakePwl(GLUnurbs*, GLint count, GLfloat* data, GLint stride, GLenum type)
{
    Log("gluPwlCurve");
    TFakeTrimCurve c;
    c.Pwl = true;
    c.Count = count;
    c.Stride = stride;
    c.Type = type;
    for (int i = 0; i < count; ++i)
        for (int k = 0; k < 3; ++k) c.Points.push_back(data[i * stride + k]);
    TFakeGlu::Active->TrimCurves.push_back(std::move(c));
}

void FakeNurbsCurve(GLUnurbs*, GLint knotCount, GLfloat* knots, GLint stride, GLfloat* control, GLint order,
                    GLenum type)
{
    Log("gluNurbsCurve");
    TFakeTrimCurve c;
    c.Knots.assign(knots, knots + knotCount);
    c.Count = knotCount - order;
    c.Stride = stride;
    c.Order = order;
    c.Type = type;
    for (int i = 0; i < c.Count; ++i)
        for (int k = 0; k < 3; ++k) c.Points.push_back(control[i * stride + k]);
    TFakeGlu::Active->TrimCurves.push_back(std::move(c));
}

}  // namespace

TFakeGlu::TFakeGlu() : FSaved(std::make_unique<TSaved>())
{
    Active = this;
    gluNewNurbsRenderer = &FakeNew;
    gluDeleteNurbsRenderer = &FakeDelete;
    gluNurbsProperty = &FakeProperty;
    gluNurbsCallback = &FakeCallback;
    gluBeginSurface = &FakeBeginSurface;
    gluNurbsSurface = &FakeSurface;
    gluEndSurface = &FakeEndSurface;
    gluBeginTrim = &FakeBeginTrim;
    gluEndTrim = &FakeEndTrim;
    gluPwlCurve = &FakePwl;
    gluNurbsCurve = &FakeNurbsCurve;
}

TFakeGlu::~TFakeGlu()
{
    gluNewNurbsRenderer = FSaved->NewRenderer;
    gluDeleteNurbsRenderer = FSaved->DeleteRenderer;
    gluNurbsProperty = FSaved->Property;
    gluNurbsCallback = FSaved->Callback;
    gluBeginSurface = FSaved->BeginSurface;
    gluNurbsSurface = FSaved->Surface;
    gluEndSurface = FSaved->EndSurface;
    gluBeginTrim = FSaved->BeginTrim;
    gluEndTrim = FSaved->EndTrim;
    gluPwlCurve = FSaved->PwlCurve;
    gluNurbsCurve = FSaved->NurbsCurve;
    Active = nullptr;
}

std::vector<float> TFakeGlu::PropertyValues(GLenum property) const
{
    std::vector<float> values;
    const std::string prefix = "gluNurbsProperty " + std::to_string(property) + "=";
    for (const std::string& call : Calls)
        if (call.rfind(prefix, 0) == 0) values.push_back(std::stof(call.substr(prefix.size())));
    return values;
}

}  // namespace orvane::testing
