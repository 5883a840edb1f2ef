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
    int Width() const { return FWidth; }
    int Height() const { return FHeight; }

    // Makes this context current again (after another was).
    void MakeCurrent() const;
    // RGBA bytes of the whole surface, bottom row first.
    std::vector<std::uint8_t> ReadPixels() const;
    std::array<std::uint8_t, 4> Pixel(int x, int y) const;

private:
    int FWidth;
    int FHeight;
    HDC FDC = nullptr;
    HGLRC FRC = nullptr;
};

}  // namespace orvane::testing
