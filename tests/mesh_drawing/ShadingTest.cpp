// The mesh program's lighting, pixel by pixel against a CPU model of it in double precision, on
// a real context.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "mesh_drawing/GLVAOManager.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;

struct Vec3 {
    double X = 0, Y = 0, Z = 0;
};
Vec3 Add(Vec3 a, Vec3 b) { return {a.X + b.X, a.Y + b.Y, a.Z + b.Z}; }
Vec3 Scale(Vec3 a, double s) { return {a.X * s, a.Y * s, a.Z * s}; }
double Dot(Vec3 a, Vec3 b) { return a.X * b.X + a.Y * b.Y + a.Z * b.Z; }
Vec3 Unit(Vec3 a) { return Scale(a, 1.0 / std::sqrt(Dot(a, a))); }
Vec3 Fill(double v) { return {v, v, v}; }

// The program's value, one digit off the true constant; every lamp angle uses it.
constexpr double kPI = 3.14158265359;

// The point turned by the quaternion (sin(angle / 2) axis, cos(angle / 2)), the axis as given.
Vec3 TurnAbout(Vec3 axis, Vec3 p, double angle)
{
    const double t = std::sin(angle / 2.0), w = std::cos(angle / 2.0);
    const double x = t * axis.X, y = t * axis.Y, z = t * axis.Z;
    return {Dot(p, {1 - 2 * (y * y + z * z), 2 * x * y - 2 * w * z, 2 * (x * z + w * y)}),
            Dot(p, {2 * x * y + 2 * w * z, 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)}),
            Dot(p, {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)})};
}

// One lamp in the unit direction toLamp: GGX with roughness 0.5, metallic 0.6, and a cool tint
// where the lamp does not reach.
Vec3 OneLamp(Vec3 toLamp, Vec3 n, Vec3 v, Vec3 colour)
{
    const double metallic = 0.6, k = 0.28125;  // (0.5 + 1)^2 / 8
    const Vec3 h = Unit(Add(v, toLamp));
    const double nh = std::max(Dot(n, h), 0.0), nv = std::max(Dot(n, v), 0.0), nl = std::max(Dot(n, toLamp), 0.0);
    const double denom = nh * nh * (1.0 / 16.0 - 1.0) * 4.0 + 4.0;
    const double dg = 1.0 / (kPI * denom * denom) / (nv * (1 - k) + k) / (nl * (1 - k) + k);
    const Vec3 f0 = Add(Fill(0.04 * (1 - metallic)), Scale(colour, metallic));
    const Vec3 fresnel = Add(f0, Scale(Add(Fill(1.0), Scale(f0, -1)), std::pow(std::clamp(1.0 - std::max(Dot(h, v), 0.0), 0.0, 1.0), 5.0)));
    const Vec3 kd = Scale(Add(Fill(1.0), Scale(fresnel, -1)), 1 - metallic);
    const Vec3 lit = Add({colour.X * kd.X, colour.Y * kd.Y, colour.Z * kd.Z}, Scale(fresnel, dg / 4.0));
    return Add(Scale(lit, nl), Scale(Add(Vec3{0, 0, 0.1}, Scale(colour, 0.1)), 0.5 * (1.0 - nl)));
}

// The colour of a fragment at fragPos with the interpolated normal (any length), unclamped.
Vec3 ShadeFragment(Vec3 eye, Vec3 head, Vec3 colour, Vec3 fragPos, Vec3 normal)
{
    Vec3 n = Unit(normal);
    const Vec3 v = Unit(Add(Scale(eye, 1000.0), Scale(fragPos, -1)));
    if (Dot(n, v) < 0) n = Scale(n, -1.0);
    const Vec3 across{head.Y * eye.Z - head.Z * eye.Y, head.Z * eye.X - head.X * eye.Z, head.X * eye.Y - head.Y * eye.X};
    Vec3 sum = Scale(colour, 0.1);
    for (const Vec3& lamp : {Unit(TurnAbout(head, eye, -kPI * 0.2)), Unit(TurnAbout(head, eye, kPI * 0.5)),
                             Unit(TurnAbout(across, eye, -kPI * 0.6))})
        sum = Add(sum, OneLamp(lamp, n, v, colour));
    return sum;
}

int ToByte(double channel) { return int(std::lround(std::clamp(channel, 0.0, 1.0) * 255.0)); }

constexpr int kSize = 64;
constexpr double kEdgeMargin = 2.0;  // pixels closer than this to an edge are not compared
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
        glMatrixMode(GL_PROJECTION);
        glOrtho(-1, 1, -1, 1, -10, 10);
        glMatrixMode(GL_MODELVIEW);
    }

    // RGBA bytes, bottom row first.
    std::vector<std::uint8_t> Render(const Scene& scene)
    {
        TDynGLFloat tri, norm;
        for (std::size_t i = 0; i < 3; ++i) {
            const TPoint3D &p = scene.Vertices[i], &n = scene.Normals[i];
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
        const auto simuRot = [&](Vec3 v) {  // the shader sees the rotation's columns as rows
            Vec3 r[3];
            for (int c = 0; c < 3; ++c) r[c] = {rotation.GetColVector(c).X, rotation.GetColVector(c).Y, rotation.GetColVector(c).Z};
            return Vec3{Dot(r[0], v), Dot(r[1], v), Dot(r[2], v)};
        };
        // Vertex normals after the vertex stage: scaled like directions, made unit, turned; the
        // corners on the screen, in pixels.
        std::array<Vec3, 3> normals;
        std::array<TPoint2D, 3> screen;
        for (std::size_t i = 0; i < 3; ++i) {
            const TPoint3D n = scene.Normals[i];
            const TPoint3D s = TPoint3D(n.X * scene.Scale.X, n.Y * scene.Scale.Y, n.Z * scene.Scale.Z).Normal();
            normals[i] = simuRot({s.X, s.Y, s.Z});
            screen[i] = {(scene.Vertices[i].X * scene.Scale.X + 1) * kSize / 2,
                         (scene.Vertices[i].Y * scene.Scale.Y + 1) * kSize / 2};
        }
        const TPoint3D head = scene.HeadDir.Normal();
        const Vec3 eye{float(scene.EyePos.X), float(scene.EyePos.Y), float(scene.EyePos.Z)};
        const Vec3 colour{(scene.Color & 0xFF) / 255.0, ((scene.Color >> 8) & 0xFF) / 255.0,
                          ((scene.Color >> 16) & 0xFF) / 255.0};
        const double area = (screen[1].X - screen[0].X) * (screen[2].Y - screen[0].Y) -
                            (screen[2].X - screen[0].X) * (screen[1].Y - screen[0].Y);
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
                Vec3 position, normal;
                for (std::size_t i = 0; i < 3; ++i) {
                    position = Add(position, Scale({scene.Vertices[i].X, scene.Vertices[i].Y, scene.Vertices[i].Z}, weight[i]));
                    normal = Add(normal, Scale(normals[i], weight[i]));
                }
                const Vec3 c = ShadeFragment(eye, {float(head.X), float(head.Y), float(head.Z)}, colour, simuRot(position), normal);
                const std::uint8_t* got = &pixels[(static_cast<std::size_t>(y) * kSize + x) * 4];
                const int want[4] = {ToByte(c.X), ToByte(c.Y), ToByte(c.Z), 255};
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
    Scene inner = scenes[0];
    inner.IsOut = false;
    EXPECT_EQ(Render(inner), Render(scenes[0])) << "IsOut changes no pixel";

    // Where no lamp reaches, the model gives ambient 0.1 c plus 1.5 times (0, 0, 0.1) + 0.1 c.
    const std::vector<std::uint8_t> dark = Render(scenes[2]);
    const std::uint8_t* centre = &dark[(32 * kSize + 32) * 4];
    EXPECT_NEAR(centre[0], 255 * 0.25 * 0xE0 / 255.0, kTolerance);
    EXPECT_NEAR(centre[1], 255 * 0.25 * 0x80 / 255.0, kTolerance);
    EXPECT_NEAR(centre[2], 255 * (0.15 + 0.25 * 0x20 / 255.0), kTolerance);
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
