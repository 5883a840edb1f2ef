// Handles of the GL objects that hold mesh data: vertex arrays and buffers. Each operation
// makes exactly the GL call its name says; which object is bound when is the caller's.
#pragma once

#include <cstdint>

#include "contracts/Export.h"
#include "gl_objects/uGLHandleObj.h"

namespace orvane {

// Part of the unit's public surface; nothing in the system raises it.
class ORVANE_API EVAOException : public Exception {
public:
    using Exception::Exception;
};

class ORVANE_API TGLVAOObject : public TGLHandleObject {
public:
    ~TGLVAOObject() override;
    void Bind();
    void UnBind();

protected:
    // 0 when the driver offers no vertex array objects, so that AllocateHandle raises.
    Cardinal DoAllocateHandle() override;
    void DoDestroyHandle() override;
};

class ORVANE_API TGLBufferObject : public TGLHandleObject {
public:
    ~TGLBufferObject() override;

    // Bytes given to the latest BufferData; the only record of the contents on this side.
    std::int32_t Size() const noexcept { return FSize; }
    Cardinal Target() const { return GetTarget(); }

    void Bind();
    void UnBind();
    // Replaces the store of the buffer bound to Target; FSize is set first.
    void BufferData(const void* P, std::int32_t Size, Cardinal BufferUsage);
    void BufferSubData(const void* P, std::int32_t Offset, std::int32_t Size);

protected:
    virtual Cardinal GetTarget() const = 0;
    Cardinal DoAllocateHandle() override;
    void DoDestroyHandle() override;

private:
    std::int32_t FSize = 0;
};

// Vertex attribute data: GL_ARRAY_BUFFER.
class ORVANE_API TGLVBOObject : public TGLBufferObject {
protected:
    Cardinal GetTarget() const override;
};

// Triangle indices: GL_ELEMENT_ARRAY_BUFFER.
class ORVANE_API TGLEBOObject : public TGLBufferObject {
protected:
    Cardinal GetTarget() const override;
};

}  // namespace orvane
