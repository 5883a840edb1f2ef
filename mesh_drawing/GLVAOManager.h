// Meshes on the graphics card under numeric ids (the GL names of their vertex arrays), with
// reference counts, drawn by id with the view and colour of the moment.
#pragma once

#include <memory>

#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "mesh_drawing/GLShaderManager.h"
#include "mesh_drawing/GLVAODraw.h"

namespace orvane {

// A pointer-sized value for the host; nothing in the system reads or writes it.
extern ORVANE_API void* ObjSingleton;

class ORVANE_API TGLVAOManager {
public:
    // Loads the GL entry points where they are not yet: a context must be current.
    TGLVAOManager();
    TGLVAOManager(const TGLVAOManager&) = delete;
    TGLVAOManager& operator=(const TGLVAOManager&) = delete;
    // Frees the meshes (in the current context), then the shaders.
    ~TGLVAOManager();

    const TDictionary<Cardinal, int>& VAORefCountDict() const noexcept { return FVAORefCountDict; }
    TGLShaderManager& ShaderManager() const noexcept { return *FShaderManager; }

    // Makes a mesh in the current context and sets VAOID to its id with one reference; an
    // empty Tri makes nothing, leaves VAOID and answers false.
    bool GenerateTriVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm, Cardinal& VAOID);
    bool GenerateTriVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm, const TDynGLinteger& AIndex, Cardinal& VAOID);

    // Draws a mesh with these values; HeadDir is scaled to unit length, EyePos taken as given.
    // An unknown id draws nothing.
    void DrawVAO(Cardinal VAOID, const TPoint3D& EyePos, const TPoint3D& HeadDir, const TGLMatrixf4& TransMat,
                 TColor AColor, bool IsOut, double SimuRot);
    // One more holder of a registered id.
    void AddVAORef(Cardinal VAOID);
    // One holder less; at none the mesh's GL objects are deleted in the current context.
    void DeleteVAO(Cardinal VAOID);
    // Gives back the shader of a context that is going away; its meshes stay.
    void FreeContextResource(HDC ADC, HGLRC ARC);
    // Frees every mesh in the current context. The counts go with them, so that a later
    // mesh that gets a freed GL name starts at one.
    void Clear();

private:
    template <typename... TIndex>
    bool Generate(const TDynGLFloat& Tri, const TDynGLFloat& Norm, Cardinal& VAOID, const TIndex&... AIndex);

    TDictionary<Cardinal, TGLVAODraw*> FDict;
    TDictionary<Cardinal, int> FVAORefCountDict;
    std::unique_ptr<TGLShaderManager> FShaderManager;
};

}  // namespace orvane
