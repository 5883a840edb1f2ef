// Saves every GL, GLU and WGL entry-point variable, flag and library handle and puts them back
// at the end of a test that loads, frees or fakes them wholesale. The EGL variables belong to
// the platform layer, which loads them once, and are left alone.
#pragma once

#include <vector>

namespace orvane::testing {

class GlTableSnapshot {
public:
    GlTableSnapshot();
    ~GlTableSnapshot();
    GlTableSnapshot(const GlTableSnapshot&) = delete;
    GlTableSnapshot& operator=(const GlTableSnapshot&) = delete;

private:
    std::vector<std::pair<void*, void*>> FSlots;
    std::vector<std::pair<bool*, bool>> FFlags;
    void* FGLLib;
    void* FGLULib;
    int FLastPixelFormat;
};

}  // namespace orvane::testing
