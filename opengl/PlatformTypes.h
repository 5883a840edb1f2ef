// The window-system handles and the pixel format record that the GL side of the system talks
// in. A device context is an interned {EGLDisplay, EGLSurface} pair of the platform layer, a
// rendering context an EGLContext.
#pragma once

#include <cstdint>

namespace orvane {

using BOOL = int;
using PROC = void (*)();

// Defined by the platform layer (opengl/Platform.h).
struct TDeviceContext;
using HDC = TDeviceContext*;
using HGLRC = void*;

// The pixel format request, field for field as the GL side computes it; the platform layer
// maps it onto EGL config attributes.
struct PIXELFORMATDESCRIPTOR {
    std::uint16_t nSize;
    std::uint16_t nVersion;
    std::uint32_t dwFlags;
    std::uint8_t iPixelType;
    std::uint8_t cColorBits;
    std::uint8_t cRedBits;
    std::uint8_t cRedShift;
    std::uint8_t cGreenBits;
    std::uint8_t cGreenShift;
    std::uint8_t cBlueBits;
    std::uint8_t cBlueShift;
    std::uint8_t cAlphaBits;
    std::uint8_t cAlphaShift;
    std::uint8_t cAccumBits;
    std::uint8_t cAccumRedBits;
    std::uint8_t cAccumGreenBits;
    std::uint8_t cAccumBlueBits;
    std::uint8_t cAccumAlphaBits;
    std::uint8_t cDepthBits;
    std::uint8_t cStencilBits;
    std::uint8_t cAuxBuffers;
    std::uint8_t iLayerType;
    std::uint8_t bReserved;
    std::uint32_t dwLayerMask;
    std::uint32_t dwVisibleMask;
    std::uint32_t dwDamageMask;
};
static_assert(sizeof(PIXELFORMATDESCRIPTOR) == 40);

inline constexpr std::uint32_t PFD_DOUBLEBUFFER = 0x00000001;
inline constexpr std::uint32_t PFD_STEREO = 0x00000002;
inline constexpr std::uint32_t PFD_DRAW_TO_WINDOW = 0x00000004;
inline constexpr std::uint32_t PFD_DRAW_TO_BITMAP = 0x00000008;
inline constexpr std::uint32_t PFD_SUPPORT_GDI = 0x00000010;
inline constexpr std::uint32_t PFD_SUPPORT_OPENGL = 0x00000020;
inline constexpr std::uint8_t PFD_TYPE_RGBA = 0;
inline constexpr std::uint8_t PFD_MAIN_PLANE = 0;
inline constexpr std::uint8_t PFD_OVERLAY_PLANE = 1;
inline constexpr std::uint8_t PFD_UNDERLAY_PLANE = 0xFF;

// What GetObjectType answers.
inline constexpr std::uint32_t OBJ_DC = 3;
inline constexpr std::uint32_t OBJ_METADC = 4;
inline constexpr std::uint32_t OBJ_MEMDC = 10;
inline constexpr std::uint32_t OBJ_ENHMETADC = 12;

}  // namespace orvane
