#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "mesh_drawing/GLSLShader.h"
#include "tests/mesh_drawing/FakeMeshGL.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::FakeMeshGL;
using testing::MessageCapture;
using Texts = std::vector<std::string>;

// A shader whose Do steps note whether it was active while they ran.
class ProbeShader : public TGLShader {
public:
    std::vector<std::string> Steps;

protected:
    void DoApplyShader() override { Steps.push_back(ShaderActive() ? "apply while active" : "apply"); }
    void DoUnApplyShader() override { Steps.push_back(ShaderActive() ? "unapply while active" : "unapply"); }
    void DoInitialize() override { Steps.push_back("initialize"); }
};

void SetSources(TGLSLShader& shader, const std::string& vertex, const std::string& fragment)
{
    TStringList lines;
    lines.SetText(vertex);
    shader.VertexProgram().SetCode(lines);
    shader.VertexProgram().SetEnabled(true);
    lines.SetText(fragment);
    shader.FragmentProgram().SetCode(lines);
    shader.FragmentProgram().SetEnabled(true);
}

TEST(GLShader, InitialisesOnceAndIsActiveDuringBothSteps)
{
    ProbeShader shader;
    EXPECT_TRUE(shader.Enabled());
    shader.ApplyShader();
    shader.UnApplyShader();
    shader.ApplyShader();
    EXPECT_TRUE(shader.ShaderActive());
    shader.UnApplyShader();
    EXPECT_EQ(shader.Steps, (Texts{"initialize", "apply while active", "unapply while active", "apply while active",
                                   "unapply while active"}));
    // Initialize runs whatever the state.
    shader.Initialize();
    EXPECT_EQ(shader.Steps.back(), "initialize");

    ProbeShader disabled;
    disabled.SetEnabled(false);
    disabled.ApplyShader();
    disabled.UnApplyShader();
    EXPECT_TRUE(disabled.Steps.empty());
    EXPECT_FALSE(disabled.ShaderActive());
}

TEST(GLShader, DisabledWhileInUseKeepsItsProgramUntilEnabledAndUnapplied)
{
    ProbeShader shader;
    shader.ApplyShader();
    shader.SetEnabled(false);
    shader.UnApplyShader();
    EXPECT_TRUE(shader.ShaderActive());
    shader.SetEnabled(true);
    shader.UnApplyShader();
    EXPECT_FALSE(shader.ShaderActive());
}

TEST(GLSLShader, ADisabledShaderNeverTouchesGL)
{
    FakeMeshGL gl;
    {
        TGLSLShader shader;
        SetSources(shader, "v", "f");
        shader.SetEnabled(false);
        shader.ApplyShader();
        shader.UnApplyShader();
    }
    EXPECT_TRUE(gl.Rec.Calls().empty());
}

TEST(GLSLShader, FirstApplyCompilesBothStagesAndLinksLaterOnesOnlyUse)
{
    FakeMeshGL gl;
    std::vector<std::string> sources;
    gl.Rec.Record<&glShaderSource>([&](GLuint, GLsizei, const GLchar* const* text, const GLint*) {
        sources.emplace_back(text[0]);
    });
    TGLSLShader shader;
    EXPECT_FALSE(shader.VertexProgram().Enabled());
    EXPECT_FALSE(shader.Validated());
    SetSources(shader, "line 1\nline 2", "frag\r\n");
    shader.ApplyShader();
    EXPECT_EQ(gl.Rec.Names(),
              (Texts{"glCreateProgram", "glGetAttachedShaders", "glCreateShader", "glShaderSource", "glCompileShader",
                     "glGetShaderiv", "glAttachShader", "glCreateShader", "glShaderSource", "glCompileShader",
                     "glGetShaderiv", "glAttachShader", "glLinkProgram", "glGetProgramiv", "glUseProgram"}));
    EXPECT_EQ(gl.Rec.CallsOf("glCreateShader")[0].Text(), "glCreateShader(35633)");
    EXPECT_EQ(gl.Rec.CallsOf("glCreateShader")[1].Text(), "glCreateShader(35632)");
    // Each line ends with CR LF in the text GL gets.
    EXPECT_EQ(sources, (Texts{"line 1\r\nline 2\r\n", "frag\r\n"}));

    gl.Rec.Clear();
    shader.VertexProgram().SetEnabled(false);  // too late to change the running program
    shader.UnApplyShader();
    shader.ApplyShader();
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glUseProgram(0)", "glUseProgram(7)"}));
}

TEST(GLSLShader, AShaderWithoutSourcesLinksAnEmptyProgram)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    shader.ApplyShader();
    EXPECT_EQ(gl.Rec.Names(),
              (Texts{"glCreateProgram", "glGetAttachedShaders", "glLinkProgram", "glGetProgramiv", "glUseProgram"}));
}

TEST(GLSLShader, AFailedLinkIsShownAndRaisedAndLeavesTheShaderUnready)
{
    FakeMeshGL gl;
    gl.Rec.Record<&glGetProgramiv>([](GLuint, GLenum, GLint* status) { *status = 0; });
    gl.Rec.Record<&glGetProgramInfoLog>([](GLuint, GLsizei, GLsizei*, GLchar* buffer) {
        std::strcpy(buffer, "error: main undefined");
    });
    MessageCapture messages;
    TGLSLShader shader;
    SetSources(shader, "v", "f");
    try {
        shader.ApplyShader();
        FAIL() << "no exception";
    } catch (const EGLSLException& e) {
        EXPECT_STREQ(e.what(), "Link Program Failed!error: main undefined");
    }
    EXPECT_EQ(messages.Texts(), (Texts{"Cannot Link Program" "error: main undefined"}));
    EXPECT_EQ(messages.Messages()[0].Kind, 0);
    EXPECT_EQ(gl.Rec.CallsOf("glGetProgramInfoLog").at(0).Text(), "glGetProgramInfoLog(7, 513, nil, ptr)");
    EXPECT_FALSE(shader.ShaderActive());
    EXPECT_EQ(gl.Rec.Count("glUseProgram"), 0u);
    // Not valid: the next apply tries again, and fails on the stages already in the program.
    gl.Rec.Clear();
    EXPECT_THROW(shader.ApplyShader(), EListError);
    EXPECT_EQ(gl.Rec.Count("glDetachShader"), 0u);  // the fake driver reports none attached
    EXPECT_EQ(gl.Rec.Count("glCompileShader"), 1u);
}

TEST(GLSLShader, FreeingDeletesStagesThenProgram)
{
    FakeMeshGL gl;
    {
        TGLSLShader shader;
        SetSources(shader, "v", "f");
        shader.ApplyShader();
        shader.UnApplyShader();
        gl.Rec.Clear();
    }
    EXPECT_EQ(gl.Rec.Names(), (Texts{"glDeleteShader", "glDeleteShader", "glDeleteProgram"}));
}

}  // namespace
}  // namespace orvane
