#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "shaders/ShaderResources.h"

namespace orvane {
namespace {

std::string FileBytes(const std::string& name)
{
    std::ifstream file(std::string(ORVANE_SOURCE_DIR) + "/shaders/" + name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

TEST(ShaderResources, AreTheSourceFilesByteForByteFoundInAnyCase)
{
    for (const auto& [name, file] : {std::pair{"VertShader", "VertShader.glsl"}, {"FragShader", "FragShader.glsl"}}) {
        const std::string bytes = TResourceStream(name, RT_RCDATA).Bytes();
        EXPECT_EQ(bytes, FileBytes(file)) << name;
        EXPECT_EQ(bytes.rfind("#version 330 core\r\n", 0), 0u) << name;
        // CR LF line ends only, no terminating zero, no byte-order mark.
        EXPECT_EQ(bytes.substr(bytes.size() - 2), "\r\n");
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == '\n') {
                ASSERT_EQ(bytes[i - 1], '\r') << name << " at " << i;
            }
        }
        EXPECT_EQ(bytes.find('\0'), std::string::npos);
    }
    EXPECT_EQ(TResourceStream("VERTSHADER", RT_RCDATA).Bytes(), TResourceStream("vertshader", RT_RCDATA).Bytes());
    // The lamps turn by this value of pi, not the true one.
    EXPECT_NE(TResourceStream("FragShader", RT_RCDATA).Bytes().find("const float PI = 3.14158265359;"),
              std::string::npos);
}

TEST(ShaderResources, AMissingResourceRaisesAndTheFinderCanBeReplaced)
{
    try {
        TResourceStream("NoShader", RT_RCDATA);
        FAIL() << "no exception";
    } catch (const EResNotFound& e) {
        EXPECT_STREQ(e.what(), "Resource NoShader not found");
    }
    EXPECT_THROW(TResourceStream("VertShader", 3), EResNotFound);

    auto previous = SetResourceFinder([](const std::string& name, Cardinal, std::string& bytes) {
        bytes = "test " + name;
        return true;
    });
    EXPECT_EQ(TResourceStream("VertShader", RT_RCDATA).Bytes(), "test VertShader");
    SetResourceFinder(previous);
    EXPECT_EQ(TResourceStream("VertShader", RT_RCDATA).Bytes(), FileBytes("VertShader.glsl"));
}

}  // namespace
}  // namespace orvane
