// Trimmed surfaces on Mesa's GLU: holes stay empty, the rest is covered, every kind of
// boundary curve trims, and what GLU does with a gap after a NURBS trim curve.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "contracts/Shapes.h"
#include "glu_triangulation/GluView.h"
#include "glu_triangulation/uTriangulate.h"
#include "tests/glu_triangulation/GluTestSurfaces.h"
#include "tests/glu_triangulation/GluTestView.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::IsEmpty;
using TPolygon = std::vector<TPoint2D>;

constexpr int kViewSize = 1024;

// The trim loops as GLU received them: each gluPwlCurve and gluNurbsCurve (its control
// polygon) appended to the loop under way.
class TTrimCapture {
public:
    TTrimCapture()
    {
        const auto begin = dglOpenGL::gluBeginTrim;
        const auto pwl = dglOpenGL::gluPwlCurve;
        const auto nurbs = dglOpenGL::gluNurbsCurve;
        FRec.Record<&dglOpenGL::gluBeginTrim>([this, begin](dglOpenGL::GLUnurbs* r) {
            Loops.emplace_back();
            begin(r);
        });
        FRec.Record<&dglOpenGL::gluPwlCurve>(
            [this, pwl](dglOpenGL::GLUnurbs* r, int count, float* data, int stride, dglOpenGL::GLenum type) {
                for (int i = 0; i < count; ++i) Loops.back().push_back({data[i * stride], data[i * stride + 1]});
                pwl(r, count, data, stride, type);
            });
        FRec.Record<&dglOpenGL::gluNurbsCurve>([this, nurbs](dglOpenGL::GLUnurbs* r, int knotCount, float* knots,
                                                             int stride, float* ctrl, int order, dglOpenGL::GLenum type) {
            for (int i = 0; i < knotCount - order; ++i)
                Loops.back().push_back({ctrl[i * stride] / ctrl[i * stride + 2], ctrl[i * stride + 1] / ctrl[i * stride + 2]});
            nurbs(r, knotCount, knots, stride, ctrl, order, type);
        });
    }
    std::vector<TPolygon> Loops;

private:
    GlRecorder FRec;
};

double SignedArea(const TPolygon& P)
{
    double a = 0.0;
    for (std::size_t i = 0; i < P.size(); ++i) {
        const TPoint2D& p = P[i];
        const TPoint2D& q = P[(i + 1) % P.size()];
        a += p.X * q.Y - q.X * p.Y;
    }
    return a / 2;
}

bool Inside(const TPolygon& P, const TPoint2D& X)
{
    bool in = false;
    for (std::size_t i = 0, j = P.size() - 1; i < P.size(); j = i++)
        if ((P[i].Y > X.Y) != (P[j].Y > X.Y) &&
            X.X < (P[j].X - P[i].X) * (X.Y - P[i].Y) / (P[j].Y - P[i].Y) + P[i].X)
            in = !in;
    return in;
}

// The triangles of a plate whose UV maps onto x = 3u, y = 2v: none has its centroid in a hole
// or outside the outer loop, and together they cover the outer loop less the holes.
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
        if (MeshArea({Tri.begin() + i, Tri.begin() + i + 9}) < 1e-6 * expected) continue;
        const TPoint2D uv{(Tri[i] + Tri[i + 3] + Tri[i + 6]) / 9.0, (Tri[i + 1] + Tri[i + 4] + Tri[i + 7]) / 6.0};
        bool wrong = !Inside(Loops[0], uv);
        for (std::size_t h = 1; h < Loops.size(); ++h) wrong = wrong || Inside(Loops[h], uv);
        misplaced += wrong ? 1 : 0;
    }
    EXPECT_EQ(misplaced, 0);
    EXPECT_NEAR(MeshArea(Tri), expected, 0.01 * expected);
}

std::vector<double> TriangulateTrimmed(const TGeSurface& Surf, std::vector<TPolygon>* Loops = nullptr)
{
    FitObliqueView(Surf, kViewSize, kViewSize);
    TGLSurfaceTriangulator tri;
    TFloatDynArray v, n;
    TTrimCapture capture;
    tri.Triangulate(&Surf, v, n);
    if (Loops != nullptr) *Loops = capture.Loops;
    return v;
}

class TrimTriangulateMesa : public ::testing::Test {
protected:
    OffscreenGL FGL{kViewSize, kViewSize};
};

TEST_F(TrimTriangulateMesa, LibraryPlatesKeepTheirHolesEmpty)
{
    for (const std::string name : {"trimmed-circular-holes", "trimmed-polygon-holes"}) {
        SCOPED_TRACE(name);
        std::vector<TPolygon> loops;
        const std::vector<double> tri = TriangulateTrimmed(*MakeShape(name), &loops);
        ExpectPlateCovered(tri, loops);
    }
}

// A plate x = 3u, y = 2v with corners that single precision holds exactly.
std::unique_ptr<TGeTrimmedSurface> Plate(std::unique_ptr<TGeCurve2D> Outer,
                                         std::vector<std::unique_ptr<TGeCurve2D>> Holes)
{
    return std::make_unique<TGeTrimmedSurface>(MakeGridSurface(2, 2, 3, 3, 3, 2), std::move(Outer), std::move(Holes));
}

TEST_F(TrimTriangulateMesa, EveryKindOfBoundaryCurveTrims)
{
    // Outer: a line, a straight spline of degree 1, a NURBS trim curve, a clamped cubic.
    std::vector<std::unique_ptr<TGeCurve2D>> outer;
    outer.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.125, 0.125}, TPoint2D{0.875, 0.125}));
    outer.push_back(std::make_unique<TGeSpline2D>(1, TArrayDouble{0, 0, 1, 1},
                                                  TDynPoints2D{{0.875, 0.125}, {0.875, 0.875}}));
    outer.push_back(NurbsTrimLine({0.875, 0.875}, {0.125, 0.875}));
    outer.push_back(std::make_unique<TGeSpline2D>(3, ClampedKnots(4, 3),
                                                  TDynPoints2D{{0.125, 0.875}, {0.125, 0.625}, {0.125, 0.375}, {0.125, 0.125}}));
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    // A hole of NURBS trim curves, clockwise.
    std::vector<std::unique_ptr<TGeCurve2D>> nurbsHole;
    const TPolygon square = {{0.25, 0.25}, {0.25, 0.5}, {0.5, 0.5}, {0.5, 0.25}};
    for (std::size_t i = 0; i < 4; ++i) nurbsHole.push_back(NurbsTrimLine(square[i], square[(i + 1) % 4]));
    holes.push_back(std::make_unique<TGeCompositeCurve2D>(std::move(nurbsHole)));
    // A hole that is a single closed spline of degree 1.
    holes.push_back(std::make_unique<TGeSpline2D>(
        1, TArrayDouble{0, 0, 0.25, 0.5, 0.75, 1, 1},
        TDynPoints2D{{0.625, 0.625}, {0.625, 0.75}, {0.75, 0.75}, {0.75, 0.625}, {0.625, 0.625}}));

    std::vector<TPolygon> loops;
    const std::vector<double> tri = TriangulateTrimmed(*Plate(std::make_unique<TGeCompositeCurve2D>(std::move(outer)),
                                                              std::move(holes)),
                                                       &loops);
    ASSERT_EQ(loops.size(), 3u);
    ExpectPlateCovered(tri, loops);
}

// GLU drops the whole surface, without a word, when the curve after a NURBS trim curve starts
// more than about 1e-5 away from its end; a polyline loop's gap of the same size it closes.
TEST_F(TrimTriangulateMesa, GapAfterANurbsTrimCurveEmptiesTheSurface)
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
        return Plate(std::make_unique<TGeCompositeCurve2D>(std::move(outer)), {});
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
