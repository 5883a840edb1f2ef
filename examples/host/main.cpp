// A host of the Orvane runtime package: one trimmed surface from the kernel to a picture.
// It starts the package, takes the surface triangulator from the application object's service
// registry, triangulates a trimmed surface, loads the triangles into a collected mesh, uploads
// them into a vertex array manager of its own inside an offscreen GL context, draws them, reads
// the pixels back into a PNG, and releases everything before it stops the package.
//
//   orvane_host [picture.png]     (default host.png)
#include <png.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "contracts/AppSystem.h"
#include "contracts/Cadgeometry.h"
#include "mesh_drawing/CollectedTri.h"
#include "mesh_drawing/GLVAOManager.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "package/Package.h"
#include "tessellation/IGeSurfaceTriangulator.h"

using namespace orvane;

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr TColor kSurfaceColour = 0x3C8CDC;  // 00BBGGRR: an orange
constexpr double kPi = 3.14159265358979323846;

// The kernel's part of the host: a bicubic dome over a 20 x 20 square, trimmed to the square
// inside its parameter range, with a round hole in the middle.
std::unique_ptr<TGeSurface> TrimmedDome()
{
    TDynPoints3D points;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const int onRim = (i == 0 || i == 3) + (j == 0 || j == 3);  // 2 at a corner
            points.push_back({20.0 * i / 3, 20.0 * j / 3, onRim == 0 ? 8.0 : onRim == 1 ? 3.0 : 0.0});
        }
    const TArrayDouble knots{0, 0, 0, 0, 1, 1, 1, 1};
    auto base = std::make_unique<TGeNurbsSurface>(4, 4, 3, 3, knots, knots, points);

    // Outer loop counter-clockwise in UV, of four lines.
    const TDynPoints2D corners{{0.02, 0.02}, {0.98, 0.02}, {0.98, 0.98}, {0.02, 0.98}, {0.02, 0.02}};
    std::vector<std::unique_ptr<TGeCurve2D>> sides;
    for (std::size_t k = 0; k + 1 < corners.size(); ++k)
        sides.push_back(std::make_unique<TGeLine2D>(corners[k], corners[k + 1]));
    auto outer = std::make_unique<TGeCompositeCurve2D>(std::move(sides));

    // The hole clockwise: a rational quadratic circle in quarter arcs, walked backwards.
    const double w = std::sqrt(0.5), r = 0.18;
    const TDynPoints2D unit{{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}, {1, 0}};
    TDynPoints2D circle;
    for (const TPoint2D& p : unit) circle.push_back(TPoint2D(0.5, 0.5) + p * r);
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(std::make_unique<TGeSpline2D>(2, TArrayDouble{0, 0, 0, .25, .25, .5, .5, .75, .75, 1, 1, 1},
                                                  circle, TArrayDouble{1, w, 1, w, 1, w, 1, w, 1}));
    return std::make_unique<TGeTrimmedSurface>(std::move(base), std::move(outer), std::move(holes));
}

// The view: an orthographic box around the dome, seen from the front right and above.
void SetView(const TPoint3D& eye, const TPoint3D& up)
{
    using namespace dglOpenGL;
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    const double aspect = double(kWidth) / kHeight;
    glOrtho(-12.5 * aspect, 12.5 * aspect, -15, 10, -60, 60);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const TPoint3D back = eye.Normal();
    const TPoint3D right = up.CrossMul(back).Normal();
    const TPoint3D top = back.CrossMul(right);
    const GLfloat m[16] = {float(right.X), float(top.X), float(back.X), 0, float(right.Y), float(top.Y),
                           float(back.Y), 0, float(right.Z), float(top.Z), float(back.Z), 0, 0, 0, 0, 1};
    glLoadMatrixf(m);
    glTranslated(-10, -10, -4);
}

// RGBA rows bottom first, as GL reads them, into a PNG with the top row first.
void WritePng(const std::string& path, const std::vector<unsigned char>& rgba)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) throw std::runtime_error("cannot write " + path);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
        throw std::runtime_error("libpng failed on " + path);
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, kWidth, kHeight, 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = kHeight - 1; y >= 0; --y)
        png_write_row(png, const_cast<png_bytep>(&rgba[static_cast<std::size_t>(y) * kWidth * 4]));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

// Pixels that are not the background's colour.
int DrawnPixels(const std::vector<unsigned char>& rgba)
{
    int count = 0;
    for (std::size_t i = 0; i < rgba.size(); i += 4)
        if (rgba[i] != rgba[0] || rgba[i + 1] != rgba[1] || rgba[i + 2] != rgba[2]) ++count;
    return count;
}

int Run(const std::string& output)
{
    // 1. Start the package: every unit's start-up, in the package's order.
    StartUnits(PackageUnits());

    // 2. The surface triangulator, as the package registered it with the application object.
    TInterfacePtr<IGeSurfaceTriangulator> service =
        TInterfacePtr<IInterface>(AppSys.GetService(IGeSurfaceTriangulator::IID)).Query<IGeSurfaceTriangulator>();
    if (!service) throw std::runtime_error("the package registered no surface triangulator");

    // 3. Triangulate: flat arrays, three vertices a triangle, a normal at every vertex.
    const std::unique_ptr<TGeSurface> surface = TrimmedDome();
    TFloatDynArray tri, norm;
    service->Triangulate(surface.get(), tri, norm);
    const std::size_t triangles = tri.size() / 9;

    // 4. The collected mesh merges equal vertices and indexes them (EBO mode).
    TCollectedTri collected(true);
    collected.LoadOuter(tri, norm);

    // 5. An offscreen context, current on this thread: OpenGL 3.3 compatibility, depth buffer.
    const HDC dc = CreateOffscreenDC(kWidth, kHeight);
    const HGLRC rc = dglOpenGL::CreateRenderingContextVersion(dc, {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
    dglOpenGL::ActivateRenderingContext(dc, rc);

    std::vector<unsigned char> rgba(static_cast<std::size_t>(kWidth) * kHeight * 4);
    {
        // 6. The host's own vertex array manager; the mesh goes to the graphics card under an id.
        auto manager = std::make_unique<TGLVAOManager>();
        Cardinal outerId = 0, innerId = 0;
        collected.GenerateTriVAO(*manager, outerId, innerId);
        if (outerId == 0) throw std::runtime_error("the mesh is empty");

        // 7. Draw it with a view: matrices on the fixed-function stack, then DrawVAO with the
        // eye direction, the head direction, the mesh's transformation and its colour.
        using namespace dglOpenGL;
        glClearColor(0.93f, 0.94f, 0.96f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        const TPoint3D eye(0.6, -1.0, 0.9), up(0, 0, 1);
        SetView(eye, up);
        TGLMatrixf4 place;
        place.Reset();
        manager->DrawVAO(outerId, eye.Normal(), up, place, kSurfaceColour, true, 0.0);

        // 8. Read the pixels back.
        glFinish();
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());

        // 9. Release the mesh and the manager (and its shader) while the context is current.
        manager->DeleteVAO(outerId);
    }
    dglOpenGL::DeactivateRenderingContext();
    dglOpenGL::DestroyRenderingContext(rc);
    DeleteOffscreenDC(dc);

    // 10. Stop the package in the reverse order; the host's registry ends with the host.
    service = {};
    StopUnits(PackageUnits());
    AppSys.ClearServices();

    WritePng(output, rgba);
    const int drawn = DrawnPixels(rgba);
    std::printf("host: %zu triangles, %d pixels drawn, picture %s\n", triangles, drawn, output.c_str());
    return triangles > 0 && drawn > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc > 1 ? argv[1] : "host.png");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "host: %s\n", e.what());
        return 1;
    }
}
