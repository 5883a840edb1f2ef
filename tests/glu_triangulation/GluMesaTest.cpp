// The GLU road on Mesa's GLU: meshes of the shape library against their closed forms and
// areas, surfaces GLU rejects, a failure inside a callback, trimmed plates whose holes stay
// empty, and what GLU does with a gap after a NURBS trim curve. GLU samples in pixels of the
// current view, so every test has a context current and FitObliqueView set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

#include "contracts/Shapes.h"
#include "contracts/SurfaceArea.h"
#include "glu_triangulation/GluView.h"
#include "glu_triangulation/uTriangulate.h"
#include "tests/glu_triangulation/GluTestSupport.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::IsEmpty;
using TPolygon = std::vector<TPoint2D>;
namespace gl = dglOpenGL;

constexpr int kViewSize = 1024;

class GluMesa : public ::testing::Test {
protected:
    OffscreenGL FGL{kViewSize, kViewSize};
};

TEST_F(GluMesa, EveryUntrimmedShapeMeetsItsAreaAndLiesOnTheSurface)
{
    const auto radial = [](const TPoint3D& p) { return std::hypot(p.X, p.Y); };
    const auto cylinder = [&](const TPoint3D& p) { return std::abs(radial(p) - 1) + std::max({0.0, -p.Z, p.Z - 2}); };
    const std::map<std::string, std::function<double(const TPoint3D&)>> closedForm = {
        {"bilinear", [](const TPoint3D& p) { return std::abs(p.Z - p.X * p.Y); }},  // (u, v, uv): vertically
        {"plane", [](const TPoint3D& p) { return std::abs(p.Z); }},
        {"cylinder", cylinder},
        {"cylinder-transposed", cylinder},
        {"partial-cylinder", cylinder},
        {"cone", [&](const TPoint3D& p) { return std::abs(2 * radial(p) + p.Z - 2) / std::sqrt(5.0); }},
        {"sphere", [](const TPoint3D& p) { return std::abs(p.Length() - 2); }},
        {"torus", [&](const TPoint3D& p) { return std::abs(std::hypot(radial(p) - 3, p.Z) - 1); }}};
    TGLSurfaceTriangulator tri;
    for (const std::string& name : ShapeNames()) {
        if (name.rfind("trimmed", 0) == 0) continue;
        SCOPED_TRACE(name);
        const auto shape = MakeShape(name);
        FitObliqueView(*shape, kViewSize, kViewSize);
        TFloatDynArray norm;
        const TFloatDynArray mesh = Mesh(tri, *shape, false, &norm);
        ASSERT_FALSE(mesh.empty());
        ASSERT_EQ(mesh.size() % 9, 0u);
        const double exact = SurfaceArea(*shape);
        EXPECT_NEAR(MeshArea(mesh), exact, 0.01 * exact);

        // A unit normal at every vertex, and every vertex of a shape with a closed form within
        // 1e-5 of the box diagonal of it.
        TPoint3D lo{1e300, 1e300, 1e300}, hi = -lo;
        for (const TPoint3D& p : SurfaceGridPoints(*shape, 65)) {
            lo = {std::min(lo.X, p.X), std::min(lo.Y, p.Y), std::min(lo.Z, p.Z)};
            hi = {std::max(hi.X, p.X), std::max(hi.Y, p.Y), std::max(hi.Z, p.Z)};
        }
        const auto it = closedForm.find(name);
        std::map<std::tuple<double, double, double>, bool> seen;  // GLU repeats shared vertices
        double worst = 0.0;
        for (std::size_t i = 0; i < mesh.size(); i += 3) {
            const TPoint3D p{mesh[i], mesh[i + 1], mesh[i + 2]};
            if (!seen.emplace(std::make_tuple(p.X, p.Y, p.Z), true).second) continue;
            worst = std::max(worst, it != closedForm.end() ? it->second(p) : 0.0);
            ASSERT_NEAR(std::hypot(norm[i], norm[i + 1], norm[i + 2]), 1.0, 1e-3) << "vertex " << i / 3;
        }
        EXPECT_LE(worst, 1e-5 * lo.DistanceTo(hi));
    }
}

TEST_F(GluMesa, CallsInARowAreIndependentAndQuadsCoverTheSameSurface)
{
    const auto torus = MakeShape("torus");
    FitObliqueView(*torus, kViewSize, kViewSize);
    TGLSurfaceTriangulator tri;
    TFloatDynArray firstNorm, secondNorm;
    const TFloatDynArray first = Mesh(tri, *torus, false, &firstNorm);
    const TFloatDynArray between = Mesh(tri, *MakeShape("plane"));
    EXPECT_EQ(Mesh(tri, *torus, false, &secondNorm), first);
    EXPECT_EQ(secondNorm, firstNorm);
    EXPECT_LT(between.size(), first.size());
    // The wrapped surface goes out exactly as the surface it wraps.
    const TGeNurbsSurfaceExt wrapped(
        std::unique_ptr<TGeNurbsSurface>(static_cast<TGeNurbsSurface*>(MakeShape("torus").release())));
    EXPECT_EQ(Mesh(tri, wrapped), first);

    const TFloatDynArray quads = Mesh(tri, *torus, true);
    ASSERT_EQ(quads.size() % 12, 0u);
    std::vector<double> split;
    for (std::size_t q = 0; q < quads.size(); q += 12)
        for (const int k : {0, 1, 2, 0, 2, 3}) split.insert(split.end(), &quads[q + 3 * k], &quads[q + 3 * k + 3]);
    EXPECT_NEAR(MeshArea(split), MeshArea(first), 1e-3 * MeshArea(first));
}

TEST_F(GluMesa, SurfacesGluRejectsGiveEmptyArrays)
{
    TGLSurfaceTriangulator tri;
    // Order 25: above GLU's greatest order.
    TDynPoints3D points, grid;
    for (int i = 0; i < 25; ++i)
        for (int j = 0; j < 2; ++j) points.push_back({i / 24.0, 1.0 * j, std::sin(i / 4.0)});
    const TGeNurbsSurface high(25, 2, 24, 1, ClampedKnots(25, 24), ClampedKnots(2, 1), points);
    FitObliqueView(high, kViewSize, kViewSize);
    EXPECT_THAT(Mesh(tri, high), IsEmpty());
    // An interior knot that single precision rounds onto the last one.
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j) grid.push_back({1.0 * i, 1.0 * j, 0.1 * i * j});
    const TGeNurbsSurface close(5, 4, 3, 3, {0, 0, 0, 0, 1 - 1e-12, 1, 1, 1, 1}, ClampedKnots(4, 3), grid);
    FitObliqueView(close, kViewSize, kViewSize);
    EXPECT_THAT(Mesh(tri, close), IsEmpty());
    // The same object still triangulates the next surface.
    const auto plane = MakeShape("plane");
    FitObliqueView(*plane, kViewSize, kViewSize);
    EXPECT_FALSE(Mesh(tri, *plane).empty());
}

// A failure inside a real GLU callback: the BEGIN callback that GLU is given hands the third
// primitive on as a triangle strip, which no quad can be made of.
TEST_F(GluMesa, FailureInACallbackKeepsWhatCameBeforeAndLeaksNothing)
{
    const auto sphere = MakeShape("sphere");
    FitObliqueView(*sphere, kViewSize, kViewSize);
    TGLSurfaceTriangulator tri;
    TFloatDynArray fullNorm, cutNorm;
    const TFloatDynArray full = Mesh(tri, *sphere, true, &fullNorm);
    ASSERT_FALSE(full.empty());

    static gl::TGLUFuncPtr realBegin;
    static int primitives;
    primitives = 0;
    TFloatDynArray cut;
    {
        GlRecorder rec;
        const auto realCallback = gl::gluNurbsCallback;
        rec.Record<&gl::gluNurbsCallback>([realCallback](gl::GLUnurbs* r, gl::GLenum which, gl::TGLUFuncPtr fn) {
            if (which != gl::GLU_NURBS_BEGIN) return realCallback(r, which, fn);
            realBegin = fn;
            realCallback(r, which, reinterpret_cast<gl::TGLUFuncPtr>(+[](gl::GLenum type) {
                const bool forge = ++primitives == 3;
                reinterpret_cast<void (*)(gl::GLenum)>(realBegin)(forge ? gl::GL_TRIANGLE_STRIP : type);
            }));
        });
        cut = Mesh(tri, *sphere, true, &cutNorm);
    }
    EXPECT_GT(primitives, 3) << "GLU went on to the end of the surface";
    ASSERT_FALSE(cut.empty());
    ASSERT_LT(cut.size(), full.size());
    EXPECT_TRUE(std::equal(cut.begin(), cut.end(), full.begin()));
    EXPECT_TRUE(std::equal(cutNorm.begin(), cutNorm.end(), fullNorm.begin()));
    // The same object goes on as a fresh one would.
    EXPECT_EQ(Mesh(tri, *sphere, true), full);
    TGLSurfaceTriangulator fresh;
    EXPECT_EQ(Mesh(fresh, *sphere, true), full);
}

double SignedArea(const TPolygon& P)
{
    double a = 0.0;
    for (std::size_t i = 0; i < P.size(); ++i) a += P[i].X * P[(i + 1) % P.size()].Y - P[(i + 1) % P.size()].X * P[i].Y;
    return a / 2;
}

bool Inside(const TPolygon& P, const TPoint2D& X)
{
    bool in = false;
    for (std::size_t i = 0, j = P.size() - 1; i < P.size(); j = i++)
        if ((P[i].Y > X.Y) != (P[j].Y > X.Y) && X.X < (P[j].X - P[i].X) * (X.Y - P[i].Y) / (P[j].Y - P[i].Y) + P[i].X) in = !in;
    return in;
}

// A trimmed plate x = 3u, y = 2v triangulated, with the trim loops as GLU received them: each
// gluPwlCurve and gluNurbsCurve (its control polygon) appended to the loop under way.
std::vector<double> TriangulateTrimmed(const TGeSurface& Surf, std::vector<TPolygon>* Loops = nullptr)
{
    FitObliqueView(Surf, kViewSize, kViewSize);
    std::vector<TPolygon> loops;
    GlRecorder rec;
    const auto begin = gl::gluBeginTrim;
    const auto pwl = gl::gluPwlCurve;
    const auto nurbs = gl::gluNurbsCurve;
    rec.Record<&gl::gluBeginTrim>([&loops, begin](gl::GLUnurbs* r) {
        loops.emplace_back();
        begin(r);
    });
    rec.Record<&gl::gluPwlCurve>([&loops, pwl](gl::GLUnurbs* r, int count, float* data, int stride, gl::GLenum type) {
        for (int i = 0; i < count; ++i) loops.back().push_back({data[i * stride], data[i * stride + 1]});
        pwl(r, count, data, stride, type);
    });
    rec.Record<&gl::gluNurbsCurve>([&loops, nurbs](gl::GLUnurbs* r, int knotCount, float* knots, int stride, float* ctrl,
                                                   int order, gl::GLenum type) {
        for (int i = 0; i < knotCount - order; ++i)
            loops.back().push_back({ctrl[i * stride] / ctrl[i * stride + 2], ctrl[i * stride + 1] / ctrl[i * stride + 2]});
        nurbs(r, knotCount, knots, stride, ctrl, order, type);
    });
    TGLSurfaceTriangulator tri;
    const TFloatDynArray mesh = Mesh(tri, Surf);
    if (Loops != nullptr) *Loops = loops;
    return {mesh.begin(), mesh.end()};
}

// No triangle has its centroid in a hole or outside the outer loop, and together they cover
// the outer loop less the holes.
void ExpectPlateCovered(const std::vector<double>& Tri, const std::vector<TPolygon>& Loops)
{
    ASSERT_GE(Loops.size(), 2u);
    ASSERT_FALSE(Tri.empty());
    EXPECT_GT(SignedArea(Loops[0]), 0.0) << "outer loop counter-clockwise";
    double expected = SignedArea(Loops[0]);
    for (std::size_t h = 1; h < Loops.size(); ++h) {
        EXPECT_LT(SignedArea(Loops[h]), 0.0) << "hole " << h << " clockwise";
        expected += SignedArea(Loops[h]);
    }
    expected *= 6.0;
    int misplaced = 0;
    for (std::size_t i = 0; i + 9 <= Tri.size(); i += 9) {
        // GLU hands out slivers along the trim lines, flat but for single-precision noise;
        // their centroids lie on a boundary.
        if (MeshArea(std::vector<double>(Tri.begin() + i, Tri.begin() + i + 9)) < 1e-6 * expected) continue;
        const TPoint2D uv{(Tri[i] + Tri[i + 3] + Tri[i + 6]) / 9.0, (Tri[i + 1] + Tri[i + 4] + Tri[i + 7]) / 6.0};
        bool wrong = !Inside(Loops[0], uv);
        for (std::size_t h = 1; h < Loops.size(); ++h) wrong = wrong || Inside(Loops[h], uv);
        misplaced += wrong ? 1 : 0;
    }
    EXPECT_EQ(misplaced, 0);
    EXPECT_NEAR(MeshArea(Tri), expected, 0.01 * expected);
}

// A plate x = 3u, y = 2v with corners that single precision holds exactly.
std::unique_ptr<TGeTrimmedSurface> Plate(std::vector<std::unique_ptr<TGeCurve2D>> Outer,
                                         std::vector<std::unique_ptr<TGeCurve2D>> Holes = {})
{
    return std::make_unique<TGeTrimmedSurface>(MakeGridSurface(2, 2, 3, 3, 3, 2),
                                               std::make_unique<TGeCompositeCurve2D>(std::move(Outer)), std::move(Holes));
}

TEST_F(GluMesa, EveryKindOfBoundaryCurveTrimsAndHolesStayEmpty)
{
    for (const std::string name : {"trimmed-circular-holes", "trimmed-polygon-holes"}) {
        SCOPED_TRACE(name);
        std::vector<TPolygon> loops;
        const std::vector<double> tri = TriangulateTrimmed(*MakeShape(name), &loops);
        ExpectPlateCovered(tri, loops);
    }
    // Outer: a line, a straight spline of degree 1, a NURBS trim curve, a clamped cubic.
    std::vector<std::unique_ptr<TGeCurve2D>> outer, holes, nurbsHole;
    outer.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.125, 0.125}, TPoint2D{0.875, 0.125}));
    outer.push_back(std::make_unique<TGeSpline2D>(1, TArrayDouble{0, 0, 1, 1}, TDynPoints2D{{0.875, 0.125}, {0.875, 0.875}}));
    outer.push_back(NurbsTrimLine({0.875, 0.875}, {0.125, 0.875}));
    outer.push_back(std::make_unique<TGeSpline2D>(3, ClampedKnots(4, 3),
                                                  TDynPoints2D{{0.125, 0.875}, {0.125, 0.625}, {0.125, 0.375}, {0.125, 0.125}}));
    // A hole of NURBS trim curves, clockwise, and one that is a single closed spline of degree 1.
    const TPolygon square = {{0.25, 0.25}, {0.25, 0.5}, {0.5, 0.5}, {0.5, 0.25}};
    for (std::size_t i = 0; i < 4; ++i) nurbsHole.push_back(NurbsTrimLine(square[i], square[(i + 1) % 4]));
    holes.push_back(std::make_unique<TGeCompositeCurve2D>(std::move(nurbsHole)));
    holes.push_back(std::make_unique<TGeSpline2D>(
        1, TArrayDouble{0, 0, 0.25, 0.5, 0.75, 1, 1},
        TDynPoints2D{{0.625, 0.625}, {0.625, 0.75}, {0.75, 0.75}, {0.75, 0.625}, {0.625, 0.625}}));
    std::vector<TPolygon> loops;
    const std::vector<double> tri = TriangulateTrimmed(*Plate(std::move(outer), std::move(holes)), &loops);
    ASSERT_EQ(loops.size(), 3u);
    ExpectPlateCovered(tri, loops);
}

// GLU drops the whole surface, without a word, when the curve after a NURBS trim curve starts
// more than about 1e-5 away from its end; a polyline loop's gap of the same size it closes.
TEST_F(GluMesa, GapAfterANurbsTrimCurveEmptiesTheSurface)
{
    auto plate = [](double gap, bool nurbsFirst) {
        std::vector<std::unique_ptr<TGeCurve2D>> outer;
        if (nurbsFirst)
            outer.push_back(NurbsTrimLine({0.125, 0.125}, {0.875, 0.125}));
        else
            outer.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.125, 0.125}, TPoint2D{0.875, 0.125}));
        outer.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.875 + gap, 0.125}, TPoint2D{0.875, 0.875}));
        outer.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.875, 0.875}, TPoint2D{0.125, 0.875}));
        outer.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.125, 0.875}, TPoint2D{0.125, 0.125}));
        return Plate(std::move(outer));
    };
    const double covered = 6.0 * 0.75 * 0.75;
    EXPECT_NEAR(MeshArea(TriangulateTrimmed(*plate(0.0, true))), covered, 0.01 * covered);
    EXPECT_NEAR(MeshArea(TriangulateTrimmed(*plate(std::ldexp(1.0, -18), true))), covered, 0.01 * covered);
    EXPECT_THAT(TriangulateTrimmed(*plate(std::ldexp(1.0, -15), true)), IsEmpty());
    EXPECT_THAT(TriangulateTrimmed(*plate(std::ldexp(1.0, -10), true)), IsEmpty());
    EXPECT_NEAR(MeshArea(TriangulateTrimmed(*plate(std::ldexp(1.0, -10), false))), covered, 0.01 * covered);
}

}  // namespace
}  // namespace orvane
