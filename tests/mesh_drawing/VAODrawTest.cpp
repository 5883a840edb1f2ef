#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "mesh_drawing/GLVAODraw.h"
#include "tests/mesh_drawing/FakeMeshGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::FakeMeshGL;
using Texts = std::vector<std::string>;
using Floats = std::vector<float>;

const TDynGLFloat kTri{0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 1, 2, 0};
const TDynGLFloat kNorm{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};

TEST(GLVAOTriDraw, GenerateUploadsBothStreamsThenUnbindsVertexArrayFirst)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    TGLVAOTriDraw mesh(&shader);
    mesh.GenerateVAO(kTri, kNorm);
    EXPECT_EQ(gl.Rec.Texts(),
              (Texts{"glGenVertexArrays(1, ptr)", "glGenBuffers(1, ptr)", "glGenBuffers(1, ptr)",
                     "glBindVertexArray(100)", "glBindBuffer(34962, 200)", "glBufferData(34962, 72, ptr, 35044)",
                     "glVertexAttribPointer(0, 3, 5126, 0, 0, nil)", "glEnableVertexAttribArray(0)",
                     "glBindBuffer(34962, 201)", "glBufferData(34962, 72, ptr, 35044)",
                     "glVertexAttribPointer(1, 3, 5126, 0, 0, nil)", "glEnableVertexAttribArray(1)",
                     "glBindVertexArray(0)", "glBindBuffer(34962, 0)", "glBindBuffer(34962, 0)"}));
    EXPECT_EQ(gl.Rec.CallsOf("glBufferData")[0].Pointer(2), kTri.data());
    EXPECT_EQ(gl.Rec.CallsOf("glBufferData")[1].Pointer(2), kNorm.data());
    EXPECT_EQ(mesh.VAOObject().Handle(), 100u);
    EXPECT_EQ(mesh.EBOInt().Handle(), 0u);

    gl.Rec.Clear();
    const TDynGLinteger index{0, 1, 2, 3, 4, 5, 1, 3, 2};
    mesh.GenerateVAO(kTri, kNorm, index);  // again: the names stay, the stores are replaced
    EXPECT_EQ(gl.Rec.Count("glGenVertexArrays"), 0u);
    const Texts texts = gl.Rec.Texts();
    ASSERT_EQ(texts.size(), 12u + 6u);
    EXPECT_EQ(Texts(texts.end() - 6, texts.end()),
              (Texts{"glBindVertexArray(100)", "glGenBuffers(1, ptr)", "glBindBuffer(34963, 202)",
                     "glBufferData(34963, 36, ptr, 35044)", "glBindVertexArray(0)", "glBindBuffer(34963, 0)"}));
}

TEST(GLVAOTriDraw, EmptyArraysUploadNilAndDrawNothing)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    TGLVAOTriDraw mesh(&shader);
    mesh.GenerateVAO({}, {}, {});
    for (const auto& call : gl.Rec.CallsOf("glBufferData")) EXPECT_EQ(call.Pointer(2), nullptr);
    mesh.Draw();
    EXPECT_EQ(gl.Rec.CallsOf("glDrawElements").at(0).Text(), "glDrawElements(4, 0, 5125, nil)");
}

TEST(GLVAOTriDraw, DrawSetsEightUniformsInOrderLookingEachUpEveryTime)
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
    // The matrix mode is left at GL_MODELVIEW: no later glMatrixMode puts it back.
    EXPECT_EQ(gl.Rec.Count("glMatrixMode"), 1u);
}

TEST(GLVAOTriDraw, UniformValuesComeFromTheFieldsAsTheShaderNeedsThem)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    TGLVAOTriDraw mesh(&shader);
    mesh.GenerateVAO(kTri, kNorm, {0, 1, 2});
    mesh.SetEyePos({0.1, 2.5, -3.0});
    mesh.SetHeadDir({0.0, 0.6, 0.8});
    mesh.SetColor(0xAB0000FF);  // the top byte is not looked at
    mesh.SetIsOut(true);
    mesh.SetSimuRot(M_PI / 2);
    // A non-uniform scale with a shear and a translation, in glMultMatrixf order.
    TGLMatrixf4 trans;
    trans.Reset();
    trans[0] = {2.0f, 0.5f, 0.0f, 0.0f};
    trans[1][1] = 3.0f;
    trans[2][2] = 4.0f;
    trans[3] = {5.0f, 6.0f, 7.0f, 1.0f};
    mesh.SetTrransMatrix(trans);
    mesh.Draw();

    EXPECT_EQ(gl.Uniforms["EyePos"], (Floats{0.1f, 2.5f, -3.0f}));
    EXPECT_EQ(gl.Uniforms["HeadDir"], (Floats{0.0f, 0.6f, 0.8f}));
    EXPECT_EQ(gl.Uniforms["objColor"], (Floats{1.0f, 0.0f, 0.0f}));
    EXPECT_EQ(gl.Uniforms["IsOut"], (Floats{1.0f}));
    // The rotation's columns laid into rows, for GL to transpose.
    const TMatrix3D rotation = [] { TMatrix3D m; m.RotateZ(M_PI / 2); return m; }();
    const Floats simuRot = gl.Uniforms["SimuRot"];
    ASSERT_EQ(simuRot.size(), 16u);
    for (int c = 0; c < 3; ++c) {
        const TPoint3D column = rotation.GetColVector(c);
        EXPECT_EQ(simuRot[4 * c], float(column.X));
        EXPECT_EQ(simuRot[4 * c + 1], float(column.Y));
        EXPECT_EQ(simuRot[4 * c + 2], float(column.Z));
        EXPECT_EQ(simuRot[4 * c + 3], 0.0f);
    }
    EXPECT_EQ(simuRot[12] + simuRot[13] + simuRot[14], 0.0f);
    EXPECT_EQ(simuRot[15], 1.0f);
    EXPECT_TRUE(gl.Transposed["SimuRot"]);
    // The mesh's transformation multiplies the host's modelview, read back as GL gives it.
    EXPECT_EQ(std::vector<float>(gl.Multiplied.begin(), gl.Multiplied.end()),
              std::vector<float>(trans.Data(), trans.Data() + 16));
    EXPECT_EQ(gl.Uniforms["modelviewMatrix"], Floats(gl.ModelView.begin(), gl.ModelView.end()));
    EXPECT_EQ(gl.Uniforms["projMatrix"], Floats(gl.Projection.begin(), gl.Projection.end()));
    EXPECT_FALSE(gl.Transposed["modelviewMatrix"]);
    // The upper-left block as it lies: no inverse, no transposition, no translation.
    EXPECT_EQ(gl.Uniforms["NormTransMat"], (Floats{2, 0.5f, 0, 0, 3, 0, 0, 0, 4}));
    EXPECT_FALSE(gl.Transposed["NormTransMat"]);
    EXPECT_EQ(gl.Rec.CallsOf("glDrawElements").at(0).Text(), "glDrawElements(4, 3, 5125, nil)");

    mesh.SetColor(0x00804020);
    mesh.SetIsOut(false);
    mesh.SetSimuRot(0.0);
    mesh.Draw();
    EXPECT_EQ(gl.Uniforms["objColor"],
              (Floats{float(0x20 / 255.0), float(0x40 / 255.0), float(0x80 / 255.0)}));
    EXPECT_EQ(gl.Uniforms["IsOut"], (Floats{0.0f}));
    EXPECT_EQ(gl.Uniforms["SimuRot"], (Floats{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
}

TEST(GLVAOTriDraw, AShaderThatCannotBeSetUpIsTurnedOffAndTheMeshStillDrawn)
{
    FakeMeshGL gl;
    // Not an Exception: the guard catches whatever comes.
    gl.Rec.Record<&glCreateProgram>([]() -> GLuint { throw std::runtime_error("driver gone"); });
    TGLSLShader shader;
    TGLVAOTriDraw mesh(&shader);
    mesh.GenerateVAO(kTri, kNorm);
    gl.Rec.Clear();
    mesh.Draw();
    EXPECT_FALSE(shader.Enabled());
    EXPECT_EQ(gl.Rec.Count("glDrawArrays"), 1u);
    EXPECT_EQ(gl.Rec.Count("glUseProgram"), 0u);
    EXPECT_EQ(gl.Rec.Count("glGetUniformLocation"), 8u);
    gl.Rec.Clear();
    mesh.Draw();  // no second attempt
    EXPECT_EQ(gl.Rec.Count("glCreateProgram"), 0u);
    EXPECT_EQ(gl.Rec.Count("glDrawArrays"), 1u);
}

TEST(GLVAOTriDraw, AFailingDrawCallStillUnbindsAndUnappliesThenReachesTheCaller)
{
    FakeMeshGL gl;
    gl.Rec.Record<&glDrawArrays>([](GLenum, GLint, GLsizei) { throw std::runtime_error("lost"); });
    TGLSLShader shader;
    TGLVAOTriDraw mesh(&shader);
    mesh.GenerateVAO(kTri, kNorm);
    EXPECT_THROW(mesh.Draw(), std::runtime_error);
    EXPECT_EQ(gl.NamesFrom("glDrawArrays"), (Texts{"glDrawArrays", "glBindVertexArray", "glUseProgram"}));
    EXPECT_EQ(gl.Rec.Calls().back().Text(), "glUseProgram(0)");
    EXPECT_FALSE(shader.ShaderActive());
}

TEST(GLVAOTriDraw, FreesTheVertexArrayBeforeItsBuffersAndNotTheShader)
{
    FakeMeshGL gl;
    TGLSLShader shader;
    {
        TGLVAOTriDraw mesh(&shader);
        mesh.GenerateVAO(kTri, kNorm, {0, 1, 2});
        mesh.Draw();
        gl.Rec.Clear();
    }
    EXPECT_EQ(gl.Rec.Names(), (Texts{"glDeleteVertexArrays", "glDeleteBuffers", "glDeleteBuffers", "glDeleteBuffers"}));
    EXPECT_TRUE(shader.Enabled());
}

}  // namespace
}  // namespace orvane
