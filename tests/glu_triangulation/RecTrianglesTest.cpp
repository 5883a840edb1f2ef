// gmock declares a function named Assert: it comes before the system's Assert macro.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "contracts/PrimitiveCodes.h"
#include "glu_triangulation/RecTriangles.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

// A primitive of N vertices. Vertex k is (k, k + 0.5, -k) and its normal (0, 1, k), so that
// the X of a result vertex and the Z of its normal both name the source vertex.
struct Primitive {
    TDynGLFloat Vert;
    TDynGLFloat Norm;
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
        const int k = static_cast<int>(Vert[i]);
        EXPECT_EQ(Vert[i + 1], Vert[i] + 0.5f);
        EXPECT_EQ(Vert[i + 2], -Vert[i]);
        EXPECT_EQ(Norm[i + 2], Vert[i]) << "normal does not follow its vertex at float " << i;
        order.push_back(k);
    }
    return order;
}

std::vector<int> AsTriangles(Cardinal DrawType, int N)
{
    TRecTriangles rec;
    const Primitive p = MakePrimitive(N);
    rec.AddSurfaceData(DrawType, p.Vert, p.Norm);
    TDynGLFloat tri, norm;
    rec.GetRes(tri, norm);
    return SourceOrder(tri, norm);
}

std::vector<int> AsQuads(Cardinal DrawType, int N)
{
    TRecTriangles rec;
    const Primitive p = MakePrimitive(N);
    rec.AddSurfaceDataQuad(DrawType, p.Vert, p.Norm);
    TDynGLFloat tri, norm;
    rec.GetRes(tri, norm);
    return SourceOrder(tri, norm);
}

const char* const kAssertionPattern = "Assertion failure \\(uTriangulate, line [0-9]+\\)";

TEST(RecTrianglesTest, ConvertsEachPrimitiveToTrianglesInItsVertexOrder)
{
    EXPECT_THAT(AsTriangles(GL_TRIANGLES, 6), ElementsAre(0, 1, 2, 3, 4, 5));
    EXPECT_THAT(AsTriangles(GL_TRIANGLE_FAN, 4), ElementsAre(0, 1, 2, 0, 2, 3));
    // Odd triangles of a strip have their first and last vertex swapped.
    EXPECT_THAT(AsTriangles(GL_TRIANGLE_STRIP, 5), ElementsAre(0, 1, 2, 3, 2, 1, 2, 3, 4));
    EXPECT_THAT(AsTriangles(GL_QUAD_STRIP, 6), ElementsAre(0, 1, 2, 1, 3, 2, 2, 3, 4, 3, 5, 4));
    // The diagonal of every quad runs from its corner 0 to its corner 2.
    EXPECT_THAT(AsTriangles(GL_QUADS, 8), ElementsAre(0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7));
}

TEST(RecTrianglesTest, ConvertsFansAndQuadStripsToQuads)
{
    EXPECT_THAT(AsQuads(GL_QUADS, 4), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(AsQuads(GL_TRIANGLE_FAN, 4), ElementsAre(0, 1, 2, 3));
    {
        // Seven vertices: two paired quads, then the unpaired triangle s0 s5 s6 and a midpoint.
        TRecTriangles rec;
        const Primitive p = MakePrimitive(7);
        rec.AddSurfaceDataQuad(GL_TRIANGLE_FAN, p.Vert, p.Norm);
        TDynGLFloat tri, norm;
        rec.GetRes(tri, norm);
        ASSERT_EQ(tri.size(), 36u);
        tri.resize(33);
        norm.resize(33);
        EXPECT_THAT(SourceOrder(tri, norm), ElementsAre(0, 1, 2, 3, 0, 3, 4, 5, 0, 5, 6));
    }
    EXPECT_THAT(AsQuads(GL_QUAD_STRIP, 6), ElementsAre(0, 1, 3, 2, 2, 3, 5, 4));
}

TEST(RecTrianglesTest, UnpairedFanTriangleGetsTheMidpointOfItsClosingEdge)
{
    TRecTriangles rec;
    Primitive p = MakePrimitive(5);
    // Unit normals at s0 and s4 whose sum must be brought back to unit length.
    p.Norm = {1, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1, 0};
    rec.AddSurfaceDataQuad(GL_TRIANGLE_FAN, p.Vert, p.Norm);
    TDynGLFloat tri, norm;
    rec.GetRes(tri, norm);
    ASSERT_EQ(tri.size(), 24u);
    // The second quad is s0, s3, s4, m with m halfway between s0 and s4.
    EXPECT_THAT(std::vector<float>(tri.begin() + 12, tri.begin() + 21),
                ElementsAre(0.0f, 0.5f, -0.0f, 3.0f, 3.5f, -3.0f, 4.0f, 4.5f, -4.0f));
    EXPECT_THAT(std::vector<float>(tri.begin() + 21, tri.end()), ElementsAre(2.0f, 2.5f, -2.0f));
    const float h = static_cast<float>(std::sqrt(0.5));
    EXPECT_THAT(std::vector<float>(norm.begin() + 21, norm.end()), ElementsAre(h, h, 0.0f));

    // A fan of one triangle becomes one such quad.
    TRecTriangles single;
    const Primitive three = MakePrimitive(3);
    single.AddSurfaceDataQuad(GL_TRIANGLE_FAN, three.Vert, three.Norm);
    single.GetRes(tri, norm);
    EXPECT_THAT(tri, ElementsAre(0.0f, 0.5f, -0.0f, 1.0f, 1.5f, -1.0f, 2.0f, 2.5f, -2.0f, 1.0f, 1.5f, -1.0f));
}

TEST(RecTrianglesTest, PrimitivesWithoutAWholePieceGiveNothing)
{
    EXPECT_THAT(AsTriangles(GL_QUAD_STRIP, 2), IsEmpty());
    EXPECT_THAT(AsTriangles(GL_TRIANGLE_STRIP, 2), IsEmpty());
    EXPECT_THAT(AsTriangles(GL_QUADS, 0), IsEmpty());
    EXPECT_THAT(AsQuads(GL_TRIANGLE_FAN, 2), IsEmpty());
    EXPECT_THAT(AsQuads(GL_QUAD_STRIP, 2), IsEmpty());
}

TEST(RecTrianglesTest, RefusedTypesRaiseTheirMessagesAndKeepWhatWasCollected)
{
    TRecTriangles rec;
    const Primitive p = MakePrimitive(4);
    rec.AddSurfaceData(GL_TRIANGLES, MakePrimitive(3).Vert, MakePrimitive(3).Norm);

    for (Cardinal type : {GL_LINES, GL_LINE_STRIP}) {
        try {
            rec.AddSurfaceData(type, p.Vert, p.Norm);
            ADD_FAILURE() << "no exception for type " << type;
        } catch (const EAssertionFailed&) {
            ADD_FAILURE() << "an assertion instead of the refusal";
        } catch (const Exception& e) {
            EXPECT_STREQ(e.what(), "Error Message");
        }
    }
    // There is no conversion of triangles to quads.
    for (Cardinal type : {GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_LINES}) {
        try {
            rec.AddSurfaceDataQuad(type, p.Vert, p.Norm);
            ADD_FAILURE() << "no exception for type " << type;
        } catch (const Exception& e) {
            EXPECT_STREQ(e.what(), "没有对应的数据转换四边形");
        }
    }
    TDynGLFloat tri, norm;
    rec.GetRes(tri, norm);
    EXPECT_THAT(SourceOrder(tri, norm), ElementsAre(0, 1, 2));
}

TEST(RecTrianglesTest, BrokenInputRaisesAssertionsOrRangeErrorsAndAppendsNothing)
{
    TRecTriangles rec;
    const Primitive two = MakePrimitive(2);
    const Primitive five = MakePrimitive(5);
    TDynGLFloat shortNorm(five.Norm.begin(), five.Norm.end() - 3);

    auto expectAssertion = [&](auto call) {
        try {
            call();
            ADD_FAILURE() << "no assertion";
        } catch (const EAssertionFailed& e) {
            EXPECT_THAT(e.what(), MatchesRegex(kAssertionPattern));
        }
    };
    expectAssertion([&] { rec.AddSurfaceData(GL_TRIANGLE_FAN, two.Vert, two.Norm); });
    expectAssertion([&] { rec.AddSurfaceData(GL_QUADS, five.Vert, five.Norm); });
    expectAssertion([&] { rec.AddSurfaceData(GL_QUAD_STRIP, five.Vert, shortNorm); });
    expectAssertion([&] { rec.AddSurfaceDataQuad(GL_QUAD_STRIP, five.Vert, shortNorm); });
    expectAssertion([&] { rec.AddSurfaceData(GL_TRIANGLES, five.Vert, shortNorm); });
    expectAssertion([&] { rec.AddSurfaceDataQuad(GL_QUADS, five.Vert, shortNorm); });

    const Primitive one = MakePrimitive(1);
    const Primitive none = MakePrimitive(0);
    EXPECT_THROW(rec.AddSurfaceData(GL_TRIANGLE_STRIP, one.Vert, one.Norm), ERangeError);
    EXPECT_THROW(rec.AddSurfaceData(GL_QUAD_STRIP, one.Vert, one.Norm), ERangeError);
    EXPECT_THROW(rec.AddSurfaceDataQuad(GL_TRIANGLE_FAN, one.Vert, one.Norm), ERangeError);
    EXPECT_THROW(rec.AddSurfaceDataQuad(GL_QUAD_STRIP, none.Vert, none.Norm), ERangeError);
    try {
        rec.AddSurfaceData(GL_TRIANGLE_STRIP, none.Vert, none.Norm);
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), "Range check error");
    }

    EXPECT_EQ(rec.UsedLength(), 0);
    EXPECT_EQ(rec.BufferLength(), 10000);
}

TEST(RecTrianglesTest, BuffersGrowFromFiftyAfterClearAndOnlyWhenRoomIsExceeded)
{
    TRecTriangles rec;
    rec.Clear();
    EXPECT_EQ(rec.BufferLength(), 0);
    TDynGLFloat tri{1.0f}, norm{1.0f};
    rec.GetRes(tri, norm);
    EXPECT_THAT(tri, IsEmpty());
    EXPECT_THAT(norm, IsEmpty());

    // Even an empty primitive needs free room, so it grows the buffers.
    rec.AddSurfaceData(GL_TRIANGLES, {}, {});
    EXPECT_EQ(rec.BufferLength(), 50);
    EXPECT_EQ(rec.UsedLength(), 0);

    rec.Clear();
    const TDynGLFloat fifty(50, 0.25f);
    rec.AddSurfaceData(GL_TRIANGLES, fifty, fifty);
    EXPECT_EQ(rec.BufferLength(), 100);

    // 50 floats free and 50 asked for: the free room must exceed the need.
    rec.AddSurfaceData(GL_TRIANGLES, fifty, fifty);
    EXPECT_EQ(rec.BufferLength(), 200);
    EXPECT_EQ(rec.UsedLength(), 100);
}

TEST(RecTrianglesTest, ResultsAreTrimmedAndLaterAppendsGoOnBehindThem)
{
    TRecTriangles rec;
    const Primitive p = MakePrimitive(3);
    rec.AddSurfaceData(GL_TRIANGLES, p.Vert, p.Norm);
    TDynGLFloat first, firstNorm;
    rec.GetRes(first, firstNorm);
    EXPECT_EQ(rec.BufferLength(), 9);

    rec.AddSurfaceData(GL_TRIANGLE_FAN, MakePrimitive(4).Vert, MakePrimitive(4).Norm);
    TDynGLFloat second, secondNorm;
    rec.GetRes(second, secondNorm);
    EXPECT_THAT(SourceOrder(first, firstNorm), ElementsAre(0, 1, 2));
    EXPECT_THAT(SourceOrder(second, secondNorm), ElementsAre(0, 1, 2, 0, 1, 2, 0, 2, 3));

    TFloatDynArray wide, wideNorm;
    rec.GetRes(wide, wideNorm);
    EXPECT_THAT(wide, ElementsAreArray(std::vector<double>(second.begin(), second.end())));
    EXPECT_THAT(wideNorm, ElementsAreArray(std::vector<double>(secondNorm.begin(), secondNorm.end())));
}

}  // namespace
}  // namespace orvane
