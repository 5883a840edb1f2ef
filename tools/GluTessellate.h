// The GLU road of `orvane tessellate`: a headless context, a view fitted to the surface, and
// the GLU surface triangulator. GLU samples in pixels of the current view (tolerance 60 px,
// or the trimmed-surface rule), so the size of the view decides how fine the mesh is.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "contracts/Cadgeometry.h"

namespace orvane::tools {

struct TGluViewSize {
    int Width = 1024;
    int Height = 1024;
};

// Parses "WxH" (e.g. "1024x1024"); raises std::runtime_error for anything else.
TGluViewSize ParseViewSize(const std::string& Text);

// Adds --size WxH to the command; the value is read by GluTessellate.
void AddGluViewSizeOption(CLI::App& Command);

// Triangulates (or, with Quads, quadrilateralizes) the surface through GLU inside a headless
// context with a view of the --size given, fitted so that the surface spans it. Fills Tri and
// Norm, the seconds the triangulator took, and returns a line about the view.
std::string GluTessellate(const TGeSurface& Surface, bool Quads, TFloatDynArray& Tri, TFloatDynArray& Norm,
                          double& Seconds);

}  // namespace orvane::tools
