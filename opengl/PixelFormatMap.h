// How a PIXELFORMATDESCRIPTOR becomes a request for an EGL config: one row for every field,
// naming the attribute it becomes or why it is computed and then ignored.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "opengl/PlatformTypes.h"

namespace orvane {

struct TConfigRequest {
    std::vector<std::int32_t> Attributes;  // EGL attribute pairs, without the closing EGL_NONE
    int ExactChannelBits = 0;  // red, green and blue must have exactly this many bits; 0: any
    bool ExactAlpha = false;  // alpha must have ExactChannelBits too
};

struct TPixelFormatField {
    const char* Field;
    const char* Fate;  // the EGL attribute it becomes, or "computed, ignored: <why>"
    void (*Apply)(const PIXELFORMATDESCRIPTOR& pfd, TConfigRequest& request);  // nullptr: ignored
};

std::span<const TPixelFormatField> PixelFormatFields();

// Every row applied in turn.
TConfigRequest ConfigRequest(const PIXELFORMATDESCRIPTOR& pfd);

}  // namespace orvane
