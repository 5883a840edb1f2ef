#include "tools/GluTessellate.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace orvane::tools {

namespace {

TGluViewSize gViewSize;
std::string gViewSizeText = "1024x1024";

constexpr double kPi = 3.14159265358979323846;

// An oblique view, 40 degrees about Z then 30 about X, so that no face of a shape is seen
// edge-on and GLU's projected lengths stay meaningful.
TPoint3D Rotate(const TPoint3D& P)
{
    const double cz = std::cos(40.0 * kPi / 180), sz = std::sin(40.0 * kPi / 180);
    const double cx = std::cos(30.0 * kPi / 180), sx = std::sin(30.0 * kPi / 180);
    const TPoint3D a{cz * P.X - sz * P.Y, sz * P.X + cz * P.Y, P.Z};
    return {a.X, cx * a.Y - sx * a.Z, sx * a.Y + cx * a.Z};
}

const TGeNurbsSurface* NurbsOf(const TGeSurface& Surf)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(&Surf)) return NurbsOf(*t->GetSurface());
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(&Surf)) return e->Surface;
    return dynamic_cast<const TGeNurbsSurface*>(&Surf);
}

// Viewport and matrices: the rotated surface's box, sampled on a 65 x 65 grid of its knot
// range, fills the viewport in its longer direction.
void FitView(const TGeSurface& Surface, int Width, int Height)
{
    using namespace dglOpenGL;
    const TGeNurbsSurface* nurbs = NurbsOf(Surface);
    if (nurbs == nullptr) throw std::runtime_error("the GLU road takes NURBS and trimmed NURBS surfaces only");
    const TRect2D d = nurbs->GetDomain();
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    constexpr int kSamples = 65;
    for (int i = 0; i < kSamples; ++i)
        for (int j = 0; j < kSamples; ++j) {
            const TPoint3D r = Rotate(nurbs->GetPoint(d.Min.X + d.Width() * i / (kSamples - 1),
                                                      d.Min.Y + d.Height() * j / (kSamples - 1)));
            lo = {std::min(lo.X, r.X), std::min(lo.Y, r.Y), std::min(lo.Z, r.Z)};
            hi = {std::max(hi.X, r.X), std::max(hi.Y, r.Y), std::max(hi.Z, r.Z)};
        }
    const double aspect = static_cast<double>(Width) / Height;
    const double halfY = std::max((hi.Y - lo.Y) / 2, (hi.X - lo.X) / 2 / aspect);
    const double halfX = halfY * aspect;
    const double cx = (lo.X + hi.X) / 2, cy = (lo.Y + hi.Y) / 2, depth = hi.Z - lo.Z + 1.0;
    glViewport(0, 0, Width, Height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(cx - halfX, cx + halfX, cy - halfY, cy + halfY, -hi.Z - depth, -lo.Z + depth);
    glMatrixMode(GL_MODELVIEW);
    const TPoint3D ex = Rotate({1, 0, 0}), ey = Rotate({0, 1, 0}), ez = Rotate({0, 0, 1});
    const std::array<double, 16> m{ex.X, ex.Y, ex.Z, 0, ey.X, ey.Y, ey.Z, 0, ez.X, ez.Y, ez.Z, 0, 0, 0, 0, 1};
    glLoadMatrixd(m.data());
}

// A current headless context for the length of the run.
class THeadlessContext {
public:
    THeadlessContext(int Width, int Height) : FDC(Width, Height)
    {
        FRC = dglOpenGL::CreateRenderingContextVersion(FDC.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        try {
            dglOpenGL::ActivateRenderingContext(FDC.Handle(), FRC, true);
        } catch (...) {
            dglOpenGL::DestroyRenderingContext(FRC);
            throw;
        }
    }
    ~THeadlessContext()
    {
        dglOpenGL::DeactivateRenderingContext();
        dglOpenGL::DestroyRenderingContext(FRC);
    }
    THeadlessContext(const THeadlessContext&) = delete;
    THeadlessContext& operator=(const THeadlessContext&) = delete;

private:
    TOffscreenDC FDC;
    HGLRC FRC = nullptr;
};

}  // namespace

TGluViewSize ParseViewSize(const std::string& Text)
{
    int w = 0, h = 0, used = 0;
    if (std::sscanf(Text.c_str(), "%dx%d%n", &w, &h, &used) != 2 || used != static_cast<int>(Text.size()) || w < 1 ||
        h < 1 || w > 16384 || h > 16384)
        throw std::runtime_error("--size wants WIDTHxHEIGHT in pixels, 1 to 16384 each, not \"" + Text + "\"");
    return {w, h};
}

void AddGluViewSizeOption(CLI::App& Command)
{
    Command
        .add_option("--size", gViewSizeText,
                    "glu road: the view as WIDTHxHEIGHT pixels (default 1024x1024). GLU samples the surface in "
                    "pixels of this view, fitted so that the shape spans it: a larger view, a finer mesh")
        ->each([](const std::string& text) { gViewSize = ParseViewSize(text); });
}

std::string GluTessellate(const TGeSurface& Surface, bool Quads, TFloatDynArray& Tri, TFloatDynArray& Norm,
                          double& Seconds)
{
    const TGluViewSize size = gViewSize;
    try {
        const THeadlessContext context(size.Width, size.Height);
        FitView(Surface, size.Width, size.Height);
        TGLSurfaceTriangulator triangulator;
        const auto start = std::chrono::steady_clock::now();
        if (Quads)
            triangulator.Quadrilateral(&Surface, Tri, Norm);
        else
            triangulator.Triangulate(&Surface, Tri, Norm);
        Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    } catch (const Exception& e) {
        throw std::runtime_error(e.Message());
    }
    return "GLU in a fitted " + std::to_string(size.Width) + "x" + std::to_string(size.Height) + " view";
}

}  // namespace orvane::tools
