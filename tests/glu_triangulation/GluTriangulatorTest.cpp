// The GLU surface triangulator through a fake GLU renderer: what reaches gluNurbsSurface, the
// callbacks, a primitive that can't become quads, and the unit's start and stop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "glu_triangulation/uTriangulate.h"
#include "tests/glu_triangulation/GluFakeRenderer.h"
#include "tests/glu_triangulation/GluTestSurfaces.h"

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

namespace gl = dglOpenGL;

// A fan of 4 vertices, a quad strip of 6 and a triangle strip of 4, apart in X.
const TFakePrimitive kFan{gl::GL_TRIANGLE_FAN, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}};
const TFakePrimitive kQuadStrip{gl::GL_QUAD_STRIP, {10, 0, 0, 11, 0, 0, 10, 1, 0, 11, 1, 0, 10, 2, 0, 11, 2, 0}};
const TFakePrimitive kTriStrip{gl::GL_TRIANGLE_STRIP, {20, 0, 0, 21, 0, 0, 20, 1, 0, 21, 1, 0}};

struct TResult {
    std::vector<double> Tri, Norm;
};

TResult Mesh(TGLSurfaceTriangulator& T, const TGeSurface& Surf, bool Quads)
{
    TResult r;
    if (Quads)
        T.Quadrilateral(&Surf, r.Tri, r.Norm);
    else
        T.Triangulate(&Surf, r.Tri, r.Norm);
    return r;
}

class OtherSurface : public TGeSurface {
public:
    TPoint3D GetPoint(double, double) const override { return {}; }
};

TEST(GluTriangulator, SurfaceGoesOutHomogeneousInSinglePrecision)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    // 3 x 2 control points of degree 2 by 1; point (i, j) at (0.1 + i, j, 0.3) with weight
    // 0.1 at (1, 1). Knots that single precision rounds.
    TDynPoints3D points;
    TArrayDouble weights;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 2; ++j) {
            points.push_back({0.1 + i, 1.0 * j, 0.3});
            weights.push_back(i == 1 && j == 1 ? 0.1 : 1.0);
        }
    const TGeNurbsSurface rational(3, 2, 2, 1, {0, 0, 0, 0.7, 0.7, 0.7}, {0, 0, 1, 1}, points, weights);
    Mesh(tri, rational, false);
    ASSERT_EQ(glu.Surfaces.size(), 1u);
    const TFakeNurbsSurface& s = glu.Surfaces[0];
    EXPECT_THAT(s.KnotsS, ElementsAre(0, 0, 0, 0.7f, 0.7f, 0.7f));
    EXPECT_THAT(s.KnotsT, ElementsAre(0, 0, 1, 1));
    EXPECT_EQ(s.StrideS, 2 * 4);
    EXPECT_EQ(s.StrideT, 4);
    EXPECT_EQ(s.OrderS, 3);
    EXPECT_EQ(s.OrderT, 2);
    EXPECT_EQ(s.Type, gl::GL_MAP2_VERTEX_4);
    // Entry (1, 1): each coordinate times the weight rounded to single, the product in double.
    const float w = 0.1f;
    EXPECT_THAT(std::vector<float>(s.Control.begin() + 12, s.Control.begin() + 16),
                ElementsAre(static_cast<float>(1.1 * w), static_cast<float>(1.0 * w), static_cast<float>(0.3 * w), w));
    EXPECT_THAT(std::vector<float>(s.Control.begin() + 20, s.Control.begin() + 24), ElementsAre(2.1f, 1, 0.3f, 1));

    // A non-rational surface goes the same way, with W = 1.
    glu.Surfaces.clear();
    Mesh(tri, *MakeGridSurface(1, 1, 2, 2, 4, 2), false);
    ASSERT_EQ(glu.Surfaces.size(), 1u);
    EXPECT_EQ(glu.Surfaces[0].Type, gl::GL_MAP2_VERTEX_4);
    EXPECT_THAT(glu.Surfaces[0].Control, ElementsAre(0, 0, 0, 1, 0, 2, 0, 1, 4, 0, 0, 1, 4, 2, 0, 1));
}

TEST(GluTriangulator, UntrimmedSurfaceKeepsToleranceSixtyAndTheDefaultMethod)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    Mesh(tri, *MakeGridSurface(2, 2, 3, 3, 1, 1), true);
    const std::string prop = "gluNurbsProperty ";
    EXPECT_THAT(glu.Calls,
                ElementsAre("gluNewNurbsRenderer", prop + std::to_string(gl::GLU_SAMPLING_TOLERANCE) + "=60.000000",
                            prop + std::to_string(gl::GLU_NURBS_MODE) + "=" +
                                std::to_string(static_cast<float>(gl::GLU_NURBS_TESSELLATOR)),
                            "gluNurbsCallback " + std::to_string(gl::GLU_NURBS_BEGIN),
                            "gluNurbsCallback " + std::to_string(gl::GLU_NURBS_VERTEX),
                            "gluNurbsCallback " + std::to_string(gl::GLU_NURBS_END),
                            "gluNurbsCallback " + std::to_string(gl::GLU_NURBS_NORMAL), "gluBeginSurface",
                            "gluNurbsSurface", "gluEndSurface", "gluDeleteNurbsRenderer"));
}

TEST(GluTriangulator, CallsInARowAreIndependent)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    const auto surf = MakeGridSurface(1, 1, 2, 2, 1, 1);
    glu.Script = {kFan, kQuadStrip};
    const TResult first = Mesh(tri, *surf, false);
    EXPECT_EQ(first.Tri.size(), (2u + 4u) * 9u);
    glu.Script = {kTriStrip};
    const TResult second = Mesh(tri, *surf, false);
    EXPECT_THAT(second.Tri, ElementsAre(20, 0, 0, 21, 0, 0, 20, 1, 0, 21, 1, 0, 20, 1, 0, 21, 0, 0));
    EXPECT_EQ(second.Norm.size(), 18u);
    for (std::size_t i = 0; i < second.Norm.size(); i += 3)
        EXPECT_THAT(std::vector<double>(second.Norm.begin() + i, second.Norm.begin() + i + 3), ElementsAre(0, 0, 1));
    EXPECT_EQ(glu.LiveRenderers, 0);
}

TEST(GluTriangulator, TriangleStripEndsAQuadSurfaceWithWhatCameBefore)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    const auto surf = MakeGridSurface(1, 1, 2, 2, 1, 1);
    glu.Script = {kQuadStrip, kTriStrip, kFan};
    const TResult cut = Mesh(tri, *surf, true);
    EXPECT_THAT(cut.Tri, ElementsAre(10, 0, 0, 11, 0, 0, 11, 1, 0, 10, 1, 0, 10, 1, 0, 11, 1, 0, 11, 2, 0, 10, 2, 0));
    EXPECT_EQ(cut.Norm.size(), cut.Tri.size());
    // The surface was still ended and the renderer freed.
    EXPECT_EQ(std::count(glu.Calls.begin(), glu.Calls.end(), "gluEndSurface"), 1);
    EXPECT_EQ(glu.LiveRenderers, 0);
    // The triangle road takes the same stream whole.
    EXPECT_EQ(Mesh(tri, *surf, false).Tri.size(), (4u + 2u + 2u) * 9u);

    // The same object goes on as a fresh one would.
    glu.Script = {kFan, kQuadStrip};
    const TResult after = Mesh(tri, *surf, true);
    TGLSurfaceTriangulator fresh;
    EXPECT_EQ(Mesh(fresh, *surf, true).Tri, after.Tri);
    EXPECT_THAT(after.Tri, ElementsAreArray<double>({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 10, 0, 0, 11, 0, 0, 11, 1, 0,
                                                      10, 1, 0, 10, 1, 0, 11, 1, 0, 11, 2, 0, 10, 2, 0}));
}

TEST(GluTriangulator, WrappedSurfaceGoesAsItsSurfaceAndOthersGiveNothing)
{
    TFakeGlu glu;
    glu.Script = {kFan};
    TGLSurfaceTriangulator tri;
    const TResult plain = Mesh(tri, *MakeGridSurface(2, 1, 3, 2, 5, 1), false);
    const TGeNurbsSurfaceExt wrapped(MakeGridSurface(2, 1, 3, 2, 5, 1));
    const TResult viaExt = Mesh(tri, wrapped, false);
    EXPECT_EQ(viaExt.Tri, plain.Tri);
    ASSERT_EQ(glu.Surfaces.size(), 2u);
    EXPECT_EQ(glu.Surfaces[1].Control, glu.Surfaces[0].Control);
    EXPECT_EQ(glu.Surfaces[1].KnotsS, glu.Surfaces[0].KnotsS);

    const TResult other = Mesh(tri, OtherSurface(), false);
    EXPECT_THAT(other.Tri, IsEmpty());
    EXPECT_THAT(other.Norm, IsEmpty());
    EXPECT_EQ(glu.Surfaces.size(), 2u);
    EXPECT_EQ(glu.LiveRenderers, 0);
}

TEST(GluTriangulator, WithoutGluTheArraysComeBackEmpty)
{
    TFakeGlu glu;
    glu.Script = {kFan};
    gl::gluNurbsCurve = nullptr;
    TGLSurfaceTriangulator tri;
    TResult r;
    r.Tri = {1, 2, 3};
    tri.Triangulate(MakeGridSurface(1, 1, 2, 2, 1, 1).get(), r.Tri, r.Norm);
    EXPECT_THAT(r.Tri, IsEmpty());
    EXPECT_THAT(glu.Calls, IsEmpty());
}

TEST(GluTriangulator, LatestInstanceTakesTheCallbacks)
{
    TFakeGlu glu;
    glu.Script = {kFan};
    const auto surf = MakeGridSurface(1, 1, 2, 2, 1, 1);
    TGLSurfaceTriangulator first;
    EXPECT_EQ(CurSurfTri, &first);
    {
        TGLSurfaceTriangulator second;
        EXPECT_EQ(CurSurfTri, &second);
        // The callbacks feed the second instance: the first one records nothing.
        EXPECT_THAT(Mesh(first, *surf, false).Tri, IsEmpty());
        EXPECT_EQ(Mesh(second, *surf, false).Tri.size(), 18u);
    }
    // A freed instance leaves no address behind; calls still end normally.
    EXPECT_EQ(CurSurfTri, nullptr);
    EXPECT_THAT(Mesh(first, *surf, false).Tri, IsEmpty());
}

TEST(GluTriangulator, UnitStartInstallsTheKernelsTriangulatorAndStopFreesIt)
{
    StartUnit_uTriangulate();
    ASSERT_NE(GeSurfTri, nullptr);
    EXPECT_NE(dynamic_cast<TGLSurfaceTriangulator*>(GeSurfTri), nullptr);
    EXPECT_EQ(CurSurfTri, GeSurfTri);
    {
        TFakeGlu glu;
        glu.Script = {kFan};
        std::vector<double> tri, norm;
        GeSurfTri->Triangulate(MakeGridSurface(1, 1, 2, 2, 1, 1).get(), tri, norm);
        EXPECT_EQ(tri.size(), 18u);
    }
    StopUnit_uTriangulate();
    EXPECT_EQ(GeSurfTri, nullptr);
    EXPECT_EQ(CurSurfTri, nullptr);
}

}  // namespace
}  // namespace orvane
