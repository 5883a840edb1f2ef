// Drawable meshes: the GPU copy of one triangle mesh and the values its next draw needs.
#pragma once

#include <memory>

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "gl_objects/GLBufferObjects.h"
#include "immediate/zqglTypes.h"
#include "mesh_drawing/GLSLShader.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

using dglOpenGL::TGLMatrixf4;

// The vertex array and the per-draw values: view, own transformation, colour.
class ORVANE_API TGLVAODraw {
public:
    // Makes the vertex array object without a GL name; the transformation is the identity.
    TGLVAODraw();
    TGLVAODraw(const TGLVAODraw&) = delete;
    TGLVAODraw& operator=(const TGLVAODraw&) = delete;
    virtual ~TGLVAODraw();

    TGLVAOObject& VAOObject() const noexcept { return *FVAOObject; }

    // The viewer's position, in the coordinates of the stored vertices.
    const TPoint3D& EyePos() const noexcept { return FEyePos; }
    void SetEyePos(const TPoint3D& value) noexcept { FEyePos = value; }
    // The viewer's head direction.
    const TPoint3D& HeadDir() const noexcept { return FHeadDir; }
    void SetHeadDir(const TPoint3D& value) noexcept { FHeadDir = value; }
    // Rotation about Z that a simulation applies, in radians.
    double SimuRot() const noexcept { return FSimuRot; }
    void SetSimuRot(double value) noexcept { FSimuRot = value; }
    // 00BBGGRR; the top byte is not looked at.
    TColor Color() const noexcept { return FColor; }
    void SetColor(TColor value) noexcept { FColor = value; }
    // The mesh's own transformation, in the order glMultMatrixf takes.
    const TGLMatrixf4& TrransMatrix() const noexcept { return FTransMatrix; }
    void SetTrransMatrix(const TGLMatrixf4& value) noexcept { FTransMatrix = value; }
    bool IsOut() const noexcept { return FIsOut; }
    void SetIsOut(bool value) noexcept { FIsOut = value; }

    virtual void Draw() = 0;
    // Lets go of the GL names without deleting them: they belong to a context that is not
    // current, and stay there until that context goes.
    virtual void ForgetHandles() noexcept { FVAOObject->SetHandle(0); }

protected:
    std::unique_ptr<TGLVAOObject> FVAOObject;
    TPoint3D FEyePos;
    double FSimuRot = 0.0;
    TColor FColor = 0;
    TGLMatrixf4 FTransMatrix;
    bool FIsOut = false;
    TPoint3D FHeadDir;
};

// Triangles with one normal per vertex in two parallel buffers (locations 0 and 1), drawn with
// or without an index buffer, through the shader of the context it was made in.
class ORVANE_API TGLVAOTriDraw : public TGLVAODraw {
public:
    TGLVAOTriDraw();
    // The shader is not owned: the shader manager of the context owns it.
    explicit TGLVAOTriDraw(TGLSLShader* AGLSLShader);
    ~TGLVAOTriDraw() override;

    TGLVBOObject& VBOVert() const noexcept { return *FVBOVert; }
    TGLVBOObject& VBONorm() const noexcept { return *FVBONorm; }
    TGLEBOObject& EBOInt() const noexcept { return *FEBO; }

    // Uploads positions and normals (x, y, z per vertex); three vertices make a triangle.
    void GenerateVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm);
    // The same, with three vertex indices per triangle.
    void GenerateVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm, const TDynGLinteger& AIndex);

    // Turns the shader on (a shader that cannot be set up is turned off for good and the mesh
    // is drawn without it), sets the uniforms and draws.
    void Draw() override;
    void ForgetHandles() noexcept override;

private:
    void SetUniforms();
    void DrawElements();

    std::unique_ptr<TGLVBOObject> FVBOVert;
    std::unique_ptr<TGLVBOObject> FVBONorm;
    std::unique_ptr<TGLEBOObject> FEBO;
    TGLSLShader* FGLSL = nullptr;
    bool FIsEBODraw = false;
};

}  // namespace orvane
