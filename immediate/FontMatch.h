// Finds the font file of a family name through fontconfig.
#pragma once

#include <string>

namespace orvane {

struct TFontFile {
    std::string Path;
    int FaceIndex = 0;
};

// The installed font of the family AFamilyName at APointSize. fontconfig always answers with
// some font, so the answer counts only when one of the matched font's family names equals the
// name asked for, ignoring case. The name is a family, never parsed ("DejaVu Sans-12" is no
// size). Two kinds of name skip that comparison and take fontconfig's choice: an empty name
// means the default sans-serif family, and a generic name ("sans-serif", "Sans", "serif",
// "monospace", "mono", ...) asks for whatever font the system has set up for that role.
// Raises Exception "Font not found: <name>" otherwise.
TFontFile FindFontFile(const std::string& AFamilyName, int APointSize);

}  // namespace orvane
