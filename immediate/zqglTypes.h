// Single-precision records and dynamic arrays that travel towards OpenGL: points with two,
// three or four coordinates, colours, one interleaved vertex of the GL_C4UB_V2F format, and
// the flat float arrays of the meshes. GL-free, so that code without a context can use them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "contracts/Export.h"

namespace orvane {

struct TGLPoint2D {
    float X = 0.0f;
    float Y = 0.0f;
};

// A point of a trim curve: X, Y and the weight (1 for a polyline point).
struct TGLPointW2D {
    float X = 0.0f;
    float Y = 0.0f;
    float W = 0.0f;
};

struct TGLPoint3D {
    float X = 0.0f;
    float Y = 0.0f;
    float Z = 0.0f;
};

// A homogeneous control point: X, Y, Z already multiplied by the weight W.
struct TGLPoint4D {
    float X = 0.0f;
    float Y = 0.0f;
    float Z = 0.0f;
    float W = 0.0f;
};

struct TGLColorRGBA {
    float R = 0.0f;
    float G = 0.0f;
    float B = 0.0f;
    float A = 0.0f;
};

struct TGLDPoint4D {
    double X = 0.0;
    double Y = 0.0;
    double Z = 0.0;
    double W = 0.0;
};

// One vertex of the interleaved format GL_C4UB_V2F: four colour bytes, then X and Y.
struct TGLColor4UB2V {
    std::uint8_t R = 0;
    std::uint8_t G = 0;
    std::uint8_t B = 0;
    std::uint8_t A = 0;
    float X = 0.0f;
    float Y = 0.0f;
};

// The records are handed to OpenGL and GLU as arrays of floats (or bytes and floats), so
// their layout must have no padding.
static_assert(sizeof(TGLPoint2D) == 2 * sizeof(float));
static_assert(sizeof(TGLPointW2D) == 3 * sizeof(float));
static_assert(sizeof(TGLPoint3D) == 3 * sizeof(float));
static_assert(sizeof(TGLPoint4D) == 4 * sizeof(float));
static_assert(sizeof(TGLColorRGBA) == 4 * sizeof(float));
static_assert(sizeof(TGLDPoint4D) == 4 * sizeof(double));
static_assert(sizeof(TGLColor4UB2V) == 12);
static_assert(offsetof(TGLColor4UB2V, X) == 4);

// A point of the screen in whole pixels.
struct TPoint {
    std::int32_t X = 0;
    std::int32_t Y = 0;
};

// A colour 00BBGGRR: the low byte is red, then green, then blue; the top byte is ignored.
using TColor = std::uint32_t;

using PGLPoint2D = TGLPoint2D*;
using PGLPointW2D = TGLPointW2D*;
using PGLPoint3D = TGLPoint3D*;
using PGLPoint4D = TGLPoint4D*;
using PGLColorRGBA = TGLColorRGBA*;

using TDynGLPoint2D = std::vector<TGLPoint2D>;
using TDynGLPointW2D = std::vector<TGLPointW2D>;
using TDynGLPoint3D = std::vector<TGLPoint3D>;
using TDynGLPoint4D = std::vector<TGLPoint4D>;
using TDynGLDPoint4D = std::vector<TGLDPoint4D>;
using TDynGLFloat = std::vector<float>;
using TDynGLDouble = std::vector<double>;
// Holds doubles, not integers, despite its name.
using TDynGLint = std::vector<double>;
using TDynGLinteger = std::vector<std::int32_t>;

// Result becomes a new array of Source's length, each double rounded to single. Whatever
// Result held is replaced.
ORVANE_API void FloatDynArrayToDynGLFloat(const std::vector<double>& Source, TDynGLFloat& Result);

}  // namespace orvane
