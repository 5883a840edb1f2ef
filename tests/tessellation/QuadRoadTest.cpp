// The quad road end to end: the classification of surfaces, the meshes of every shape of the
// shape library, the normals of the full cylinder, and what the service does with odd view
// units, failures and point lists.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <stdexcept>
#include <tuple>

#include "contracts/AppSystem.h"
#include "contracts/PrimitiveCodes.h"
#include "contracts/Shapes.h"
#include "tessellation/SurfaceTriangulatorChecker.h"
#include "tessellation/uTessQuadsTriangulator.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;
using testing::MessageCapture;
using Checker = TSurfaceTriangulatorChecker;

// A TQuadSurfaceTriangulator held by a counted reference.
struct Service {
    explicit Service(TQuadSurfaceTriangulator* Object = new TQuadSurfaceTriangulator()) : Obj(Object), Holder(Object) {}
    TQuadSurfaceTriangulator* operator->() const { return Obj; }
    TQuadSurfaceTriangulator* Obj;
    TInterfacePtr<IGeSurfaceTriangulator> Holder;
};

// What the quad tool was asked, and what it handed out.
struct ToolCall {
    std::vector<std::vector<TPoint2D>> Polylines;
    double XTol, YTol;
    bool UnitPerColumn;
    TViewUnitList Units;
};
using Calls = std::shared_ptr<std::vector<ToolCall>>;

// A quad tool that records its calls and hands out the real tool's units, or Fixed where given.
TCreateDrawQuadsFunc QuadTool(Calls Record, std::optional<TViewUnitList> Fixed = std::nullopt)
{
    return [Record, Fixed](std::span<const TVPoint2DList* const> Lines, double XTol, double YTol, bool PerColumn) {
        auto units = Fixed ? std::make_unique<TViewUnitList>(*Fixed) : DefaultCreateDrawQuads()(Lines, XTol, YTol, PerColumn);
        ToolCall call{{}, XTol, YTol, PerColumn, *units};
        for (const TVPoint2DList* line : Lines) call.Polylines.push_back(line->Items());
        if (Record) Record->push_back(std::move(call));
        return units;
    };
}

TViewUnit QuadUnit(const std::vector<TPoint2D>& Points, Cardinal DrawMode = GL_QUADS)
{
    TViewUnit unit;
    for (const TPoint2D& p : Points) unit.Points2D.Add(p);
    unit.DrawMode = DrawMode;
    return unit;
}

// A surface of no class the quad road knows.
class TForeignSurface : public TGeSurface {
public:
    explicit TForeignSurface(bool AThrows = false) : FThrows(AThrows) {}
    TPoint3D GetPoint(double U, double V) const override
    {
        if (FThrows) throw Exception("foreign surface refuses");
        return {U, V, 0.0};
    }

private:
    bool FThrows;
};

std::unique_ptr<TGeCompositeCurve2D> LineLoop(const TDynPoints2D& Closed)
{
    std::vector<std::unique_ptr<TGeCurve2D>> lines;
    for (std::size_t i = 0; i + 1 < Closed.size(); ++i) lines.push_back(std::make_unique<TGeLine2D>(Closed[i], Closed[i + 1]));
    return std::make_unique<TGeCompositeCurve2D>(std::move(lines));
}

const TDynPoints2D kUnitSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};

std::unique_ptr<TGeTrimmedSurface> Trimmed(std::unique_ptr<TGeSurface> Base, const TDynPoints2D& Outer = kUnitSquare,
                                           std::vector<std::unique_ptr<TGeCurve2D>> Holes = {})
{
    return std::make_unique<TGeTrimmedSurface>(std::move(Base), LineLoop(Outer), std::move(Holes));
}

// The flat rectangle [0, 3] x [0, 2] over the unit square, of one degree both ways.
std::unique_ptr<TGeNurbsSurface> FlatPatch(int Degree)
{
    TArrayDouble knots(static_cast<std::size_t>(Degree + 1), 0.0);
    knots.insert(knots.end(), static_cast<std::size_t>(Degree + 1), 1.0);
    TDynPoints3D pts;
    for (int i = 0; i <= Degree; ++i)
        for (int j = 0; j <= Degree; ++j) pts.push_back({3.0 * i / Degree, 2.0 * j / Degree, 0.0});
    return std::make_unique<TGeNurbsSurface>(Degree + 1, Degree + 1, Degree, Degree, knots, knots, pts);
}

const TGeNurbsSurface& NurbsOf(const TGeSurface& S)
{
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(&S)) return NurbsOf(*trimmed->GetSurface());
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(&S)) return *ext->Surface;
    return dynamic_cast<const TGeNurbsSurface&>(S);
}

TPoint3D At(const TFloatDynArray& A, std::size_t Vertex) { return {A[3 * Vertex], A[3 * Vertex + 1], A[3 * Vertex + 2]}; }

// ---- Classification ----

TEST(SurfaceTriangulatorChecker, ClassifiesShapesTrimmedAndWrappedSurfaces)
{
    using E = TExtrusionType;
    struct Case {
        std::string Name;
        std::unique_ptr<TGeSurface> Surface;
        E Type;
        bool Simple;  // with the type found; a bilinear base is simple whatever the type, a
                      // higher degree NURBS base never is, a wrapped one only when UVDir
        E Other;      // a type it is not simple with
    };
    std::vector<Case> cases;
    cases.push_back({"foreign", std::make_unique<TForeignSurface>(), E::NotExtrusion, false, E::UVDir});
    cases.push_back({"null", nullptr, E::NotExtrusion, false, E::UVDir});
    cases.push_back({"trimmed foreign, tested no further", Trimmed(std::make_unique<TForeignSurface>(true)),
                     E::NotExtrusion, false, E::NotExtrusion});
    cases.push_back({"trimmed to a point within 1e-6", Trimmed(FlatPatch(2), {{0.5, 0.5}, {0.5, 0.5 + 4e-7}, {0.5, 0.5}}),
                     E::NotExtrusion, false, E::UVDir});
    cases.push_back({"trimmed bilinear", Trimmed(FlatPatch(1)), E::UVDir, true, E::UVDir});
    cases.push_back({"trimmed quadratic", Trimmed(FlatPatch(2)), E::UVDir, false, E::UVDir});
    cases.push_back({"trimmed wrapped", Trimmed(std::make_unique<TGeNurbsSurfaceExt>(FlatPatch(2))), E::UVDir, true, E::VDir});
    cases.push_back({"wrapped", std::make_unique<TGeNurbsSurfaceExt>(FlatPatch(3)), E::UVDir, true, E::UDir});
    // A plane trimmed over a degree-2 NURBS base is straight both ways but not bilinear.
    for (const auto& [name, type, simple] : {std::tuple{"plane", E::UVDir, true}, {"cylinder", E::VDir, false},
                                             {"cylinder-transposed", E::UDir, false}, {"partial-cylinder", E::VDir, false},
                                             {"cone", E::VDir, false}, {"sphere", E::NotExtrusion, false},
                                             {"torus", E::NotExtrusion, false}, {"trimmed-circular-holes", E::UVDir, false}})
        cases.push_back({name, MakeShape(name), type, simple, simple ? E::UVDir : type});
    for (const Case& c : cases) {
        const E type = Checker::CheckExtrusionDirection(c.Surface.get());
        EXPECT_EQ(type, c.Type) << c.Name;
        EXPECT_EQ(Checker::CheckSimpleSurface(c.Surface.get(), type), c.Simple) << c.Name;
        EXPECT_EQ(Checker::CheckSimpleSurface(c.Surface.get(), c.Other), c.Simple && c.Other == c.Type) << c.Name;
    }
    EXPECT_TRUE(Checker::CheckSimpleSurface(cases[4].Surface.get(), E::NotExtrusion));
}

TEST(SurfaceTriangulatorChecker, SampleRangeSmallCurvesAndCircles)
{
    // 4 cubic control points along U over a span of 1: 1/56; 2 linear ones along V: 1/3 (UDir only).
    const auto ruled = MakeShape("ruled-v");
    for (const TExtrusionType t : {TExtrusionType::VDir, TExtrusionType::UVDir, TExtrusionType::NotExtrusion})
        EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(ruled.get(), t), 1.0 / 56);
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(ruled.get(), TExtrusionType::UDir), 1.0 / 3);
    // 5 linear control points over a span of 2: 2/6; wrapped and trimmed surfaces give their base's.
    TDynPoints3D pts;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 2; ++j) pts.push_back({1.0 * i, 1.0 * j, 0.0});
    const TGeNurbsSurfaceExt ext(std::make_unique<TGeNurbsSurface>(5, 2, 1, 1, TArrayDouble{0, 0, .5, 1, 1.5, 2, 2},
                                                                   TArrayDouble{0, 0, 1, 1}, pts));
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(&ext, TExtrusionType::VDir), 2.0 / 6);
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(Trimmed(MakeShape("cylinder")).get(), TExtrusionType::VDir), 1.0 / 88);
    const TForeignSurface foreign;
    EXPECT_EQ(Checker::CheckSurfaceSampleRange(&foreign, TExtrusionType::VDir), 0.05);
    EXPECT_EQ(Checker::CheckSurfaceSampleRange(nullptr, TExtrusionType::VDir), 0.05);

    // A control polygon's box exactly 8 Tol wide and high is not small; narrower one way is;
    // two control points never are.
    MessageCapture messages;
    const double tol = 0.01;
    EXPECT_FALSE(Checker::CheckSplineSmallThanSampleTolerance(*PolylineSpline({{0, 0}, {0.08, 0}, {0.08, 0.08}, {0, 0}}), tol));
    EXPECT_TRUE(Checker::CheckSplineSmallThanSampleTolerance(*PolylineSpline({{0, 0}, {0.0799, 0}, {0.0799, 5}, {0, 0}}), tol));
    EXPECT_FALSE(Checker::CheckSplineSmallThanSampleTolerance(*PolylineSpline({{0, 0}, {1e-9, 1e-9}}), tol));
    // A composite counts when all its sub-curves are splines.
    std::vector<std::unique_ptr<TGeCurve2D>> parts;
    parts.push_back(PolylineSpline({{0, 0}, {0.01, 0}, {0.01, 0.01}}));
    parts.push_back(PolylineSpline({{0.01, 0.01}, {0, 0.01}, {0, 0}}));
    EXPECT_TRUE(Checker::CheckCompositeCurveSmallThanSampleTolerance(TGeCompositeCurve2D(std::move(parts)), tol));
    EXPECT_FALSE(Checker::CheckCompositeCurveSmallThanSampleTolerance(*LineLoop({{0, 0}, {1e-4, 0}, {0, 0}}), tol));
    EXPECT_THAT(messages.Texts(), IsEmpty());
    // Without sub-curves the read of the first point fails: its message is shown, answer False.
    EXPECT_FALSE(Checker::CheckCompositeCurveSmallThanSampleTolerance(TGeCompositeCurve2D({}), tol));
    EXPECT_THAT(messages.Texts(), ElementsAre("Argument out of range"));
    EXPECT_EQ(messages.Messages()[0].Kind, 0);

    // The circle test measures from the centre of the box: a half circle's is off its centre.
    const auto holes = MakeShape("trimmed-circular-holes");
    EXPECT_TRUE(Checker::AnalyCurveIsCircle(*dynamic_cast<const TGeTrimmedSurface&>(*holes).GetInnerBoundary(0).GetCurve(), 1e-9));
    const double h = std::sqrt(0.5);
    EXPECT_FALSE(Checker::AnalyCurveIsCircle(
        TGeSpline2D(2, {0, 0, 0, .5, .5, 1, 1, 1}, {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}}, {1, h, 1, h, 1}), 1e-3));
    EXPECT_FALSE(Checker::AnalyCurveIsCircle(*LineLoop(kUnitSquare), 1e-3));
}

// ---- Meshes of the shape library ----

// One road's output with the UV points the quad tool handed out for it.
struct RoadRun {
    TFloatDynArray Tri, Norm;
    TExtrusionType Type = TExtrusionType::NotExtrusion;
    std::vector<TPoint2D> UV;
};

RoadRun RunQuadrilateral(const TGeSurface& Surface)
{
    auto calls = std::make_shared<std::vector<ToolCall>>();
    Service svc;
    svc->SetCreateDrawQuads(QuadTool(calls));
    RoadRun run;
    svc->Quadrilateral(&Surface, run.Tri, run.Norm);
    run.Type = svc->ExtrusionType();
    for (const ToolCall& call : *calls)
        for (const TViewUnit& unit : call.Units) run.UV.insert(run.UV.end(), unit.Points2D.begin(), unit.Points2D.end());
    return run;
}

TEST(QuadRoadShapes, EveryShapeGivesExactQuadsAndTheirTrianglesInSinglePrecision)
{
    MessageCapture messages;
    for (const std::string& name : ShapeNames()) {
        SCOPED_TRACE(name);
        const auto shape = MakeShape(name);
        const RoadRun quads = RunQuadrilateral(*shape);
        Service svc;
        TFloatDynArray tri, norm;
        svc->Triangulate(shape.get(), tri, norm);
        const std::size_t quadCount = quads.UV.size() / 4;
        ASSERT_GT(quadCount, 0u);
        ASSERT_EQ(quads.Tri.size(), 12 * quadCount);
        ASSERT_EQ(quads.Norm.size(), quads.Tri.size());
        ASSERT_EQ(tri.size(), 18 * quadCount);
        ASSERT_EQ(norm.size(), tri.size());

        // Every quad corner is the surface's point at its UV (exchanged for UDir; the shapes are a
        // few units across), with a unit normal; quads that share a UV point share its vertex bit
        // for bit.
        const TGeNurbsSurface& nurbs = NurbsOf(*shape);
        const TRect2D domain = nurbs.GetDomain();
        const auto bits = [&](std::size_t v) {
            const TPoint3D p = At(quads.Tri, v);
            return std::array{std::bit_cast<std::uint64_t>(p.X), std::bit_cast<std::uint64_t>(p.Y),
                              std::bit_cast<std::uint64_t>(p.Z)};
        };
        std::map<std::pair<double, double>, std::size_t> corners;
        for (std::size_t v = 0; v < quads.UV.size(); ++v) {
            TPoint2D uv = quads.UV[v];
            const auto [first, fresh] = corners.emplace(std::pair{uv.X, uv.Y}, v);
            ASSERT_TRUE(fresh || bits(first->second) == bits(v)) << "vertex " << v;
            if (quads.Type == TExtrusionType::UDir) uv = {uv.Y, uv.X};
            ASSERT_TRUE(uv.X >= domain.Min.X && uv.X <= domain.Max.X && uv.Y >= domain.Min.Y && uv.Y <= domain.Max.Y);
            ASSERT_LE(At(quads.Tri, v).DistanceTo(nurbs.GetPoint(uv.X, uv.Y)), 1e-11) << "vertex " << v;
            ASSERT_NEAR(At(quads.Norm, v).Length(), 1.0, 1e-12) << "normal " << v;
        }
        EXPECT_LT(corners.size(), 0.6 * quads.UV.size()) << "most corners are shared";
        // Each quad P0..P3 comes back as P0 P1 P2, P0 P2 P3, every value through single precision.
        const std::size_t order[6] = {0, 1, 2, 0, 2, 3};
        for (std::size_t q = 0; q < quadCount; ++q)
            for (std::size_t k = 0; k < 6; ++k)
                for (std::size_t c = 0; c < 3; ++c) {
                    const std::size_t from = 3 * (4 * q + order[k]) + c, to = 3 * (6 * q + k) + c;
                    ASSERT_EQ(tri[to], static_cast<double>(static_cast<float>(quads.Tri[from])));
                    ASSERT_EQ(norm[to], static_cast<double>(static_cast<float>(quads.Norm[from])));
                }
    }
    EXPECT_THAT(messages.Texts(), IsEmpty());
}

// The repaired normals of the full cylinder: 20 columns of 17 to 19 degrees of arc each, and
// every normal within 0.35 degree of the radial direction, all on one side. The transposed
// cylinder gives the same mesh (below).
TEST(QuadRoadShapes, FullCylinderNormalsAreRadialWithinAThirdOfADegree)
{
    constexpr double kDegree = std::numbers::pi / 180;
    auto angle = [](const TPoint3D& A, const TPoint3D& B) { return std::atan2(A.CrossMul(B).Length(), A.DotMul(B)); };
    const RoadRun run = RunQuadrilateral(*MakeShape("cylinder"));
    auto radial = [&](std::size_t v) { return TPoint3D(At(run.Tri, v).X, At(run.Tri, v).Y, 0.0).Normal(); };
    std::map<double, int> columns;
    for (std::size_t q = 0; q < run.UV.size() / 4; ++q) {
        ++columns[run.UV[4 * q].X];
        const double width = angle(radial(4 * q), radial(4 * q + 1));
        ASSERT_GE(width, 17 * kDegree);
        ASSERT_LE(width, 19 * kDegree);
    }
    EXPECT_EQ(columns.size(), 20u);
    const double sign = run.Norm[0] * radial(0).X + run.Norm[1] * radial(0).Y > 0 ? 1.0 : -1.0;
    for (std::size_t v = 0; v < run.UV.size(); ++v)
        ASSERT_LE(angle(At(run.Norm, v) * sign, radial(v)), 0.35 * kDegree) << "vertex " << v;
}

// A trimmed cylinder with a slanted hole, and the same with U and V exchanged.
std::unique_ptr<TGeSurface> TrimmedCylinder(bool Transposed)
{
    TDynPoints2D outer{{0.05, 0.1}, {0.95, 0.1}, {0.95, 0.9}, {0.05, 0.9}, {0.05, 0.1}};
    TDynPoints2D hole{{0.45, 0.3}, {0.25, 0.55}, {0.45, 0.75}, {0.7, 0.55}, {0.45, 0.3}};
    for (TDynPoints2D* loop : {&outer, &hole})
        for (TPoint2D& p : *loop) p = Transposed ? TPoint2D{p.Y, p.X} : p;
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(PolylineSpline(hole));
    return Trimmed(MakeShape(Transposed ? "cylinder-transposed" : "cylinder"), outer, std::move(holes));
}

TEST(QuadRoadShapes, ATransposedSurfaceGivesTheSameMesh)
{
    for (const bool trimmed : {false, true}) {
        const RoadRun a = RunQuadrilateral(trimmed ? *TrimmedCylinder(false) : *MakeShape("cylinder"));
        const RoadRun b = RunQuadrilateral(trimmed ? *TrimmedCylinder(true) : *MakeShape("cylinder-transposed"));
        ASSERT_NE(a.Type, b.Type);
        ASSERT_FALSE(a.Tri.empty());
        ASSERT_EQ(a.Tri.size(), b.Tri.size());
        for (std::size_t i = 0; i < a.Tri.size(); ++i) {
            ASSERT_NEAR(a.Tri[i], b.Tri[i], 1e-12) << i;
            ASSERT_NEAR(a.Norm[i], b.Norm[i], 1e-12) << i;
        }
    }
}

// ---- The service ----

const std::vector<TPoint2D> kQuadA{{0.1, 0.6}, {0.2, 0.6}, {0.2, 0.5}, {0.1, 0.5}};
const std::vector<TPoint2D> kQuadB{{0.3, 0.6}, {0.4, 0.6}, {0.4, 0.5}, {0.3, 0.5}};

std::vector<TPoint2D> Join(std::vector<TPoint2D> A, const std::vector<TPoint2D>& B)
{
    A.insert(A.end(), B.begin(), B.end());
    return A;
}

struct Arrays {
    TFloatDynArray Tri{1.5, 2.5, 3.5};
    TFloatDynArray Norm{4.5};
};

TEST(QuadSurfaceTriangulator, RegistrationToleranceAndAFreshClassificationEachCall)
{
    // The unit registers a quad triangulator and leaves it registered when it stops.
    AppSys.ClearServices();
    StartUnit_uTessQuadsTriangulator();
    StopUnit_uTessQuadsTriangulator();
    TInterfacePtr<IInterface> root(AppSys.GetService(IGeSurfaceTriangulator::IID));
    EXPECT_NE(dynamic_cast<TQuadSurfaceTriangulator*>(root.Query<IGeSurfaceTriangulator>().get()), nullptr);
    root = nullptr;
    AppSys.ClearServices();

    // A given tolerance is a hundred times the one used; VDir and not simple before the first call.
    EXPECT_EQ(Service(new TQuadSurfaceTriangulator(0.1))->SampleTolerance(), Service()->SampleTolerance());
    EXPECT_DOUBLE_EQ(Service()->SampleTolerance(), 0.001);
    Service svc;
    EXPECT_EQ(svc->ExtrusionType(), TExtrusionType::VDir);
    EXPECT_FALSE(svc->IsSimpleSurface());

    const auto plane = MakeShape("plane");
    TFloatDynArray expected, expectedNorm, tri, norm;
    Service()->Quadrilateral(plane.get(), expected, expectedNorm);
    svc->Quadrilateral(MakeShape("cylinder").get(), tri, norm);
    EXPECT_EQ(svc->ExtrusionType(), TExtrusionType::VDir);
    svc->Quadrilateral(plane.get(), tri, norm);
    EXPECT_EQ(svc->ExtrusionType(), TExtrusionType::UVDir);
    EXPECT_TRUE(svc->IsSimpleSurface());
    EXPECT_EQ(tri, expected);
    EXPECT_EQ(norm, expectedNorm);
}

TEST(QuadSurfaceTriangulator, OddViewUnits)
{
    MessageCapture messages;
    Service svc;
    // No view units at all leave the arrays untouched; an empty list empties them.
    const TForeignSurface foreign;
    for (const TGeSurface* s : {static_cast<const TGeSurface*>(&foreign), static_cast<const TGeSurface*>(nullptr)}) {
        Arrays a, b;
        svc->Quadrilateral(s, a.Tri, a.Norm);
        svc->Triangulate(s, b.Tri, b.Norm);
        EXPECT_THAT(a.Tri, ElementsAre(1.5, 2.5, 3.5));
        EXPECT_THAT(b.Norm, ElementsAre(4.5));
    }
    const auto plane = MakeShape("plane"), cylinder = MakeShape("cylinder");
    svc->SetCreateDrawQuads(QuadTool(nullptr, TViewUnitList()));
    Arrays a;
    svc->Quadrilateral(plane.get(), a.Tri, a.Norm);
    EXPECT_THAT(a.Tri, IsEmpty());
    EXPECT_THAT(a.Norm, IsEmpty());

    // A unit with a NaN vertex is dropped whole, and only it; an empty unit adds nothing.
    TFloatDynArray alone, aloneNorm, tri, norm;
    svc->SetCreateDrawQuads(QuadTool(nullptr, TViewUnitList{QuadUnit(kQuadA), QuadUnit(kQuadB)}));
    svc->Quadrilateral(cylinder.get(), alone, aloneNorm);
    ASSERT_THAT(alone, SizeIs(24));
    std::vector<TPoint2D> broken = Join(kQuadB, kQuadA);
    broken[6] = {NAN, 0.5};
    svc->SetCreateDrawQuads(
        QuadTool(nullptr, TViewUnitList{QuadUnit(kQuadA), QuadUnit({}), QuadUnit(broken), QuadUnit(kQuadB)}));
    svc->Quadrilateral(cylinder.get(), tri, norm);
    EXPECT_EQ(tri, alone);
    EXPECT_EQ(norm, aloneNorm);
    EXPECT_THAT(messages.Texts(), IsEmpty());

    // A unit that is no whole number of quads: its message is shown with the road's name, and
    // the finished units are kept.
    svc->SetCreateDrawQuads(
        QuadTool(nullptr, TViewUnitList{QuadUnit(kQuadA), QuadUnit(Join(kQuadB, {{0.5, 0.5}})), QuadUnit(kQuadB)}));
    const std::string count = "得到四边形划分数据不为4的倍数 \\(uTessQuadsTriangulator, line [0-9]+\\) at do ";
    svc->Quadrilateral(cylinder.get(), a.Tri, a.Norm);
    EXPECT_THAT(a.Tri, SizeIs(12));
    EXPECT_THAT(a.Norm, SizeIs(12));
    svc->Triangulate(cylinder.get(), a.Tri, a.Norm);
    EXPECT_THAT(a.Tri, SizeIs(18));
    EXPECT_THAT(a.Norm, SizeIs(18));
    EXPECT_THAT(messages.Texts(), ElementsAre(MatchesRegex(count + "quadrilateral"), MatchesRegex(count + "triangulate")));
    EXPECT_EQ(messages.Messages()[0].Kind, 0);

    // A refused draw mode stops only the triangle road; the quad road does not look at it.
    MessageCapture refused;
    svc->SetCreateDrawQuads(QuadTool(nullptr, TViewUnitList{QuadUnit(kQuadA), QuadUnit(kQuadB, GL_LINES)}));
    svc->Triangulate(plane.get(), a.Tri, a.Norm);
    EXPECT_THAT(refused.Texts(), ElementsAre("Error Message at do triangulate"));
    EXPECT_THAT(a.Tri, SizeIs(18));
    svc->Quadrilateral(plane.get(), a.Tri, a.Norm);
    EXPECT_THAT(a.Tri, SizeIs(24));
    EXPECT_THAT(refused.Texts(), SizeIs(1));
}

// A surface whose kernel evaluation fails, so that its classification raises.
class TFailingNurbsSurface : public TGeNurbsSurface {
public:
    TFailingNurbsSurface() : TGeNurbsSurface(*FlatPatch(1)) {}
    TPoint3D GetPoint(double, double) const override { throw EArgumentException("kernel refuses"); }
};

TEST(QuadSurfaceTriangulator, FailuresAreShownOrReachTheCallerWithTheArraysUntouched)
{
    Service svc;
    {
        // A trimmed surface over another kind of base ends in the assertion, shown.
        MessageCapture messages;
        const auto trimmed = Trimmed(std::make_unique<TForeignSurface>());
        Arrays a, b;
        svc->Quadrilateral(trimmed.get(), a.Tri, a.Norm);
        svc->Triangulate(trimmed.get(), b.Tri, b.Norm);
        const std::string text = "TessQuadsTriangulator, GetPoint3D can not get GeNurbsSurface "
                                 "\\(uTessQuadsTriangulator, line [0-9]+\\) at do ";
        EXPECT_THAT(messages.Texts(), ElementsAre(MatchesRegex(text + "quadrilateral"), MatchesRegex(text + "triangulate")));
        EXPECT_THAT(a.Tri, IsEmpty());
        EXPECT_THAT(b.Norm, IsEmpty());
    }
    // Failures of the classification and the quad tool reach the caller; what is no
    // Exception passes every guard.
    MessageCapture messages;
    Arrays c;
    const TFailingNurbsSurface failing;
    EXPECT_THROW(svc->Quadrilateral(&failing, c.Tri, c.Norm), EArgumentException);
    EXPECT_THROW(svc->Triangulate(&failing, c.Tri, c.Norm), EArgumentException);
    const auto plane = MakeShape("plane");
    svc->SetCreateDrawQuads([](auto, double, double, bool) -> std::unique_ptr<TViewUnitList> {
        throw EArgumentException("quad tool refuses");
    });
    EXPECT_THROW(svc->Quadrilateral(plane.get(), c.Tri, c.Norm), EArgumentException);
    EXPECT_THROW(svc->Triangulate(plane.get(), c.Tri, c.Norm), EArgumentException);
    svc->SetCreateDrawQuads([](auto, double, double, bool) -> std::unique_ptr<TViewUnitList> {
        throw std::runtime_error("not ours");
    });
    EXPECT_THROW(svc->Quadrilateral(plane.get(), c.Tri, c.Norm), std::runtime_error);
    EXPECT_THAT(c.Tri, ElementsAre(1.5, 2.5, 3.5));
    EXPECT_THAT(c.Norm, ElementsAre(4.5));
    EXPECT_THAT(messages.Texts(), IsEmpty());
}

TEST(QuadSurfaceTriangulator, NormalsFollowTheSurfaceType)
{
    Service svc;
    // An empty unit takes the branch of the flat normals and gives nothing.
    svc->SetCreateDrawQuads(QuadTool(nullptr, TViewUnitList{QuadUnit({}), QuadUnit(Join(kQuadA, kQuadB))}));
    TFloatDynArray tri, norm;
    // UVDir: one surface normal, at the first point, on every vertex.
    svc->Quadrilateral(MakeShape("bilinear").get(), tri, norm);
    ASSERT_EQ(svc->ExtrusionType(), TExtrusionType::UVDir);
    ASSERT_THAT(norm, SizeIs(24));
    for (std::size_t i = 3; i < norm.size(); ++i) EXPECT_EQ(norm[i], norm[i % 3]) << i;
    // NotExtrusion: the four normals of a quad are its flat normal, and quads differ.
    svc->Quadrilateral(MakeShape("sphere").get(), tri, norm);
    ASSERT_EQ(svc->ExtrusionType(), TExtrusionType::NotExtrusion);
    for (std::size_t q = 0; q < 2; ++q)
        for (std::size_t i = 12 * q + 3; i < 12 * q + 12; ++i) EXPECT_EQ(norm[i], norm[12 * q + i % 3]) << i;
    EXPECT_NE(norm[0], norm[12]);
}

TEST(QuadSurfaceTriangulator, PointListsPassTheirTolerancesAndAreNeverExchanged)
{
    auto calls = std::make_shared<std::vector<ToolCall>>();
    Service svc;
    svc->SetCreateDrawQuads(QuadTool(calls, TViewUnitList{QuadUnit(kQuadA), QuadUnit(kQuadB)}));
    const TList<TVPolyline2D> rectangle{TVPolyline2D({{0, 0}, {3, 0}, {3, 1}, {0, 1}, {0, 0}})};
    IGeSurfaceTriangulator& service = *svc.Holder.get();
    EXPECT_EQ(service.TriangulatePoint2DList(rectangle)->Items(), Join(kQuadA, kQuadB));
    service.TriangulatePoint2DListWithTol(rectangle, 0.25);
    service.TriangulatePoint2DListWithTolXY(rectangle, 0.25, 0.03);
    ASSERT_THAT(*calls, SizeIs(3));
    // The polyline's reach in X from its first point, and rows of 0.1.
    EXPECT_EQ((*calls)[0].XTol, 3.0);
    EXPECT_EQ((*calls)[0].YTol, 0.1);
    EXPECT_EQ((*calls)[1].XTol, 0.25);
    EXPECT_EQ((*calls)[1].YTol, 0.1);
    EXPECT_EQ((*calls)[2].YTol, 0.03);
    EXPECT_FALSE((*calls)[2].UnitPerColumn);
    EXPECT_EQ((*calls)[2].Polylines[0], rectangle[0].Items());
    EXPECT_THROW(service.TriangulatePoint2DList(TList<TVPolyline2D>()), EArgumentOutOfRangeException);

    // After a UDir surface: the region in its own X and Y, 3 x 1 less a 1 x 0.6 hole.
    Service fresh;
    TFloatDynArray tri, norm;
    fresh->Quadrilateral(MakeShape("cylinder-transposed").get(), tri, norm);
    ASSERT_EQ(fresh->ExtrusionType(), TExtrusionType::UDir);
    const TList<TVPolyline2D> region{TVPolyline2D({{0, 0}, {3, 0}, {3, 1}, {0, 1}, {0, 0}}),
                                     TVPolyline2D({{1, 0.2}, {1, 0.8}, {2, 0.8}, {2, 0.2}, {1, 0.2}})};
    const auto points = fresh.Holder.get()->TriangulatePoint2DListWithTolXY(region, 0.5, 0.25);
    ASSERT_FALSE(points->IsEmpty());
    ASSERT_EQ(points->Count() % 4, 0);
    double area = 0.0;
    for (int q = 0; q < points->Count(); q += 4)
        for (int k = 0; k < 4; ++k) {
            const TPoint2D &a = (*points)[q + k], &b = (*points)[q + (k + 1) % 4];
            EXPECT_TRUE(a.X >= 0 && a.X <= 3 && a.Y >= 0 && a.Y <= 1);
            area += a.X * b.Y - b.X * a.Y;
        }
    EXPECT_NEAR(std::abs(area) / 2, 3.0 - 0.6, 1e-12);
}

}  // namespace
}  // namespace orvane
