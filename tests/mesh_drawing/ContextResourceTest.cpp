#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "mesh_drawing/GLVAOManager.h"
#include "shaders/ShaderResources.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/MessageCapture.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;
using testing::MessageCapture;
using testing::OffscreenGL;

// Lets the real entry points make every name and notes each one.
struct NameSpy {
    GlRecorder Rec;
    std::vector<GLuint> Buffers, VertexArrays, Shaders, Programs;

    NameSpy()
    {
        static decltype(glGenBuffers) genBuffers;
        static decltype(glGenVertexArrays) genVertexArrays;
        static decltype(glCreateShader) createShader;
        static decltype(glCreateProgram) createProgram;
        genBuffers = glGenBuffers;
        genVertexArrays = glGenVertexArrays;
        createShader = glCreateShader;
        createProgram = glCreateProgram;
        Rec.Record<&glGenBuffers>([this](GLsizei n, GLuint* names) {
            genBuffers(n, names);
            Buffers.push_back(names[0]);
        });
        Rec.Record<&glGenVertexArrays>([this](GLsizei n, GLuint* names) {
            genVertexArrays(n, names);
            VertexArrays.push_back(names[0]);
        });
        Rec.Record<&glCreateShader>([this](GLenum type) { return Shaders.emplace_back(createShader(type)); });
        Rec.Record<&glCreateProgram>([this] { return Programs.emplace_back(createProgram()); });
    }

    // How many of the noted names the current context still knows.
    int Alive() const
    {
        int alive = 0;
        for (GLuint name : Buffers) alive += glIsBuffer(name) ? 1 : 0;
        for (GLuint name : VertexArrays) alive += glIsVertexArray(name) ? 1 : 0;
        for (GLuint name : Shaders) alive += glIsShader(name) ? 1 : 0;
        for (GLuint name : Programs) alive += glIsProgram(name) ? 1 : 0;
        return alive;
    }
    int Made() const
    {
        return static_cast<int>(Buffers.size() + VertexArrays.size() + Shaders.size() + Programs.size());
    }
};

const TDynGLFloat kTri{-0.9f, -0.9f, 0, 0.9f, -0.9f, 0, 0, 0.9f, 0};
const TDynGLFloat kNorm{0, 0, 1, 0, 0, 1, 0, 0, 1};

TGLMatrixf4 Identity()
{
    TGLMatrixf4 m;
    m.Reset();
    return m;
}

void Draw(TGLVAOManager& manager, Cardinal id)
{
    manager.DrawVAO(id, {0, 0, 1}, {0, 1, 0}, Identity(), 0x808080, true, 0);
}

TEST(ContextResources, NothingTheManagerMadeOutlivesIt)
{
    OffscreenGL gl(16, 16);
    NameSpy spy;
    auto manager = std::make_unique<TGLVAOManager>();
    Cardinal plain = 0, indexed = 0;
    manager->GenerateTriVAO(kTri, kNorm, plain);
    manager->GenerateTriVAO(kTri, kNorm, {0, 1, 2}, indexed);
    manager->AddVAORef(indexed);
    Draw(*manager, plain);
    Draw(*manager, indexed);
    // 5 buffers, 2 vertex arrays, 2 shaders, 1 program.
    ASSERT_EQ(spy.Made(), 10);
    EXPECT_EQ(spy.Alive(), 10);
    // The check can tell: a name never made is not alive.
    EXPECT_FALSE(glIsBuffer(4242) || glIsVertexArray(4242) || glIsShader(4242) || glIsProgram(4242));
    manager.reset();
    EXPECT_EQ(spy.Alive(), 0);
}

TEST(ContextResources, AShaderThatFailsToCompileIsShownOnceAndMeshesDrawInTheCurrentColour)
{
    const std::string broken = "#version 330 core\r\nvoid main() { gl_FragColor = undefined_thing; }\r\n";
    auto previous = SetResourceFinder([&](const std::string& name, Cardinal type, std::string& bytes) {
        if (name != "FragShader") return FindEmbeddedResource(name, type, bytes);
        bytes = broken;
        return true;
    });
    {
        OffscreenGL gl(16, 16);
        MessageCapture messages;
        NameSpy spy;
        auto manager = std::make_unique<TGLVAOManager>();
        Cardinal first = 0, second = 0;
        manager->GenerateTriVAO(kTri, kNorm, first);
        manager->GenerateTriVAO(kTri, kNorm, {0, 1, 2}, second);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glColor3ub(255, 128, 0);
        Draw(*manager, first);
        ASSERT_EQ(messages.Texts().size(), 1u);
        EXPECT_EQ(messages.Texts()[0].rfind("Cannot Compile Shader", 0), 0u) << messages.Texts()[0];
        EXPECT_FALSE(manager->ShaderManager().GetShader()->Enabled());
        const auto drawnFirst = gl.Pixel(8, 6);
        glClear(GL_COLOR_BUFFER_BIT);
        Draw(*manager, second);
        EXPECT_EQ(messages.Texts().size(), 1u);
        // Without a program the meshes take the current colour.
        EXPECT_EQ(drawnFirst, (std::array<std::uint8_t, 4>{255, 128, 0, 255}));
        EXPECT_EQ(gl.Pixel(8, 6), (std::array<std::uint8_t, 4>{255, 128, 0, 255}));
        EXPECT_EQ(gl.Pixel(0, 15), (std::array<std::uint8_t, 4>{0, 0, 0, 255}));
        // The failed fragment shader was given back when it failed; the vertex shader, the
        // program and the meshes go with the manager.
        ASSERT_EQ(spy.Shaders.size(), 2u);
        EXPECT_FALSE(glIsShader(spy.Shaders[1]));
        EXPECT_EQ(spy.Alive(), spy.Made() - 1);
        manager.reset();
        EXPECT_EQ(spy.Alive(), 0);
    }
    SetResourceFinder(previous);
}

TEST(ContextResources, TwoContextsEachGetAShaderAndShareTheManagersIds)
{
    OffscreenGL a(16, 16);
    OffscreenGL b(16, 16);
    NameSpy spy;
    auto manager = std::make_unique<TGLVAOManager>();
    a.MakeCurrent();
    Cardinal inA = 0, inB = 0;
    manager->GenerateTriVAO(kTri, kNorm, inA);
    Draw(*manager, inA);
    const GLuint programA = spy.Programs.at(0);
    b.MakeCurrent();
    manager->GenerateTriVAO(kTri, kNorm, inB);
    Draw(*manager, inB);
    const GLuint programB = spy.Programs.at(1);
    EXPECT_EQ(manager->ShaderManager().Count(), 2);
    EXPECT_NE(manager->ShaderManager().GetShader(), nullptr);

    // Each context numbers its own vertex arrays: B's mesh took A's id, and A's objects were
    // let go without being deleted; the count went on from A's mesh.
    ASSERT_EQ(inA, inB);
    int count = 0;
    EXPECT_TRUE(manager->VAORefCountDict().TryGetValue(inB, count));
    EXPECT_EQ(count, 2);
    manager->DeleteVAO(inB);
    manager->DeleteVAO(inB);
    EXPECT_FALSE(glIsVertexArray(inB));
    a.MakeCurrent();
    EXPECT_TRUE(glIsVertexArray(inA));  // left behind in A until A goes

    // B's shader is freed inside B, and A stays current.
    manager->FreeContextResource(b.DC(), b.RC());
    EXPECT_EQ(wglGetCurrentContext(), a.RC());
    EXPECT_EQ(manager->ShaderManager().Count(), 1);
    EXPECT_TRUE(glIsProgram(programA));
    b.MakeCurrent();
    EXPECT_FALSE(glIsProgram(programB));

    // A context without a shader: nothing happens, B stays current.
    manager->FreeContextResource(b.DC(), b.RC());
    EXPECT_EQ(wglGetCurrentContext(), b.RC());
    EXPECT_EQ(manager->ShaderManager().Count(), 1);

    // Destroying frees A's shader in whatever context is current: here B, so A's program is
    // left alive in A.
    manager->GenerateTriVAO(kTri, kNorm, inB);
    manager.reset();
    EXPECT_FALSE(glIsVertexArray(inB));
    a.MakeCurrent();
    EXPECT_TRUE(glIsProgram(programA));
}

}  // namespace
}  // namespace orvane
