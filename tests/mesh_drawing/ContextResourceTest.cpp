// The embedded shader sources, the per-context shader manager and what the VAO manager makes,
// in real contexts: names read back from GL, pixels of a mesh whose shader failed.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <memory>
#include <sstream>

#include "mesh_drawing/GLShaderManager.h"
#include "mesh_drawing/GLVAOManager.h"
#include "shaders/ShaderResources.h"
#include "tests/support/MessageCapture.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::OffscreenGL;
using Texts = std::vector<std::string>;

std::string FileBytes(const std::string& name)
{
    std::ifstream file(std::string(ORVANE_SOURCE_DIR) + "/shaders/" + name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

// Replaces the resource finder for its life: notes each read and can make one name missing
// or give it other bytes.
struct Finder {
    Texts Reads;
    std::string Missing, Replaced, Bytes;
    TResourceFinder Previous = SetResourceFinder([this](const std::string& name, Cardinal type, std::string& bytes) {
        Reads.push_back(name);
        if (name == Replaced) return bytes = Bytes, true;
        return name != Missing && FindEmbeddedResource(name, type, bytes);
    });
    ~Finder() { SetResourceFinder(Previous); }
};

// How many buffers, vertex arrays, shaders and programs among the first names the current context knows.
int Alive()
{
    int alive = 0;
    for (GLuint name = 1; name < 64; ++name) alive += glIsBuffer(name) + glIsVertexArray(name) + glIsShader(name) + glIsProgram(name);
    return alive;
}

const TDynGLFloat kTri{-0.9f, -0.9f, 0, 0.9f, -0.9f, 0, 0, 0.9f, 0};
const TDynGLFloat kNorm{0, 0, 1, 0, 0, 1, 0, 0, 1};

void Draw(TGLVAOManager& manager, Cardinal id)
{
    TGLMatrixf4 identity;
    identity.Reset();
    manager.DrawVAO(id, {0, 0, 1}, {0, 1, 0}, identity, 0x808080, true, 0);
}

GLuint ProgramOf(TGLVAOManager& manager) { return manager.ShaderManager().GetShader()->GLSLProg().Handle(); }

TEST(ShaderResources, AreTheSourceFilesByteForByteFoundInAnyCaseAndTheFinderCanBeReplaced)
{
    for (const auto& [name, file] : {std::pair{"VertShader", "VertShader.glsl"}, {"FragShader", "FragShader.glsl"}}) {
        const std::string bytes = TResourceStream(name, RT_RCDATA).Bytes();
        EXPECT_EQ(bytes, FileBytes(file)) << name;
        EXPECT_EQ(bytes.rfind("#version 330 core\r\n", 0), 0u) << name;
        // CR LF line ends only, no terminating zero, no byte-order mark.
        EXPECT_EQ(bytes.substr(bytes.size() - 2), "\r\n");
        for (std::size_t i = 1; i < bytes.size(); ++i) ASSERT_FALSE(bytes[i] == '\n' && bytes[i - 1] != '\r') << name << " at " << i;
        EXPECT_EQ(bytes.find('\0'), std::string::npos);
    }
    EXPECT_EQ(TResourceStream("VERTSHADER", RT_RCDATA).Bytes(), TResourceStream("vertshader", RT_RCDATA).Bytes());
    // The lamps turn by this value of pi, not the true one.
    EXPECT_NE(TResourceStream("FragShader", RT_RCDATA).Bytes().find("const float PI = 3.14158265359;"), std::string::npos);
    EXPECT_EQ(testing::Raised<EResNotFound>([] { TResourceStream("NoShader", RT_RCDATA); }), "Resource NoShader not found");
    EXPECT_THROW(TResourceStream("VertShader", 3), EResNotFound);
    {
        Finder finder;
        finder.Replaced = "VertShader", finder.Bytes = "test bytes";
        EXPECT_EQ(TResourceStream("VertShader", RT_RCDATA).Bytes(), "test bytes");
    }
    EXPECT_EQ(TResourceStream("VertShader", RT_RCDATA).Bytes(), FileBytes("VertShader.glsl"));
}

TEST(GLShaderManager, OneShaderPerContextFilledFromTheResourcesOnceNoContextIncluded)
{
    Finder finder;
    OffscreenGL a(8, 8), b(8, 8);
    TGLShaderManager manager;
    a.MakeCurrent();
    TGLSLShader* first = manager.GetShader();
    EXPECT_EQ(manager.GetShader(), first);
    EXPECT_EQ(finder.Reads, (Texts{"VertShader", "FragShader"}));
    EXPECT_TRUE(first->Validated() && first->VertexProgram().Enabled() && first->FragmentProgram().Enabled());
    EXPECT_EQ(first->VertexProgram().Code().Text(), FileBytes("VertShader.glsl"));
    EXPECT_EQ(first->GLSLProg().Handle(), 0u);  // no GL work yet: it compiles at its first use
    b.MakeCurrent();
    EXPECT_NE(manager.GetShader(), first);
    dglOpenGL::DeactivateRenderingContext();  // no current context is a key like any other
    ASSERT_EQ(wglGetCurrentContext(), nullptr);
    TGLSLShader* none = manager.GetShader();
    EXPECT_EQ(manager.GetShader(), none);
    EXPECT_EQ(manager.Count(), 3);
    EXPECT_EQ(finder.Reads.size(), 6u);

    finder.Missing = "FragShader";
    TGLShaderManager failing;
    EXPECT_EQ(testing::Raised<EResNotFound>([&] { failing.GetShader(); }), "Resource FragShader not found");
    EXPECT_EQ(failing.Count(), 0);
}

TEST(ContextResources, NothingTheManagerMadeOutlivesItAndAShaderThatFailsToCompileIsShownOnce)
{
    for (const bool fails : {false, true}) {
        SCOPED_TRACE(fails ? "a fragment shader that fails" : "the shipped shaders");
        Finder finder;
        if (fails) finder.Replaced = "FragShader", finder.Bytes = "#version 330 core\r\nvoid main() { gl_FragColor = undefined_thing; }\r\n";
        OffscreenGL gl(16, 16);
        testing::MessageCapture messages;
        auto manager = std::make_unique<TGLVAOManager>();
        Cardinal plain = 0, indexed = 0;
        manager->GenerateTriVAO(kTri, kNorm, plain);
        manager->GenerateTriVAO(kTri, kNorm, {0, 1, 2}, indexed);
        manager->AddVAORef(indexed);
        glClearColor(0, 0, 0, 1);
        glColor3ub(255, 128, 0);
        for (Cardinal id : {plain, indexed}) {
            glClear(GL_COLOR_BUFFER_BIT);
            Draw(*manager, id);
            // Without a program the meshes take the current colour.
            EXPECT_EQ(gl.Pixel(8, 6) == (std::array<std::uint8_t, 4>{255, 128, 0, 255}), fails);
            EXPECT_EQ(gl.Pixel(0, 15), (std::array<std::uint8_t, 4>{0, 0, 0, 255}));
        }
        ASSERT_EQ(messages.Texts().size(), fails ? 1u : 0u);
        EXPECT_TRUE(!fails || messages.Texts()[0].starts_with("Cannot Compile Shader")) << messages.Texts()[0];
        EXPECT_EQ(manager->ShaderManager().GetShader()->Enabled(), !fails);
        // 5 buffers, 2 vertex arrays, 2 shaders and a program; the failed shader was given back when it failed.
        EXPECT_EQ(Alive(), fails ? 9 : 10);
        manager.reset();
        EXPECT_EQ(Alive(), 0);
    }
}

TEST(ContextResources, TwoContextsEachGetAShaderFreedInsideItAndShareTheManagersIds)
{
    OffscreenGL a(16, 16), b(16, 16);
    auto manager = std::make_unique<TGLVAOManager>();
    a.MakeCurrent();
    Cardinal inA = 0, inB = 0;
    manager->GenerateTriVAO(kTri, kNorm, inA);
    Draw(*manager, inA);
    const GLuint programA = ProgramOf(*manager);
    b.MakeCurrent();
    manager->GenerateTriVAO(kTri, kNorm, inB);
    Draw(*manager, inB);
    const GLuint programB = ProgramOf(*manager);
    EXPECT_EQ(manager->ShaderManager().Count(), 2);

    // Each context numbers its own vertex arrays: B's mesh took A's id, and A's objects were
    // let go without being deleted; the count went on from A's mesh.
    ASSERT_EQ(inA, inB);
    int count = 0;
    EXPECT_TRUE(manager->VAORefCountDict().TryGetValue(inB, count));
    EXPECT_EQ(count, 2);
    manager->DeleteVAO(inB), manager->DeleteVAO(inB);
    EXPECT_FALSE(glIsVertexArray(inB));
    a.MakeCurrent();
    EXPECT_TRUE(glIsVertexArray(inA));  // left behind in A until A goes

    // B's shader is freed inside B, and A stays current; a context without a shader, or one
    // that cannot be made current, changes nothing.
    manager->FreeContextResource(b.DC(), b.RC());
    EXPECT_TRUE(wglGetCurrentContext() == a.RC() && wglGetCurrentDC() == a.DC());
    EXPECT_EQ(manager->ShaderManager().Count(), 1);
    EXPECT_TRUE(glIsProgram(programA));
    manager->FreeContextResource(b.DC(), b.RC());
    manager->ShaderManager().FreeShader(b.DC(), nullptr);
    EXPECT_EQ(manager->ShaderManager().Count(), 1);
    EXPECT_EQ(wglGetCurrentContext(), a.RC());
    b.MakeCurrent();
    EXPECT_FALSE(glIsProgram(programB));
    manager->ShaderManager().FreeShader(nullptr, a.RC());
    EXPECT_EQ(manager->ShaderManager().Count(), 1);
    EXPECT_EQ(wglGetCurrentContext(), b.RC());
    EXPECT_NE(manager->ShaderManager().GetShader(), nullptr);  // the next request makes a new one
    EXPECT_EQ(manager->ShaderManager().Count(), 2);

    // The shader of the current context is freed there, without a switch.
    manager->ShaderManager().FreeShader(b.DC(), b.RC());
    EXPECT_EQ(manager->ShaderManager().Count(), 1);
    EXPECT_EQ(wglGetCurrentContext(), b.RC());

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
