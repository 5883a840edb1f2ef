// One mesh shader for each rendering context, made at the first request from that context
// and filled with the two GLSL sources of the package.
#pragma once

#include <string>

#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "mesh_drawing/GLSLShader.h"
#include "opengl/Platform.h"

namespace orvane {

class ORVANE_API TGLShaderManager {
public:
    TGLShaderManager() = default;
    TGLShaderManager(const TGLShaderManager&) = delete;
    TGLShaderManager& operator=(const TGLShaderManager&) = delete;
    // Frees every shader without switching contexts: each one's GL objects go in whatever
    // context is current.
    ~TGLShaderManager();

    // The shader of the context current on the calling thread; the manager keeps it. No
    // context current (0) is a key like any other.
    TGLSLShader* GetShader();
    // Frees the shader of context ARC inside ARC, made current through ADC for the length of
    // the call. With ARC current already, it is freed there without a switch.
    void FreeShader(HDC ADC, HGLRC ARC);

    // The number of contexts that have a shader.
    int Count() const noexcept { return FShaderDic.Count(); }

private:
    static void ValidSingleCode(const std::string& name, std::string& text);
    static void ValidGeneralShader(TGLSLShader& shader);

    TDictionary<HGLRC, TGLSLShader*> FShaderDic;
};

}  // namespace orvane
