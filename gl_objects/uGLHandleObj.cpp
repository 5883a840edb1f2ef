#include "gl_objects/uGLHandleObj.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "contracts/AppSystem.h"
#include "opengl/dglOpenGL.h"

namespace orvane {
namespace {

// The longest log read back, terminating zero included, and the buffer it lands in.
constexpr int kShaderLogLimit = 512;
constexpr std::size_t kLogBufferSize = 513;
// At most this many attached shaders are detached.
constexpr int kMaxAttachedShaders = 256;

std::string LogText(const std::array<char, kLogBufferSize>& buffer)
{
    return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

}  // namespace

// --- TGLHandleObject ----------------------------------------------------------------------

void TGLHandleObject::AllocateHandle()
{
    if (FHandle != 0) return;
    FHandle = DoAllocateHandle();
    if (FHandle == 0) throw Exception(SAllocateResourceFailure);
}

void TGLHandleObject::DestroyHandle()
{
    if (FHandle == 0) return;
    DoDestroyHandle();
    FHandle = 0;
}

// --- shader handles -----------------------------------------------------------------------

TGLShaderHandle::~TGLShaderHandle() { DestroyHandle(); }

Cardinal TGLShaderHandle::DoAllocateHandle() { return dglOpenGL::glCreateShader(FShaderType); }

void TGLShaderHandle::DoDestroyHandle() { dglOpenGL::glDeleteShader(FHandle); }

void TGLShaderHandle::ShaderSource(const std::string& source)
{
    const dglOpenGL::GLchar* text = source.c_str();
    dglOpenGL::glShaderSource(FHandle, 1, &text, nullptr);
}

bool TGLShaderHandle::CompileShader()
{
    dglOpenGL::glCompileShader(FHandle);
    dglOpenGL::GLint status = 0;
    dglOpenGL::glGetShaderiv(FHandle, dglOpenGL::GL_COMPILE_STATUS, &status);
    return status != 0;
}

TGLVertexShaderHandle::TGLVertexShaderHandle() : TGLShaderHandle(dglOpenGL::GL_VERTEX_SHADER) {}

TGLFragmentShaderHandle::TGLFragmentShaderHandle() : TGLShaderHandle(dglOpenGL::GL_FRAGMENT_SHADER) {}

// --- TGLProgramHandle ---------------------------------------------------------------------

TGLProgramHandle::~TGLProgramHandle()
{
    FreeShaders();
    DestroyHandle();
}

void TGLProgramHandle::FreeShaders() noexcept
{
    for (const auto& entry : FShaderDict) delete entry.second;
    FShaderDict.Clear();
}

Cardinal TGLProgramHandle::DoAllocateHandle()
{
    const Cardinal name = dglOpenGL::glCreateProgram();
    FProgAssigned = true;
    return name;
}

void TGLProgramHandle::DoDestroyHandle()
{
    if (FProgAssigned) dglOpenGL::glDeleteProgram(FHandle);
}

void TGLProgramHandle::AttachObject(const TGLShaderHandle& shader)
{
    dglOpenGL::glAttachShader(FHandle, shader.Handle());
}

void TGLProgramHandle::AddShader(TGLShaderHandleClass shaderType, const std::string& shaderSource)
{
    // Held here until the dictionary owns it, so that a shader that fails to compile, or a
    // second one of a class already present, is freed and its GL name given back.
    std::unique_ptr<TGLShaderHandle> shader(shaderType.Create());
    shader->AllocateHandle();
    shader->ShaderSource(shaderSource);
    if (!shader->CompileShader()) {
        std::array<char, kLogBufferSize> buffer{};
        dglOpenGL::glGetShaderInfoLog(shader->Handle(), kShaderLogLimit, nullptr, buffer.data());
        const std::string text = SCannotCompileShader + LogText(buffer);
        AppSys.ShowMsg(text, 0);
        throw EGLSLException(text);
    }
    AttachObject(*shader);
    FShaderDict.Add(shaderType, shader.get());
    shader.release();
}

void TGLProgramHandle::DetachAllObject()
{
    if (FHandle == 0) return;
    std::array<dglOpenGL::GLuint, kMaxAttachedShaders> names{};
    dglOpenGL::GLsizei count = 0;
    dglOpenGL::glGetAttachedShaders(FHandle, kMaxAttachedShaders, &count, names.data());
    count = std::min(count, kMaxAttachedShaders);
    for (int i = 0; i < count; ++i) dglOpenGL::glDetachShader(FHandle, names[static_cast<std::size_t>(i)]);
}

bool TGLProgramHandle::LinkProgram()
{
    dglOpenGL::glLinkProgram(FHandle);
    dglOpenGL::GLint status = 0;
    dglOpenGL::glGetProgramiv(FHandle, dglOpenGL::GL_LINK_STATUS, &status);
    return status != 0;
}

void TGLProgramHandle::UseProg()
{
    dglOpenGL::glUseProgram(FHandle);
    FUsing = true;
}

void TGLProgramHandle::UnUseProg()
{
    if (!FUsing) return;
    dglOpenGL::glUseProgram(0);
    FUsing = false;
}

}  // namespace orvane
