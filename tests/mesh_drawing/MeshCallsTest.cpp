// Shaders, drawable meshes and the VAO manager against a recording fake driver: the GL calls
// they make, in order, and the values the program's uniforms get.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <stdexcept>

#include "mesh_drawing/CollectedTri.h"
#include "mesh_drawing/GLSLShader.h"
#include "mesh_drawing/GLVAODraw.h"
#include "mesh_drawing/GLVAOManager.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using Texts = std::vector<std::string>;
using Floats = std::vector<float>;

// A driver that always succeeds: vertex arrays are named from 100, buffers from 200, shaders
// from 20, the program is 7. Uniform locations are the order in which names were first asked
// for; the values each one got are kept by name.
struct FakeMeshGL {
    testing::GlRecorder Rec;
    GLuint NextVertexArray = 100, NextBuffer = 200, NextShader = 20;
    std::array<float, 16> ModelView{}, Projection{}, Multiplied{};
    Texts LocationNames;
    std::map<std::string, Floats> Uniforms;
    std::map<std::string, bool> Transposed;

    std::string NameAt(GLint at) const { return LocationNames.at(at); }
    void Matrix(GLint at, GLboolean transpose, const GLfloat* m, int n) { Uniforms[NameAt(at)] = Floats(m, m + n), Transposed[NameAt(at)] = transpose; }

    FakeMeshGL()
    {
        Rec.RecordAll<&glDeleteVertexArrays, &glDeleteBuffers, &glBindVertexArray, &glBindBuffer, &glBufferData,
                      &glVertexAttribPointer, &glEnableVertexAttribArray, &glDeleteShader, &glShaderSource,
                      &glCompileShader, &glGetShaderInfoLog, &glDeleteProgram, &glAttachShader, &glDetachShader,
                      &glLinkProgram, &glGetProgramInfoLog, &glUseProgram, &glMatrixMode, &glPushMatrix, &glPopMatrix,
                      &glDrawArrays, &glDrawElements>();
        for (int i = 0; i < 16; ++i) ModelView[i] = float(i + 1), Projection[i] = float(101 + i);
        Rec.Record<&glGenVertexArrays>([this](GLsizei, GLuint* names) { names[0] = NextVertexArray++; });
        Rec.Record<&glGenBuffers>([this](GLsizei, GLuint* names) { names[0] = NextBuffer++; });
        Rec.Record<&glGenerateMipmap>();  // set, so that loading the extensions finds nothing to do
        Rec.Record<&glCreateShader>([this](GLenum) { return NextShader++; });
        Rec.Record<&glGetShaderiv>([](GLuint, GLenum, GLint* status) { *status = 1; });
        Rec.Record<&glCreateProgram>([] { return 7u; });
        Rec.Record<&glGetAttachedShaders>([](GLuint, GLsizei, GLsizei* count, GLuint*) { *count = 0; });
        Rec.Record<&glGetProgramiv>([](GLuint, GLenum, GLint* status) { *status = 1; });
        Rec.Record<&glGetUniformLocation>([this](GLuint, const GLchar* name) {
            auto at = std::find(LocationNames.begin(), LocationNames.end(), name);
            if (at == LocationNames.end()) at = LocationNames.insert(at, name);
            return static_cast<GLint>(at - LocationNames.begin());
        });
        Rec.Record<&glUniform3f>([this](GLint at, GLfloat x, GLfloat y, GLfloat z) { Uniforms[NameAt(at)] = {x, y, z}; });
        Rec.Record<&glUniform1i>([this](GLint at, GLint v) { Uniforms[NameAt(at)] = {float(v)}; });
        Rec.Record<&glUniformMatrix4fv>([this](GLint at, GLsizei, GLboolean t, const GLfloat* m) { Matrix(at, t, m, 16); });
        Rec.Record<&glUniformMatrix3fv>([this](GLint at, GLsizei, GLboolean t, const GLfloat* m) { Matrix(at, t, m, 9); });
        Rec.Record<&glMultMatrixf>([this](const GLfloat* m) { std::copy(m, m + 16, Multiplied.begin()); });
        Rec.Record<&glGetFloatv>([this](GLenum which, GLfloat* m) { std::ranges::copy(which == GL_PROJECTION_MATRIX ? Projection : ModelView, m); });
    }
};

const TDynGLFloat kTri{0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 1, 2, 0};
const TDynGLFloat kNorm{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};

TGLMatrixf4 Identity()
{
    TGLMatrixf4 m;
    return m.Reset(), m;
}

void SetSources(TGLSLShader& shader, const std::string& vertex, const std::string& fragment)
{
    TStringList lines;
    lines.SetText(vertex), shader.VertexProgram().SetCode(lines), shader.VertexProgram().SetEnabled(true);
    lines.SetText(fragment), shader.FragmentProgram().SetCode(lines), shader.FragmentProgram().SetEnabled(true);
}

// A shader whose steps note whether it was active while they ran.
class ProbeShader : public TGLShader {
public:
    Texts Steps;

protected:
    void DoApplyShader() override { Steps.push_back(ShaderActive() ? "apply while active" : "apply"); }
    void DoUnApplyShader() override { Steps.push_back(ShaderActive() ? "unapply while active" : "unapply"); }
    void DoInitialize() override { Steps.push_back("initialize"); }
};

TEST(GLShader, InitialisesOnceIsActiveDuringBothStepsAndKeepsItsProgramWhileDisabledInUse)
{
    ProbeShader shader;
    EXPECT_TRUE(shader.Enabled());
    shader.ApplyShader(), shader.UnApplyShader(), shader.ApplyShader();
    shader.SetEnabled(false), shader.UnApplyShader();  // while in use
    EXPECT_TRUE(shader.ShaderActive());
    shader.SetEnabled(true), shader.UnApplyShader();
    EXPECT_FALSE(shader.ShaderActive());
    shader.Initialize();  // runs whatever the state
    EXPECT_EQ(shader.Steps, (Texts{"initialize", "apply while active", "unapply while active", "apply while active",
                                   "unapply while active", "initialize"}));
    ProbeShader disabled;
    disabled.SetEnabled(false), disabled.ApplyShader(), disabled.UnApplyShader();
    EXPECT_TRUE(disabled.Steps.empty());
}

TEST(GLSLShader, FirstApplyCompilesBothStagesAndLinksLaterOnesOnlyUseFreeingDeletesStagesFirst)
{
    FakeMeshGL gl;
    Texts sources;
    gl.Rec.Record<&glShaderSource>([&](GLuint, GLsizei, const GLchar* const* text, const GLint*) { sources.emplace_back(text[0]); });
    {
        TGLSLShader disabled;  // never touches GL
        SetSources(disabled, "v", "f");
        disabled.SetEnabled(false), disabled.ApplyShader(), disabled.UnApplyShader();
    }
    EXPECT_TRUE(gl.Rec.Calls().empty());
    {
        TGLSLShader shader;
        EXPECT_FALSE(shader.VertexProgram().Enabled() || shader.Validated());
        SetSources(shader, "line 1\nline 2", "frag\r\n");
        shader.ApplyShader();
        EXPECT_EQ(gl.Rec.Texts(),
                  (Texts{"glCreateProgram()", "glGetAttachedShaders(7, 256, ptr, ptr)", "glCreateShader(35633)",
                         "glShaderSource(20, 1, ptr, nil)", "glCompileShader(20)", "glGetShaderiv(20, 35713, ptr)",
                         "glAttachShader(7, 20)", "glCreateShader(35632)", "glShaderSource(21, 1, ptr, nil)",
                         "glCompileShader(21)", "glGetShaderiv(21, 35713, ptr)", "glAttachShader(7, 21)",
                         "glLinkProgram(7)", "glGetProgramiv(7, 35714, ptr)", "glUseProgram(7)"}));
        EXPECT_EQ(sources, (Texts{"line 1\r\nline 2\r\n", "frag\r\n"}));  // each line ends with CR LF
        gl.Rec.Clear();
        shader.VertexProgram().SetEnabled(false);  // too late to change the running program
        shader.UnApplyShader(), shader.ApplyShader(), shader.UnApplyShader();
    }
    EXPECT_EQ(gl.Rec.Names(), (Texts{"glUseProgram", "glUseProgram", "glUseProgram", "glDeleteShader",
                                     "glDeleteShader", "glDeleteProgram"}));
    gl.Rec.Clear();
    TGLSLShader empty;  // without sources: an empty program is linked
    empty.ApplyShader();
    EXPECT_EQ(gl.Rec.Names(),
              (Texts{"glCreateProgram", "glGetAttachedShaders", "glLinkProgram", "glGetProgramiv", "glUseProgram"}));
}

TEST(GLSLShader, AFailedLinkIsShownAndRaisedAndLeavesTheShaderUnready)
{
    FakeMeshGL gl;
    gl.Rec.Record<&glGetProgramiv>([](GLuint, GLenum, GLint* status) { *status = 0; });
    gl.Rec.Record<&glGetProgramInfoLog>([](GLuint, GLsizei, GLsizei*, GLchar* buffer) { std::strcpy(buffer, "error: main undefined"); });
    testing::MessageCapture messages;
    TGLSLShader shader;
    SetSources(shader, "v", "f");
    EXPECT_EQ(testing::Raised<EGLSLException>([&] { shader.ApplyShader(); }), "Link Program Failed!error: main undefined");
    EXPECT_EQ(messages.Texts(), (Texts{"Cannot Link Programerror: main undefined"}));
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

TEST(GLVAOTriDraw, GenerateUploadsBothStreamsUnbindsTheVertexArrayFirstAndFreesItBeforeItsBuffers)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    {
        TGLVAOTriDraw mesh(&shader);
        mesh.GenerateVAO(kTri, kNorm);
        EXPECT_EQ(gl.Rec.Texts(),
                  (Texts{"glGenVertexArrays(1, ptr)", "glGenBuffers(1, ptr)", "glGenBuffers(1, ptr)",
                         "glBindVertexArray(100)", "glBindBuffer(34962, 200)", "glBufferData(34962, 72, ptr, 35044)",
                         "glVertexAttribPointer(0, 3, 5126, 0, 0, nil)", "glEnableVertexAttribArray(0)",
                         "glBindBuffer(34962, 201)", "glBufferData(34962, 72, ptr, 35044)",
                         "glVertexAttribPointer(1, 3, 5126, 0, 0, nil)", "glEnableVertexAttribArray(1)",
                         "glBindVertexArray(0)", "glBindBuffer(34962, 0)", "glBindBuffer(34962, 0)"}));
        EXPECT_TRUE(gl.Rec.CallsOf("glBufferData")[0].Pointer(2) == kTri.data() && gl.Rec.CallsOf("glBufferData")[1].Pointer(2) == kNorm.data());
        EXPECT_EQ(mesh.EBOInt().Handle(), 0u);

        gl.Rec.Clear();
        mesh.GenerateVAO(kTri, kNorm, {0, 1, 2, 3, 4, 5, 1, 3, 2});  // again: the names stay, the stores are replaced
        EXPECT_EQ(gl.Rec.Count("glGenVertexArrays"), 0u);
        const Texts texts = gl.Rec.Texts();
        ASSERT_EQ(texts.size(), 12u + 6u);
        EXPECT_EQ(Texts(texts.end() - 6, texts.end()),
                  (Texts{"glBindVertexArray(100)", "glGenBuffers(1, ptr)", "glBindBuffer(34963, 202)",
                         "glBufferData(34963, 36, ptr, 35044)", "glBindVertexArray(0)", "glBindBuffer(34963, 0)"}));
        mesh.GenerateVAO({}, {}, {});  // empty arrays upload nil and draw nothing
        for (const auto& call : gl.Rec.CallsOf("glBufferData"))
            EXPECT_EQ(call.Pointer(2) == nullptr, call.Args[1] == 0) << call.Text();
        mesh.Draw();
        EXPECT_EQ(gl.Rec.CallsOf("glDrawElements").at(0).Text(), "glDrawElements(4, 0, 5125, nil)");
        gl.Rec.Clear();
    }
    EXPECT_EQ(gl.Rec.Names(), (Texts{"glDeleteVertexArrays", "glDeleteBuffers", "glDeleteBuffers", "glDeleteBuffers"}));
    EXPECT_TRUE(shader.Enabled());  // the shader is not the mesh's
}

TEST(GLVAOTriDraw, DrawSetsEightUniformsInOrderLookingEachUpEveryTimeFromTheFields)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    TGLVAOTriDraw mesh(&shader);
    mesh.GenerateVAO(kTri, kNorm);
    mesh.Draw();  // the first draw compiles and links
    gl.Rec.Clear();
    mesh.Draw();
    EXPECT_EQ(gl.Rec.Texts(),
              (Texts{"glUseProgram(7)",
                     "glGetUniformLocation(7, ptr)", "glUniform3f(0, 0, 0, 0)",
                     "glGetUniformLocation(7, ptr)", "glUniform3f(1, 0, 0, 0)",
                     "glGetUniformLocation(7, ptr)", "glUniformMatrix4fv(2, 1, 1, ptr)",
                     "glGetUniformLocation(7, ptr)", "glMatrixMode(5888)", "glPushMatrix()", "glMultMatrixf(ptr)",
                     "glGetFloatv(2982, ptr)", "glPopMatrix()", "glUniformMatrix4fv(3, 1, 0, ptr)",
                     "glGetUniformLocation(7, ptr)", "glUniformMatrix3fv(4, 1, 0, ptr)",
                     "glGetUniformLocation(7, ptr)", "glGetFloatv(2983, ptr)", "glUniformMatrix4fv(5, 1, 0, ptr)",
                     "glGetUniformLocation(7, ptr)", "glUniform3f(6, 0, 0, 0)",
                     "glGetUniformLocation(7, ptr)", "glUniform1i(7, 0)",
                     "glBindVertexArray(100)", "glDrawArrays(4, 0, 6)", "glBindVertexArray(0)", "glUseProgram(0)"}));
    EXPECT_EQ(gl.LocationNames, (Texts{"EyePos", "HeadDir", "SimuRot", "modelviewMatrix", "NormTransMat", "projMatrix",
                                       "objColor", "IsOut"}));

    // The values come from the fields as the shader needs them.
    mesh.GenerateVAO(kTri, kNorm, {0, 1, 2});
    mesh.SetEyePos({0.1, 2.5, -3.0});
    mesh.SetHeadDir({0.0, 0.6, 0.8});
    mesh.SetColor(0xAB0000FF), mesh.SetIsOut(true), mesh.SetSimuRot(M_PI / 2);  // the colour's top byte is not looked at
    TGLMatrixf4 trans = Identity();  // a non-uniform scale with a shear and a translation
    trans[0] = {2.0f, 0.5f, 0.0f, 0.0f};
    trans[1][1] = 3.0f, trans[2][2] = 4.0f, trans[3] = {5.0f, 6.0f, 7.0f, 1.0f};
    mesh.SetTrransMatrix(trans);
    mesh.Draw();
    EXPECT_EQ(gl.Uniforms["EyePos"], (Floats{0.1f, 2.5f, -3.0f}));
    EXPECT_EQ(gl.Uniforms["objColor"], (Floats{1.0f, 0.0f, 0.0f}));
    EXPECT_EQ(gl.Uniforms["IsOut"], (Floats{1.0f}));
    EXPECT_TRUE(gl.Transposed["SimuRot"]);  // its values are checked by the shading pixels
    // The mesh's transformation multiplies the host's modelview, read back as GL gives it.
    EXPECT_EQ(Floats(gl.Multiplied.begin(), gl.Multiplied.end()), Floats(trans.Data(), trans.Data() + 16));
    EXPECT_EQ(gl.Uniforms["modelviewMatrix"], Floats(gl.ModelView.begin(), gl.ModelView.end()));
    EXPECT_EQ(gl.Uniforms["projMatrix"], Floats(gl.Projection.begin(), gl.Projection.end()));
    // The normal matrix is the upper-left block as it lies: no inverse, no transposition, no translation.
    EXPECT_EQ(gl.Uniforms["NormTransMat"], (Floats{2, 0.5f, 0, 0, 3, 0, 0, 0, 4}));
    EXPECT_FALSE(gl.Transposed["modelviewMatrix"] || gl.Transposed["NormTransMat"]);
    EXPECT_EQ(gl.Rec.CallsOf("glDrawElements").at(0).Text(), "glDrawElements(4, 3, 5125, nil)");

    mesh.SetColor(0x00804020), mesh.SetIsOut(false), mesh.Draw();
    EXPECT_EQ(gl.Uniforms["objColor"], (Floats{float(0x20 / 255.0), float(0x40 / 255.0), float(0x80 / 255.0)}));
    EXPECT_EQ(gl.Uniforms["IsOut"], (Floats{0.0f}));
}

TEST(GLVAOTriDraw, AShaderThatCannotBeSetUpIsTurnedOffAndAFailingDrawStillUnbindsAndUnapplies)
{
    FakeMeshGL gl;
    // Not an Exception: the guard catches whatever comes.
    gl.Rec.Record<&glCreateProgram>([]() -> GLuint { throw std::runtime_error("driver gone"); });
    TGLSLShader broken;
    TGLVAOTriDraw mesh(&broken);
    mesh.GenerateVAO(kTri, kNorm);
    for (int attempt = 0; attempt < 2; ++attempt) {  // no second attempt
        gl.Rec.Clear(), mesh.Draw();
        EXPECT_FALSE(broken.Enabled());
        EXPECT_EQ((std::vector<std::size_t>{gl.Rec.Count("glCreateProgram"), gl.Rec.Count("glDrawArrays"), gl.Rec.Count("glUseProgram"),
                                            gl.Rec.Count("glGetUniformLocation")}),
                  (std::vector<std::size_t>{attempt == 0 ? 1u : 0u, 1, 0, 8}));
    }

    gl.Rec.Record<&glCreateProgram>([] { return 7u; });
    gl.Rec.Record<&glDrawArrays>([](GLenum, GLint, GLsizei) { throw std::runtime_error("lost"); });
    TGLSLShader shader;
    TGLVAOTriDraw failing(&shader);
    failing.GenerateVAO(kTri, kNorm);
    EXPECT_THROW(failing.Draw(), std::runtime_error);
    const Texts names = gl.Rec.Names();
    EXPECT_EQ(Texts(names.end() - 3, names.end()), (Texts{"glDrawArrays", "glBindVertexArray", "glUseProgram"}));
    EXPECT_EQ(gl.Rec.Calls().back().Text(), "glUseProgram(0)");
    EXPECT_FALSE(shader.ShaderActive());
}

TEST(GLVAOManager, CountsHoldersFreesAtTheLastClearsAndNormalisesTheHeadDirection)
{
    FakeMeshGL gl;
    TGLVAOManager manager;
    Cardinal id = 42;
    EXPECT_FALSE(manager.GenerateTriVAO({}, kNorm, id));  // an empty mesh makes nothing
    EXPECT_FALSE(manager.GenerateTriVAO({}, {}, {0, 1, 2}, id));
    EXPECT_EQ(id, 42u);
    EXPECT_EQ(manager.ShaderManager().Count(), 0);
    EXPECT_TRUE(gl.Rec.Calls().empty());

    EXPECT_TRUE(manager.GenerateTriVAO(kTri, kNorm, id));
    EXPECT_EQ(id, 100u);
    // The shader is made for the context, but compiled only at the first draw.
    EXPECT_EQ(manager.ShaderManager().Count(), 1);
    EXPECT_EQ(gl.Rec.Count("glCreateProgram"), 0u);
    // The head direction is made unit at every draw, the eye is not.
    manager.DrawVAO(id, {3, 4, 0}, {0, 0, 5}, Identity(), 0x0000FF, true, 0);
    manager.DrawVAO(id, {0, 0, 0.5}, {0, -2, 0}, Identity(), 0x0000FF, true, 0);
    EXPECT_EQ(gl.Uniforms["EyePos"], (Floats{0, 0, 0.5}));
    EXPECT_EQ(gl.Uniforms["HeadDir"], (Floats{0, -1, 0}));
    EXPECT_EQ(gl.Rec.Count("glLinkProgram"), 1u);

    manager.AddVAORef(id);
    manager.AddVAORef(555);  // not registered: no entry appears
    EXPECT_EQ(manager.VAORefCountDict().Count(), 1);
    manager.DeleteVAO(id);
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays"), 0u);
    manager.DeleteVAO(id);
    EXPECT_EQ(manager.VAORefCountDict().Count(), 0);
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays") * 10 + gl.Rec.Count("glDeleteBuffers"), 12u);
    gl.Rec.Clear();
    manager.DeleteVAO(id);
    manager.DrawVAO(id, {0, 0, 1}, {0, 1, 0}, Identity(), 0, false, 0);
    EXPECT_TRUE(gl.Rec.Calls().empty());

    // Clear frees the meshes and their counts; the same id again starts at one holder.
    manager.GenerateTriVAO(kTri, kNorm, {0, 1, 2}, id);
    manager.AddVAORef(id), manager.Clear();
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays") * 10 + gl.Rec.Count("glDeleteBuffers"), 13u);
    EXPECT_EQ(manager.VAORefCountDict().Count(), 0);
    manager.GenerateTriVAO(kTri, kNorm, id), manager.DeleteVAO(id);
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
    EXPECT_EQ(outer + inner, 0u);
    EXPECT_TRUE(gl.Rec.Calls().empty());

    // Outer: a double load, merged and indexed. Inner: a single load, not indexed.
    TCollectedTri mesh(true);
    mesh.LoadOuter(TFloatDynArray{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 1, 1, 0}, TFloatDynArray(18, 0.5));
    mesh.LoadInner(TDynGLFloat(kTri.begin(), kTri.begin() + 9), TDynGLFloat(kNorm.begin(), kNorm.begin() + 9));
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
