// Shader objects: what a drawing routine turns on around its draw calls. A TGLSLShader is
// given its two sources without any GL call and compiles and links them at its first
// ApplyShader, in the context current then.
#pragma once

#include <memory>

#include "contracts/Export.h"
#include "gl_objects/uGLHandleObj.h"
#include "mesh_drawing/StringList.h"

namespace orvane {

inline constexpr const char* SCannotLinkProgram = "Cannot Link Program";
inline constexpr const char* SLinkProgramFailed = "Link Program Failed!";

// Enabled: whether ApplyShader and UnApplyShader act at all. Valid: whether DoInitialize has
// completed. ShaderActive: between ApplyShader and UnApplyShader.
class ORVANE_API TGLShader {
public:
    TGLShader() = default;
    TGLShader(const TGLShader&) = delete;
    TGLShader& operator=(const TGLShader&) = delete;
    virtual ~TGLShader() = default;

    bool Enabled() const noexcept { return FEnabled; }
    void SetEnabled(bool value) noexcept { FEnabled = value; }
    bool ShaderActive() const noexcept { return FShaderActive; }

    // Initialises at the first use; an exception from the initialisation leaves the shader
    // neither valid nor active and reaches the caller.
    void ApplyShader();
    void UnApplyShader();
    // Runs DoInitialize whatever the shader's state, then marks it valid.
    void Initialize();

protected:
    virtual void DoApplyShader() {}
    virtual void DoUnApplyShader() {}
    virtual void DoInitialize() {}

private:
    void RequireValid();

    bool FEnabled = true;
    bool FShaderActive = false;
    bool FValid = false;
};

class TGLCustomShader;

// The source of one stage as lines of text, and whether the stage takes part.
class ORVANE_API TGLShaderProgram {
public:
    explicit TGLShaderProgram(TGLCustomShader* AParent) : FParent(AParent) {}
    TGLShaderProgram(const TGLShaderProgram&) = delete;
    TGLShaderProgram& operator=(const TGLShaderProgram&) = delete;
    virtual ~TGLShaderProgram() = default;

    TGLCustomShader* Parent() const noexcept { return FParent; }
    const TStrings& Code() const noexcept { return *FCode; }
    // Copies the lines of value; the list object stays.
    void SetCode(const TStrings& value) { FCode->Assign(value); }
    bool Enabled() const noexcept { return FEnabled; }
    // Stores the flag only: a running program is not affected.
    void SetEnabled(bool value) noexcept { FEnabled = value; }

private:
    TGLCustomShader* FParent;
    bool FEnabled = false;
    std::unique_ptr<TStringList> FCode = std::make_unique<TStringList>();
};

class ORVANE_API TGLVertexProgram : public TGLShaderProgram {
public:
    using TGLShaderProgram::TGLShaderProgram;
};

class ORVANE_API TGLFragmentProgram : public TGLShaderProgram {
public:
    using TGLShaderProgram::TGLShaderProgram;
};

// A shader with a vertex and a fragment stage; frees the fragment stage first.
class ORVANE_API TGLCustomShader : public TGLShader {
public:
    TGLCustomShader();
    ~TGLCustomShader() override;

    TGLVertexProgram& VertexProgram() const noexcept { return *FVertexProg; }
    TGLFragmentProgram& FragmentProgram() const noexcept { return *FFragmentProg; }

private:
    // Declared in this order so that the fragment stage is freed first.
    std::unique_ptr<TGLVertexProgram> FVertexProg;
    std::unique_ptr<TGLFragmentProgram> FFragmentProg;
};

// Compiles the enabled stages into one program and links it at the first ApplyShader.
class ORVANE_API TGLSLShader : public TGLCustomShader {
public:
    TGLSLShader();
    // Deletes the program and its shaders in the current context, then the stages.
    ~TGLSLShader() override;

    TGLProgramHandle& GLSLProg() const noexcept { return *FGLSLProg; }
    // Whether the sources were put into the stages; the shader manager reads and sets it.
    bool Validated() const noexcept { return FValidated; }
    void SetValidated(bool value) noexcept { FValidated = value; }

protected:
    void DoApplyShader() override;
    void DoUnApplyShader() override;
    // Makes the program, compiles the enabled stages and links; a failed link shows
    // "Cannot Link Program" and the log, and raises EGLSLException "Link Program Failed!" and
    // the log.
    void DoInitialize() override;

private:
    std::unique_ptr<TGLProgramHandle> FGLSLProg;
    bool FValidated = false;
};

}  // namespace orvane
