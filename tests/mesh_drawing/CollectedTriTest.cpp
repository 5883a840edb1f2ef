#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
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

// Every input vertex is found, bit for bit, at its index in the output; the output holds
// each distinct bit pattern once, in the order of first appearance.
void ExpectExactMerge(const TFloatDynArray& inV, const TFloatDynArray& inN, const TFloatDynArray& outV,
                      const TFloatDynArray& outN, const TDynGLinteger& index)
{
    const std::size_t count = inV.size() / 3;
    ASSERT_EQ(index.size(), count);
    ASSERT_EQ(outV.size(), outN.size());
    std::map<Bits6, std::int32_t> firstSeen;
    std::int32_t highest = -1;
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_GE(index[i], 0);
        ASSERT_LT(static_cast<std::size_t>(index[i]) * 3, outV.size());
        ASSERT_EQ(BitsOf(inV, inN, i), BitsOf(outV, outN, static_cast<std::size_t>(index[i]))) << "vertex " << i;
        ASSERT_LE(index[i], highest + 1) << "vertex " << i;
        highest = std::max(highest, index[i]);
        firstSeen.emplace(BitsOf(inV, inN, i), index[i]);
    }
    EXPECT_EQ(firstSeen.size() * 3, outV.size());
}

void Merge(TFloatDynArray& v, TFloatDynArray& n, TDynGLinteger& index)
{
    TCollectedTriProbe::ExtractIndexInVertexArray(v, n, index);
}

TEST(CollectedTriMerge, QuadOfTwoTrianglesKeepsFourVertices)
{
    const TFloatDynArray v{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0};
    const TFloatDynArray n{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    TFloatDynArray outV = v, outN = n;
    TDynGLinteger index;
    Merge(outV, outN, index);
    EXPECT_EQ(index, (TDynGLinteger{0, 1, 2, 0, 2, 3}));
    EXPECT_EQ(outV, (TFloatDynArray{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}));
    ExpectExactMerge(v, n, outV, outN, index);
}

TEST(CollectedTriMerge, ComparesBitsNotValues)
{
    const double up = std::nextafter(1.0, 2.0);
    // Same position, two normals; 0.0 against -0.0; a last-bit difference in a position and
    // in a normal; one true repeat at the end.
    const TFloatDynArray v{1, 2, 3, 1, 2, 3, 0.0, 0, 0, -0.0, 0, 0, 1, 1, 1, up, 1, 1, 5, 5, 5, 5, 5, 5, 1, 2, 3};
    const TFloatDynArray n{0, 0, 1, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, up, 0, 1, 0};
    TFloatDynArray outV = v, outN = n;
    TDynGLinteger index;
    Merge(outV, outN, index);
    EXPECT_EQ(index, (TDynGLinteger{0, 1, 2, 3, 4, 5, 6, 7, 1}));
    ExpectExactMerge(v, n, outV, outN, index);
}

TEST(CollectedTriMerge, RandomMeshesWithManyRepeatsStayExact)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        // Values with edge bit patterns: signed zeros, last-bit neighbours, a denormal.
        const std::vector<double> pool{0.0, -0.0, 1.0, std::nextafter(1.0, 2.0), -1.5, 1e-300, 3.0e8,
                                       std::nextafter(0.0, 1.0), 0.1, 0.1 + 1e-17};
        std::uniform_int_distribution<std::size_t> pick(0, pool.size() - 1);
        std::uniform_int_distribution<std::size_t> pickOfThree(0, 2);
        std::uniform_int_distribution<std::size_t> size(0, 600);
        // Three values of the pool for this round, so that repeats are common.
        const std::size_t chosen[3] = {pick(random), pick(random), pick(random)};
        const std::size_t count = 3 * size(random);
        TFloatDynArray v(3 * count), n(3 * count);
        for (std::size_t i = 0; i < v.size(); ++i) {
            v[i] = pool[chosen[pickOfThree(random)]];
            n[i] = pool[chosen[pickOfThree(random)]];
        }
        TFloatDynArray outV = v, outN = n;
        TDynGLinteger index;
        Merge(outV, outN, index);
        ExpectExactMerge(v, n, outV, outN, index);
    }
}

TEST(CollectedTriMerge, EmptyInputGivesEmptyOutput)
{
    TFloatDynArray v, n;
    TDynGLinteger index{9, 9};
    Merge(v, n, index);
    EXPECT_TRUE(v.empty());
    EXPECT_TRUE(n.empty());
    EXPECT_TRUE(index.empty());
}

TEST(CollectedTriMerge, QuadRoadMeshesOfEveryShapeLoseNoTriangle)
{
    TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator());
    for (const std::string& name : ShapeNames()) {
        SCOPED_TRACE(name);
        const auto surface = MakeShape(name);
        TFloatDynArray tri, norm;
        service->Triangulate(surface.get(), tri, norm);
        ASSERT_GT(tri.size(), 0u);

        TFloatDynArray outV = tri, outN = norm;
        TDynGLinteger index;
        Merge(outV, outN, index);
        ExpectExactMerge(tri, norm, outV, outN, index);
        EXPECT_LT(outV.size(), tri.size());  // shared corners were merged

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

TEST(CollectedTriLoad, DoublesAreMergedBeforeRoundingAndCallerArraysStay)
{
    // Two positions one apart below single precision: equal as floats, still two vertices.
    const double a = 1.0, b = 1.0 + 1e-12;
    const TFloatDynArray v{a, 0, 0, b, 0, 0, a, 0, 0};
    const TFloatDynArray n{0, 0, 1, 0, 0, 1, 0, 0, 1};
    TCollectedTri mesh(true);
    mesh.LoadOuter(v, n);
    EXPECT_EQ(mesh.IndexOut(), (TDynGLinteger{0, 1, 0}));
    EXPECT_EQ(mesh.TriOut(), (TDynGLFloat{1, 0, 0, 1, 0, 0}));
    EXPECT_EQ(mesh.NormOut(), (TDynGLFloat{0, 0, 1, 0, 0, 1}));
    EXPECT_EQ(v.size(), 9u);
    EXPECT_EQ(v[3], b);
    EXPECT_TRUE(mesh.TriIn().empty());
    EXPECT_TRUE(mesh.IndexIn().empty());
}

TEST(CollectedTriLoad, SinglePrecisionIsNeverMergedAndDropsAStaleIndex)
{
    TCollectedTri mesh(true);
    mesh.LoadInner(TFloatDynArray{0, 0, 0, 0, 0, 0, 0, 0, 0}, TFloatDynArray{0, 0, 1, 0, 0, 1, 0, 0, 1});
    EXPECT_EQ(mesh.IndexIn(), (TDynGLinteger{0, 0, 0}));
    const TDynGLFloat same{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    mesh.LoadInner(same, same);
    EXPECT_EQ(mesh.TriIn(), same);
    EXPECT_EQ(mesh.NormIn(), same);
    // The index of the earlier double load no longer fits these vertices.
    EXPECT_TRUE(mesh.IndexIn().empty());
}

TEST(CollectedTriLoad, ASecondLoadReplacesVerticesAndIndex)
{
    TCollectedTri mesh(true);
    mesh.LoadOuter(TFloatDynArray{0, 0, 0, 1, 0, 0, 0, 0, 0}, TFloatDynArray{0, 0, 1, 0, 0, 1, 0, 0, 1});
    mesh.LoadOuter(TFloatDynArray{2, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3},
                   TFloatDynArray{0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0});
    EXPECT_EQ(mesh.IndexOut(), (TDynGLinteger{0, 0, 0, 1}));
    EXPECT_EQ(mesh.TriOut(), (TDynGLFloat{2, 2, 2, 3, 3, 3}));
    mesh.Reset();
    EXPECT_TRUE(mesh.TriOut().empty() && mesh.IndexOut().empty() && mesh.NormOut().empty());
    EXPECT_TRUE(mesh.EBOMode());
}

TEST(CollectedTriLoad, WithoutEBOModeNothingIsMerged)
{
    TCollectedTri mesh(false);
    const TFloatDynArray v{1, 1, 1, 1, 1, 1, 1, 1, 1};
    mesh.LoadOuter(v, v);
    mesh.LoadInner(v, v);
    EXPECT_EQ(mesh.TriOut().size(), 9u);
    EXPECT_EQ(mesh.TriIn().size(), 9u);
    EXPECT_TRUE(mesh.IndexOut().empty());
    EXPECT_TRUE(mesh.IndexIn().empty());
}

TEST(CollectedTriLoad, ValidNeedsOneWholeVertex)
{
    TCollectedTri mesh(true);
    EXPECT_FALSE(mesh.Valid());
    mesh.LoadOuter(TDynGLFloat{1, 2}, TDynGLFloat{0, 0});
    EXPECT_FALSE(mesh.Valid());
    mesh.LoadInner(TDynGLFloat{1, 2, 3}, TDynGLFloat{0, 0, 1});
    EXPECT_TRUE(mesh.Valid());
    mesh.LoadInner(TDynGLFloat{}, TDynGLFloat{});
    mesh.LoadOuter(TDynGLFloat{1, 2, 3}, TDynGLFloat{0, 0, 1});
    EXPECT_TRUE(mesh.Valid());
}

TEST(CollectedTriLoad, PairEqualityIsTolerant)
{
    using TPair = TCollectedTri::TPointComparePair;
    const TPair a = TPair::Create({1, 2, 3}, {0, 0, 1});
    EXPECT_TRUE(a == TPair::Create({1 + 5e-7, 2, 3}, {0, 0, -0.0 + 1}));
    EXPECT_FALSE(a == TPair::Create({1, 2, 3}, {0, 2e-6, 1}));
}

}  // namespace
}  // namespace orvane
