// Triangle lists: drawing through the entry points, deep copies, and kernel transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "contracts/PrimitiveCodes.h"
#include "immediate/GLTriangles.h"
#include "tests/support/GlRecorder.h"

namespace orvane {
namespace {

using testing::GlRecorder;

void RecordDrawing(GlRecorder& ARecorder)
{
    ARecorder.Record<&dglOpenGL::glBegin>();
    ARecorder.Record<&dglOpenGL::glNormal3d>();
    ARecorder.Record<&dglOpenGL::glVertex3d>();
    ARecorder.Record<&dglOpenGL::glEnd>();
}

TGLTriangles* MakeTriangle(Cardinal AMode)
{
    auto* triangles = new TGLTriangles(AMode);
    triangles->FPoints->Add({0.1, 0.2, 0.3});
    triangles->FPoints->Add({1.1, -2.2, 3.3});
    triangles->FPoints->Add({-4, 5, 6.75});
    triangles->FNormalPoints->Add({0, 0, 1});
    triangles->FNormalPoints->Add({0.6, 0.8, 0});
    triangles->FNormalPoints->Add({1, 2, 3});
    return triangles;
}

TEST(GLTriangles, DrawSendsANormalThenAVertexForEachPointInDoublePrecision)
{
    GlRecorder recorder;
    RecordDrawing(recorder);

    const TGLTriangles empty;
    EXPECT_EQ(empty.FConnectMode, 6u);
    EXPECT_EQ(empty.FPoints->Count(), 0);
    EXPECT_EQ(empty.FNormalPoints->Count(), 0);
    empty.Draw3D();
    EXPECT_EQ(recorder.Texts(), (std::vector<std::string>{"glBegin(6)", "glEnd()"}));

    recorder.Clear();
    TGLTrianglesList list;
    list.Add(MakeTriangle(GL_TRIANGLES));
    list[0]->Draw3D();
    EXPECT_EQ(recorder.Names(), (std::vector<std::string>{"glBegin", "glNormal3d", "glVertex3d", "glNormal3d",
                                                           "glVertex3d", "glNormal3d", "glVertex3d", "glEnd"}));
    EXPECT_EQ(recorder.Calls()[0].Text(), "glBegin(4)");
    // 0.1 would arrive as 0.100000001 had it passed through a float.
    EXPECT_EQ(recorder.Calls()[2].Args, (std::vector<double>{0.1, 0.2, 0.3}));
    EXPECT_EQ(recorder.Calls()[3].Args, (std::vector<double>{0.6, 0.8, 0}));
    EXPECT_EQ(recorder.Calls()[6].Args, (std::vector<double>{-4, 5, 6.75}));
}

TEST(GLTriangles, CopyIsDeepAndKeepsTheMode)
{
    std::unique_ptr<TGLTriangles> source(MakeTriangle(GL_TRIANGLE_STRIP));
    std::unique_ptr<TGLTriangles> copy = source->GetCopy();
    EXPECT_EQ(copy->FConnectMode, static_cast<Cardinal>(GL_TRIANGLE_STRIP));
    EXPECT_EQ(copy->FPoints->Items(), source->FPoints->Items());
    EXPECT_EQ(copy->FNormalPoints->Items(), source->FNormalPoints->Items());

    TMatrix3D move;
    move.SetRowVector(3, {10, 0, 0});
    move.RotateZ(1.0);
    copy->Transform(move);
    copy->FPoints->Add({9, 9, 9});
    EXPECT_EQ(source->FPoints->Count(), 3);
    EXPECT_EQ(source->FPoints->GetItem(0), (TPoint3D{0.1, 0.2, 0.3}));
    EXPECT_EQ(source->FNormalPoints->GetItem(1), (TPoint3D{0.6, 0.8, 0}));
}

TEST(GLTriangles, IdentityAndTranslationLeaveTheNormals)
{
    std::unique_ptr<TGLTriangles> triangles(MakeTriangle(GL_TRIANGLES));
    const std::vector<TPoint3D> points = triangles->FPoints->Items();
    const std::vector<TPoint3D> normals = triangles->FNormalPoints->Items();

    triangles->Transform(TMatrix3D::CreateIdent());
    EXPECT_EQ(triangles->FPoints->Items(), points);
    EXPECT_EQ(triangles->FNormalPoints->Items(), normals);

    TMatrix3D translation;
    translation.SetRowVector(3, {1, -2, 0.5});
    triangles->Transform(translation);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(triangles->FPoints->GetItem(i).Equals(points[i] + TPoint3D{1, -2, 0.5}, 1e-12));
    EXPECT_EQ(triangles->FNormalPoints->Items(), normals);
}

TEST(GLTriangles, NormalsFollowTheMatrixWithoutRenormalisingExceptUnderTheXozMirror)
{
    // A quarter turn about Z, doubled, and moved: a normal turns and doubles, but is not moved.
    TMatrix3D turn;
    turn.SetColVector(0, {0, 2, 0});
    turn.SetColVector(1, {-2, 0, 0});
    turn.SetColVector(2, {0, 0, 2});
    turn.SetRowVector(3, {5, 5, 5});
    std::unique_ptr<TGLTriangles> triangles(MakeTriangle(GL_TRIANGLES));
    triangles->Transform(turn);
    EXPECT_TRUE(triangles->FPoints->GetItem(2).Equals({-5, -3, 18.5}, 1e-12));
    EXPECT_TRUE(triangles->FNormalPoints->GetItem(1).Equals({-1.6, 1.2, 0}, 1e-12));
    EXPECT_TRUE(triangles->FNormalPoints->GetItem(2).Equals({-4, 2, 6}, 1e-12));

    // The mirror in the XOZ plane sends points through the mirror and normals through ReflexY.
    TMatrix3D mirror;
    mirror.ReflexXOZ();
    triangles.reset(MakeTriangle(GL_TRIANGLES));
    triangles->Transform(mirror);
    EXPECT_EQ(triangles->FPoints->GetItem(1), (TPoint3D{1.1, 2.2, 3.3}));
    TMatrix3D reflexY;
    reflexY.ReflexY();
    EXPECT_EQ(triangles->FNormalPoints->GetItem(2), reflexY.TransformVector({1, 2, 3}));
    EXPECT_NE(triangles->FNormalPoints->GetItem(2), mirror.TransformVector({1, 2, 3}));
}

}  // namespace
}  // namespace orvane
