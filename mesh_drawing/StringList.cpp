#include "mesh_drawing/StringList.h"

#include "contracts/SysUtils.h"

namespace orvane {

const std::string& TStringList::operator[](int index) const
{
    if (index < 0 || index >= Count()) throw EArgumentOutOfRangeException(SArgumentOutOfRange);
    return FLines[static_cast<std::size_t>(index)];
}

std::string TStringList::Text() const
{
    std::string text;
    for (const std::string& line : FLines) text.append(line).append("\r\n");
    return text;
}

void TStringList::SetText(const std::string& bytes)
{
    FLines.clear();
    std::size_t start = 0;
    while (start < bytes.size()) {
        std::size_t end = bytes.find_first_of("\r\n", start);
        if (end == std::string::npos) end = bytes.size();
        FLines.push_back(bytes.substr(start, end - start));
        if (end < bytes.size() && bytes[end] == '\r' && end + 1 < bytes.size() && bytes[end + 1] == '\n') ++end;
        start = end + 1;
    }
}

}  // namespace orvane
