// Classes that own one OpenGL object name each: the base handle with lazy allocation and
// release at most once, shader handles, and the program that compiles and links them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "contracts/SysUtils.h"

namespace orvane {

// Failure to compile or link a GLSL program.
class ORVANE_API EGLSLException : public Exception {
public:
    using Exception::Exception;
};

inline constexpr const char* SAllocateResourceFailure = "Allocate Resource Failure!";
inline constexpr const char* SCannotCompileShader = "Cannot Compile Shader";

// Owns one GL name. Construction makes no GL call; the name is made at the first
// AllocateHandle, inside the context the caller has made current, and never records it.
// Each class that overrides DoDestroyHandle calls DestroyHandle in its own destructor, since
// the base destructor can no longer reach the override.
class ORVANE_API TGLHandleObject {
public:
    TGLHandleObject() = default;
    TGLHandleObject(const TGLHandleObject&) = delete;
    TGLHandleObject& operator=(const TGLHandleObject&) = delete;
    virtual ~TGLHandleObject() = default;

    Cardinal Handle() const noexcept { return FHandle; }
    void SetHandle(Cardinal value) noexcept { FHandle = value; }

    // Makes the name when none is held; raises Exception "Allocate Resource Failure!" when
    // the driver gives 0, leaving the handle empty.
    void AllocateHandle();
    // Gives the name back when one is held; otherwise makes no GL call.
    void DestroyHandle();

protected:
    virtual Cardinal DoAllocateHandle() = 0;
    virtual void DoDestroyHandle() = 0;

    Cardinal FHandle = 0;
};

// Common ancestor of shader and program handles.
class ORVANE_API TGLSLHandle : public TGLHandleObject {};

class ORVANE_API TGLShaderHandle : public TGLSLHandle {
public:
    ~TGLShaderHandle() override;

    Cardinal ShaderType() const noexcept { return FShaderType; }
    // Hands GL one zero-terminated text.
    void ShaderSource(const std::string& source);
    // Compiles; true when GL reports success (a status GL leaves unwritten counts as failure).
    bool CompileShader();

protected:
    explicit TGLShaderHandle(Cardinal shaderType) : FShaderType(shaderType) {}
    Cardinal DoAllocateHandle() override;
    void DoDestroyHandle() override;

    Cardinal FShaderType;
};

class ORVANE_API TGLVertexShaderHandle : public TGLShaderHandle {
public:
    TGLVertexShaderHandle();
};

class ORVANE_API TGLFragmentShaderHandle : public TGLShaderHandle {
public:
    TGLFragmentShaderHandle();
};

// Names a concrete shader handle class: constructs an instance of it and serves as a
// dictionary key. Obtain one with TGLShaderHandleClass::Of<TGLVertexShaderHandle>().
class ORVANE_API TGLShaderHandleClass {
public:
    using TFactory = TGLShaderHandle* (*)();

    template <typename T>
    static TGLShaderHandleClass Of() noexcept
    {
        return TGLShaderHandleClass(&Construct<T>);
    }

    TGLShaderHandle* Create() const { return FFactory(); }
    friend bool operator==(const TGLShaderHandleClass&, const TGLShaderHandleClass&) = default;

    struct Hash {
        std::size_t operator()(const TGLShaderHandleClass& c) const noexcept
        {
            return std::hash<TFactory>()(c.FFactory);
        }
    };

private:
    template <typename T>
    static TGLShaderHandle* Construct() { return new T(); }
    explicit TGLShaderHandleClass(TFactory factory) noexcept : FFactory(factory) {}
    TFactory FFactory;
};

// A GLSL program with the shaders it compiled and attached, which it owns.
class ORVANE_API TGLProgramHandle : public TGLSLHandle {
public:
    TGLProgramHandle() = default;
    // Frees every shader handle (each deletes its GL shader), then deletes the program.
    ~TGLProgramHandle() override;

    bool Using() const noexcept { return FUsing; }

    // Compiles source as a new shader of shaderType and attaches it; on a failed compile shows
    // "Cannot Compile Shader" followed by the log, raises EGLSLException with that text, and
    // frees the shader it made. The program's name must exist (AllocateHandle).
    void AddShader(TGLShaderHandleClass shaderType, const std::string& shaderSource);
    // Detaches every attached shader (at most 256); the shader objects stay as they are.
    void DetachAllObject();
    bool LinkProgram();
    void UseProg();
    void UnUseProg();

protected:
    Cardinal DoAllocateHandle() override;
    void DoDestroyHandle() override;

private:
    void AttachObject(const TGLShaderHandle& shader);
    void FreeShaders() noexcept;

    bool FProgAssigned = false;
    bool FUsing = false;
    TDictionary<TGLShaderHandleClass, TGLShaderHandle*, TGLShaderHandleClass::Hash> FShaderDict;
};

}  // namespace orvane
