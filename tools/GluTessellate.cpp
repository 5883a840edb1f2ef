#include "tools/GluTessellate.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "glu_triangulation/GluView.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace orvane::tools {

namespace {

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

std::string GluTessellate(const TGeSurface& Surface, const TViewSize& size, bool Quads, TFloatDynArray& Tri,
                          TFloatDynArray& Norm, double& Seconds)
{
    try {
        const THeadlessContext context(size.Width, size.Height);
        FitObliqueView(Surface, size.Width, size.Height);
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
