#include "mesh_drawing/GLShaderManager.h"

#include <memory>

#include "shaders/ShaderResources.h"

namespace orvane {

TGLShaderManager::~TGLShaderManager()
{
    for (const auto& entry : FShaderDic) delete entry.second;
}

TGLSLShader* TGLShaderManager::GetShader()
{
    const HGLRC rc = wglGetCurrentContext();
    TGLSLShader* shader = nullptr;
    if (FShaderDic.TryGetValue(rc, shader)) return shader;
    auto made = std::make_unique<TGLSLShader>();
    if (!made->Validated()) ValidGeneralShader(*made);
    FShaderDic.Add(rc, made.get());
    return made.release();
}

void TGLShaderManager::FreeShader(HDC ADC, HGLRC ARC)
{
    TGLSLShader* shader = nullptr;
    if (!FShaderDic.TryGetValue(ARC, shader)) return;
    // The shader of the current context goes without a switch: switching to the context
    // already current would only re-bind it.
    if (ARC == wglGetCurrentContext()) {
        FShaderDic.Remove(ARC);
        delete shader;
        return;
    }
    const HDC oldDC = wglGetCurrentDC();
    const HGLRC oldRC = wglGetCurrentContext();
    if (!wglMakeCurrent(ADC, ARC)) return;
    FShaderDic.Remove(ARC);
    delete shader;
    wglMakeCurrent(oldDC, oldRC);
}

void TGLShaderManager::ValidSingleCode(const std::string& name, std::string& text)
{
    text.clear();
    TStringList lines;
    TResourceStream stream(name, RT_RCDATA);
    lines.SetText(stream.Bytes());
    text = lines.Text();
}

void TGLShaderManager::ValidGeneralShader(TGLSLShader& shader)
{
    std::string text;
    TStringList lines;
    ValidSingleCode("VertShader", text);
    lines.SetText(text);
    shader.VertexProgram().SetCode(lines);
    shader.VertexProgram().SetEnabled(true);
    ValidSingleCode("FragShader", text);
    lines.SetText(text);
    shader.FragmentProgram().SetCode(lines);
    shader.FragmentProgram().SetEnabled(true);
    shader.SetValidated(true);
}

}  // namespace orvane
