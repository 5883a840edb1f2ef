#include "immediate/zqglUtils.h"

#include <algorithm>
#include <array>
#include <vector>

#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

std::int32_t maxVertlen = 9000;
std::uint32_t NurbsType = 0;
std::int32_t VertIdx = 0;
TDynGLFloat Verts;
TDynGLFloat Normals;
TDynGLFloat TotolVert;
TDynGLFloat TotolNormals;
int TotolIdx = 0;

void StopUnit_zqglUtils()
{
    TDynGLFloat().swap(Verts);
    TDynGLFloat().swap(Normals);
    TDynGLFloat().swap(TotolVert);
    TDynGLFloat().swap(TotolNormals);
}

namespace {

struct TColorBytes {
    std::uint8_t R, G, B;
};

// 00BBGGRR: red in the low byte; the top byte is dropped.
TColorBytes SplitColor(TColor colour)
{
    return {static_cast<std::uint8_t>(colour & 0xFFu), static_cast<std::uint8_t>((colour >> 8) & 0xFFu),
            static_cast<std::uint8_t>((colour >> 16) & 0xFFu)};
}

// A byte as a colour channel: divided in double, rounded to single.
float ByteToChannel(std::uint8_t value) { return static_cast<float>(value / 255.0); }

float F(double value) { return static_cast<float>(value); }

template <std::size_t N>
void DrawInterleaved(GLenum format, GLenum mode, const std::array<float, N>& buffer, int count)
{
    glInterleavedArrays(format, 0, buffer.data());
    glDrawArrays(mode, 0, count);
}

GLenum LineMode(bool closed) { return closed ? GL_LINE_LOOP : GL_LINE_STRIP; }

// The open-array forms draw a copy of the caller's floats, a whole vertex per three.
void DrawFloatCopy(std::span<const float> values, GLenum mode)
{
    const std::vector<float> copy(values.begin(), values.end());
    glInterleavedArrays(GL_V3F, 0, copy.data());
    glDrawArrays(mode, 0, static_cast<GLsizei>(copy.size() / 3));
}

void EvalBezier(const TPoint3D* points, int count, int steps)
{
    glMap1d(GL_MAP1_VERTEX_3, 0.0, steps, 3, count, &points->X);
    glMapGrid1d(steps, 0.0, steps);
    glEvalMesh1(GL_LINE, 0, steps);
}

static_assert(sizeof(TPoint3D) == 3 * sizeof(double), "glMap1d reads points as packed doubles");

}  // namespace

void zqglDrawLine(const TPoint2D& a, const TPoint2D& b)
{
    DrawInterleaved(GL_V2F, GL_LINES, std::array{F(a.X), F(a.Y), F(b.X), F(b.Y)}, 2);
}

void zqglDrawLine(const TPoint3D& a, const TPoint3D& b)
{
    DrawInterleaved(GL_V3F, GL_LINES, std::array{F(a.X), F(a.Y), F(a.Z), F(b.X), F(b.Y), F(b.Z)}, 2);
}

void zqglDrawLines(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    DrawInterleaved(GL_V2F, GL_LINE_STRIP, std::array{F(a.X), F(a.Y), F(b.X), F(b.Y), F(c.X), F(c.Y)}, 3);
}

void zqglDrawRect(const TPoint2D& a, const TPoint2D& b)
{
    DrawInterleaved(GL_V2F, GL_LINE_LOOP,
                    std::array{F(a.X), F(a.Y), F(a.X), F(b.Y), F(b.X), F(b.Y), F(b.X), F(a.Y)}, 4);
}

void zqglDrawFilledRect(const TPoint2D& a, const TPoint2D& b, TColor colour)
{
    const TColorBytes c = SplitColor(colour);
    const std::array<TGLColor4UB2V, 4> corners{{{c.R, c.G, c.B, 255, F(a.X), F(a.Y)},
                                                {c.R, c.G, c.B, 255, F(a.X), F(b.Y)},
                                                {c.R, c.G, c.B, 255, F(b.X), F(b.Y)},
                                                {c.R, c.G, c.B, 255, F(b.X), F(a.Y)}}};
    glInterleavedArrays(GL_C4UB_V2F, 0, corners.data());
    glDrawArrays(GL_QUADS, 0, 4);
}

void zqglDrawTri(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    DrawInterleaved(GL_V2F, GL_LINE_LOOP, std::array{F(a.X), F(a.Y), F(b.X), F(b.Y), F(c.X), F(c.Y)}, 3);
}

void zqglDrawTri(const TPoint3D& a, const TPoint3D& b, const TPoint3D& c)
{
    DrawInterleaved(GL_V3F, GL_LINE_LOOP,
                    std::array{F(a.X), F(a.Y), F(a.Z), F(b.X), F(b.Y), F(b.Z), F(c.X), F(c.Y), F(c.Z)}, 3);
}

void zqglDrawPoint(const TPoint2D& p) { DrawInterleaved(GL_V2F, GL_POINTS, std::array{F(p.X), F(p.Y)}, 1); }

void zqglDrawPoint(const TPoint3D& p)
{
    DrawInterleaved(GL_V3F, GL_POINTS, std::array{F(p.X), F(p.Y), F(p.Z)}, 1);
}

void zqglDrawPoint(const TPoint3D& p, TColor colour)
{
    const TColorBytes c = SplitColor(colour);
    DrawInterleaved(GL_C3F_V3F, GL_POINTS,
                    std::array{ByteToChannel(c.R), ByteToChannel(c.G), ByteToChannel(c.B), F(p.X), F(p.Y), F(p.Z)},
                    1);
}

void zqglDrawPolyLine(const TDynPoints2D& points, bool closed)
{
    TDynGLFloat buffer;
    buffer.reserve(points.size() * 2);
    for (const TPoint2D& p : points) buffer.insert(buffer.end(), {F(p.X), F(p.Y)});
    glInterleavedArrays(GL_V2F, 0, buffer.data());
    glDrawArrays(LineMode(closed), 0, static_cast<GLsizei>(points.size()));
}

void zqglDrawPolyLine(const TDynPoints3D& points, bool closed)
{
    TDynGLFloat buffer;
    buffer.reserve(points.size() * 3);
    for (const TPoint3D& p : points) buffer.insert(buffer.end(), {F(p.X), F(p.Y), F(p.Z)});
    glInterleavedArrays(GL_V3F, 0, buffer.data());
    glDrawArrays(LineMode(closed), 0, static_cast<GLsizei>(points.size()));
}

void zqglDrawPolyLine(std::span<const float> values, bool closed) { DrawFloatCopy(values, LineMode(closed)); }

void zqglDrawTrangle(std::span<const float> values) { DrawFloatCopy(values, GL_TRIANGLE_STRIP); }

void zqglDrawPolyLine(std::span<const std::uint32_t> values, bool closed)
{
    const std::vector<std::uint32_t> copy(values.begin(), values.end());
    glVertexPointer(3, GL_INT, 0, copy.data());
    glDrawArrays(LineMode(closed), 0, static_cast<GLsizei>(copy.size() / 3));
}

void zqglDrawPtArr(std::span<const float> vertices, std::span<const float> normals, int count,
                   std::uint32_t mode)
{
    const std::vector<float> vertexCopy(vertices.begin(), vertices.end());
    const std::vector<float> normalCopy(normals.begin(), normals.end());
    glNormalPointer(GL_FLOAT, 0, normalCopy.data());
    glVertexPointer(3, GL_FLOAT, 0, vertexCopy.data());
    glDrawArrays(mode, 0, count);
}

void zqglDrawPoint(const TPoint& p)
{
    glBegin(GL_POINTS);
    glVertex2i(p.X, p.Y);
    glEnd();
}

void zqglDrawPoint(const TGLPoint3D& p)
{
    glBegin(GL_POINTS);
    glVertex3d(p.X, p.Y, p.Z);
    glEnd();
}

// No points draw nothing: GL would refuse the empty map and evaluate the one before it.
void zqglDrawBezier(const TDynPoints3D& points, int steps)
{
    if (points.empty())
        return;
    glMap1d(GL_MAP1_VERTEX_3, 0.0, steps, 3, static_cast<GLint>(points.size()), &points.front().X);
    glEnable(GL_MAP1_VERTEX_3);
    glMapGrid1d(steps, 0.0, steps);
    glEvalMesh1(GL_LINE, 0, steps);
    glDisable(GL_MAP1_VERTEX_3);
}

void zqglDrawBezierByFour(const TDynPoints3D& points, int steps)
{
    glEnable(GL_MAP1_VERTEX_3);
    for (std::size_t g = 0; g + 4 <= points.size(); g += 4) {
        const std::array<TPoint3D, 4> group{points[g], points[g + 1], points[g + 2], points[g + 3]};
        EvalBezier(group.data(), 4, steps);
    }
    glDisable(GL_MAP1_VERTEX_3);
}

void zqglDrawTexture(const TDynPoints3D& vertices, const TDynPoints2D& coordinates, std::uint32_t texture,
                     bool /*unused*/)
{
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glBegin(GL_QUADS);
    // A vertex without texture coordinates is not drawn.
    for (std::size_t i = 0; i < std::min(vertices.size(), coordinates.size()); ++i) {
        glTexCoord2d(coordinates[i].X, coordinates[i].Y);
        glVertex3d(vertices[i].X, vertices[i].Y, vertices[i].Z);
    }
    glEnd();
    glBindTexture(GL_TEXTURE_2D, 0);
}

void zqglSetPointWidth(int width) { glPointSize(static_cast<float>(width)); }

void zqglSetLineWidth(int width) { glLineWidth(static_cast<float>(width)); }

void zqglSetColor(TColor colour)
{
    const TColorBytes c = SplitColor(colour);
    glColor3ub(c.R, c.G, c.B);
}

void zqglSetClearColor(TColor colour)
{
    const TColorBytes c = SplitColor(colour);
    glClearColor(ByteToChannel(c.R), ByteToChannel(c.G), ByteToChannel(c.B), 1.0f);
}

PGLUNurbs zqglNewNurbObjRender(double tolerance)
{
    PGLUNurbs render = gluNewNurbsRenderer();
    gluNurbsProperty(render, GLU_SAMPLING_TOLERANCE, static_cast<float>(tolerance));
    return render;
}

}  // namespace orvane
