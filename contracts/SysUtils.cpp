#include "contracts/SysUtils.h"

namespace orvane {

std::string AssertionText(const std::string& message, const char* unit, int line)
{
    return message + " (" + unit + ", line " + std::to_string(line) + ")";
}

void AssertFailed(const std::string& message, const char* unit, int line)
{
    throw EAssertionFailed(AssertionText(message, unit, line));
}

}  // namespace orvane
