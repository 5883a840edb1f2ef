// gmock declares a function named Assert: it comes before the system's Assert macro.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "contracts/PrimitiveCodes.h"
#include "glu_triangulation/RecTriangles.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

// A primitive of N vertices. Vertex k is (k, k + 0.5, -k) and its normal (0, 1, k), so that
// the X of a result vertex and the Z of its normal both name the source vertex.
struct Primitive {
    TDynGLFloat Vert, Norm;
};

Primitive MakePrimitive(int N)
{
    Primitive p;
    for (int k = 0; k < N; ++k) {
        const float f = static_cast<float>(k);
        p.Vert.insert(p.Vert.end(), {f, f + 0.5f, -f});
        p.Norm.insert(p.Norm.end(), {0.0f, 1.0f, f});
    }
    return p;
}

// The source index of every result vertex, checking that each normal came with its vertex.
std::vector<int> SourceOrder(const TDynGLFloat& Vert, const TDynGLFloat& Norm)
{
    std::vector<int> order;
    EXPECT_EQ(Vert.size(), Norm.size());
    for (std::size_t i = 0; i + 2 < Vert.size(); i += 3) {
        EXPECT_EQ(Vert[i + 1], Vert[i] + 0.5f);
        EXPECT_EQ(Vert[i + 2], -Vert[i]);
        EXPECT_EQ(Norm[i + 2], Vert[i]) << "normal does not follow its vertex at float " << i;
        order.push_back(static_cast<int>(Vert[i]));
    }
    return order;
}

// What a fresh converter gives for one primitive: its vertices and their normals.
Primitive Convert(Cardinal DrawType, const Primitive& P, bool Quads)
{
    TRecTriangles rec;
    Quads ? rec.AddSurfaceDataQuad(DrawType, P.Vert, P.Norm) : rec.AddSurfaceData(DrawType, P.Vert, P.Norm);
    Primitive res;
    rec.GetRes(res.Vert, res.Norm);
    return res;
}

TEST(RecTriangles, ConvertsEachPrimitiveInItsVertexOrder)
{
    const struct {
        Cardinal Type;
        int N;
        bool Quads;
        std::vector<int> Order;
    } cases[] = {
        {GL_TRIANGLES, 6, false, {0, 1, 2, 3, 4, 5}},
        {GL_TRIANGLE_FAN, 4, false, {0, 1, 2, 0, 2, 3}},
        // Odd triangles of a strip have their first and last vertex swapped.
        {GL_TRIANGLE_STRIP, 5, false, {0, 1, 2, 3, 2, 1, 2, 3, 4}},
        {GL_QUAD_STRIP, 6, false, {0, 1, 2, 1, 3, 2, 2, 3, 4, 3, 5, 4}},
        // The diagonal of every quad runs from its corner 0 to its corner 2.
        {GL_QUADS, 8, false, {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7}},
        {GL_QUADS, 4, true, {0, 1, 2, 3}},
        {GL_TRIANGLE_FAN, 4, true, {0, 1, 2, 3}},
        {GL_QUAD_STRIP, 6, true, {0, 1, 3, 2, 2, 3, 5, 4}},
        // Primitives without a whole piece give nothing.
        {GL_QUAD_STRIP, 2, false, {}},
        {GL_TRIANGLE_STRIP, 2, false, {}},
        {GL_QUADS, 0, false, {}},
        {GL_TRIANGLE_FAN, 2, true, {}},
        {GL_QUAD_STRIP, 2, true, {}},
    };
    for (const auto& c : cases) {
        const Primitive res = Convert(c.Type, MakePrimitive(c.N), c.Quads);
        EXPECT_EQ(SourceOrder(res.Vert, res.Norm), c.Order) << c.Type << " of " << c.N;
    }
}

TEST(RecTriangles, AnUnpairedFanTriangleGetsTheMidpointOfItsClosingEdge)
{
    // Seven vertices: two paired quads, then the unpaired triangle s0 s5 s6 and a midpoint.
    const Primitive seven = Convert(GL_TRIANGLE_FAN, MakePrimitive(7), true);
    ASSERT_EQ(seven.Vert.size(), 36u);
    EXPECT_THAT(SourceOrder({seven.Vert.begin(), seven.Vert.end() - 3}, {seven.Norm.begin(), seven.Norm.end() - 3}),
                ElementsAre(0, 1, 2, 3, 0, 3, 4, 5, 0, 5, 6));

    // Five vertices with unit normals at s0 and s4 whose sum is brought back to unit length:
    // the second quad is s0, s3, s4, m with m halfway between s0 and s4.
    Primitive p = MakePrimitive(5);
    p.Norm = {1, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1, 0};
    const Primitive five = Convert(GL_TRIANGLE_FAN, p, true);
    ASSERT_EQ(five.Vert.size(), 24u);
    EXPECT_THAT(std::vector<float>(five.Vert.begin() + 12, five.Vert.end()),
                ElementsAre(0.0f, 0.5f, -0.0f, 3.0f, 3.5f, -3.0f, 4.0f, 4.5f, -4.0f, 2.0f, 2.5f, -2.0f));
    const float h = static_cast<float>(std::sqrt(0.5));
    EXPECT_THAT(std::vector<float>(five.Norm.begin() + 21, five.Norm.end()), ElementsAre(h, h, 0.0f));

    // A fan of one triangle becomes one such quad.
    EXPECT_THAT(Convert(GL_TRIANGLE_FAN, MakePrimitive(3), true).Vert,
                ElementsAre(0.0f, 0.5f, -0.0f, 1.0f, 1.5f, -1.0f, 2.0f, 2.5f, -2.0f, 1.0f, 1.5f, -1.0f));
}

TEST(RecTriangles, RefusalsAssertionsAndRangeErrorsAppendNothing)
{
    TRecTriangles rec;
    const Primitive none = MakePrimitive(0), one = MakePrimitive(1), two = MakePrimitive(2), three = MakePrimitive(3),
                    four = MakePrimitive(4), five = MakePrimitive(5);
    rec.AddSurfaceData(GL_TRIANGLES, three.Vert, three.Norm);

    auto messageOf = [](const std::function<void()>& call) -> std::string {
        try { call(); } catch (const EAssertionFailed& e) { return std::string("assertion: ") + e.what(); }
        catch (const Exception& e) { return e.what(); }
        return "no exception";
    };
    for (Cardinal type : {GL_LINES, GL_LINE_STRIP})
        EXPECT_EQ(messageOf([&] { rec.AddSurfaceData(type, four.Vert, four.Norm); }), "Error Message");
    // There is no conversion of triangles to quads.
    for (Cardinal type : {GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_LINES})
        EXPECT_EQ(messageOf([&] { rec.AddSurfaceDataQuad(type, four.Vert, four.Norm); }), "没有对应的数据转换四边形");

    const TDynGLFloat shortNorm(five.Norm.begin(), five.Norm.end() - 3);
    const std::function<void()> broken[] = {
        [&] { rec.AddSurfaceData(GL_TRIANGLE_FAN, two.Vert, two.Norm); },
        [&] { rec.AddSurfaceData(GL_QUADS, five.Vert, five.Norm); },
        [&] { rec.AddSurfaceData(GL_QUAD_STRIP, five.Vert, shortNorm); },
        [&] { rec.AddSurfaceDataQuad(GL_QUAD_STRIP, five.Vert, shortNorm); },
        [&] { rec.AddSurfaceData(GL_TRIANGLES, five.Vert, shortNorm); },
        [&] { rec.AddSurfaceDataQuad(GL_QUADS, five.Vert, shortNorm); },
    };
    for (const auto& call : broken)
        EXPECT_THAT(messageOf(call), MatchesRegex("assertion: Assertion failure \\(uTriangulate, line [0-9]+\\)"));
    EXPECT_THROW(rec.AddSurfaceData(GL_TRIANGLE_STRIP, one.Vert, one.Norm), ERangeError);
    EXPECT_THROW(rec.AddSurfaceData(GL_QUAD_STRIP, one.Vert, one.Norm), ERangeError);
    EXPECT_THROW(rec.AddSurfaceDataQuad(GL_TRIANGLE_FAN, one.Vert, one.Norm), ERangeError);
    EXPECT_THROW(rec.AddSurfaceDataQuad(GL_QUAD_STRIP, none.Vert, none.Norm), ERangeError);
    EXPECT_EQ(messageOf([&] { rec.AddSurfaceData(GL_TRIANGLE_STRIP, none.Vert, none.Norm); }), "Range check error");

    TDynGLFloat tri, norm;
    rec.GetRes(tri, norm);
    EXPECT_THAT(SourceOrder(tri, norm), ElementsAre(0, 1, 2));
}

TEST(RecTriangles, ResultsAccumulateUntilClearAndComeInEitherPrecision)
{
    TRecTriangles rec;
    const Primitive three = MakePrimitive(3), four = MakePrimitive(4);
    rec.AddSurfaceData(GL_TRIANGLES, three.Vert, three.Norm);
    TDynGLFloat tri, norm;
    rec.GetRes(tri, norm);
    rec.AddSurfaceData(GL_TRIANGLE_FAN, four.Vert, four.Norm);
    rec.GetRes(tri, norm);
    EXPECT_THAT(SourceOrder(tri, norm), ElementsAre(0, 1, 2, 0, 1, 2, 0, 2, 3));
    TFloatDynArray wide, wideNorm;
    rec.GetRes(wide, wideNorm);
    EXPECT_EQ(wide, std::vector<double>(tri.begin(), tri.end()));
    EXPECT_EQ(wideNorm, std::vector<double>(norm.begin(), norm.end()));
    // After Clear nothing is left; the buffers grow past their first fifty floats.
    rec.Clear();
    rec.GetRes(tri, norm);
    EXPECT_THAT(tri, IsEmpty());
    const TDynGLFloat fifty(50, 0.25f);
    rec.AddSurfaceData(GL_TRIANGLES, {}, {});
    rec.AddSurfaceData(GL_TRIANGLES, fifty, fifty);
    rec.AddSurfaceData(GL_TRIANGLES, fifty, fifty);
    rec.GetRes(tri, norm);
    EXPECT_EQ(tri, TDynGLFloat(100, 0.25f));
}

}  // namespace
}  // namespace orvane
