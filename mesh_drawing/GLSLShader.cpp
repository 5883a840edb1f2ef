#include "mesh_drawing/GLSLShader.h"

#include <array>
#include <cstring>

#include "contracts/AppSystem.h"
#include "opengl/dglOpenGL.h"

namespace orvane {
namespace {

constexpr std::size_t kProgramLogSize = 513;

}  // namespace

// --- TGLShader ----------------------------------------------------------------------------

void TGLShader::ApplyShader()
{
    if (!FEnabled) return;
    RequireValid();
    // Active already while DoApplyShader runs.
    FShaderActive = true;
    DoApplyShader();
}

void TGLShader::UnApplyShader()
{
    if (!FEnabled) return;
    DoUnApplyShader();
    FShaderActive = false;
}

void TGLShader::RequireValid()
{
    if (!FValid) Initialize();
}

void TGLShader::Initialize()
{
    DoInitialize();
    FValid = true;
}

// --- TGLCustomShader ----------------------------------------------------------------------

TGLCustomShader::TGLCustomShader()
    : FVertexProg(std::make_unique<TGLVertexProgram>(this)), FFragmentProg(std::make_unique<TGLFragmentProgram>(this))
{
}

TGLCustomShader::~TGLCustomShader() = default;

// --- TGLSLShader --------------------------------------------------------------------------

TGLSLShader::TGLSLShader() : FGLSLProg(std::make_unique<TGLProgramHandle>()) {}

TGLSLShader::~TGLSLShader() = default;

void TGLSLShader::DoApplyShader()
{
    TGLCustomShader::DoApplyShader();
    FGLSLProg->UseProg();
}

void TGLSLShader::DoUnApplyShader()
{
    TGLCustomShader::DoUnApplyShader();
    FGLSLProg->UnUseProg();
}

void TGLSLShader::DoInitialize()
{
    TGLCustomShader::DoInitialize();
    FGLSLProg->AllocateHandle();
    FGLSLProg->DetachAllObject();
    if (VertexProgram().Enabled())
        FGLSLProg->AddShader(TGLShaderHandleClass::Of<TGLVertexShaderHandle>(), VertexProgram().Code().Text());
    if (FragmentProgram().Enabled())
        FGLSLProg->AddShader(TGLShaderHandleClass::Of<TGLFragmentShaderHandle>(), FragmentProgram().Code().Text());
    if (FGLSLProg->LinkProgram()) return;

    std::array<char, kProgramLogSize> buffer{};
    dglOpenGL::glGetProgramInfoLog(FGLSLProg->Handle(), static_cast<dglOpenGL::GLsizei>(buffer.size()), nullptr,
                                   buffer.data());
    const std::string log(buffer.data(), strnlen(buffer.data(), buffer.size()));
    AppSys.ShowMsg(SCannotLinkProgram + log, 0);
    throw EGLSLException(SLinkProgramFailed + log);
}

}  // namespace orvane
