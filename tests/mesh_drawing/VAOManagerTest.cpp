#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mesh_drawing/CollectedTri.h"
#include "mesh_drawing/GLVAOManager.h"
#include "tests/mesh_drawing/FakeMeshGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::FakeMeshGL;
using Floats = std::vector<float>;

const TDynGLFloat kTri{0, 0, 0, 1, 0, 0, 0, 1, 0};
const TDynGLFloat kNorm{0, 0, 1, 0, 0, 1, 0, 0, 1};

TGLMatrixf4 Identity()
{
    TGLMatrixf4 m;
    m.Reset();
    return m;
}

int CountOf(const TGLVAOManager& manager, Cardinal id)
{
    int count = 0;
    return manager.VAORefCountDict().TryGetValue(id, count) ? count : 0;
}

TEST(GLVAOManager, AnEmptyMeshMakesNothingAndAsksForNoShader)
{
    FakeMeshGL gl;
    TGLVAOManager manager;
    Cardinal id = 42;
    EXPECT_FALSE(manager.GenerateTriVAO({}, kNorm, id));
    EXPECT_FALSE(manager.GenerateTriVAO({}, {}, {0, 1, 2}, id));
    EXPECT_EQ(id, 42u);
    EXPECT_EQ(manager.ShaderManager().Count(), 0);
    EXPECT_TRUE(gl.Rec.Calls().empty());
}

TEST(GLVAOManager, CountsHoldersAndFreesAtTheLast)
{
    FakeMeshGL gl;
    TGLVAOManager manager;
    Cardinal id = 0;
    EXPECT_TRUE(manager.GenerateTriVAO(kTri, kNorm, id));
    EXPECT_EQ(id, 100u);
    EXPECT_EQ(CountOf(manager, id), 1);
    // The shader is made for the context, but compiled only at the first draw.
    EXPECT_EQ(manager.ShaderManager().Count(), 1);
    EXPECT_EQ(gl.Rec.Count("glCreateProgram"), 0u);

    manager.AddVAORef(id);
    manager.AddVAORef(555);  // not registered: no entry appears
    EXPECT_EQ(manager.VAORefCountDict().Count(), 1);
    manager.DeleteVAO(id);
    EXPECT_EQ(CountOf(manager, id), 1);
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays"), 0u);
    manager.DeleteVAO(id);
    EXPECT_EQ(manager.VAORefCountDict().Count(), 0);
    EXPECT_EQ(gl.Rec.CallsOf("glDeleteVertexArrays").size(), 1u);
    EXPECT_EQ(gl.Rec.Count("glDeleteBuffers"), 2u);
    gl.Rec.Clear();
    manager.DeleteVAO(id);
    manager.DrawVAO(id, {0, 0, 1}, {0, 1, 0}, Identity(), 0, false, 0);
    EXPECT_TRUE(gl.Rec.Calls().empty());
}

TEST(GLVAOManager, DrawNormalisesTheHeadDirectionEveryTimeButNotTheEye)
{
    FakeMeshGL gl;
    TGLVAOManager manager;
    Cardinal id = 0;
    manager.GenerateTriVAO(kTri, kNorm, id);
    manager.DrawVAO(id, {3, 4, 0}, {0, 0, 5}, Identity(), 0x0000FF, true, 0);
    EXPECT_EQ(gl.Uniforms["EyePos"], (Floats{3, 4, 0}));
    EXPECT_EQ(gl.Uniforms["HeadDir"], (Floats{0, 0, 1}));
    manager.DrawVAO(id, {0, 0, 0.5}, {0, -2, 0}, Identity(), 0x0000FF, true, 0);
    EXPECT_EQ(gl.Uniforms["EyePos"], (Floats{0, 0, 0.5}));
    EXPECT_EQ(gl.Uniforms["HeadDir"], (Floats{0, -1, 0}));
    EXPECT_EQ(gl.Rec.Count("glCreateProgram"), 1u);
    EXPECT_EQ(gl.Rec.Count("glLinkProgram"), 1u);
}

TEST(GLVAOManager, AnIdGivenOutAgainReplacesTheEarlierMeshWithoutFreeingIt)
{
    FakeMeshGL gl;
    // Two contexts give out the same vertex array name.
    gl.Rec.Record<&glGenVertexArrays>([](GLsizei, GLuint* names) { names[0] = 100; });
    {
        TGLVAOManager manager;
        Cardinal first = 0, second = 0;
        manager.GenerateTriVAO(kTri, kNorm, first);
        manager.GenerateTriVAO(kTri, kNorm, {0, 1, 2}, second);
        EXPECT_EQ(first, second);
        EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays") + gl.Rec.Count("glDeleteBuffers"), 0u);
        // The count goes on from the earlier mesh.
        EXPECT_EQ(CountOf(manager, second), 2);
        manager.DrawVAO(second, {0, 0, 1}, {0, 1, 0}, Identity(), 0, false, 0);
        EXPECT_EQ(gl.Rec.Count("glDrawElements"), 1u);
        gl.Rec.Clear();
    }
    // Only the second mesh's objects are deleted: buffers 202 to 204. Those of the first
    // (200, 201) stay behind in their context.
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays"), 1u);
    EXPECT_EQ(gl.Rec.Count("glDeleteBuffers"), 3u);
}

TEST(GLVAOManager, ClearFreesMeshesAndTheirCounts)
{
    FakeMeshGL gl;
    gl.Rec.Record<&glGenVertexArrays>([](GLsizei, GLuint* names) { names[0] = 100; });
    TGLVAOManager manager;
    Cardinal id = 0;
    manager.GenerateTriVAO(kTri, kNorm, id);
    manager.AddVAORef(id);
    manager.Clear();
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays"), 1u);
    EXPECT_EQ(manager.VAORefCountDict().Count(), 0);
    // A later mesh that GL gives the same name starts at one holder.
    manager.GenerateTriVAO(kTri, kNorm, id);
    EXPECT_EQ(CountOf(manager, id), 1);
    manager.DeleteVAO(id);
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays"), 2u);
}

TEST(CollectedTriGenerate, OuterFirstIndexedOnlyWhereMergedAndEmptySidesStayZero)
{
    FakeMeshGL gl;
    TGLVAOManager manager;
    Cardinal outer = 9, inner = 9;
    TCollectedTri empty(true);
    empty.LoadOuter(TFloatDynArray{}, TFloatDynArray{});
    empty.GenerateTriVAO(manager, outer, inner);
    EXPECT_EQ(outer, 0u);
    EXPECT_EQ(inner, 0u);
    EXPECT_TRUE(gl.Rec.Calls().empty());

    // Outer: a double load, merged and indexed. Inner: a single load, not indexed.
    TCollectedTri mesh(true);
    mesh.LoadOuter(TFloatDynArray{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 1, 1, 0},
                   TFloatDynArray(18, 0.5));
    mesh.LoadInner(kTri, kNorm);
    mesh.GenerateTriVAO(manager, outer, inner);
    EXPECT_EQ(outer, 100u);
    EXPECT_EQ(inner, 101u);
    manager.DrawVAO(outer, {0, 0, 1}, {0, 1, 0}, Identity(), 0, false, 0);
    manager.DrawVAO(inner, {0, 0, 1}, {0, 1, 0}, Identity(), 0, false, 0);
    EXPECT_EQ(gl.Rec.CallsOf("glDrawElements").at(0).Text(), "glDrawElements(4, 6, 5125, nil)");
    EXPECT_EQ(gl.Rec.CallsOf("glDrawArrays").at(0).Text(), "glDrawArrays(4, 0, 3)");
    // The merged outer mesh uploads 4 vertices, 6 indices.
    EXPECT_EQ(gl.Rec.CallsOf("glBufferData").at(0).Text(), "glBufferData(34962, 48, ptr, 35044)");
    EXPECT_EQ(gl.Rec.CallsOf("glBufferData").at(2).Text(), "glBufferData(34963, 24, ptr, 35044)");
}

}  // namespace
}  // namespace orvane
