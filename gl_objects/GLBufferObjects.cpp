#include "gl_objects/GLBufferObjects.h"

#include "opengl/dglOpenGL.h"

namespace orvane {
namespace {

// 32-bit sizes and offsets reach GL's pointer-sized types as non-negative numbers.
dglOpenGL::GLsizeiptr Widen(std::int32_t value)
{
    return static_cast<dglOpenGL::GLsizeiptr>(static_cast<std::uint32_t>(value));
}

}  // namespace

// --- TGLVAOObject -------------------------------------------------------------------------

TGLVAOObject::~TGLVAOObject() { DestroyHandle(); }

Cardinal TGLVAOObject::DoAllocateHandle()
{
    dglOpenGL::GLuint name = 0;
    if (dglOpenGL::glGenVertexArrays) dglOpenGL::glGenVertexArrays(1, &name);
    return name;
}

void TGLVAOObject::DoDestroyHandle() { dglOpenGL::glDeleteVertexArrays(1, &FHandle); }

void TGLVAOObject::Bind() { dglOpenGL::glBindVertexArray(FHandle); }

void TGLVAOObject::UnBind() { dglOpenGL::glBindVertexArray(0); }

// --- TGLBufferObject ----------------------------------------------------------------------

TGLBufferObject::~TGLBufferObject() { DestroyHandle(); }

Cardinal TGLBufferObject::DoAllocateHandle()
{
    dglOpenGL::GLuint name = 0;
    dglOpenGL::glGenBuffers(1, &name);
    return name;
}

void TGLBufferObject::DoDestroyHandle() { dglOpenGL::glDeleteBuffers(1, &FHandle); }

void TGLBufferObject::Bind() { dglOpenGL::glBindBuffer(Target(), FHandle); }

void TGLBufferObject::UnBind() { dglOpenGL::glBindBuffer(Target(), 0); }

void TGLBufferObject::BufferData(const void* P, std::int32_t Size, Cardinal BufferUsage)
{
    FSize = Size;
    dglOpenGL::glBufferData(Target(), Widen(Size), P, BufferUsage);
}

void TGLBufferObject::BufferSubData(const void* P, std::int32_t Offset, std::int32_t Size)
{
    dglOpenGL::glBufferSubData(Target(), static_cast<dglOpenGL::GLintptr>(Widen(Offset)), Widen(Size), P);
}

Cardinal TGLVBOObject::GetTarget() const { return dglOpenGL::GL_ARRAY_BUFFER; }

Cardinal TGLEBOObject::GetTarget() const { return dglOpenGL::GL_ELEMENT_ARRAY_BUFFER; }

}  // namespace orvane
