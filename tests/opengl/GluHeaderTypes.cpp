// Only this file of the GL tests sees the system's GLU header: it is the reference that the
// hand-written GLU function types are compared with.
#include <GL/glu.h>

#include <typeinfo>

#include "tests/opengl/GluNames.h"

namespace orvane::testing {

std::map<std::string, std::string> GluHeaderTypes()
{
    std::map<std::string, std::string> types;
#define ORVANE_HEADER_TYPE(fn) types[#fn] = typeid(decltype(&::fn)).name();
    ORVANE_GLU_FUNCTIONS(ORVANE_HEADER_TYPE)
#undef ORVANE_HEADER_TYPE
    return types;
}

}  // namespace orvane::testing
