// The mesh program's lighting, pixel by pixel against the CPU model, on a real context.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "mesh_drawing/GLVAOManager.h"
#include "tests/mesh_drawing/ShadingReference.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::OffscreenGL;
using testing::ShadingUniforms;
using testing::Vec3;

constexpr int kSize = 64;
// Pixels closer than this to an edge, in pixels, are not compared.
constexpr double kEdgeMargin = 2.0;
constexpr int kTolerance = 2;

struct Scene {
    std::string Name;
    std::array<TPoint3D, 3> Vertices{TPoint3D(-0.8, -0.7, 0.1), TPoint3D(0.8, -0.6, -0.2), TPoint3D(0.0, 0.85, 0.3)};
    std::array<TPoint3D, 3> Normals{TPoint3D(0.2, 0.1, 1.0), TPoint3D(-0.3, 0.2, 0.9), TPoint3D(0.1, -0.4, 0.8)};
    TPoint3D EyePos{0.3, -0.4, 0.866};
    TPoint3D HeadDir{0.0, 2.0, 0.0};
    TColor Color = 0x3399CC;
    bool IsOut = true;
    double SimuRot = 0.0;
    TPoint3D Scale{1.0, 1.0, 1.0};  // the mesh's own transformation: a diagonal
};

class Shading : public ::testing::Test {
protected:
    void SetUp() override
    {
        glDisable(GL_DITHER);
        glDisable(GL_FRAMEBUFFER_SRGB);
        glDisable(GL_DEPTH_TEST);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-1, 1, -1, 1, -10, 10);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }

    // RGBA bytes, bottom row first.
    std::vector<std::uint8_t> Render(const Scene& scene)
    {
        TDynGLFloat tri, norm;
        for (int i = 0; i < 3; ++i) {
            const TPoint3D& p = scene.Vertices[static_cast<std::size_t>(i)];
            const TPoint3D& n = scene.Normals[static_cast<std::size_t>(i)];
            tri.insert(tri.end(), {float(p.X), float(p.Y), float(p.Z)});
            norm.insert(norm.end(), {float(n.X), float(n.Y), float(n.Z)});
        }
        Cardinal id = 0;
        Manager.GenerateTriVAO(tri, norm, {0, 1, 2}, id);
        TGLMatrixf4 trans;
        trans.Reset();
        trans[0][0] = float(scene.Scale.X);
        trans[1][1] = float(scene.Scale.Y);
        trans[2][2] = float(scene.Scale.Z);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        Manager.DrawVAO(id, scene.EyePos, scene.HeadDir, trans, scene.Color, scene.IsOut, scene.SimuRot);
        Manager.DeleteVAO(id);
        return GL.ReadPixels();
    }

    // Compares every pixel well inside the triangle with the CPU model; answers how many.
    int ExpectShadedAsModelled(const Scene& scene)
    {
        const std::vector<std::uint8_t> pixels = Render(scene);
        TMatrix3D rotation;
        rotation.RotateZ(scene.SimuRot);
        // The shader sees the rotation's columns as rows.
        auto simuRot = [&](const Vec3& v) {
            Vec3 r[3];
            for (int c = 0; c < 3; ++c) {
                const TPoint3D col = rotation.GetColVector(c);
                r[c] = {col.X, col.Y, col.Z};
            }
            return Vec3{r[0].X * v.X + r[0].Y * v.Y + r[0].Z * v.Z, r[1].X * v.X + r[1].Y * v.Y + r[1].Z * v.Z,
                        r[2].X * v.X + r[2].Y * v.Y + r[2].Z * v.Z};
        };
        // Vertex normals after the vertex stage: scaled like directions, made unit, turned.
        std::array<Vec3, 3> normals;
        for (std::size_t i = 0; i < 3; ++i) {
            const TPoint3D n = scene.Normals[i];
            const TPoint3D scaled = TPoint3D(n.X * scene.Scale.X, n.Y * scene.Scale.Y, n.Z * scene.Scale.Z).Normal();
            normals[i] = simuRot({scaled.X, scaled.Y, scaled.Z});
        }
        const TPoint3D head = scene.HeadDir.Normal();
        const ShadingUniforms uniforms{{float(scene.EyePos.X), float(scene.EyePos.Y), float(scene.EyePos.Z)},
                                       {float(head.X), float(head.Y), float(head.Z)},
                                       {(scene.Color & 0xFF) / 255.0, ((scene.Color >> 8) & 0xFF) / 255.0,
                                        ((scene.Color >> 16) & 0xFF) / 255.0}};
        // Corners on the screen, in pixels.
        std::array<TPoint2D, 3> screen;
        for (std::size_t i = 0; i < 3; ++i)
            screen[i] = {(scene.Vertices[i].X * scene.Scale.X + 1) * kSize / 2,
                         (scene.Vertices[i].Y * scene.Scale.Y + 1) * kSize / 2};
        const double area = (screen[1].X - screen[0].X) * (screen[2].Y - screen[0].Y) -
                            (screen[2].X - screen[0].X) * (screen[1].Y - screen[0].Y);
        int compared = 0;
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x) {
                const TPoint2D c{x + 0.5, y + 0.5};
                double weight[3];
                bool inside = true;
                for (std::size_t i = 0; i < 3; ++i) {
                    const TPoint2D& a = screen[(i + 1) % 3];
                    const TPoint2D& b = screen[(i + 2) % 3];
                    weight[i] = ((b.X - a.X) * (c.Y - a.Y) - (c.X - a.X) * (b.Y - a.Y)) / area;
                    // Distance to the edge opposite corner i, in pixels.
                    if (weight[i] * std::abs(area) / a.DistanceTo(b) < kEdgeMargin) inside = false;
                }
                if (!inside) continue;
                Vec3 position{}, normal{};
                for (std::size_t i = 0; i < 3; ++i) {
                    position.X += weight[i] * scene.Vertices[i].X;
                    position.Y += weight[i] * scene.Vertices[i].Y;
                    position.Z += weight[i] * scene.Vertices[i].Z;
                    normal.X += weight[i] * normals[i].X;
                    normal.Y += weight[i] * normals[i].Y;
                    normal.Z += weight[i] * normals[i].Z;
                }
                const Vec3 colour = ShadeFragment(uniforms, simuRot(position), normal);
                const std::uint8_t* got = &pixels[(static_cast<std::size_t>(y) * kSize + x) * 4];
                const int want[4] = {testing::ToFramebufferByte(colour.X), testing::ToFramebufferByte(colour.Y),
                                     testing::ToFramebufferByte(colour.Z), 255};
                for (int k = 0; k < 4; ++k)
                    if (std::abs(got[k] - want[k]) > kTolerance) {
                        ADD_FAILURE() << scene.Name << ": pixel " << x << ", " << y << " channel " << k << " is "
                                      << int(got[k]) << ", the model says " << want[k];
                        return compared;
                    }
                ++compared;
            }
        return compared;
    }

    OffscreenGL GL{kSize, kSize};
    TGLVAOManager Manager;
};

TEST_F(Shading, AnEightBitFramebufferWithoutSRGB)
{
    GLint bits[4] = {};
    glGetIntegerv(GL_RED_BITS, &bits[0]);
    glGetIntegerv(GL_GREEN_BITS, &bits[1]);
    glGetIntegerv(GL_BLUE_BITS, &bits[2]);
    glGetIntegerv(GL_ALPHA_BITS, &bits[3]);
    EXPECT_EQ(std::vector<GLint>(bits, bits + 4), (std::vector<GLint>{8, 8, 8, 8}));
}

TEST_F(Shading, PixelsFollowTheLightingModel)
{
    std::vector<Scene> scenes(6);
    scenes[0].Name = "three normals";
    scenes[1].Name = "normals turned away from the viewer";
    for (auto& n : scenes[1].Normals) n = -n;
    scenes[2].Name = "a normal no lamp lights";
    scenes[2].EyePos = {0.866, 0, 0.5};
    scenes[2].HeadDir = {0, 0, 1};
    scenes[2].Normals.fill({0.579, 0.295, -0.760});
    scenes[2].Color = 0x2080E0;
    scenes[3].Name = "black";
    scenes[3].Color = 0;
    scenes[4].Name = "eye along the head direction";
    scenes[4].EyePos = {0, 0, 1};
    scenes[4].HeadDir = {0, 0, 3};
    scenes[5].Name = "simulation turn and a non-uniform scale";
    scenes[5].SimuRot = M_PI / 2;
    scenes[5].Scale = {0.6, 1.0, 1.0};
    scenes[5].Normals = {TPoint3D(0.7, 0.1, 0.7), TPoint3D(0.5, -0.3, 0.8), TPoint3D(0.8, 0.2, 0.5)};
    for (const Scene& scene : scenes) EXPECT_GT(ExpectShadedAsModelled(scene), 300) << scene.Name;
}

TEST_F(Shading, NoLampMeansAmbientAndACoolTintOnly)
{
    Scene scene;
    scene.EyePos = {0.866, 0, 0.5};
    scene.HeadDir = {0, 0, 1};
    scene.Normals.fill({0.579, 0.295, -0.760});
    scene.Color = 0x2080E0;  // red 0xE0, green 0x80, blue 0x20
    const std::vector<std::uint8_t> pixels = Render(scene);
    // ambient 0.1 c plus 1.5 times k_cool = (0, 0, 0.1) + 0.1 c
    const double r = 0xE0 / 255.0, g = 0x80 / 255.0, b = 0x20 / 255.0;
    const std::uint8_t* centre = &pixels[(32 * kSize + 32) * 4];
    EXPECT_NEAR(centre[0], 255 * 0.25 * r, kTolerance);
    EXPECT_NEAR(centre[1], 255 * 0.25 * g, kTolerance);
    EXPECT_NEAR(centre[2], 255 * (0.15 + 0.25 * b), kTolerance);
}

TEST_F(Shading, ADrawLeavesModelviewModeAndNothingBound)
{
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(0.25f, 0.0f, 0.0f);
    GLfloat before[16], after[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, before);
    glMatrixMode(GL_PROJECTION);
    Scene scene;
    scene.Scale = {0.5, 0.5, 0.5};  // a transformation of its own, pushed and popped
    Render(scene);
    GLint mode = 0, program = -1, vertexArray = -1;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArray);
    EXPECT_EQ(mode, static_cast<GLint>(GL_MODELVIEW));
    EXPECT_EQ(program, 0);
    EXPECT_EQ(vertexArray, 0);
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    EXPECT_EQ(std::vector<GLfloat>(before, before + 16), std::vector<GLfloat>(after, after + 16));
}

TEST_F(Shading, BothSidesOfASheetLookAlikeAndIsOutChangesNoPixel)
{
    Scene front;
    Scene back = front;
    for (auto& n : back.Normals) n = -n;
    const auto frontPixels = Render(front);
    const auto backPixels = Render(back);
    ASSERT_EQ(frontPixels.size(), backPixels.size());
    int largest = 0;
    for (std::size_t i = 0; i < frontPixels.size(); ++i)
        largest = std::max(largest, std::abs(frontPixels[i] - backPixels[i]));
    EXPECT_LE(largest, 1);

    Scene inner = front;
    inner.IsOut = false;
    EXPECT_EQ(Render(inner), frontPixels);
}

}  // namespace
}  // namespace orvane
