#include "io/GluRoad.h"

#include <array>
#include <stdexcept>

#include "io/FaceOrientation.h"
#include "io/KernelFace.h"
#include "glu_triangulation/GluView.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace orvane::io {
namespace {

// The box's eight corners, for the view to fit.
std::array<TPoint3D, 8> Corners(const BoundingBox& box)
{
    std::array<TPoint3D, 8> corners;
    for (int c = 0; c < 8; ++c)
        corners[static_cast<std::size_t>(c)] = {c & 1 ? box.Max.X : box.Min.X, c & 2 ? box.Max.Y : box.Min.Y,
                                                c & 4 ? box.Max.Z : box.Min.Z};
    return corners;
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
        LoadObliqueView(Corners(Box), Width, Height);
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

// A face that is its whole surface goes to GLU untrimmed: Mesa's GLU covers a rational
// surface twice over where a trim loop runs along the whole boundary.
std::string MeshFaceByGlu(GluRoad& Road, const FaceData& F, FaceMesh& Out)
{
    const auto surface = CoversWholeDomain(F) ? std::unique_ptr<TGeSurface>(BuildKernelSurface(F.Surface))
                                              : std::unique_ptr<TGeSurface>(BuildKernelFace(F));
    Road.Triangulate(*surface, Out.Tri, Out.Norm);
    OrientFaceMesh(F, Out.Tri, Out.Norm);
    if (Out.Tri.size() < 9) {
        Out.Tri.clear();
        Out.Norm.clear();
        return "GLU gave no triangles";
    }
    return "";
}

}  // namespace orvane::io
