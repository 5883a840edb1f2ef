#include "immediate/FontMatch.h"

#include <fontconfig/fontconfig.h>

#include <array>
#include <memory>

#include "contracts/SysUtils.h"

namespace orvane {

namespace {

struct PatternDeleter {
    void operator()(FcPattern* APattern) const { FcPatternDestroy(APattern); }
};
using TPatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;

// The family fontconfig reads for an empty name: TFont's default is a sans-serif face.
constexpr const char* kDefaultFamily = "sans-serif";

const FcChar8* AsFc(const std::string& AText)
{
    return reinterpret_cast<const FcChar8*>(AText.c_str());
}

bool IsGenericFamily(const std::string& AName)
{
    static constexpr std::array<const char*, 8> kGeneric{
        "sans-serif", "sans", "serif", "monospace", "mono", "cursive", "fantasy", "system-ui"};
    for (const char* generic : kGeneric)
        if (FcStrCmpIgnoreCase(AsFc(AName), reinterpret_cast<const FcChar8*>(generic)) == 0) return true;
    return false;
}

bool HasFamily(FcPattern* AMatch, const std::string& AName)
{
    FcChar8* family = nullptr;
    for (int i = 0; FcPatternGetString(AMatch, FC_FAMILY, i, &family) == FcResultMatch; ++i)
        if (FcStrCmpIgnoreCase(family, AsFc(AName)) == 0) return true;
    return false;
}

TPatternPtr MatchFamily(const std::string& AFamily, int APointSize)
{
    TPatternPtr pattern(FcPatternCreate());
    if (!pattern) throw Exception("Out of memory");
    FcPatternAddString(pattern.get(), FC_FAMILY, AsFc(AFamily));
    FcPatternAddDouble(pattern.get(), FC_SIZE, APointSize);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    return TPatternPtr(FcFontMatch(nullptr, pattern.get(), &result));
}

}  // namespace

TFontFile FindFontFile(const std::string& AFamilyName, int APointSize)
{
    const bool anyFont = AFamilyName.empty() || IsGenericFamily(AFamilyName);
    TPatternPtr match = MatchFamily(AFamilyName.empty() ? kDefaultFamily : AFamilyName, APointSize);
    FcChar8* file = nullptr;
    if (!match || (!anyFont && !HasFamily(match.get(), AFamilyName)) ||
        FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch)
        throw Exception("Font not found: " + AFamilyName);
    TFontFile font;
    font.Path = reinterpret_cast<const char*>(file);
    if (FcPatternGetInteger(match.get(), FC_INDEX, 0, &font.FaceIndex) != FcResultMatch) font.FaceIndex = 0;
    return font;
}

}  // namespace orvane
