// Drawing at once into the current OpenGL context: points, lines, rectangles, polylines,
// triangles, Bezier curves and textured quads, and the setters of colour and widths. Every
// call goes through the entry points of dglOpenGL; none saves or restores OpenGL state,
// reads an error or returns a status, so what a function changes stays changed (the client
// arrays of glInterleavedArrays, colour, widths, GL_TEXTURE_2D).
#pragma once

#include <cstdint>
#include <span>

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "immediate/zqglTypes.h"

namespace dglOpenGL {
struct GLUnurbs;
}

namespace orvane {

// A GLU NURBS renderer.
using PGLUNurbs = dglOpenGL::GLUnurbs*;

// --- Unit globals, public for the host; nothing here reads them -------------------------
extern ORVANE_API std::int32_t maxVertlen;    // 9000 at start
extern ORVANE_API std::uint32_t NurbsType;    // 0 at start
extern ORVANE_API std::int32_t VertIdx;       // 0 at start
extern ORVANE_API TDynGLFloat Verts;
extern ORVANE_API TDynGLFloat Normals;
extern ORVANE_API TDynGLFloat TotolVert;
extern ORVANE_API TDynGLFloat TotolNormals;
extern ORVANE_API int TotolIdx;               // 0 at start

// Releases the four global arrays.
void StopUnit_zqglUtils();

// --- Drawn through glInterleavedArrays and glDrawArrays ---------------------------------
ORVANE_API void zqglDrawLine(const TPoint2D& a, const TPoint2D& b);
ORVANE_API void zqglDrawLine(const TPoint3D& a, const TPoint3D& b);
// A strip of two segments a-b-c.
ORVANE_API void zqglDrawLines(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c);
// Outline through (a.x, a.y), (a.x, b.y), (b.x, b.y), (b.x, a.y).
ORVANE_API void zqglDrawRect(const TPoint2D& a, const TPoint2D& b);
// The same four corners filled as one quad of the colour, alpha 255.
ORVANE_API void zqglDrawFilledRect(const TPoint2D& a, const TPoint2D& b, TColor colour);
// The outline of a triangle, not a filled one.
ORVANE_API void zqglDrawTri(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c);
ORVANE_API void zqglDrawTri(const TPoint3D& a, const TPoint3D& b, const TPoint3D& c);
ORVANE_API void zqglDrawPoint(const TPoint2D& p);
ORVANE_API void zqglDrawPoint(const TPoint3D& p);
// A point of the colour (no alpha).
ORVANE_API void zqglDrawPoint(const TPoint3D& p, TColor colour);
// A loop when closed, else a strip.
ORVANE_API void zqglDrawPolyLine(const TDynPoints2D& points, bool closed);
ORVANE_API void zqglDrawPolyLine(const TDynPoints3D& points, bool closed);
// x, y, z a vertex; a remainder of fewer than three values is ignored.
ORVANE_API void zqglDrawPolyLine(std::span<const float> values, bool closed);
// A triangle strip, not a single triangle; x, y, z a vertex, a remainder ignored.
ORVANE_API void zqglDrawTrangle(std::span<const float> values);

// --- Drawn through the caller's client arrays -------------------------------------------
// Integer vertices, three values each, through glVertexPointer(GL_INT): the caller has
// GL_VERTEX_ARRAY enabled.
ORVANE_API void zqglDrawPolyLine(std::span<const std::uint32_t> values, bool closed);
// count vertices of the primitive mode; the caller has GL_VERTEX_ARRAY and GL_NORMAL_ARRAY
// enabled.
ORVANE_API void zqglDrawPtArr(std::span<const float> vertices, std::span<const float> normals, int count,
                   std::uint32_t mode);

// --- Drawn between glBegin and glEnd ----------------------------------------------------
ORVANE_API void zqglDrawPoint(const TPoint& p);
ORVANE_API void zqglDrawPoint(const TGLPoint3D& p);

// --- Evaluators and textures ------------------------------------------------------------
// One Bezier curve over all points, evaluated on the parameter range 0 to steps, so that
// steps is the number of line segments.
ORVANE_API void zqglDrawBezier(const TDynPoints3D& points, int steps);
// A chain of separate cubic curves, one for each four consecutive points; a last group of
// fewer than four points is not drawn.
ORVANE_API void zqglDrawBezierByFour(const TDynPoints3D& points, int steps);
// Quads of vertices with the texture coordinates of the same index. GL_TEXTURE_2D stays
// enabled; only the binding is undone. The last argument has no effect.
ORVANE_API void zqglDrawTexture(const TDynPoints3D& vertices, const TDynPoints2D& coordinates,
                     std::uint32_t texture, bool unused);

// --- State ------------------------------------------------------------------------------
ORVANE_API void zqglSetPointWidth(int width);
ORVANE_API void zqglSetLineWidth(int width);
ORVANE_API void zqglSetColor(TColor colour);
// The colour with alpha 1.0.
ORVANE_API void zqglSetClearColor(TColor colour);

// --- Helpers for the NURBS road ---------------------------------------------------------
// A new GLU NURBS renderer with GLU_SAMPLING_TOLERANCE set to the tolerance; the caller
// releases it with gluDeleteNurbsRenderer.
ORVANE_API PGLUNurbs zqglNewNurbObjRender(double tolerance);

}  // namespace orvane
