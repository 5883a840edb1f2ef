#include "tests/support/OffscreenGL.h"

#include "opengl/dglOpenGL.h"

namespace orvane::testing {

OffscreenGL::OffscreenGL(int width, int height)
    : FWidth(width), FHeight(height), FDC(CreateOffscreenDC(width, height))
{
    try {
        FRC = dglOpenGL::CreateRenderingContextVersion(FDC, {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        dglOpenGL::ActivateRenderingContext(FDC, FRC, true);
        dglOpenGL::glViewport(0, 0, width, height);
    } catch (...) {
        if (FRC)
            dglOpenGL::DestroyRenderingContext(FRC);
        DeleteOffscreenDC(FDC);
        throw;
    }
}

OffscreenGL::~OffscreenGL()
{
    if (wglGetCurrentContext() == FRC)
        dglOpenGL::DeactivateRenderingContext();
    dglOpenGL::DestroyRenderingContext(FRC);
    DeleteOffscreenDC(FDC);
}

std::vector<std::uint8_t> OffscreenGL::Read(int x, int y, int width, int height) const
{
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    dglOpenGL::glPixelStorei(dglOpenGL::GL_PACK_ALIGNMENT, 1);
    dglOpenGL::glReadPixels(x, y, width, height, dglOpenGL::GL_RGBA, dglOpenGL::GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

}  // namespace orvane::testing
