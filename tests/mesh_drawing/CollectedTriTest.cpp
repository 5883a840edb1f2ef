// The collected mesh: the exact vertex merge, and the loads that merge, round and index.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "contracts/Interfaces.h"
#include "contracts/Shapes.h"
#include "mesh_drawing/CollectedTri.h"
#include "tessellation/uTessQuadsTriangulator.h"
#include "tests/mesh_drawing/CollectedTriProbe.h"

namespace orvane {
namespace {

using Bits6 = std::array<std::uint64_t, 6>;

Bits6 BitsOf(const TFloatDynArray& v, const TFloatDynArray& n, std::size_t i)
{
    Bits6 b{};
    for (std::size_t k = 0; k < 3; ++k) {
        b[k] = std::bit_cast<std::uint64_t>(v[3 * i + k]);
        b[3 + k] = std::bit_cast<std::uint64_t>(n[3 * i + k]);
    }
    return b;
}

// Merges a copy of the input and checks that every input vertex is found, bit for bit, at its
// index in the output, and that the output holds each distinct bit pattern once, in the order
// of first appearance. Answers the index.
TDynGLinteger ExpectExactMerge(const TFloatDynArray& inV, const TFloatDynArray& inN, TFloatDynArray* merged = nullptr)
{
    TFloatDynArray outV = inV, outN = inN;
    TDynGLinteger index{9, 9};
    TCollectedTriProbe::ExtractIndexInVertexArray(outV, outN, index);
    const std::size_t count = inV.size() / 3;
    EXPECT_EQ(index.size(), count);
    EXPECT_EQ(outV.size(), outN.size());
    std::map<Bits6, std::int32_t> firstSeen;
    std::int32_t highest = -1;
    for (std::size_t i = 0; i < count && i < index.size(); ++i) {
        if (index[i] < 0 || std::size_t(index[i]) * 3 >= outV.size() || index[i] > highest + 1 ||
            BitsOf(inV, inN, i) != BitsOf(outV, outN, std::size_t(index[i]))) {
            ADD_FAILURE() << "vertex " << i << " at " << index[i];
            break;
        }
        highest = std::max(highest, index[i]);
        firstSeen.emplace(BitsOf(inV, inN, i), index[i]);
    }
    EXPECT_EQ(firstSeen.size() * 3, outV.size());
    if (merged) *merged = outV;
    return index;
}

TEST(CollectedTriMerge, SharedVerticesAreMergedByTheirBits)
{
    const double up = std::nextafter(1.0, 2.0);
    const struct { const char* Name; TFloatDynArray V, N; TDynGLinteger Index; } cases[] = {
        {"a quad of two triangles", {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0},
         {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}, {0, 1, 2, 0, 2, 3}},
        // Same position, two normals; 0.0 against -0.0; a last-bit difference in a position and
        // in a normal; one true repeat at the end.
        {"bits, not values", {1, 2, 3, 1, 2, 3, 0.0, 0, 0, -0.0, 0, 0, 1, 1, 1, up, 1, 1, 5, 5, 5, 5, 5, 5, 1, 2, 3},
         {0, 0, 1, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, up, 0, 1, 0}, {0, 1, 2, 3, 4, 5, 6, 7, 1}},
        {"nothing", {}, {}, {}},
    };
    for (const auto& c : cases) EXPECT_EQ(ExpectExactMerge(c.V, c.N), c.Index) << c.Name;
    TFloatDynArray merged;
    ExpectExactMerge(cases[0].V, cases[0].N, &merged);
    EXPECT_EQ(merged, (TFloatDynArray{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}));
}

TEST(CollectedTriMerge, QuadRoadMeshesOfEveryShapeLoseNoTriangle)
{
    TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator());
    for (const std::string& name : ShapeNames()) {
        SCOPED_TRACE(name);
        const auto surface = MakeShape(name);
        TFloatDynArray tri, norm, merged;
        service->Triangulate(surface.get(), tri, norm);
        ASSERT_GT(tri.size(), 0u);
        ExpectExactMerge(tri, norm, &merged);
        EXPECT_LT(merged.size(), tri.size());  // shared corners were merged

        // Through the collected mesh: each triangle's corners, rounded, at their indices.
        TCollectedTri mesh(true);
        mesh.LoadOuter(tri, norm);
        ASSERT_EQ(mesh.IndexOut().size() * 3, tri.size());
        for (std::size_t i = 0; i < mesh.IndexOut().size(); ++i)
            for (std::size_t k = 0; k < 3; ++k) {
                const std::size_t at = 3 * static_cast<std::size_t>(mesh.IndexOut()[i]) + k;
                ASSERT_EQ(mesh.TriOut()[at], static_cast<float>(tri[3 * i + k])) << "vertex " << i;
                ASSERT_EQ(mesh.NormOut()[at], static_cast<float>(norm[3 * i + k])) << "vertex " << i;
            }
    }
}

TEST(CollectedTriLoad, DoublesAreMergedBeforeRoundingSinglesNeverAndALoadReplacesTheLast)
{
    // Two positions one apart below single precision: equal as floats, still two vertices.
    const double a = 1.0, b = 1.0 + 1e-12;
    const TFloatDynArray v{a, 0, 0, b, 0, 0, a, 0, 0};
    const TFloatDynArray n{0, 0, 1, 0, 0, 1, 0, 0, 1};
    TCollectedTri mesh(true);
    mesh.LoadOuter(v, n);
    EXPECT_EQ(mesh.IndexOut(), (TDynGLinteger{0, 1, 0}));
    EXPECT_TRUE(mesh.TriOut() == (TDynGLFloat{1, 0, 0, 1, 0, 0}) && mesh.NormOut() == (TDynGLFloat{0, 0, 1, 0, 0, 1}));
    EXPECT_EQ(v[3], b);  // the caller's arrays stay
    EXPECT_TRUE(mesh.TriIn().empty() && mesh.IndexIn().empty());
    mesh.LoadOuter(TFloatDynArray{2, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3}, TFloatDynArray{0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0});
    EXPECT_TRUE(mesh.IndexOut() == (TDynGLinteger{0, 0, 0, 1}) && mesh.TriOut() == (TDynGLFloat{2, 2, 2, 3, 3, 3}));

    mesh.LoadInner(TFloatDynArray{0, 0, 0, 0, 0, 0, 0, 0, 0}, n);
    EXPECT_EQ(mesh.IndexIn(), (TDynGLinteger{0, 0, 0}));
    const TDynGLFloat same{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    mesh.LoadInner(same, same);
    EXPECT_TRUE(mesh.TriIn() == same && mesh.NormIn() == same);
    EXPECT_TRUE(mesh.IndexIn().empty());  // the index of the double load no longer fits
    mesh.Reset();
    EXPECT_TRUE(mesh.TriOut().empty() && mesh.IndexOut().empty() && mesh.NormOut().empty() && mesh.EBOMode());

    TCollectedTri plain(false);  // without EBO mode nothing is merged
    plain.LoadOuter(TFloatDynArray(9, 1.0), TFloatDynArray(9, 1.0));
    plain.LoadInner(TFloatDynArray(9, 1.0), TFloatDynArray(9, 1.0));
    EXPECT_EQ(plain.TriOut().size() + plain.TriIn().size(), 18u);
    EXPECT_TRUE(plain.IndexOut().empty() && plain.IndexIn().empty());
}

TEST(CollectedTriLoad, ValidNeedsOneWholeVertexAndPairEqualityIsTolerant)
{
    TCollectedTri mesh(true);
    std::vector<bool> valid{mesh.Valid()};
    mesh.LoadOuter(TDynGLFloat{1, 2}, TDynGLFloat{0, 0});
    valid.push_back(mesh.Valid());
    mesh.LoadInner(TDynGLFloat{1, 2, 3}, TDynGLFloat{0, 0, 1});
    valid.push_back(mesh.Valid());
    mesh.LoadInner(TDynGLFloat{}, TDynGLFloat{}), mesh.LoadOuter(TDynGLFloat{1, 2, 3}, TDynGLFloat{0, 0, 1});
    valid.push_back(mesh.Valid());
    EXPECT_EQ(valid, (std::vector<bool>{false, false, true, true}));

    using TPair = TCollectedTri::TPointComparePair;
    const TPair a = TPair::Create({1, 2, 3}, {0, 0, 1});
    EXPECT_TRUE(a == TPair::Create({1 + 5e-7, 2, 3}, {0, 0, -0.0 + 1}));
    EXPECT_FALSE(a == TPair::Create({1, 2, 3}, {0, 2e-6, 1}));
}

}  // namespace
}  // namespace orvane
