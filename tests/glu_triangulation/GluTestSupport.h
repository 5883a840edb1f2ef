// What the GLU road's tests build: flat grids of any degree, loops of lines, curve doubles for
// what the kernel's own classes can't show, meshes and their areas, and a fake GLU NURBS renderer.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "contracts/Cadgeometry.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/GlRecorder.h"

namespace orvane::testing {

// Clamped uniform knots from 0 to Range for Count control points of Degree.
inline TArrayDouble ClampedKnots(int Count, int Degree, double Range = 1.0)
{
    TArrayDouble knots(Degree + 1, 0.0);
    for (int k = 1; k < Count - Degree; ++k) knots.push_back(Range * k / (Count - Degree));
    knots.insert(knots.end(), Degree + 1, Range);
    return knots;
}

// A flat grid in z = 0: control point (i, j) at (i SizeU / (CountU - 1), j SizeV / (CountV - 1)).
inline std::unique_ptr<TGeNurbsSurface> MakeGridSurface(int DegreeU, int DegreeV, int CountU, int CountV, double SizeU,
                                                        double SizeV)
{
    TDynPoints3D points;
    for (int i = 0; i < CountU; ++i)
        for (int j = 0; j < CountV; ++j) points.push_back({i * SizeU / (CountU - 1), j * SizeV / (CountV - 1), 0.0});
    return std::make_unique<TGeNurbsSurface>(CountU, CountV, DegreeU, DegreeV, ClampedKnots(CountU, DegreeU),
                                             ClampedKnots(CountV, DegreeV), points);
}

// The closed polygon of lines through the points, as a composite curve.
inline std::unique_ptr<TGeCompositeCurve2D> MakeLineLoop(const std::vector<TPoint2D>& Points)
{
    std::vector<std::unique_ptr<TGeCurve2D>> lines;
    for (std::size_t i = 0; i < Points.size(); ++i)
        lines.push_back(std::make_unique<TGeLine2D>(Points[i], Points[(i + 1) % Points.size()]));
    return std::make_unique<TGeCompositeCurve2D>(std::move(lines));
}

// A clamped spline that reports a start point off its first control point by Offset in U, as
// a spline that isn't clamped would: the GLU road sends it as a NURBS curve.
class TNurbsTrimSpline : public TGeSpline2D {
public:
    TNurbsTrimSpline(int ADegree, TArrayDouble AKnots, TDynPoints2D ACtrlPoints, double AOffset = 1e-5)
        : TGeSpline2D(ADegree, std::move(AKnots), std::move(ACtrlPoints)), FOffset(AOffset)
    {
    }
    TPoint2D GetStartPoint() const override { return TGeSpline2D::GetStartPoint() + TPoint2D(FOffset, 0.0); }

private:
    double FOffset;
};

// A straight line between two points as a NURBS trim curve of degree 1.
inline std::unique_ptr<TGeCurve2D> NurbsTrimLine(const TPoint2D& A, const TPoint2D& B)
{
    return std::make_unique<TNurbsTrimSpline>(1, TArrayDouble{0, 0, 1, 1}, TDynPoints2D{A, B});
}

// The triangles (or quads) of a surface, with a normal for every vertex, into Norm where given.
inline TFloatDynArray Mesh(TGLSurfaceTriangulator& T, const TGeSurface& Surf, bool Quads = false,
                           TFloatDynArray* Norm = nullptr)
{
    TFloatDynArray tri, norm;
    Quads ? T.Quadrilateral(&Surf, tri, norm) : T.Triangulate(&Surf, tri, norm);
    EXPECT_EQ(norm.size(), tri.size());
    if (Norm) *Norm = norm;
    return tri;
}

// The area of a flat triangle list (9 values a triangle).
template <typename Values>
double MeshArea(const Values& Tri)
{
    double area = 0.0;
    for (std::size_t i = 0; i + 9 <= Tri.size(); i += 9) {
        const TPoint3D a{Tri[i], Tri[i + 1], Tri[i + 2]}, b{Tri[i + 3], Tri[i + 4], Tri[i + 5]},
            c{Tri[i + 6], Tri[i + 7], Tri[i + 8]};
        area += (b - a).CrossMul(c - a).Length() / 2;
    }
    return area;
}

// A fake GLU NURBS renderer on the recorder: keeps the control points given to gluNurbsSurface
// and what gluPwlCurve and gluNurbsCurve were given, and at every gluEndSurface plays one
// triangle, (0, 0, 0), (1, 0, 0), (0, 1, 0), through the callbacks installed on it.
class TFakeGlu {
public:
    struct TrimCurve {
        bool Pwl;
        std::vector<float> Knots, Points;  // Points: Stride floats a point
        int Stride, Order;
        dglOpenGL::GLenum Type;
    };

    TFakeGlu()
    {
        using namespace dglOpenGL;
        Rec.Record<&gluNewNurbsRenderer>([this] {
            FCallbacks.clear();
            return reinterpret_cast<GLUnurbs*>(0x1000);
        });
        Rec.Record<&gluDeleteNurbsRenderer>();
        Rec.Record<&gluNurbsProperty>();
        Rec.Record<&gluNurbsCallback>([this](GLUnurbs*, GLenum which, TGLUFuncPtr fn) { FCallbacks[which] = fn; });
        Rec.Record<&gluBeginSurface>();
        Rec.Record<&gluBeginTrim>();
        Rec.Record<&gluEndTrim>();
        Rec.Record<&gluNurbsSurface>([this](GLUnurbs*, GLint sCount, GLfloat*, GLint tCount, GLfloat*, GLint sStride,
                                            GLint tStride, GLfloat* ctrl, GLint sOrder, GLint tOrder, GLenum) {
            Surfaces.emplace_back();
            for (int i = 0; i < sCount - sOrder; ++i)
                for (int j = 0; j < tCount - tOrder; ++j)
                    Surfaces.back().insert(Surfaces.back().end(), ctrl + i * sStride + j * tStride,
                                           ctrl + i * sStride + j * tStride + 4);
        });
        Rec.Record<&gluPwlCurve>([this](GLUnurbs*, GLint count, GLfloat* data, GLint stride, GLenum type) {
            TrimCurves.push_back({true, {}, {data, data + count * stride}, stride, 0, type});
        });
        Rec.Record<&gluNurbsCurve>([this](GLUnurbs*, GLint knotCount, GLfloat* knots, GLint stride, GLfloat* ctrl,
                                          GLint order, GLenum type) {
            TrimCurves.push_back(
                {false, {knots, knots + knotCount}, {ctrl, ctrl + (knotCount - order) * stride}, stride, order, type});
        });
        Rec.Record<&gluEndSurface>([this](GLUnurbs*) {
            Call<GLenum>(GLU_NURBS_BEGIN, GL_TRIANGLES);
            GLfloat normal[3] = {0, 0, 1}, vertices[3][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
            for (GLfloat* vertex : vertices) {
                Call<GLfloat*>(GLU_NURBS_NORMAL, normal);
                Call<GLfloat*>(GLU_NURBS_VERTEX, vertex);
            }
            Call<>(GLU_NURBS_END);
        });
    }

    // The values given to gluNurbsProperty for a property, in order.
    std::vector<double> PropertyValues(dglOpenGL::GLenum Property) const
    {
        std::vector<double> values;
        for (const GlCall& c : Rec.CallsOf("gluNurbsProperty"))
            if (c.Args[1] == Property) values.push_back(c.Args[2]);
        return values;
    }
    // The call names without their "glu", space-separated; with TrimsOnly, only the trim calls.
    std::string Sequence(bool TrimsOnly = false) const
    {
        std::string all;
        for (const std::string& name : Rec.Names())
            if (!TrimsOnly || name.find("Trim") != std::string::npos || name.find("Curve") != std::string::npos)
                all += (all.empty() ? "" : " ") + name.substr(3);
        return all;
    }
    long LiveRenderers() const
    {
        return static_cast<long>(Rec.Count("gluNewNurbsRenderer")) - static_cast<long>(Rec.Count("gluDeleteNurbsRenderer"));
    }

    GlRecorder Rec;
    std::vector<std::vector<float>> Surfaces;  // 4 floats a control point, s major
    std::vector<TrimCurve> TrimCurves;

private:
    template <typename... Args>
    void Call(dglOpenGL::GLenum Which, Args... AArgs)
    {
        const auto it = FCallbacks.find(Which);
        if (it != FCallbacks.end()) reinterpret_cast<void (*)(Args...)>(it->second)(AArgs...);
    }
    std::map<dglOpenGL::GLenum, dglOpenGL::TGLUFuncPtr> FCallbacks;
};

}  // namespace orvane::testing
