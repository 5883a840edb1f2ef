#include "mesh_drawing/GLVAOManager.h"

#include "opengl/dglOpenGL.h"

namespace orvane {

void* ObjSingleton = nullptr;

TGLVAOManager::TGLVAOManager()
{
    dglOpenGL::QuickReadExtensions();
    FShaderManager = std::make_unique<TGLShaderManager>();
}

TGLVAOManager::~TGLVAOManager()
{
    Clear();
    FShaderManager.reset();
}

template <typename... TIndex>
bool TGLVAOManager::Generate(const TDynGLFloat& Tri, const TDynGLFloat& Norm, Cardinal& VAOID,
                             const TIndex&... AIndex)
{
    if (Tri.empty()) return false;
    TGLSLShader* shader = FShaderManager->GetShader();
    auto mesh = std::make_unique<TGLVAOTriDraw>(shader);
    mesh->GenerateVAO(Tri, Norm, AIndex...);
    const Cardinal id = mesh->VAOObject().Handle();
    // GL gives out a live name again only in another context. The mesh of that context is
    // replaced here without freeing its GL objects, which stay in their context until it
    // goes; the count goes on from the earlier mesh.
    TGLVAODraw* earlier = nullptr;
    if (FDict.TryGetValue(id, earlier)) {
        earlier->ForgetHandles();
        delete earlier;
    }
    FDict.AddOrSetValue(id, mesh.release());
    VAOID = id;
    AddVAORef(VAOID);
    return true;
}

bool TGLVAOManager::GenerateTriVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm, Cardinal& VAOID)
{
    return Generate(Tri, Norm, VAOID);
}

bool TGLVAOManager::GenerateTriVAO(const TDynGLFloat& Tri, const TDynGLFloat& Norm, const TDynGLinteger& AIndex,
                                   Cardinal& VAOID)
{
    return Generate(Tri, Norm, VAOID, AIndex);
}

void TGLVAOManager::DrawVAO(Cardinal VAOID, const TPoint3D& EyePos, const TPoint3D& HeadDir,
                            const TGLMatrixf4& TransMat, TColor AColor, bool IsOut, double SimuRot)
{
    TGLVAODraw* mesh = nullptr;
    if (!FDict.TryGetValue(VAOID, mesh)) return;
    mesh->SetEyePos(EyePos);
    mesh->SetHeadDir(HeadDir.Normal());
    mesh->SetColor(AColor);
    mesh->SetSimuRot(SimuRot);
    mesh->SetIsOut(IsOut);
    mesh->SetTrransMatrix(TransMat);
    mesh->Draw();
}

void TGLVAOManager::AddVAORef(Cardinal VAOID)
{
    if (!FDict.ContainsKey(VAOID)) return;
    int count = 0;
    FVAORefCountDict.TryGetValue(VAOID, count);
    FVAORefCountDict.AddOrSetValue(VAOID, count + 1);
}

void TGLVAOManager::DeleteVAO(Cardinal VAOID)
{
    int count = 0;
    if (FVAORefCountDict.TryGetValue(VAOID, count)) FVAORefCountDict.AddOrSetValue(VAOID, --count);
    if (count > 0) return;
    FVAORefCountDict.Remove(VAOID);
    TGLVAODraw* mesh = nullptr;
    if (!FDict.TryGetValue(VAOID, mesh)) return;
    delete mesh;
    FDict.Remove(VAOID);
}

void TGLVAOManager::FreeContextResource(HDC ADC, HGLRC ARC) { FShaderManager->FreeShader(ADC, ARC); }

void TGLVAOManager::Clear()
{
    for (const auto& entry : FDict) delete entry.second;
    FDict.Clear();
    FVAORefCountDict.Clear();
}

}  // namespace orvane
