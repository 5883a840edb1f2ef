// dglOpenGL: the run-time binding of OpenGL, GLU, EGL and the WGL names, the version and
// extension flags of the current context, and the creation of rendering contexts.
//
// Every entry point is a variable named as the entry point, in namespace dglOpenGL, holding a
// function address or nullptr: dglOpenGL::glGenBuffers(1, &id). The GL types and constants
// come with it, so the system's GL headers must stay out of every file that includes this one.
#pragma once

#if defined(__gl_h_) || defined(__GL_H__) || defined(__glext_h_) || defined(__glu_h__) || \
    defined(__GLU_H__) || defined(__egl_h_) || defined(__eglext_h_) || defined(GL_VERSION_1_1)
#error "opengl/dglOpenGL.h brings its own GL names and cannot be mixed with <GL/gl.h>, <GL/glu.h> or <EGL/egl.h>"
#endif
// Turn the system headers into no-ops from here on, so that their macros never shadow the names.
#define __gl_h_
#define __GL_H__
#define __glext_h_
#define __gl_glext_h_
#define __glu_h__
#define __GLU_H__
#define __egl_h_
#define __eglext_h_

#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "contracts/Export.h"
#include "opengl/GlApi.h"
#include "opengl/PlatformTypes.h"

namespace dglOpenGL {

// The loaded libraries; nullptr while not loaded.
extern ORVANE_API void* GL_LibHandle;
extern ORVANE_API void* GLU_LibHandle;
// True once ReadExtensions has run.
extern ORVANE_API bool ExtensionsRead;

using TGLVectorub2 = std::array<GLubyte, 2>;
using TGLVectori2 = std::array<GLint, 2>;
using TGLVectorf2 = std::array<GLfloat, 2>;
using TGLVectord2 = std::array<GLdouble, 2>;
using TGLVectorp2 = std::array<void*, 2>;
using TGLVectorub3 = std::array<GLubyte, 3>;
using TGLVectori3 = std::array<GLint, 3>;
using TGLVectorf3 = std::array<GLfloat, 3>;
using TGLVectord3 = std::array<GLdouble, 3>;
using TGLVectorp3 = std::array<void*, 3>;
using TGLVectorub4 = std::array<GLubyte, 4>;
using TGLVectori4 = std::array<GLint, 4>;
using TGLVectorf4 = std::array<GLfloat, 4>;
using TGLVectord4 = std::array<GLdouble, 4>;
using TGLVectorp4 = std::array<void*, 4>;

using TGlMatrixub3 = std::array<TGLVectorub3, 3>;
using TGlMatrixi3 = std::array<TGLVectori3, 3>;
using TGLMatrixf3 = std::array<TGLVectorf3, 3>;
using TGLMatrixd3 = std::array<TGLVectord3, 3>;
using TGlMatrixub4 = std::array<TGLVectorub4, 4>;
using TGlMatrixi4 = std::array<TGLVectori4, 4>;
using TGLMatrixd4 = std::array<TGLVectord4, 4>;

// 4 by 4 singles, 16 in a row in the order glMultMatrixf takes them.
struct ORVANE_API TGLMatrixf4 : std::array<TGLVectorf4, 4> {
    // Makes the identity: all 16 elements 0, then the diagonal 1.
    void Reset();
    GLfloat* Data() { return &(*this)[0][0]; }
    const GLfloat* Data() const { return &(*this)[0][0]; }
};
static_assert(sizeof(TGLMatrixf4) == 16 * sizeof(GLfloat));

// The address of an entry point, or nullptr. A nil handle means GL_LibHandle. With no context
// current a name of the GL registry is given only if it is of GL 1.0 or 1.1; in a context every
// name is given that the library or the driver has. The library answers first, then
// wglGetProcAddress (eglGetProcAddress underneath).
ORVANE_API void* dglGetProcAddress(const char* procName, void* libHandle = nullptr);

// Releases what is loaded, loads both libraries and resolves the WGL and GLU names. True when
// the GL library was loaded; never raises.
ORVANE_API bool InitOpenGL(const std::string& libName, const std::string& gluName);
ORVANE_API void ReadOpenGLCore();
ORVANE_API void ReadExtensions();
// ReadExtensions, unless glGenBuffers and glGenerateMipmap are both set already.
ORVANE_API void QuickReadExtensions();

// The version flags: the current context's version is at least this.
extern ORVANE_API bool GL_VERSION_1_0, GL_VERSION_1_1, GL_VERSION_1_2, GL_VERSION_1_3, GL_VERSION_1_4,
    GL_VERSION_1_5, GL_VERSION_2_0, GL_VERSION_2_1, GL_VERSION_3_0, GL_VERSION_3_1,
    GL_VERSION_3_2, GL_VERSION_3_3, GL_VERSION_4_0, GL_VERSION_4_1, GL_VERSION_4_2,
    GL_VERSION_4_3, GL_VERSION_4_4, GL_VERSION_4_5, GL_VERSION_4_6;
extern ORVANE_API bool GLU_VERSION_1_1, GLU_VERSION_1_2, GLU_VERSION_1_3;
extern ORVANE_API bool ImplementationRead;
extern ORVANE_API int LastPixelFormat;

// The version flags by name, 1.0 first.
struct TVersionFlag {
    const char* Name;
    bool* Value;
};
ORVANE_API std::span<const TVersionFlag> VersionFlags();

struct TGLVersion {
    int Major = 0;
    int Minor = 0;
};
// "4.6.0 NVIDIA 512.15" gives 4 and 6, "OpenGL ES 3.2 Mesa" 3 and 2; anything without a digit
// on both sides of its first full stop gives 0 and 0. Never raises.
ORVANE_API TGLVersion ParseGLVersion(std::string_view text);

// Reads the version flags and the extension flags of the current context.
ORVANE_API void ReadImplementationProperties();
// The extension text of the current context (GL, then EGL client and display extensions), each
// name between blanks, and the whole-word test on it.
ORVANE_API std::string ReadExtensionText();
ORVANE_API bool ExtensionInText(std::string_view text, std::string_view extension);
ORVANE_API bool dglCheckExtension(const std::string& extension);

enum TRCOption { opDoubleBuffered, opGDI, opStereo };
class ORVANE_API TRCOptions {
public:
    TRCOptions() = default;
    TRCOptions(std::initializer_list<TRCOption> options);
    bool Contains(TRCOption option) const { return (FBits & (1u << option)) != 0; }

private:
    unsigned FBits = 0;
};

// The pixel format a rendering context is created with, before the platform maps it.
ORVANE_API orvane::PIXELFORMATDESCRIPTOR RenderingPixelFormat(HDC dc, TRCOptions options, int colorBits,
    int zBits, int stencilBits, int accumBits, int auxBuffers, int layer);

ORVANE_API HGLRC CreateRenderingContext(HDC dc, TRCOptions options, int colorBits, int zBits,
    int stencilBits, int accumBits, int auxBuffers, int layer);
ORVANE_API HGLRC CreateRenderingContextVersion(HDC dc, TRCOptions options, int majorVersion,
    int minorVersion, bool forwardCompatible, int colorBits, int zBits, int stencilBits,
    int accumBits, int auxBuffers, int layer);
ORVANE_API BOOL DestroyRenderingContext(HGLRC rc);
ORVANE_API void ActivateRenderingContext(HDC dc, HGLRC rc, bool loadExtensions = true);
ORVANE_API BOOL DeactivateRenderingContext();

// The library names that CreateRenderingContext loads when nothing is loaded yet; tests
// replace them to reach the missing-library failure.
struct TGLLibraryNames {
    std::string GL;
    std::string GLU;
};
ORVANE_API const TGLLibraryNames& DefaultLibraryNames();
ORVANE_API void SetDefaultLibraryNames(TGLLibraryNames names);

inline constexpr const char* SGLLibraryNotLoaded = "GL_LibHandle is NIL. Could not load OpenGL library!";
inline constexpr const char* SNoCreateContextAttribs = "Could not get function pointer adress for wglCreateContextAttribsARB - OpenGL 3.x and above not supported!";
inline constexpr const char* SContextNotCreated = "Could not create the desired OpenGL rendering context!";

}  // namespace dglOpenGL

namespace orvane {

// Unit start: masks the floating-point exceptions, loads the libraries and reads what they
// export by name. Unit end releases nothing.
void StartUnit_dglOpenGL();
void StopUnit_dglOpenGL();

}  // namespace orvane
