#include "tools/SceneRenderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include "contracts/SysUtils.h"
#include "mesh_drawing/CollectedTri.h"
#include "mesh_drawing/GLVAOManager.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace orvane::tools {

using namespace dglOpenGL;

namespace {

// Each picture pixel averages this many rendered pixels in each direction.
constexpr int kSupersample = 2;

struct TPlacedMesh {
    Cardinal Id = 0;
    TColor Color = 0;
    TPoint3D Offset;
    // The distinct vertices where they stand in the scene, for fitting the view.
    std::vector<TPoint3D> Points;
};

// The range of the scene's points along one axis.
struct TRange {
    double Low = std::numeric_limits<double>::max();
    double High = std::numeric_limits<double>::lowest();

    void Add(double v)
    {
        Low = std::min(Low, v);
        High = std::max(High, v);
    }
    double Middle() const { return (Low + High) / 2; }
    double Half() const { return std::max((High - Low) / 2, 1e-9); }
};

// The axes of the eye: Right, Up and Back (towards the viewer), all unit length.
struct TEyeAxes {
    TPoint3D Right, Up, Back;
};

TEyeAxes EyeAxes(const TSceneView& view)
{
    TEyeAxes axes;
    axes.Back = view.ViewDirection.Normal();
    axes.Right = view.Up.CrossMul(axes.Back).Normal();
    if (axes.Right == TPoint3D::FZero) axes.Right = TPoint3D(0, 1, 0).CrossMul(axes.Back).Normal();
    axes.Up = axes.Back.CrossMul(axes.Right);
    return axes;
}

float Channel(TColor color, int shift) { return static_cast<float>((color >> shift) & 0xFFu) / 255.0f; }

// The background: a vertical gradient drawn in immediate mode, before any depth is written.
void DrawBackground(const TSceneView& view)
{
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glBegin(GL_QUADS);
    glColor3f(Channel(view.BackgroundBottom, 0), Channel(view.BackgroundBottom, 8), Channel(view.BackgroundBottom, 16));
    glVertex2f(-1, -1);
    glVertex2f(1, -1);
    glColor3f(Channel(view.BackgroundTop, 0), Channel(view.BackgroundTop, 8), Channel(view.BackgroundTop, 16));
    glVertex2f(1, 1);
    glVertex2f(-1, 1);
    glEnd();
    glEnable(GL_DEPTH_TEST);
}

// The projection fits the scene's points, seen along the eye axes, into the picture with its
// aspect ratio kept; the modelview turns the scene into the eye axes.
void SetUpView(const std::vector<TPlacedMesh>& meshes, const TEyeAxes& eye, const TSceneView& view, double aspect)
{
    TRange across, up, depth;
    for (const TPlacedMesh& mesh : meshes)
        for (const TPoint3D& p : mesh.Points) {
            across.Add(p.DotMul(eye.Right));
            up.Add(p.DotMul(eye.Up));
            depth.Add(p.DotMul(eye.Back));
        }
    double halfW = across.Half(), halfH = up.Half();
    if (halfW / halfH > aspect)
        halfH = halfW / aspect;
    else
        halfW = halfH * aspect;
    const double scale = 1.0 / (1.0 - 2.0 * view.Margin);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-halfW * scale, halfW * scale, -halfH * scale, halfH * scale, -depth.Half() * 2, depth.Half() * 2);

    // Eye coordinates: the middle of the scene at the origin, Right, Up and Back as axes.
    const TPoint3D r = eye.Right, u = eye.Up, b = eye.Back;
    const GLfloat m[16] = {
        float(r.X), float(u.X), float(b.X), 0,
        float(r.Y), float(u.Y), float(b.Y), 0,
        float(r.Z), float(u.Z), float(b.Z), 0,
        float(-across.Middle()), float(-up.Middle()), float(-depth.Middle()), 1,
    };
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(m);
}

// Bottom-first rows of a supersampled picture to top-first rows of the picture's size.
std::vector<std::uint8_t> Downsample(const std::vector<std::uint8_t>& big, int width, int height)
{
    const int bigWidth = width * kSupersample;
    const int bigHeight = height * kSupersample;
    std::vector<std::uint8_t> out(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c) {
                int sum = 0;
                for (int dy = 0; dy < kSupersample; ++dy)
                    for (int dx = 0; dx < kSupersample; ++dx) {
                        const int by = bigHeight - 1 - (y * kSupersample + dy);
                        sum += big[(static_cast<std::size_t>(by) * bigWidth + x * kSupersample + dx) * 4 + c];
                    }
                const int n = kSupersample * kSupersample;
                out[(static_cast<std::size_t>(y) * width + x) * 4 + c] = static_cast<std::uint8_t>((sum + n / 2) / n);
            }
    return out;
}

}  // namespace

struct TSceneRenderer::TState {
    int Width;
    int Height;
    TOffscreenDC DC;
    HGLRC RC = nullptr;
    std::unique_ptr<TGLVAOManager> Manager;
    std::vector<TPlacedMesh> Meshes;
    std::size_t Vertices = 0;

    TState(int width, int height) : Width(width), Height(height), DC(width * kSupersample, height * kSupersample) {}
};

TSceneRenderer::TSceneRenderer(int width, int height)
{
    if (width <= 0 || height <= 0) throw std::runtime_error("the picture size must be positive");
    try {
        FState = std::make_unique<TState>(width, height);
        FState->RC = CreateRenderingContextVersion(FState->DC.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        ActivateRenderingContext(FState->DC.Handle(), FState->RC);
        FState->Manager = std::make_unique<TGLVAOManager>();
    } catch (const Exception& e) {
        throw std::runtime_error(std::string("cannot make a GL context: ") + e.what());
    }
}

TSceneRenderer::~TSceneRenderer()
{
    if (!FState || !FState->RC) return;
    FState->Manager.reset();  // its meshes and shader go while the context is current
    DeactivateRenderingContext();
    DestroyRenderingContext(FState->RC);
}

int TSceneRenderer::AddMesh(const TSceneMesh& mesh)
{
    TCollectedTri collected(true);
    collected.LoadOuter(mesh.Tri, mesh.Norm);
    Cardinal outer = 0, inner = 0;
    collected.GenerateTriVAO(*FState->Manager, outer, inner);
    if (outer == 0) return 0;
    TPlacedMesh placed{outer, mesh.Color, mesh.Offset, {}};
    const TDynGLFloat& points = collected.TriOut();
    for (std::size_t i = 0; i + 2 < points.size(); i += 3)
        placed.Points.push_back(TPoint3D(points[i], points[i + 1], points[i + 2]) + mesh.Offset);
    FState->Vertices += placed.Points.size();
    FState->Meshes.push_back(std::move(placed));
    return static_cast<int>(collected.IndexOut().size() / 3);
}

int TSceneRenderer::MeshCount() const { return static_cast<int>(FState->Meshes.size()); }

std::size_t TSceneRenderer::VertexCount() const { return FState->Vertices; }

std::vector<std::uint8_t> TSceneRenderer::Render(const TSceneView& view)
{
    const int bigWidth = FState->Width * kSupersample;
    const int bigHeight = FState->Height * kSupersample;
    glViewport(0, 0, bigWidth, bigHeight);
    glDisable(GL_DITHER);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawBackground(view);
    if (!FState->Meshes.empty()) {
        const TEyeAxes eye = EyeAxes(view);
        SetUpView(FState->Meshes, eye, view, double(FState->Width) / FState->Height);
        for (const TPlacedMesh& mesh : FState->Meshes) {
            TGLMatrixf4 place;
            place.Reset();
            place[3] = {float(mesh.Offset.X), float(mesh.Offset.Y), float(mesh.Offset.Z), 1.0f};
            FState->Manager->DrawVAO(mesh.Id, eye.Back, eye.Up, place, mesh.Color, true, 0.0);
        }
    }
    glFinish();
    std::vector<std::uint8_t> big(static_cast<std::size_t>(bigWidth) * bigHeight * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, bigWidth, bigHeight, GL_RGBA, GL_UNSIGNED_BYTE, big.data());
    return Downsample(big, FState->Width, FState->Height);
}

}  // namespace orvane::tools
