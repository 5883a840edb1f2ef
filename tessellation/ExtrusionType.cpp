#include "tessellation/ExtrusionType.h"

namespace orvane {

const char* ExtrusionTypeName(TExtrusionType AType)
{
    switch (AType) {
    case TExtrusionType::VDir: return "VDir";
    case TExtrusionType::UDir: return "UDir";
    case TExtrusionType::UVDir: return "UVDir";
    case TExtrusionType::NotExtrusion: return "NotExtrusion";
    }
    return "?";
}

}  // namespace orvane
