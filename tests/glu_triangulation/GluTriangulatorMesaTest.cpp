// The GLU road on Mesa's GLU: the meshes it gives for the shape library, surfaces GLU
// rejects, a failure inside a callback, and trimmed plates with holes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>

#include "contracts/Shapes.h"
#include "contracts/SurfaceArea.h"
#include "glu_triangulation/uTriangulate.h"
#include "glu_triangulation/GluView.h"
#include "tests/glu_triangulation/GluTestSurfaces.h"
#include "tests/glu_triangulation/GluTestView.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::IsEmpty;

constexpr int kViewSize = 1024;

struct TMesh {
    TFloatDynArray Tri;
    TFloatDynArray Norm;
};

TMesh Triangulate(TGLSurfaceTriangulator& T, const TGeSurface& Surf)
{
    TMesh m;
    T.Triangulate(&Surf, m.Tri, m.Norm);
    return m;
}

TMesh Quadrilateral(TGLSurfaceTriangulator& T, const TGeSurface& Surf)
{
    TMesh m;
    T.Quadrilateral(&Surf, m.Tri, m.Norm);
    return m;
}

double Radial(const TPoint3D& P) { return std::hypot(P.X, P.Y); }

// Distance to the surfaces of revolution about Z in closed form; others by projection.
using TDistance = std::function<double(const TPoint3D&)>;
std::map<std::string, TDistance> ClosedFormDistances()
{
    const TDistance cylinder = [](const TPoint3D& p) {
        return std::abs(Radial(p) - 1) + std::max({0.0, -p.Z, p.Z - 2});
    };
    return {{"plane", [](const TPoint3D& p) { return std::abs(p.Z); }},
            {"cylinder", cylinder},
            {"cylinder-transposed", cylinder},
            {"partial-cylinder", cylinder},
            {"cone", [](const TPoint3D& p) { return std::abs(2 * Radial(p) + p.Z - 2) / std::sqrt(5.0); }},
            {"sphere", [](const TPoint3D& p) { return std::abs(p.Length() - 2); }},
            {"torus", [](const TPoint3D& p) { return std::abs(std::hypot(Radial(p) - 3, p.Z) - 1); }}};
}

// Each vertex once: GLU repeats the shared ones in every primitive.
std::vector<TPoint3D> DistinctVertices(const TFloatDynArray& Tri)
{
    std::vector<std::array<double, 3>> v;
    for (std::size_t i = 0; i + 3 <= Tri.size(); i += 3) v.push_back({Tri[i], Tri[i + 1], Tri[i + 2]});
    std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
    std::vector<TPoint3D> points;
    for (const auto& p : v) points.push_back({p[0], p[1], p[2]});
    return points;
}

bool IsTrimmed(const std::string& Name) { return Name.rfind("trimmed", 0) == 0; }

class GluTriangulatorMesa : public ::testing::Test {
protected:
    OffscreenGL FGL{kViewSize, kViewSize};
};

TEST_F(GluTriangulatorMesa, EveryUntrimmedShapeMeetsItsAreaAndLiesOnTheSurface)
{
    const auto closedForm = ClosedFormDistances();
    TGLSurfaceTriangulator tri;
    for (const std::string& name : ShapeNames()) {
        if (IsTrimmed(name)) continue;
        SCOPED_TRACE(name);
        const auto shape = MakeShape(name);
        FitObliqueView(*shape, kViewSize, kViewSize);
        const TMesh mesh = Triangulate(tri, *shape);
        ASSERT_FALSE(mesh.Tri.empty());
        ASSERT_EQ(mesh.Tri.size() % 9, 0u);
        ASSERT_EQ(mesh.Norm.size(), mesh.Tri.size());

        const double exact = SurfaceArea(*shape);
        EXPECT_NEAR(MeshArea(mesh.Tri), exact, 0.01 * exact);

        const double limit = 1e-5 * BoxDiagonal(*shape);
        const auto it = closedForm.find(name);
        const TSurfaceProjector projector(NurbsOf(*shape));
        double worst = 0.0;
        for (const TPoint3D& p : DistinctVertices(mesh.Tri))
            worst = std::max(worst, it != closedForm.end() ? it->second(p) : projector.Distance(p));
        EXPECT_LE(worst, limit);
        // Unit normals, one per vertex.
        for (std::size_t i = 0; i < mesh.Norm.size(); i += 3)
            ASSERT_NEAR(std::hypot(mesh.Norm[i], mesh.Norm[i + 1], mesh.Norm[i + 2]), 1.0, 1e-3) << "vertex " << i / 3;
    }
}

TEST_F(GluTriangulatorMesa, CallsInARowAreIndependentAndQuadsCoverTheSameSurface)
{
    const auto torus = MakeShape("torus");
    const auto plane = MakeShape("plane");
    FitObliqueView(*torus, kViewSize, kViewSize);
    TGLSurfaceTriangulator tri;
    const TMesh first = Triangulate(tri, *torus);
    const TMesh between = Triangulate(tri, *plane);
    const TMesh second = Triangulate(tri, *torus);
    EXPECT_EQ(first.Tri, second.Tri);
    EXPECT_EQ(first.Norm, second.Norm);
    EXPECT_LT(between.Tri.size(), first.Tri.size());

    // The wrapped surface goes out exactly as the surface it wraps.
    const TGeNurbsSurfaceExt wrapped(std::unique_ptr<TGeNurbsSurface>(
        static_cast<TGeNurbsSurface*>(MakeShape("torus").release())));
    EXPECT_EQ(Triangulate(tri, wrapped).Tri, first.Tri);

    const TMesh quads = Quadrilateral(tri, *torus);
    ASSERT_EQ(quads.Tri.size() % 12, 0u);
    std::vector<double> split;
    for (std::size_t q = 0; q < quads.Tri.size(); q += 12)
        for (const int k : {0, 1, 2, 0, 2, 3}) split.insert(split.end(), &quads.Tri[q + 3 * k], &quads.Tri[q + 3 * k + 3]);
    EXPECT_NEAR(MeshArea(split), MeshArea(first.Tri), 1e-3 * MeshArea(first.Tri));
}

TEST_F(GluTriangulatorMesa, SurfacesGluRejectsGiveEmptyArrays)
{
    TGLSurfaceTriangulator tri;
    // Order 25: above GLU's greatest order.
    const int n = 25;
    TDynPoints3D points;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < 2; ++j) points.push_back({i / 24.0, 1.0 * j, std::sin(i / 4.0)});
    const TGeNurbsSurface high(n, 2, 24, 1, ClampedKnots(n, 24), ClampedKnots(2, 1), points);
    FitObliqueView(high, kViewSize, kViewSize);
    EXPECT_THAT(Triangulate(tri, high).Tri, IsEmpty());

    // An interior knot that single precision rounds onto the last one.
    TDynPoints3D grid;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j) grid.push_back({1.0 * i, 1.0 * j, 0.1 * i * j});
    const TGeNurbsSurface close(5, 4, 3, 3, {0, 0, 0, 0, 1 - 1e-12, 1, 1, 1, 1}, ClampedKnots(4, 3), grid);
    FitObliqueView(close, kViewSize, kViewSize);
    const TMesh rejected = Triangulate(tri, close);
    EXPECT_THAT(rejected.Tri, IsEmpty());
    EXPECT_THAT(rejected.Norm, IsEmpty());

    // The same object still triangulates the next surface.
    const auto plane = MakeShape("plane");
    FitObliqueView(*plane, kViewSize, kViewSize);
    EXPECT_FALSE(Triangulate(tri, *plane).Tri.empty());
}

// A failure inside a real GLU callback: the BEGIN callback that GLU is given hands the third
// primitive on as a triangle strip, which no quad can be made of.
TEST_F(GluTriangulatorMesa, FailureInACallbackKeepsWhatCameBeforeAndLeaksNothing)
{
    const auto sphere = MakeShape("sphere");
    FitObliqueView(*sphere, kViewSize, kViewSize);
    TGLSurfaceTriangulator tri;
    const TMesh full = Quadrilateral(tri, *sphere);
    ASSERT_FALSE(full.Tri.empty());

    static dglOpenGL::TGLUFuncPtr realBegin;
    static int primitives;
    primitives = 0;
    TMesh cut;
    {
        GlRecorder rec;
        const auto realCallback = dglOpenGL::gluNurbsCallback;
        rec.Record<&dglOpenGL::gluNurbsCallback>(
            [realCallback](dglOpenGL::GLUnurbs* r, dglOpenGL::GLenum which, dglOpenGL::TGLUFuncPtr fn) {
                if (which != dglOpenGL::GLU_NURBS_BEGIN) return realCallback(r, which, fn);
                realBegin = fn;
                realCallback(r, which, reinterpret_cast<dglOpenGL::TGLUFuncPtr>(+[](dglOpenGL::GLenum type) {
                    const bool forge = ++primitives == 3;
                    reinterpret_cast<void (*)(dglOpenGL::GLenum)>(realBegin)(forge ? dglOpenGL::GL_TRIANGLE_STRIP : type);
                }));
            });
        cut = Quadrilateral(tri, *sphere);
    }
    EXPECT_GT(primitives, 3) << "GLU went on to the end of the surface";
    ASSERT_FALSE(cut.Tri.empty());
    ASSERT_LT(cut.Tri.size(), full.Tri.size());
    EXPECT_TRUE(std::equal(cut.Tri.begin(), cut.Tri.end(), full.Tri.begin()));
    EXPECT_TRUE(std::equal(cut.Norm.begin(), cut.Norm.end(), full.Norm.begin()));

    // The same object goes on as a fresh one would.
    EXPECT_EQ(Quadrilateral(tri, *sphere).Tri, full.Tri);
    TGLSurfaceTriangulator fresh;
    EXPECT_EQ(Quadrilateral(fresh, *sphere).Tri, full.Tri);
}

}  // namespace
}  // namespace orvane
