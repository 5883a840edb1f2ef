// The GLU function types are written by hand; each must be the type the GLU library has, or a
// call through the variable passes its arguments wrongly.
#include <gtest/gtest.h>

#include <cxxabi.h>

#include <cstdlib>
#include <typeinfo>

#include "opengl/dglOpenGL.h"
#include "tests/opengl/GluNames.h"

namespace orvane {
namespace {

// The type in words, without the namespace of the opaque GLU records: dglOpenGL::GLUnurbs
// names the same record as the header's GLUnurbs.
std::string Readable(const char* mangled)
{
    int status = 0;
    char* text = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    std::string readable = status == 0 ? text : mangled;
    std::free(text);
    for (auto at = readable.find("dglOpenGL::"); at != std::string::npos; at = readable.find("dglOpenGL::"))
        readable.erase(at, 11);
    return readable;
}

TEST(GluTypes, EveryHandWrittenTypeIsTheLibraryHeadersType)
{
    const auto header = testing::GluHeaderTypes();
    ASSERT_EQ(header.size(), 52u);
#define ORVANE_COMPARE_TYPE(fn) EXPECT_EQ(Readable(typeid(dglOpenGL::T##fn).name()), Readable(header.at(#fn).c_str()));
    ORVANE_GLU_FUNCTIONS(ORVANE_COMPARE_TYPE)
#undef ORVANE_COMPARE_TYPE
}

}  // namespace
}  // namespace orvane
