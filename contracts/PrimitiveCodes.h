// OpenGL primitive codes as they travel between the tessellators and their callers.
// They are plain numbers here so that GL-free code can name them; where the system's GL
// header has defined them as macros already, those (equal) values stand.
#pragma once

#include "contracts/SysUtils.h"

namespace orvane {

#ifndef GL_LINES
inline constexpr Cardinal GL_LINES = 0x0001;
#endif
#ifndef GL_LINE_STRIP
inline constexpr Cardinal GL_LINE_STRIP = 0x0003;
#endif
#ifndef GL_TRIANGLES
inline constexpr Cardinal GL_TRIANGLES = 0x0004;
#endif
#ifndef GL_TRIANGLE_STRIP
inline constexpr Cardinal GL_TRIANGLE_STRIP = 0x0005;
#endif
#ifndef GL_TRIANGLE_FAN
inline constexpr Cardinal GL_TRIANGLE_FAN = 0x0006;
#endif
#ifndef GL_QUADS
inline constexpr Cardinal GL_QUADS = 0x0007;
#endif
#ifndef GL_QUAD_STRIP
inline constexpr Cardinal GL_QUAD_STRIP = 0x0008;
#endif

}  // namespace orvane
