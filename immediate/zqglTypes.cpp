#include "immediate/zqglTypes.h"

namespace orvane {

void FloatDynArrayToDynGLFloat(const std::vector<double>& Source, TDynGLFloat& Result)
{
    Result.assign(Source.size(), 0.0f);
    for (std::size_t i = 0; i < Source.size(); ++i)
        Result[i] = static_cast<float>(Source[i]);
}

}  // namespace orvane
