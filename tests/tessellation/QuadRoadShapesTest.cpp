// The quad and triangle roads over every shape of the shape library, and the repaired normals
// of the full cylinder against the true radial direction.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <map>
#include <numbers>
#include <tuple>

#include "contracts/Shapes.h"
#include "tessellation/QuadNormals.h"
#include "tessellation/TempNurbsPointEval.h"
#include "tests/support/MessageCapture.h"
#include "tests/tessellation/RoadTestSupport.h"

namespace orvane {
namespace {

using ::testing::IsEmpty;
using testing::CircleSpline;
using testing::LineLoop;
using testing::MessageCapture;
using testing::RecordingQuadTool;
using testing::TQuadToolCall;
using testing::TServiceUnderTest;

constexpr double kDegree = std::numbers::pi / 180;

// One road's output with the quads the quad tool handed out for it.
struct RoadRun {
    TFloatDynArray Tri;
    TFloatDynArray Norm;
    TExtrusionType Type = TExtrusionType::NotExtrusion;
    std::vector<TPoint2D> UV;  // every Points2D point of every unit, in order
};

RoadRun RunQuadrilateral(const TGeSurface& Surface)
{
    auto calls = std::make_shared<std::vector<TQuadToolCall>>();
    TServiceUnderTest svc;
    svc->SetCreateDrawQuads(RecordingQuadTool(calls));
    RoadRun run;
    svc->Quadrilateral(&Surface, run.Tri, run.Norm);
    run.Type = svc->ExtrusionType();
    for (const TQuadToolCall& call : *calls)
        for (const TViewUnit& unit : call.Units) run.UV.insert(run.UV.end(), unit.Points2D.begin(), unit.Points2D.end());
    return run;
}

TPoint3D At(const TFloatDynArray& A, std::size_t Vertex)
{
    return {A[3 * Vertex], A[3 * Vertex + 1], A[3 * Vertex + 2]};
}

const TGeNurbsSurface& NurbsOf(const TGeSurface& S)
{
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(&S)) return NurbsOf(*trimmed->GetSurface());
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(&S)) return *ext->Surface;
    return dynamic_cast<const TGeNurbsSurface&>(S);
}

// The diagonal of the control net's box.
double NetExtent(const TGeNurbsSurface& N)
{
    TPoint3D lo = N.GetCtrlPoint(0, 0);
    TPoint3D hi = lo;
    for (int i = 0; i < N.CtrlCountU; ++i)
        for (int j = 0; j < N.CtrlCountV; ++j) {
            const TPoint3D p = N.GetCtrlPoint(i, j);
            lo = {std::min(lo.X, p.X), std::min(lo.Y, p.Y), std::min(lo.Z, p.Z)};
            hi = {std::max(hi.X, p.X), std::max(hi.Y, p.Y), std::max(hi.Z, p.Z)};
        }
    return lo.DistanceTo(hi);
}

double AngleBetween(const TPoint3D& A, const TPoint3D& B)
{
    return std::atan2(A.CrossMul(B).Length(), A.DotMul(B));
}

TEST(QuadRoadShapesTest, EveryShapeGivesExactQuadsAndTheirTrianglesInSinglePrecision)
{
    MessageCapture messages;
    for (const std::string& name : ShapeNames()) {
        SCOPED_TRACE(name);
        const auto shape = MakeShape(name);
        const RoadRun quads = RunQuadrilateral(*shape);
        TServiceUnderTest svc;
        TFloatDynArray tri, norm;
        svc->Triangulate(shape.get(), tri, norm);

        const std::size_t quadCount = quads.UV.size() / 4;
        ASSERT_GT(quadCount, 0u);
        ASSERT_EQ(quads.Tri.size(), 12 * quadCount);
        ASSERT_EQ(quads.Norm.size(), quads.Tri.size());
        ASSERT_EQ(tri.size(), 18 * quadCount);
        ASSERT_EQ(norm.size(), tri.size());

        // Every quad corner is the surface's point at its UV.
        const TGeNurbsSurface& nurbs = NurbsOf(*shape);
        const TRect2D domain = nurbs.GetDomain();
        const double tol = 1e-12 * NetExtent(nurbs);
        for (std::size_t v = 0; v < quads.UV.size(); ++v) {
            TPoint2D uv = quads.UV[v];
            if (quads.Type == TExtrusionType::UDir) uv = {uv.Y, uv.X};
            ASSERT_TRUE(uv.X >= domain.Min.X && uv.X <= domain.Max.X && uv.Y >= domain.Min.Y && uv.Y <= domain.Max.Y);
            ASSERT_LE(At(quads.Tri, v).DistanceTo(nurbs.GetPoint(uv.X, uv.Y)), tol) << "vertex " << v;
        }

        // Each quad P0..P3 comes back as P0 P1 P2, P0 P2 P3, every value through single precision.
        const std::size_t order[6] = {0, 1, 2, 0, 2, 3};
        for (std::size_t q = 0; q < quadCount; ++q)
            for (std::size_t k = 0; k < 6; ++k)
                for (std::size_t c = 0; c < 3; ++c) {
                    const std::size_t from = 3 * (4 * q + order[k]) + c;
                    const std::size_t to = 3 * (6 * q + k) + c;
                    ASSERT_EQ(tri[to], static_cast<double>(static_cast<float>(quads.Tri[from])));
                    ASSERT_EQ(norm[to], static_cast<double>(static_cast<float>(quads.Norm[from])));
                }

        // No shape of the library has a degenerate point where a normal is taken.
        for (std::size_t v = 0; v < quads.UV.size(); ++v)
            ASSERT_NEAR(At(quads.Norm, v).Length(), 1.0, 1e-12) << "normal " << v;
    }
    EXPECT_THAT(messages.Texts(), IsEmpty());
}

TEST(QuadRoadShapesTest, QuadsThatShareAUVPointShareBitIdenticalVertices)
{
    for (const char* name : {"torus", "trimmed-circular-holes", "cylinder-transposed"}) {
        const auto shape = MakeShape(name);
        const RoadRun run = RunQuadrilateral(*shape);
        std::map<std::pair<std::uint64_t, std::uint64_t>, std::tuple<std::uint64_t, std::uint64_t, std::uint64_t>> seen;
        std::size_t shared = 0;
        for (std::size_t v = 0; v < run.UV.size(); ++v) {
            const auto key = std::make_pair(std::bit_cast<std::uint64_t>(run.UV[v].X),
                                            std::bit_cast<std::uint64_t>(run.UV[v].Y));
            const TPoint3D p = At(run.Tri, v);
            const auto bits = std::make_tuple(std::bit_cast<std::uint64_t>(p.X), std::bit_cast<std::uint64_t>(p.Y),
                                              std::bit_cast<std::uint64_t>(p.Z));
            auto [it, inserted] = seen.emplace(key, bits);
            if (!inserted) {
                ++shared;
                ASSERT_EQ(it->second, bits) << name << " vertex " << v;
            }
        }
        EXPECT_GT(shared, run.UV.size() / 2) << name;
    }
}

// The value the normal repair takes at a unit's end: the forward-difference surface normal.
TPoint3D SurfaceNormal(const TGeNurbsSurface& N, TPoint2D P, bool Exchanged)
{
    const double d = 0.001;
    const TTempNurbsPointEval eval(d);
    auto point = [&](TPoint2D Q) { return eval.EvalPointOnNurbsSurface(N, Exchanged ? TPoint2D{Q.Y, Q.X} : Q); };
    return TQuadNormals::CalcNormal(point(P), point({P.X, P.Y + d}), point({P.X + d, P.Y}));
}

void CheckCylinderNormals(const char* Name, bool Exchanged)
{
    SCOPED_TRACE(Name);
    const auto shape = MakeShape(Name);
    const TGeNurbsSurface& nurbs = NurbsOf(*shape);
    const RoadRun run = RunQuadrilateral(*shape);
    ASSERT_EQ(run.Type, Exchanged ? TExtrusionType::UDir : TExtrusionType::VDir);
    const std::size_t count = run.UV.size();
    auto radial = [&](std::size_t v) { return TPoint3D(At(run.Tri, v).X, At(run.Tri, v).Y, 0.0).Normal(); };

    // Columns by their left side in the plane; each spans 17 to 19 degrees of arc.
    std::map<double, std::vector<std::size_t>> columns;
    for (std::size_t q = 0; q < count / 4; ++q) columns[run.UV[4 * q].X].push_back(q);
    ASSERT_EQ(columns.size(), 20u);
    std::vector<TPoint3D> flat(count / 4);
    for (std::size_t q = 0; q < count / 4; ++q) {
        flat[q] = TQuadNormals::CalcNormal(At(run.Tri, 4 * q), At(run.Tri, 4 * q + 1), At(run.Tri, 4 * q + 2),
                                           At(run.Tri, 4 * q + 3));
        const double width = AngleBetween(radial(4 * q), radial(4 * q + 1));
        ASSERT_GE(width, 17 * kDegree);
        ASSERT_LE(width, 19 * kDegree);
        // A flat normal stands off the radial direction at the column's sides by half its angle
        // (the quads' winding turns it inwards here).
        ASSERT_NEAR(AngleBetween(-flat[q], radial(4 * q)), width / 2, 1e-9) << "quad " << q;
    }

    // The repaired normals lie within 0.35 degree of radial, all on one side.
    const double sign = run.Norm[0] * radial(0).X + run.Norm[1] * radial(0).Y > 0 ? 1.0 : -1.0;
    for (std::size_t v = 0; v < count; ++v)
        ASSERT_LE(AngleBetween(At(run.Norm, v) * sign, radial(v)), 0.35 * kDegree) << "vertex " << v;

    // Each is the repair's own value: S, T, or the normalised sum of the flat normals of the
    // two quads that meet at the column edge.
    TPoint3D s = SurfaceNormal(nurbs, run.UV[0], Exchanged);
    if (s.DotMul(flat[0]) < 0) s = -s;
    TPoint3D t = SurfaceNormal(nurbs, run.UV[count - 2], Exchanged);
    if (t.DotMul(flat.back()) < 0) t = -t;
    std::vector<std::vector<std::size_t>> ordered;
    for (const auto& [x, quads] : columns) ordered.push_back(quads);
    for (std::size_t c = 0; c < ordered.size(); ++c) {
        const std::size_t firstHere = ordered[c].front();
        const TPoint3D left = c == 0 ? s : (flat[firstHere - 1] + flat[firstHere]).Normal();
        const TPoint3D right = c + 1 == ordered.size() ? t : (flat[ordered[c + 1].front() - 1] + flat[ordered[c + 1].front()]).Normal();
        for (std::size_t q : ordered[c]) {
            const TPoint3D expected[4] = {left, right, right, left};
            for (std::size_t k = 0; k < 4; ++k)
                ASSERT_LE(At(run.Norm, 4 * q + k).DistanceTo(expected[k]), 1e-12) << "quad " << q << " point " << k;
        }
    }
}

TEST(QuadRoadShapesTest, FullCylinderNormalsAreRadialWithinAThirdOfADegree)
{
    CheckCylinderNormals("cylinder", false);
    CheckCylinderNormals("cylinder-transposed", true);
}

void ExpectSameMesh(const TGeSurface& A, const TGeSurface& B)
{
    const RoadRun a = RunQuadrilateral(A);
    const RoadRun b = RunQuadrilateral(B);
    ASSERT_NE(a.Type, b.Type);
    ASSERT_FALSE(a.Tri.empty());
    ASSERT_EQ(a.Tri.size(), b.Tri.size());
    ASSERT_EQ(a.Norm.size(), b.Norm.size());
    for (std::size_t i = 0; i < a.Tri.size(); ++i) {
        ASSERT_NEAR(a.Tri[i], b.Tri[i], 1e-12) << i;
        ASSERT_NEAR(a.Norm[i], b.Norm[i], 1e-12) << i;
    }
}

TDynPoints2D Swapped(TDynPoints2D Points)
{
    for (TPoint2D& p : Points) std::swap(p.X, p.Y);
    return Points;
}

std::unique_ptr<TGeSurface> TrimmedCylinder(bool Transposed)
{
    const TDynPoints2D outer{{0.05, 0.1}, {0.95, 0.1}, {0.95, 0.9}, {0.05, 0.9}, {0.05, 0.1}};
    const TPoint2D centre{0.45, 0.55};
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(CircleSpline(centre, 0.2, Transposed));
    return std::make_unique<TGeTrimmedSurface>(MakeShape(Transposed ? "cylinder-transposed" : "cylinder"),
                                               LineLoop(Transposed ? Swapped(outer) : outer), std::move(holes));
}

TEST(QuadRoadShapesTest, ATransposedSurfaceGivesTheSameMesh)
{
    ExpectSameMesh(*MakeShape("cylinder"), *MakeShape("cylinder-transposed"));
    ExpectSameMesh(*TrimmedCylinder(false), *TrimmedCylinder(true));
}

}  // namespace
}  // namespace orvane
