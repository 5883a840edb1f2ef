// Drawing at once into the current OpenGL context: points, lines, rectangles, polylines,
// triangles, Bezier curves and textured quads, and the setters of colour and widths. Every
// call goes through the entry points of dglOpenGL; none saves or restores OpenGL state,
// reads an error or returns a status, so what a function changes stays changed (the client
// arrays of glInterleavedArrays, colour, widths, GL_TEXTURE_2D).
#pragma once

#include <cstdint>
#include <span>

#include "contracts/Cadtypes.h"
#include "immediate/zqglTypes.h"

namespace dglOpenGL {
struct GLUnurbs;
}

namespace orvane {

// A GLU NURBS renderer.
using PGLUNurbs = dglOpenGL::GLUnurbs*;

// --- Unit globals, public for the host; nothing here reads them -------------------------
extern std::int32_t maxVertlen;    // 9000 at start
extern std::uint32_t NurbsType;    // 0 at start
extern std::int32_t VertIdx;       // 0 at start
extern TDynGLFloat Verts;
extern TDynGLFloat Normals;
extern TDynGLFloat TotolVert;
extern TDynGLFloat TotolNormals;
extern int TotolIdx;               // 0 at start

// Releases the four global arrays.
void StopUnit_zqglUtils();

// --- Drawn through glInterleavedArrays and glDrawArrays ---------------------------------
void zqglDrawLine(const TPoint2D& a, const TPoint2D& b);
void zqglDrawLine(const TPoint3D& a, const TPoint3D& b);
// A strip of two segments a-b-c.
void zqglDrawLines(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c);
// Outline through (a.x, a.y), (a.x, b.y), (b.x, b.y), (b.x, a.y).
void zqglDrawRect(const TPoint2D& a, const TPoint2D& b);
// The same four corners filled as one quad of the colour, alpha 255.
void zqglDrawFilledRect(const TPoint2D& a, const TPoint2D& b, TColor colour);
// The outline of a triangle, not a filled one.
void zqglDrawTri(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c);
void zqglDrawTri(const TPoint3D& a, const TPoint3D& b, const TPoint3D& c);
void zqglDrawPoint(const TPoint2D& p);
void zqglDrawPoint(const TPoint3D& p);
// A point of the colour (no alpha).
void zqglDrawPoint(const TPoint3D& p, TColor colour);
// A loop when closed, else a strip.
void zqglDrawPolyLine(const TDynPoints2D& points, bool closed);
void zqglDrawPolyLine(const TDynPoints3D& points, bool closed);
// x, y, z a vertex; a remainder of fewer than three values is ignored.
void zqglDrawPolyLine(std::span<const float> values, bool closed);
// A triangle strip, not a single triangle; x, y, z a vertex, a remainder ignored.
void zqglDrawTrangle(std::span<const float> values);

// --- Drawn through the caller's client arrays -------------------------------------------
// Integer vertices, three values each, through glVertexPointer(GL_INT): the caller has
// GL_VERTEX_ARRAY enabled.
void zqglDrawPolyLine(std::span<const std::uint32_t> values, bool closed);
// count vertices of the primitive mode; the caller has GL_VERTEX_ARRAY and GL_NORMAL_ARRAY
// enabled.
void zqglDrawPtArr(std::span<const float> vertices, std::span<const float> normals, int count,
                   std::uint32_t mode);

// --- Drawn between glBegin and glEnd ----------------------------------------------------
void zqglDrawPoint(const TPoint& p);
void zqglDrawPoint(const TGLPoint3D& p);

// --- Evaluators and textures ------------------------------------------------------------
// One Bezier curve over all points, evaluated on the parameter range 0 to steps, so that
// steps is the number of line segments.
void zqglDrawBezier(const TDynPoints3D& points, int steps);
// A chain of separate cubic curves, one for each four consecutive points; a last group of
// fewer than four points is not drawn.
void zqglDrawBezierByFour(const TDynPoints3D& points, int steps);
// Quads of vertices with the texture coordinates of the same index. GL_TEXTURE_2D stays
// enabled; only the binding is undone. The last argument has no effect.
void zqglDrawTexture(const TDynPoints3D& vertices, const TDynPoints2D& coordinates,
                     std::uint32_t texture, bool unused);

// --- State ------------------------------------------------------------------------------
void zqglSetPointWidth(int width);
void zqglSetLineWidth(int width);
void zqglSetColor(TColor colour);
// The colour with alpha 1.0.
void zqglSetClearColor(TColor colour);

// --- Helpers for the NURBS road ---------------------------------------------------------
// A new GLU NURBS renderer with GLU_SAMPLING_TOLERANCE set to the tolerance; the caller
// releases it with gluDeleteNurbsRenderer.
PGLUNurbs zqglNewNurbObjRender(double tolerance);

}  // namespace orvane
