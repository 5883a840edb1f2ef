// The mesh program's lighting, pixel by pixel against a CPU model of it in double precision, on
// a real context.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "mesh_drawing/GLVAOManager.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using V = TPoint3D;

V Mul(V a, V b) { return {a.X * b.X, a.Y * b.Y, a.Z * b.Z}; }
V Fill(double v) { return {v, v, v}; }

// The program's value, one digit off the true constant; every lamp angle uses it.
constexpr double kPI = 3.14158265359;

// The point turned by the quaternion (sin(angle / 2) axis, cos(angle / 2)), the axis as given.
V TurnAbout(V axis, V p, double angle)
{
    const double t = std::sin(angle / 2.0), w = std::cos(angle / 2.0);
    const double x = t * axis.X, y = t * axis.Y, z = t * axis.Z;
    return {p.DotMul({1 - 2 * (y * y + z * z), 2 * x * y - 2 * w * z, 2 * (x * z + w * y)}),
            p.DotMul({2 * x * y + 2 * w * z, 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)}),
            p.DotMul({2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)})};
}

// One lamp in the unit direction toLamp: GGX with roughness 0.5, metallic 0.6, and a cool tint
// where the lamp does not reach.
V OneLamp(V toLamp, V n, V v, V colour)
{
    const double metallic = 0.6, k = 0.28125;  // (0.5 + 1)^2 / 8
    const V h = (v + toLamp).Normal();
    const double nh = std::max(n.DotMul(h), 0.0), nv = std::max(n.DotMul(v), 0.0), nl = std::max(n.DotMul(toLamp), 0.0);
    const double denom = nh * nh * (1.0 / 16.0 - 1.0) * 4.0 + 4.0;
    const double dg = 1.0 / (kPI * denom * denom) / (nv * (1 - k) + k) / (nl * (1 - k) + k);
    const V f0 = Fill(0.04 * (1 - metallic)) + colour * metallic;
    const V fresnel = f0 + (Fill(1.0) - f0) * std::pow(std::clamp(1.0 - std::max(h.DotMul(v), 0.0), 0.0, 1.0), 5.0);
    const V lit = Mul(colour, (Fill(1.0) - fresnel) * (1 - metallic)) + fresnel * (dg / 4.0);
    return lit * nl + (V{0, 0, 0.1} + colour * 0.1) * (0.5 * (1.0 - nl));
}

// The colour of a fragment at fragPos with the interpolated normal (any length), unclamped.
V ShadeFragment(V eye, V head, V colour, V fragPos, V normal)
{
    V n = normal.Normal();
    const V v = (eye * 1000.0 - fragPos).Normal();
    if (n.DotMul(v) < 0) n = -n;
    V sum = colour * 0.1;
    for (const V& lamp : {TurnAbout(head, eye, -kPI * 0.2), TurnAbout(head, eye, kPI * 0.5), TurnAbout(head.CrossMul(eye), eye, -kPI * 0.6)})
        sum += OneLamp(lamp.Normal(), n, v, colour);
    return sum;
}

int ToByte(double channel) { return int(std::lround(std::clamp(channel, 0.0, 1.0) * 255.0)); }

constexpr int kSize = 64;
constexpr double kEdgeMargin = 2.0;  // pixels closer than this to an edge are not compared
constexpr int kTolerance = 2;

struct Scene {
    std::string Name;
    std::array<V, 3> Vertices{V(-0.8, -0.7, 0.1), V(0.8, -0.6, -0.2), V(0.0, 0.85, 0.3)};
    std::array<V, 3> Normals{V(0.2, 0.1, 1.0), V(-0.3, 0.2, 0.9), V(0.1, -0.4, 0.8)};
    V EyePos{0.3, -0.4, 0.866};
    V HeadDir{0.0, 2.0, 0.0};
    TColor Color = 0x3399CC;
    bool IsOut = true;
    double SimuRot = 0.0;
    V Scale{1.0, 1.0, 1.0};  // the mesh's own transformation: a diagonal
};

class Shading : public ::testing::Test {
protected:
    void SetUp() override
    {
        glDisable(GL_DITHER);
        glDisable(GL_FRAMEBUFFER_SRGB);
        glMatrixMode(GL_PROJECTION);
        glOrtho(-1, 1, -1, 1, -10, 10);
        glMatrixMode(GL_MODELVIEW);
    }

    // RGBA bytes, bottom row first.
    std::vector<std::uint8_t> Render(const Scene& scene)
    {
        TDynGLFloat tri, norm;
        for (std::size_t i = 0; i < 3; ++i) {
            const V &p = scene.Vertices[i], &n = scene.Normals[i];
            tri.insert(tri.end(), {float(p.X), float(p.Y), float(p.Z)});
            norm.insert(norm.end(), {float(n.X), float(n.Y), float(n.Z)});
        }
        Cardinal id = 0;
        Manager.GenerateTriVAO(tri, norm, {0, 1, 2}, id);
        TGLMatrixf4 trans;
        trans.Reset();
        trans[0][0] = float(scene.Scale.X), trans[1][1] = float(scene.Scale.Y), trans[2][2] = float(scene.Scale.Z);
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
        const auto simuRot = [&](V v) { return V{rotation.GetColVector(0).DotMul(v), rotation.GetColVector(1).DotMul(v), rotation.GetColVector(2).DotMul(v)}; };
        // Vertex normals after the vertex stage: scaled like directions, made unit, turned; the
        // corners on the screen, in pixels.
        std::array<V, 3> normals;
        std::array<TPoint2D, 3> screen;
        for (std::size_t i = 0; i < 3; ++i) {
            normals[i] = simuRot(Mul(scene.Normals[i], scene.Scale).Normal());
            const V at = Mul(scene.Vertices[i], scene.Scale);
            screen[i] = {(at.X + 1) * kSize / 2, (at.Y + 1) * kSize / 2};
        }
        const V head = scene.HeadDir.Normal();
        const V eye{float(scene.EyePos.X), float(scene.EyePos.Y), float(scene.EyePos.Z)};
        const V colour = V{double(scene.Color & 0xFF), double((scene.Color >> 8) & 0xFF), double((scene.Color >> 16) & 0xFF)} / 255.0;
        const double area = (screen[1].X - screen[0].X) * (screen[2].Y - screen[0].Y) - (screen[2].X - screen[0].X) * (screen[1].Y - screen[0].Y);
        int compared = 0;
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x) {
                double weight[3];
                bool inside = true;
                for (std::size_t i = 0; i < 3; ++i) {
                    const TPoint2D &a = screen[(i + 1) % 3], &b = screen[(i + 2) % 3];
                    weight[i] = ((b.X - a.X) * (y + 0.5 - a.Y) - (x + 0.5 - a.X) * (b.Y - a.Y)) / area;
                    inside = inside && weight[i] * std::abs(area) / a.DistanceTo(b) >= kEdgeMargin;
                }
                if (!inside) continue;
                V position, normal;
                for (std::size_t i = 0; i < 3; ++i) position += scene.Vertices[i] * weight[i], normal += normals[i] * weight[i];
                const V c = ShadeFragment(eye, {float(head.X), float(head.Y), float(head.Z)}, colour, simuRot(position), normal);
                const std::uint8_t* got = &pixels[(static_cast<std::size_t>(y) * kSize + x) * 4];
                const int want[4] = {ToByte(c.X), ToByte(c.Y), ToByte(c.Z), 255};
                for (int k = 0; k < 4; ++k)
                    if (std::abs(got[k] - want[k]) > kTolerance) {
                        ADD_FAILURE() << scene.Name << ": pixel " << x << ", " << y << " channel " << k << " is " << int(got[k])
                                      << ", the model says " << want[k];
                        return compared;
                    }
                ++compared;
            }
        return compared;
    }

    testing::OffscreenGL GL{kSize, kSize};
    TGLVAOManager Manager;
};

TEST_F(Shading, PixelsFollowTheLightingModel)
{
    GLint bits[4] = {};  // an eight-bit framebuffer, as the model rounds
    for (int i = 0; i < 4; ++i) glGetIntegerv(GL_RED_BITS + i, &bits[i]);
    ASSERT_EQ(std::vector<GLint>(bits, bits + 4), (std::vector<GLint>{8, 8, 8, 8}));
    std::vector<Scene> scenes(6);
    scenes[0].Name = "three normals";
    scenes[1].Name = "normals turned away from the viewer";
    for (auto& n : scenes[1].Normals) n = -n;
    scenes[2].Name = "a normal no lamp lights";
    scenes[2].EyePos = {0.866, 0, 0.5}, scenes[2].HeadDir = {0, 0, 1}, scenes[2].Color = 0x2080E0;
    scenes[2].Normals.fill({0.579, 0.295, -0.760});
    scenes[3].Name = "black";
    scenes[3].Color = 0;
    scenes[4].Name = "eye along the head direction";
    scenes[4].EyePos = {0, 0, 1}, scenes[4].HeadDir = {0, 0, 3};
    scenes[5].Name = "simulation turn and a non-uniform scale";
    scenes[5].SimuRot = M_PI / 2, scenes[5].Scale = {0.6, 1.0, 1.0};
    scenes[5].Normals = {V(0.7, 0.1, 0.7), V(0.5, -0.3, 0.8), V(0.8, 0.2, 0.5)};
    for (const Scene& scene : scenes) EXPECT_GT(ExpectShadedAsModelled(scene), 300) << scene.Name;
    Scene inner = scenes[0];
    inner.IsOut = false;
    EXPECT_EQ(Render(inner), Render(scenes[0])) << "IsOut changes no pixel";

    // Where no lamp reaches, the model gives ambient 0.1 c plus 1.5 times (0, 0, 0.1) + 0.1 c.
    const std::vector<std::uint8_t> dark = Render(scenes[2]);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(dark[(32 * kSize + 32) * 4 + k], 255 * ((k == 2 ? 0.15 : 0) + 0.25 * (0x2080E0 >> 8 * k & 0xFF) / 255.0), kTolerance);
}

TEST_F(Shading, ADrawLeavesModelviewModeItsMatrixAndNothingBound)
{
    glTranslatef(0.25f, 0.0f, 0.0f);
    GLfloat before[16], after[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, before);
    glMatrixMode(GL_PROJECTION);
    Scene scene;
    scene.Scale = {0.5, 0.5, 0.5};  // a transformation of its own, pushed and popped
    Render(scene);
    GLint state[3] = {};
    glGetIntegerv(GL_MATRIX_MODE, &state[0]);
    glGetIntegerv(GL_CURRENT_PROGRAM, &state[1]);
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &state[2]);
    EXPECT_EQ(std::vector<GLint>(state, state + 3), (std::vector<GLint>{GL_MODELVIEW, 0, 0}));
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    EXPECT_EQ(std::vector<GLfloat>(before, before + 16), std::vector<GLfloat>(after, after + 16));
}

}  // namespace
}  // namespace orvane
