// The WGL names that the platform layer answers.
#include "opengl/Platform.h"

namespace orvane {

PROC PlatformWGLFunction(const char*)
{
    return nullptr;
}

}  // namespace orvane

namespace orvane {

int ChoosePixelFormat(HDC, const PIXELFORMATDESCRIPTOR*)
{
    return 0;
}

}  // namespace orvane
