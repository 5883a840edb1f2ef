#include <GL/glu.h>

#include <typeinfo>

#include "tests/opengl/GluNames.h"

std::map<std::string, std::string> orvane::testing::GluHeaderTypes()
{
    std::map<std::string, std::string> types;
#define ORVANE_HEADER_TYPE(fn) types[#fn] = typeid(decltype(&::fn)).name();
    ORVANE_GLU_FUNCTIONS(ORVANE_HEADER_TYPE)
#undef ORVANE_HEADER_TYPE
    return types;
}
