// A current OpenGL 3.3 compatibility context on an offscreen device context, for the length of
// a test: made through CreateRenderingContextVersion, activated with the entry points read,
// the viewport set to the whole surface.
//
//   orvane::testing::OffscreenGL gl(64, 64);
//   ... draw ...
//   auto rgba = gl.ReadPixels();  // bottom row first
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "opengl/Platform.h"

namespace orvane::testing {

class OffscreenGL {
public:
    OffscreenGL(int width, int height);
    ~OffscreenGL();
    OffscreenGL(const OffscreenGL&) = delete;
    OffscreenGL& operator=(const OffscreenGL&) = delete;

    HDC DC() const { return FDC; }
    HGLRC RC() const { return FRC; }
    // Makes this context current again (after another was).
    void MakeCurrent() const { wglMakeCurrent(FDC, FRC); }
    // RGBA bytes of the whole surface, bottom row first.
    std::vector<std::uint8_t> ReadPixels() const { return Read(0, 0, FWidth, FHeight); }
    std::array<std::uint8_t, 4> Pixel(int x, int y) const
    {
        const auto rgba = Read(x, y, 1, 1);
        return {rgba[0], rgba[1], rgba[2], rgba[3]};
    }

private:
    std::vector<std::uint8_t> Read(int x, int y, int width, int height) const;

    int FWidth;
    int FHeight;
    HDC FDC = nullptr;
    HGLRC FRC = nullptr;
};

}  // namespace orvane::testing
