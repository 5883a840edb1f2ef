// Loading of the dglOpenGL variables: the libraries, the loading rule and the Read_ order.
#include "opengl/dglOpenGL.h"

#include <dlfcn.h>

#include <fenv.h>
#if defined(__x86_64__) || defined(__i386__)
#include <xmmintrin.h>
#endif

#include "opengl/GlRegistry.h"
#include "opengl/Platform.h"

namespace dglOpenGL {

void* GL_LibHandle = nullptr;
void* GLU_LibHandle = nullptr;
bool ExtensionsRead = false;

namespace {

constexpr const char* kGLLibrary = "libGL.so.1";
constexpr const char* kGLULibrary = "libGLU.so.1";

// The 21 WGL variables that InitOpenGL fills, in its order; the last two take the A forms.
constexpr const char* kInitWGLNames[][2] = {
    {"wglCopyContext", "wglCopyContext"}, {"wglCreateLayerContext", "wglCreateLayerContext"},
    {"wglCreateContext", "wglCreateContext"}, {"wglDeleteContext", "wglDeleteContext"},
    {"wglDescribeLayerPlane", "wglDescribeLayerPlane"},
    {"wglGetCurrentContext", "wglGetCurrentContext"}, {"wglGetCurrentDC", "wglGetCurrentDC"},
    {"wglGetLayerPaletteEntries", "wglGetLayerPaletteEntries"},
    {"wglGetProcAddress", "wglGetProcAddress"}, {"wglMakeCurrent", "wglMakeCurrent"},
    {"wglRealizeLayerPalette", "wglRealizeLayerPalette"},
    {"wglSetLayerPaletteEntries", "wglSetLayerPaletteEntries"},
    {"wglShareLists", "wglShareLists"}, {"wglSwapLayerBuffers", "wglSwapLayerBuffers"},
    {"wglSwapMultipleBuffers", "wglSwapMultipleBuffers"},
    {"wglUseFontBitmapsA", "wglUseFontBitmapsA"}, {"wglUseFontOutlinesA", "wglUseFontOutlinesA"},
    {"wglUseFontBitmapsW", "wglUseFontBitmapsW"}, {"wglUseFontOutlinesW", "wglUseFontOutlinesW"},
    {"wglUseFontBitmaps", "wglUseFontBitmapsA"}, {"wglUseFontOutlines", "wglUseFontOutlinesA"},
};

void* FindWGLSlot(const char* variable)
{
    for (const auto& slot : registry::WGLCommands())
        if (std::string_view(slot.Name) == variable)
            return slot.Slot;
    return nullptr;
}

void Release(void*& handle)
{
    if (handle)
        dlclose(handle);
    handle = nullptr;
}

void* Load(const std::string& name)
{
    return name.empty() ? nullptr : dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
}

// The WGL names come from the EGL platform layer, which stands where the GL library's WGL
// exports stand on Windows; those without an EGL meaning stay nil.
void ResolveWGL()
{
    for (const auto& [variable, name] : kInitWGLNames)
        registry::SetSlot(FindWGLSlot(variable),
                          reinterpret_cast<void*>(orvane::PlatformWGLFunction(name)));
}

// With no context current only OpenGL 1.0 and 1.1 are taken: libGL exports every name
// whatever the driver, and a later function works only in a context that has it. In a context,
// whatever the library or the driver gives is taken.
bool Gated(const registry::TGLCommand& command)
{
    return !orvane::wglGetCurrentContext() && command.Version != 10 && command.Version != 11;
}

void ResolveGLU()
{
    for (const auto& slot : registry::GLUCommands())
        registry::SetSlot(slot.Slot, dglGetProcAddress(slot.Name, GLU_LibHandle));
}

}  // namespace

void TGLMatrixf4::Reset()
{
    for (auto& row : *this)
        row.fill(0.0f);
    for (std::size_t i = 0; i < 4; ++i)
        (*this)[i][i] = 1.0f;
}

void* dglGetProcAddress(const char* procName, void* libHandle)
{
    if (!libHandle)
        libHandle = GL_LibHandle;
    if (const auto* command = registry::FindGLCommand(procName); command && Gated(*command))
        return nullptr;
    void* proc = libHandle ? dlsym(libHandle, procName) : nullptr;
    if (!proc && wglGetProcAddress)
        proc = reinterpret_cast<void*>(wglGetProcAddress(procName));
    return proc;
}

bool InitOpenGL(const std::string& libName, const std::string& gluName)
{
    // The new libraries are opened before the held ones are released, so that a library named
    // again stays mapped and the variables that point into it stay valid meanwhile.
    void* gl = Load(libName);
    void* glu = Load(gluName);
    Release(GL_LibHandle);
    Release(GLU_LibHandle);
    GL_LibHandle = gl;
    GLU_LibHandle = glu;
    if (GL_LibHandle)
        ResolveWGL();
    if (GLU_LibHandle)
        ResolveGLU();
    return GL_LibHandle != nullptr;
}

void ReadOpenGLCore()
{
    Read_GL_1_0(); Read_GL_1_1(); Read_GL_1_2(); Read_GL_1_3(); Read_GL_1_4(); Read_GL_1_5();
    Read_GL_2_0(); Read_GL_2_1();

    Read_GL_3_0();
    Read_GL_ARB_framebuffer_object(); Read_GL_ARB_map_buffer_range();
    Read_GL_ARB_vertex_array_object();
    Read_GL_3_1();
    Read_GL_ARB_copy_buffer(); Read_GL_ARB_uniform_buffer_object();
    Read_GL_3_2();
    Read_GL_ARB_draw_elements_base_vertex(); Read_GL_ARB_provoking_vertex(); Read_GL_ARB_sync();
    Read_GL_ARB_texture_multisample();
    Read_GL_3_3();
    Read_GL_ARB_blend_func_extended(); Read_GL_ARB_sampler_objects(); Read_GL_ARB_timer_query();
    Read_GL_ARB_vertex_type_2_10_10_10_rev();
    Read_GL_4_0();
    Read_GL_ARB_draw_indirect(); Read_GL_ARB_gpu_shader_fp64(); Read_GL_ARB_shader_subroutine();
    Read_GL_ARB_tessellation_shader(); Read_GL_ARB_transform_feedback2();
    Read_GL_ARB_transform_feedback3();
    Read_GL_4_1();
    Read_GL_ARB_ES2_compatibility(); Read_GL_ARB_get_program_binary();
    Read_GL_ARB_separate_shader_objects(); Read_GL_ARB_vertex_attrib_64bit();
    Read_GL_ARB_viewport_array();
    Read_GL_4_2();
    Read_GL_ARB_base_instance(); Read_GL_ARB_transform_feedback_instanced();
    Read_GL_ARB_internalformat_query(); Read_GL_ARB_shader_atomic_counters();
    Read_GL_ARB_shader_image_load_store(); Read_GL_ARB_texture_storage();
    Read_GL_4_3();
    Read_GL_ARB_clear_buffer_object(); Read_GL_ARB_compute_shader(); Read_GL_ARB_copy_image();
    Read_GL_KHR_debug(); Read_GL_ARB_framebuffer_no_attachments();
    Read_GL_ARB_internalformat_query2(); Read_GL_ARB_invalidate_subdata();
    Read_GL_ARB_multi_draw_indirect(); Read_GL_ARB_program_interface_query();
    Read_GL_ARB_shader_storage_buffer_object(); Read_GL_ARB_texture_buffer_range();
    Read_GL_ARB_texture_storage_multisample(); Read_GL_ARB_texture_view();
    Read_GL_ARB_vertex_attrib_binding();
    Read_GL_4_4(); Read_GL_4_5(); Read_GL_4_6();
}

void ReadExtensions()
{
    ReadOpenGLCore();
    for (const auto& group : registry::ExtensionReads())
        group.Read();
    ExtensionsRead = true;
}

void QuickReadExtensions()
{
    if (!glGenBuffers || !glGenerateMipmap)
        ReadExtensions();
}

namespace {

TGLLibraryNames& LibraryNames()
{
    static TGLLibraryNames names{kGLLibrary, kGLULibrary};
    return names;
}

}  // namespace

const TGLLibraryNames& DefaultLibraryNames()
{
    return LibraryNames();
}

void SetDefaultLibraryNames(TGLLibraryNames names)
{
    LibraryNames() = std::move(names);
}

}  // namespace dglOpenGL

namespace orvane {

namespace {

// All floating-point exceptions masked, the denormal one included where the CPU has it.
void MaskFloatingPointExceptions()
{
    fedisableexcept(FE_ALL_EXCEPT);
#if defined(__x86_64__) || defined(__i386__)
    _mm_setcsr(_mm_getcsr() | 0x0100u);
    unsigned short control = 0;
    asm volatile("fnstcw %0" : "=m"(control));
    control |= 0x0002u;
    asm volatile("fldcw %0" : : "m"(control));
#endif
}

}  // namespace

void StartUnit_dglOpenGL()
{
    MaskFloatingPointExceptions();
    dglOpenGL::InitOpenGL(dglOpenGL::DefaultLibraryNames().GL, dglOpenGL::DefaultLibraryNames().GLU);
    dglOpenGL::ReadExtensions();
}

void StopUnit_dglOpenGL()
{
    // The libraries stay loaded until the process ends.
}

}  // namespace orvane
