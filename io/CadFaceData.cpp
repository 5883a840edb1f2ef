#include "io/CadFaceData.h"

namespace orvane::io {

double NurbsSurfaceData::Weight(int I, int J) const
{
    return Weights.empty() ? 1.0 : Weights[static_cast<std::size_t>(I) * CountV + J];
}

TRect2D NurbsSurfaceData::Domain() const
{
    return {{KnotsU.front(), KnotsV.front()}, {KnotsU.back(), KnotsV.back()}};
}

}  // namespace orvane::io
