// How a surface is straight, as the classification finds it, and the sampling constant of the
// quad road.
#pragma once

#include <cstdint>

#include "contracts/Export.h"

namespace orvane {

// Decides the UV sampling, whether U and V are exchanged in the tessellation plane (UDir only:
// there X is V and Y is U) and how normals are built.
enum class TExtrusionType : std::uint8_t {
    VDir = 0,          // straight along V only
    UDir = 1,          // straight along U only
    UVDir = 2,         // straight along both: one surface normal for a whole view unit
    NotExtrusion = 3,  // straight along neither, or not testable: flat normals only
};

// The name as it is written in code, e.g. "VDir".
ORVANE_API const char* ExtrusionTypeName(TExtrusionType AType);

// The quad road's base sample range in UV parameter units.
inline constexpr double DefaultSampleRange = 0.1;

}  // namespace orvane
