// Triangle lists: drawing through the entry points, deep copies, and kernel transforms.
#include <gtest/gtest.h>

#include "contracts/PrimitiveCodes.h"
#include "immediate/GLTriangles.h"
#include "tests/support/GlRecorder.h"

namespace orvane {
namespace {

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
    recorder.Record<&dglOpenGL::glBegin>();
    recorder.Record<&dglOpenGL::glNormal3d>();
    recorder.Record<&dglOpenGL::glVertex3d>();
    recorder.Record<&dglOpenGL::glEnd>();
    const TGLTriangles empty;  // a strip by default
    empty.Draw3D();
    TGLTrianglesList list;
    list.Add(MakeTriangle(GL_TRIANGLES).release());
    list[0]->Draw3D();
    // 0.1 would arrive as 0.100000001 had it passed through a float.
    EXPECT_EQ(recorder.Texts(),
              (std::vector<std::string>{"glBegin(6)", "glEnd()", "glBegin(4)", "glNormal3d(0, 0, 1)",
                                        "glVertex3d(0.1, 0.2, 0.3)", "glNormal3d(0.6, 0.8, 0)",
                                        "glVertex3d(1.1, -2.2, 3.3)", "glNormal3d(1, 2, 3)", "glVertex3d(-4, 5, 6.75)",
                                        "glEnd()"}));
    EXPECT_EQ(recorder.Calls()[4].Args, (std::vector<double>{0.1, 0.2, 0.3}));
}

TEST(GLTriangles, CopyIsDeepAndKeepsTheMode)
{
    const auto source = MakeTriangle(GL_TRIANGLE_STRIP);
    const auto copy = source->GetCopy();
    EXPECT_EQ(copy->FConnectMode, static_cast<Cardinal>(GL_TRIANGLE_STRIP));
    EXPECT_EQ(copy->FPoints->Items(), source->FPoints->Items());
    EXPECT_EQ(copy->FNormalPoints->Items(), source->FNormalPoints->Items());
    TMatrix3D move;
    move.SetRowVector(3, {10, 0, 0});
    move.RotateZ(1.0);
    copy->Transform(move);
    copy->FPoints->Add({9, 9, 9});
    EXPECT_EQ(source->FPoints->Items(), MakeTriangle(0)->FPoints->Items());
    EXPECT_EQ(source->FNormalPoints->Items(), MakeTriangle(0)->FNormalPoints->Items());
}

TEST(GLTriangles, PointsFollowTheMatrixNormalsItsLinearPartUnnormalisedOrReflexYUnderTheXozMirror)
{
    TMatrix3D translation;
    translation.SetRowVector(3, {1, -2, 0.5});
    TMatrix3D turn;  // a quarter turn about Z, doubled, and moved
    turn.SetColVector(0, {0, 2, 0});
    turn.SetColVector(1, {-2, 0, 0});
    turn.SetColVector(2, {0, 0, 2});
    turn.SetRowVector(3, {5, 5, 5});
    TMatrix3D mirror, reflexY;
    mirror.ReflexXOZ();
    reflexY.ReflexY();
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
        EXPECT_TRUE(triangles->FPoints->GetItem(2).Equals(c.Point, 1e-12)) << c.Name;
        EXPECT_TRUE(triangles->FNormalPoints->GetItem(1).Equals(c.Normal1, 1e-12)) << c.Name;
        EXPECT_TRUE(triangles->FNormalPoints->GetItem(2).Equals(c.Normal2, 1e-12)) << c.Name;
    }
}

}  // namespace
}  // namespace orvane
