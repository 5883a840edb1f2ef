// A list of text lines, as the shader stages hold their sources.
#pragma once

#include <string>
#include <vector>

#include "contracts/Export.h"

namespace orvane {

class ORVANE_API TStringList {
public:
    int Count() const noexcept { return static_cast<int>(FLines.size()); }
    const std::string& operator[](int index) const;
    void Add(std::string line) { FLines.push_back(std::move(line)); }
    void Clear() noexcept { FLines.clear(); }
    // Replaces the lines with those of source; this list object stays.
    void Assign(const TStringList& source) { FLines = source.FLines; }

    // The lines joined, each one ended by CR LF.
    std::string Text() const;
    // Splits bytes into lines at CR LF, LF or CR; a line end at the very end adds no line.
    void SetText(const std::string& bytes);

private:
    std::vector<std::string> FLines;
};

using TStrings = TStringList;

}  // namespace orvane
