#include "io/GluRoad.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace orvane::io {
namespace {

constexpr double kPi = 3.14159265358979323846;

// An oblique view, 40 degrees about Z then 30 about X, so that no face of a box is seen
// edge-on and GLU's projected lengths stay meaningful.
TPoint3D Rotate(const TPoint3D& P)
{
    const double cz = std::cos(40.0 * kPi / 180), sz = std::sin(40.0 * kPi / 180);
    const double cx = std::cos(30.0 * kPi / 180), sx = std::sin(30.0 * kPi / 180);
    const TPoint3D a{cz * P.X - sz * P.Y, sz * P.X + cz * P.Y, P.Z};
    return {a.X, cx * a.Y - sx * a.Z, sx * a.Y + cx * a.Z};
}

// The rotated box's corners fill the viewport in its longer direction.
void FitView(const BoundingBox& box, int width, int height)
{
    using namespace dglOpenGL;
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    for (int c = 0; c < 8; ++c) {
        const TPoint3D r = Rotate({c & 1 ? box.Max.X : box.Min.X, c & 2 ? box.Max.Y : box.Min.Y,
                                   c & 4 ? box.Max.Z : box.Min.Z});
        lo = {std::min(lo.X, r.X), std::min(lo.Y, r.Y), std::min(lo.Z, r.Z)};
        hi = {std::max(hi.X, r.X), std::max(hi.Y, r.Y), std::max(hi.Z, r.Z)};
    }
    const double aspect = static_cast<double>(width) / height;
    const double halfY = std::max({(hi.Y - lo.Y) / 2, (hi.X - lo.X) / 2 / aspect, 1e-9});
    const double halfX = halfY * aspect;
    const double cx = (lo.X + hi.X) / 2, cy = (lo.Y + hi.Y) / 2, depth = hi.Z - lo.Z + 1.0;
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(cx - halfX, cx + halfX, cy - halfY, cy + halfY, -hi.Z - depth, -lo.Z + depth);
    glMatrixMode(GL_MODELVIEW);
    const TPoint3D ex = Rotate({1, 0, 0}), ey = Rotate({0, 1, 0}), ez = Rotate({0, 0, 1});
    const std::array<double, 16> m{ex.X, ex.Y, ex.Z, 0, ey.X, ey.Y, ey.Z, 0, ez.X, ez.Y, ez.Z, 0, 0, 0, 0, 1};
    glLoadMatrixd(m.data());
}

}  // namespace

struct GluRoad::State {
    State(int width, int height) : DC(width, height) {}
    TOffscreenDC DC;
    HGLRC RC = nullptr;
    TGLSurfaceTriangulator Triangulator;
};

GluRoad::GluRoad(const BoundingBox& Box, int Width, int Height)
{
    try {
        FState = std::make_unique<State>(Width, Height);
        FState->RC = dglOpenGL::CreateRenderingContextVersion(FState->DC.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        try {
            dglOpenGL::ActivateRenderingContext(FState->DC.Handle(), FState->RC, true);
        } catch (...) {
            dglOpenGL::DestroyRenderingContext(FState->RC);
            throw;
        }
        FitView(Box, Width, Height);
    } catch (const Exception& e) {
        throw std::runtime_error("the GLU road needs an OpenGL context: " + e.Message());
    }
}

GluRoad::~GluRoad()
{
    dglOpenGL::DeactivateRenderingContext();
    dglOpenGL::DestroyRenderingContext(FState->RC);
}

void GluRoad::Triangulate(const TGeSurface& Surface, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    FState->Triangulator.Triangulate(&Surface, Tri, Norm);
}

}  // namespace orvane::io
