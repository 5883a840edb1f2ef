#include "mesh_drawing/GLVAODraw.h"

#include <array>
#include <cmath>

namespace orvane {
namespace {

using Mat4 = std::array<dglOpenGL::GLfloat, 16>;
using Mat3 = std::array<dglOpenGL::GLfloat, 9>;

// The data of an array is its first element, or nil when it is empty.
template <typename T>
const void* DataOf(const std::vector<T>& a) { return a.empty() ? nullptr : a.data(); }

template <typename T>
std::int32_t ByteSize(const std::vector<T>& a) { return static_cast<std::int32_t>(a.size() * 4); }

// The columns of a Z rotation, each laid into a row of a 4x4 that GL is told to transpose.
Mat4 SimuRotMatrix(double angle)
{
    TMatrix3D rotation = TMatrix3D::CreateIdent();
    rotation.RotateZ(angle);
    Mat4 m{};
    for (int c = 0; c < 3; ++c) {
        const TPoint3D column = rotation.GetColVector(c);
        m[4 * c + 0] = static_cast<float>(column.X);
        m[4 * c + 1] = static_cast<float>(column.Y);
        m[4 * c + 2] = static_cast<float>(column.Z);
    }
    m[15] = 1.0f;
    return m;
}

// The host's modelview times the mesh's own transformation, read back from GL's stack. The
// matrix mode is left at GL_MODELVIEW.
Mat4 ModelViewMatrix(const TGLMatrixf4& trans)
{
    Mat4 m{};
    dglOpenGL::glMatrixMode(dglOpenGL::GL_MODELVIEW);
    dglOpenGL::glPushMatrix();
    dglOpenGL::glMultMatrixf(trans.Data());
    dglOpenGL::glGetFloatv(dglOpenGL::GL_MODELVIEW_MATRIX, m.data());
    dglOpenGL::glPopMatrix();
    return m;
}

// The upper-left 3x3 block as it lies: no inverse, no transposition.
Mat3 NormalMatrix(const TGLMatrixf4& trans)
{
    const float* t = trans.Data();
    return {t[0], t[1], t[2], t[4], t[5], t[6], t[8], t[9], t[10]};
}

float ColorChannel(TColor color, int shift)
{
    return static_cast<float>(static_cast<double>((color >> shift) & 0xFFu) / 255.0);
}

}  // namespace

// --- TGLVAODraw ---------------------------------------------------------------------------

TGLVAODraw::TGLVAODraw() : FVAOObject(std::make_unique<TGLVAOObject>()) { FTransMatrix.Reset(); }

TGLVAODraw::~TGLVAODraw() = default;

// --- TGLVAOTriDraw ------------------------------------------------------------------------

TGLVAOTriDraw::TGLVAOTriDraw()
    : FVBOVert(std::make_unique<TGLVBOObject>()),
      FVBONorm(std::make_unique<TGLVBOObject>()),
      FEBO(std::make_unique<TGLEBOObject>())
{
}

TGLVAOTriDraw::TGLVAOTriDraw(TGLSLShader* AGLSLShader) : TGLVAOTriDraw() { FGLSL = AGLSLShader; }

TGLVAOTriDraw::~TGLVAOTriDraw()
{
    // The vertex array goes before the buffers it refers to.
    FVAOObject.reset();
    FVBOVert.reset();
    FVBONorm.reset();
    FEBO.reset();
}

void TGLVAOTriDraw::ForgetHandles() noexcept
{
    TGLVAODraw::ForgetHandles();
    FVBOVert->SetHandle(0);
    FVBONorm->SetHandle(0);
    FEBO->SetHandle(0);
}

void TGLVAOTriDraw::GenerateVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm)
{
    FVAOObject->AllocateHandle();
    FVBOVert->AllocateHandle();
    FVBONorm->AllocateHandle();
    FVAOObject->Bind();
    auto unbind = [this] {
        FVAOObject->UnBind();
        FVBOVert->UnBind();
        FVBONorm->UnBind();
    };
    try {
        FVBOVert->Bind();
        FVBOVert->BufferData(DataOf(Tri), ByteSize(Tri), dglOpenGL::GL_STATIC_DRAW);
        dglOpenGL::glVertexAttribPointer(0, 3, dglOpenGL::GL_FLOAT, dglOpenGL::GL_FALSE, 0, nullptr);
        dglOpenGL::glEnableVertexAttribArray(0);
        FVBONorm->Bind();
        FVBONorm->BufferData(DataOf(Norm), ByteSize(Norm), dglOpenGL::GL_STATIC_DRAW);
        dglOpenGL::glVertexAttribPointer(1, 3, dglOpenGL::GL_FLOAT, dglOpenGL::GL_FALSE, 0, nullptr);
        dglOpenGL::glEnableVertexAttribArray(1);
        FIsEBODraw = false;
    } catch (...) {
        unbind();
        throw;
    }
    unbind();
}

void TGLVAOTriDraw::GenerateVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm, const TDynGLinteger& AIndex)
{
    GenerateVAO(Tri, Norm);
    FVAOObject->Bind();
    // The vertex array is unbound first, so that it keeps the element buffer binding.
    auto unbind = [this] {
        FVAOObject->UnBind();
        FEBO->UnBind();
    };
    try {
        FEBO->AllocateHandle();
        FEBO->Bind();
        FEBO->BufferData(DataOf(AIndex), ByteSize(AIndex), dglOpenGL::GL_STATIC_DRAW);
        FIsEBODraw = true;
    } catch (...) {
        unbind();
        throw;
    }
    unbind();
}

void TGLVAOTriDraw::Draw()
{
    // Whatever goes wrong in setting up the shader (the user has been told) turns it off for
    // every mesh of the context; the mesh is still drawn.
    try {
        FGLSL->ApplyShader();
    } catch (...) {
        FGLSL->SetEnabled(false);
    }
    SetUniforms();
    FVAOObject->Bind();
    auto finish = [this] {
        FVAOObject->UnBind();
        if (FGLSL->Enabled()) FGLSL->UnApplyShader();
    };
    try {
        DrawElements();
    } catch (...) {
        finish();
        throw;
    }
    finish();
}

void TGLVAOTriDraw::DrawElements()
{
    using namespace dglOpenGL;
    if (FIsEBODraw)
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(std::nearbyint(FEBO->Size() / 4.0)), GL_UNSIGNED_INT,
                       nullptr);
    else
        glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(std::nearbyint(FVBOVert->Size() / 12.0)));
}

// Locations are looked up at every draw and not checked: a uniform the compiler dropped (IsOut)
// gives -1, which GL ignores.
void TGLVAOTriDraw::SetUniforms()
{
    using namespace dglOpenGL;
    const GLuint program = FGLSL->GLSLProg().Handle();
    auto location = [program](const char* name) { return glGetUniformLocation(program, name); };

    GLint at = location("EyePos");
    glUniform3f(at, static_cast<GLfloat>(FEyePos.X), static_cast<GLfloat>(FEyePos.Y),
                static_cast<GLfloat>(FEyePos.Z));
    at = location("HeadDir");
    glUniform3f(at, static_cast<GLfloat>(FHeadDir.X), static_cast<GLfloat>(FHeadDir.Y),
                static_cast<GLfloat>(FHeadDir.Z));
    at = location("SimuRot");
    const Mat4 simuRot = SimuRotMatrix(FSimuRot);
    glUniformMatrix4fv(at, 1, GL_TRUE, simuRot.data());
    at = location("modelviewMatrix");
    const Mat4 modelView = ModelViewMatrix(FTransMatrix);
    glUniformMatrix4fv(at, 1, GL_FALSE, modelView.data());
    at = location("NormTransMat");
    const Mat3 normal = NormalMatrix(FTransMatrix);
    glUniformMatrix3fv(at, 1, GL_FALSE, normal.data());
    at = location("projMatrix");
    Mat4 projection{};
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    glUniformMatrix4fv(at, 1, GL_FALSE, projection.data());
    at = location("objColor");
    glUniform3f(at, ColorChannel(FColor, 0), ColorChannel(FColor, 8), ColorChannel(FColor, 16));
    at = location("IsOut");
    glUniform1i(at, FIsOut ? 1 : 0);
}

}  // namespace orvane
