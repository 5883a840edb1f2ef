// Immediate drawing through recording fakes: the calls the drawing functions and triangle lists
// make, in order, and the vertices that reach OpenGL; triangle lists under kernel transforms.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "contracts/PrimitiveCodes.h"
#include "immediate/GLTriangles.h"
#include "immediate/zqglUtils.h"
#include "tests/support/GlRecorder.h"

namespace orvane {
namespace {

using testing::GlRecorder;
using ::testing::ElementsAre;
using Texts = std::vector<std::string>;
namespace gl = dglOpenGL;

std::string N(unsigned value) { return std::to_string(value); }

Texts Arrays(gl::GLenum format, gl::GLenum mode, int count)
{
    return {"glInterleavedArrays(" + N(format) + ", 0, ptr)", "glDrawArrays(" + N(mode) + ", 0, " + N(count) + ")"};
}

// Records the array drawing entries and keeps the floats that glInterleavedArrays pointed at
// when glDrawArrays ran.
class ArrayDraw {
public:
    ArrayDraw()
    {
        FRec.Record<&gl::glInterleavedArrays>([this](gl::GLenum format, gl::GLsizei, const void* data) { FFormat = format, FData = data; });
        FRec.Record<&gl::glDrawArrays>([this](gl::GLenum, gl::GLint, gl::GLsizei count) {
            const std::size_t floats = count * (FFormat == gl::GL_V2F ? 2u : FFormat == gl::GL_C3F_V3F ? 6u : 3u);
            Floats.assign(static_cast<const float*>(FData), static_cast<const float*>(FData) + floats);
            if (FFormat == gl::GL_C4UB_V2F) {
                Colored.resize(count);
                std::memcpy(Colored.data(), FData, count * sizeof(TGLColor4UB2V));
            }
        });
    }
    Texts Calls() const { return FRec.Texts(); }
    std::vector<float> Floats;
    std::vector<TGLColor4UB2V> Colored;

private:
    GlRecorder FRec;
    gl::GLenum FFormat = 0;
    const void* FData = nullptr;
};

TEST(zqglUtils, ShapesAndPolylinesGoAsInterleavedArraysOfWholeVertices)
{
    using namespace gl;
    const std::vector<float> values = {1, 2, 3, 4, 5, 6, 7, 8};
    const struct { const char* Name; std::function<void()> Draw; Texts Calls; std::vector<float> Floats; } cases[] = {
        {"rectangle", [] { zqglDrawRect({1, 2}, {3, 4}); }, Arrays(GL_V2F, GL_LINE_LOOP, 4), {1, 2, 1, 4, 3, 4, 3, 2}},
        {"2D triangle", [] { zqglDrawTri(TPoint2D{0.1, 0.2}, TPoint2D{1, 2}, TPoint2D{3, 4}); },
         Arrays(GL_V2F, GL_LINE_LOOP, 3), {0.1f, 0.2f, 1, 2, 3, 4}},
        {"3D triangle", [] { zqglDrawTri(TPoint3D{1, 2, 3}, TPoint3D{4, 5, 6}, TPoint3D{7, 8, 9}); },
         Arrays(GL_V3F, GL_LINE_LOOP, 3), {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"lines", [] { zqglDrawLines({0, 0}, {1, 0}, {1, 1}); }, Arrays(GL_V2F, GL_LINE_STRIP, 3), {0, 0, 1, 0, 1, 1}},
        {"3D line", [] { zqglDrawLine(TPoint3D{1, 2, 3}, TPoint3D{4, 5, 6}); }, Arrays(GL_V3F, GL_LINES, 2),
         {1, 2, 3, 4, 5, 6}},
        {"2D point", [] { zqglDrawPoint(TPoint2D{7, 8}); }, Arrays(GL_V2F, GL_POINTS, 1), {7, 8}},
        // Arrays of floats draw whole vertices only.
        {"closed floats", [&] { zqglDrawPolyLine(std::span<const float>(values), true); },
         Arrays(GL_V3F, GL_LINE_LOOP, 2), {1, 2, 3, 4, 5, 6}},
        {"open floats", [&] { zqglDrawPolyLine(std::span<const float>(values), false); },
         Arrays(GL_V3F, GL_LINE_STRIP, 2), {1, 2, 3, 4, 5, 6}},
        {"triangle strip", [&] { zqglDrawTrangle(values); }, Arrays(GL_V3F, GL_TRIANGLE_STRIP, 2), {1, 2, 3, 4, 5, 6}},
        {"2D points", [] { zqglDrawPolyLine(TDynPoints2D{{0.5, 1}, {2, 3}, {4, 5}}, false); },
         Arrays(GL_V2F, GL_LINE_STRIP, 3), {0.5f, 1, 2, 3, 4, 5}},
        {"3D points", [] { zqglDrawPolyLine(TDynPoints3D{{1, 2, 3}, {4, 5, 6}}, true); },
         Arrays(GL_V3F, GL_LINE_LOOP, 2), {1, 2, 3, 4, 5, 6}},
        // Colours are low byte red.
        {"coloured point", [] { zqglDrawPoint(TPoint3D{4, 5, 6}, 0x00FF33); }, Arrays(GL_C3F_V3F, GL_POINTS, 1),
         {static_cast<float>(0x33 / 255.0), 1, 0, 4, 5, 6}},
    };
    for (const auto& c : cases) {
        ArrayDraw d;
        c.Draw();
        EXPECT_TRUE(d.Calls() == c.Calls && d.Floats == c.Floats) << c.Name;
    }

    ArrayDraw d;
    zqglDrawFilledRect({1, 2}, {3, 4}, 0xFF332211);
    EXPECT_EQ(d.Calls(), Arrays(GL_C4UB_V2F, GL_QUADS, 4));
    ASSERT_EQ(d.Colored.size(), 4u);
    for (const TGLColor4UB2V& v : d.Colored)
        EXPECT_EQ((std::vector<int>{v.R, v.G, v.B, v.A}), (std::vector<int>{0x11, 0x22, 0x33, 255}));
    EXPECT_TRUE(d.Colored[1].X == 1.0f && d.Colored[1].Y == 4.0f);
}

TEST(zqglUtils, ColoursWidthsPointsAndIntegerOrPointerArrays)
{
    GlRecorder rec;
    rec.RecordAll<&gl::glColor3ub, &gl::glClearColor, &gl::glBegin, &gl::glEnd, &gl::glVertex2i, &gl::glVertex3d,
                  &gl::glPointSize, &gl::glLineWidth, &gl::glVertexPointer, &gl::glNormalPointer, &gl::glDrawArrays,
                  &gl::glInterleavedArrays, &gl::glEnableClientState>();
    zqglSetColor(0x0000FF), zqglSetColor(0xFFFF00), zqglSetColor(0xAB0000FF);
    zqglSetClearColor(0x0080FF), zqglSetClearColor(0);
    zqglDrawPoint(TPoint{3, -4}), zqglDrawPoint(TGLPoint3D{0.1f, 2, 3});
    zqglSetPointWidth(3), zqglSetLineWidth(2);
    const std::vector<std::uint32_t> ints = {1, 2, 3, 4, 5, 6, 7};
    const std::vector<float> values = {1, 2, 3, 4, 5, 6, 7, 8};
    zqglDrawPolyLine(std::span<const std::uint32_t>(ints), true);
    zqglDrawPtArr(values, values, 2, gl::GL_TRIANGLES);
    EXPECT_EQ(rec.Texts(),
              (Texts{"glColor3ub(255, 0, 0)", "glColor3ub(0, 255, 255)", "glColor3ub(255, 0, 0)",
                     "glClearColor(1, 0.501961, 0, 1)", "glClearColor(0, 0, 0, 1)", "glBegin(0)", "glVertex2i(3, -4)",
                     "glEnd()", "glBegin(0)", "glVertex3d(0.1, 2, 3)", "glEnd()", "glPointSize(3)", "glLineWidth(2)",
                     "glVertexPointer(3, " + N(gl::GL_INT) + ", 0, ptr)", "glDrawArrays(" + N(gl::GL_LINE_LOOP) + ", 0, 2)",
                     "glNormalPointer(" + N(gl::GL_FLOAT) + ", 0, ptr)",
                     "glVertexPointer(3, " + N(gl::GL_FLOAT) + ", 0, ptr)",
                     "glDrawArrays(" + N(gl::GL_TRIANGLES) + ", 0, 2)"}));
    EXPECT_EQ(rec.Calls()[3].Args[1], static_cast<double>(static_cast<float>(128 / 255.0)));
    EXPECT_EQ(rec.Calls()[9].Args[0], static_cast<double>(0.1f));  // the single widened, not the double 0.1
}

TEST(zqglUtils, BezierCurvesRunOverZeroToSteps)
{
    GlRecorder rec;
    rec.RecordAll<&gl::glMap1d, &gl::glEnable, &gl::glDisable, &gl::glMapGrid1d, &gl::glEvalMesh1>();
    const TDynPoints3D points = {{0, 0, 0}, {1, 1, 0}, {2, 1, 0}, {3, 0, 0}, {4, 0, 0}, {5, 1, 0}, {6, 1, 0}, {7, 0, 0}};
    zqglDrawBezier(points, 10);
    const std::string map = "glMap1d(" + N(gl::GL_MAP1_VERTEX_3) + ", 0, 10, 3, ";
    const std::string grid = "glMapGrid1d(10, 0, 10)";
    const std::string eval = "glEvalMesh1(" + N(gl::GL_LINE) + ", 0, 10)";
    const std::string on = "glEnable(" + N(gl::GL_MAP1_VERTEX_3) + ")";
    const std::string off = "glDisable(" + N(gl::GL_MAP1_VERTEX_3) + ")";
    EXPECT_THAT(rec.Texts(), ElementsAre(map + "8, ptr)", on, grid, eval, off));
    EXPECT_EQ(rec.Calls()[0].Pointer(5), points.data());

    // Separate cubic curves of four points each; a last group of fewer points is not drawn.
    TDynPoints3D ten = points;
    ten.insert(ten.end(), {{8, 0, 0}, {9, 0, 0}});
    for (const TDynPoints3D& drawn : {points, ten}) {
        rec.Clear();
        zqglDrawBezierByFour(drawn, 10);
        EXPECT_THAT(rec.Texts(), ElementsAre(on, map + "4, ptr)", grid, eval, map + "4, ptr)", grid, eval, off)) << drawn.size();
    }

    // No points: no call, so the map of an earlier curve is not drawn again.
    rec.Clear();
    zqglDrawBezier({}, 10);
    EXPECT_THAT(rec.Texts(), ::testing::IsEmpty());
}

TEST(zqglUtils, TextureQuadsLeaveTexturingOnNurbsRendererAndFloatArrays)
{
    GlRecorder rec;
    rec.RecordAll<&gl::glEnable, &gl::glDisable, &gl::glBindTexture, &gl::glBegin, &gl::glEnd, &gl::glTexCoord2d,
                  &gl::glVertex3d>();
    rec.Record<&gl::gluNewNurbsRenderer>([] { return reinterpret_cast<gl::GLUnurbs*>(0x40); });
    rec.Record<&gl::gluNurbsProperty>();
    zqglDrawTexture({}, {}, 5, false);
    const std::string tex = N(gl::GL_TEXTURE_2D);
    EXPECT_THAT(rec.Texts(), ElementsAre("glEnable(" + tex + ")", "glBindTexture(" + tex + ", 5)",
                                         "glBegin(" + N(gl::GL_QUADS) + ")", "glEnd()", "glBindTexture(" + tex + ", 0)"));
    rec.Clear();
    zqglDrawTexture({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {1, 1, 1}}, {{0, 0}, {1, 0}, {1, 1}, {0.25, 1}}, 7, true);
    EXPECT_EQ(rec.Count("glTexCoord2d"), 4u);
    EXPECT_EQ(rec.Texts()[5] + " " + rec.Texts()[6], "glTexCoord2d(1, 0) glVertex3d(4, 5, 6)");
    EXPECT_EQ(rec.Count("glDisable"), 0u);
    // Vertices go as far as their texture coordinates do.
    rec.Clear();
    zqglDrawTexture({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {{0, 0}}, 7, false);
    EXPECT_EQ(rec.Count("glTexCoord2d") + rec.Count("glVertex3d"), 2u);

    rec.Clear();
    EXPECT_EQ(zqglNewNurbObjRender(60.0), reinterpret_cast<gl::GLUnurbs*>(0x40));
    EXPECT_THAT(rec.Texts(), ElementsAre("gluNewNurbsRenderer()",
                                         "gluNurbsProperty(ptr, " + N(gl::GLU_SAMPLING_TOLERANCE) + ", 60)"));
    TDynGLFloat result = {9, 9, 9, 9};
    FloatDynArrayToDynGLFloat({0.1, -2.5, 3.0}, result);
    EXPECT_THAT(result, ElementsAre(0.1f, -2.5f, 3.0f));
    FloatDynArrayToDynGLFloat({}, result);
    EXPECT_TRUE(result.empty());
}

std::unique_ptr<TGLTriangles> MakeTriangle(Cardinal AMode)
{
    auto triangles = std::make_unique<TGLTriangles>(AMode);
    for (const TPoint3D& p : {TPoint3D{0.1, 0.2, 0.3}, TPoint3D{1.1, -2.2, 3.3}, TPoint3D{-4, 5, 6.75}})
        triangles->FPoints->Add(p);
    for (const TPoint3D& n : {TPoint3D{0, 0, 1}, TPoint3D{0.6, 0.8, 0}, TPoint3D{1, 2, 3}})
        triangles->FNormalPoints->Add(n);
    return triangles;
}

TEST(GLTriangles, DrawSendsANormalThenAVertexForEachPointInDoublePrecision)
{
    testing::GlRecorder recorder;
    recorder.RecordAll<&gl::glBegin, &gl::glNormal3d, &gl::glVertex3d, &gl::glEnd>();
    const TGLTriangles empty;  // a strip by default
    empty.Draw3D();
    TGLTrianglesList list;
    list.Add(MakeTriangle(GL_TRIANGLES).release());
    list[0]->Draw3D();
    // 0.1 would arrive as 0.100000001 had it passed through a float.
    EXPECT_EQ(recorder.Texts(), (Texts{"glBegin(6)", "glEnd()", "glBegin(4)", "glNormal3d(0, 0, 1)", "glVertex3d(0.1, 0.2, 0.3)",
                                       "glNormal3d(0.6, 0.8, 0)", "glVertex3d(1.1, -2.2, 3.3)", "glNormal3d(1, 2, 3)",
                                       "glVertex3d(-4, 5, 6.75)", "glEnd()"}));
    EXPECT_EQ(recorder.Calls()[4].Args, (std::vector<double>{0.1, 0.2, 0.3}));
}

TEST(GLTriangles, CopyIsDeepAndKeepsTheMode)
{
    const auto source = MakeTriangle(GL_TRIANGLE_STRIP);
    const auto copy = source->GetCopy();
    EXPECT_EQ(copy->FConnectMode, static_cast<Cardinal>(GL_TRIANGLE_STRIP));
    EXPECT_TRUE(copy->FPoints->Items() == source->FPoints->Items() && copy->FNormalPoints->Items() == source->FNormalPoints->Items());
    TMatrix3D move;
    move.SetRowVector(3, {10, 0, 0});
    move.RotateZ(1.0);
    copy->Transform(move);
    copy->FPoints->Add({9, 9, 9});
    EXPECT_TRUE(source->FPoints->Items() == MakeTriangle(0)->FPoints->Items() &&
                source->FNormalPoints->Items() == MakeTriangle(0)->FNormalPoints->Items());
}

TEST(GLTriangles, PointsFollowTheMatrixNormalsItsLinearPartUnnormalisedOrReflexYUnderTheXozMirror)
{
    TMatrix3D translation;
    translation.SetRowVector(3, {1, -2, 0.5});
    TMatrix3D turn, mirror, reflexY;  // a quarter turn about Z, doubled, and moved
    turn.SetColVector(0, {0, 2, 0}), turn.SetColVector(1, {-2, 0, 0}), turn.SetColVector(2, {0, 0, 2}), turn.SetRowVector(3, {5, 5, 5});
    mirror.ReflexXOZ(), reflexY.ReflexY();
    ASSERT_NE(reflexY.TransformVector({1, 2, 3}), mirror.TransformVector({1, 2, 3}));
    const struct { const char* Name; TMatrix3D Matrix; TPoint3D Point, Normal1, Normal2; } cases[] = {
        {"identity", TMatrix3D::CreateIdent(), {-4, 5, 6.75}, {0.6, 0.8, 0}, {1, 2, 3}},
        {"translation", translation, {-3, 3, 7.25}, {0.6, 0.8, 0}, {1, 2, 3}},
        {"turn", turn, {-5, -3, 18.5}, {-1.6, 1.2, 0}, {-4, 2, 6}},
        {"mirror", mirror, {-4, -5, 6.75}, reflexY.TransformVector({0.6, 0.8, 0}), reflexY.TransformVector({1, 2, 3})},
    };
    for (const auto& c : cases) {
        const auto triangles = MakeTriangle(GL_TRIANGLES);
        triangles->Transform(c.Matrix);
        EXPECT_TRUE(triangles->FPoints->GetItem(2).Equals(c.Point, 1e-12) && triangles->FNormalPoints->GetItem(1).Equals(c.Normal1, 1e-12) &&
                    triangles->FNormalPoints->GetItem(2).Equals(c.Normal2, 1e-12)) << c.Name;
    }
}

}  // namespace
}  // namespace orvane
