// The lighting model of the mesh program, computed on the CPU in double precision, so that
// the pixels the GPU writes can be checked one by one.
#pragma once

#include <cstdint>

namespace orvane::testing {

struct Vec3 {
    double X = 0.0;
    double Y = 0.0;
    double Z = 0.0;
};

// What the fragment stage receives from the draw call.
struct ShadingUniforms {
    Vec3 EyePos;
    Vec3 HeadDir;
    Vec3 ObjColor;
};

// The colour of one fragment at lighting position fragPos, whose interpolated normal is
// normal (any length), before any clamping.
Vec3 ShadeFragment(const ShadingUniforms& uniforms, const Vec3& fragPos, const Vec3& normal);

// A colour channel as an 8-bit framebuffer stores it: clamped to [0, 1], then rounded.
std::uint8_t ToFramebufferByte(double channel);

}  // namespace orvane::testing
