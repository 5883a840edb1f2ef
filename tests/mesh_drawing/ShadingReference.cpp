#include "tests/mesh_drawing/ShadingReference.h"

#include <algorithm>
#include <cmath>

namespace orvane::testing {
namespace {

// The program's value, one digit off the true constant; every lamp angle uses it.
constexpr double kPI = 3.14158265359;

Vec3 Add(Vec3 a, Vec3 b) { return {a.X + b.X, a.Y + b.Y, a.Z + b.Z}; }
Vec3 Sub(Vec3 a, Vec3 b) { return {a.X - b.X, a.Y - b.Y, a.Z - b.Z}; }
Vec3 Scale(Vec3 a, double s) { return {a.X * s, a.Y * s, a.Z * s}; }
Vec3 Mul(Vec3 a, Vec3 b) { return {a.X * b.X, a.Y * b.Y, a.Z * b.Z}; }
double Dot(Vec3 a, Vec3 b) { return a.X * b.X + a.Y * b.Y + a.Z * b.Z; }
Vec3 Cross(Vec3 a, Vec3 b) { return {a.Y * b.Z - a.Z * b.Y, a.Z * b.X - a.X * b.Z, a.X * b.Y - a.Y * b.X}; }
Vec3 Unit(Vec3 a) { return Scale(a, 1.0 / std::sqrt(Dot(a, a))); }
Vec3 Fill(double v) { return {v, v, v}; }

// Quaternion (t * axis, cos(angle / 2)) with t = sin(angle / 2), the axis taken as given;
// the point is multiplied from the left with the matrix of the quaternion's rows.
Vec3 TurnAbout(Vec3 axis, Vec3 p, double angle)
{
    const double t = std::sin(angle / 2.0);
    const double x = t * axis.X, y = t * axis.Y, z = t * axis.Z, w = std::cos(angle / 2.0);
    const Vec3 row0{1 - 2 * (y * y + z * z), 2 * x * y - 2 * w * z, 2 * (x * z + w * y)};
    const Vec3 row1{2 * x * y + 2 * w * z, 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)};
    const Vec3 row2{2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)};
    return {Dot(p, row0), Dot(p, row1), Dot(p, row2)};
}

Vec3 Schlick(double cosTheta, Vec3 f0)
{
    const double k = std::pow(std::clamp(1.0 - cosTheta, 0.0, 1.0), 5.0);
    return Add(f0, Scale(Sub(Fill(1.0), f0), k));
}

// One lamp in the direction toLamp (unit, from the scene towards the lamp).
Vec3 OneLamp(Vec3 toLamp, Vec3 n, Vec3 v, Vec3 colour)
{
    const double metallic = 0.6;
    const Vec3 cool = Add(Vec3{0, 0, 0.1}, Scale(colour, 0.1));
    const Vec3 h = Unit(Add(v, toLamp));
    const double nh = std::max(Dot(n, h), 0.0);
    const double nv = std::max(Dot(n, v), 0.0);
    const double nl = std::max(Dot(n, toLamp), 0.0);
    // Roughness 0.5: alpha^2 = 1/16, so the GGX denominator is nh^2 (1/16 - 1) + 1, times 4.
    const double denom = nh * nh * (1.0 / 16.0 - 1.0) * 4.0 + 4.0;
    const double distribution = 1.0 / (kPI * denom * denom);
    const double k = 0.28125;  // (0.5 + 1)^2 / 8
    const double geometry = 1.0 / (nv * (1 - k) + k) * (1.0 / (nl * (1 - k) + k));
    const Vec3 f0 = Add(Scale(Fill(0.04), 1 - metallic), Scale(colour, metallic));
    const Vec3 fresnel = Schlick(std::max(Dot(h, v), 0.0), f0);
    const Vec3 specular = Scale(fresnel, distribution * geometry / 4.0);
    const Vec3 kd = Scale(Sub(Fill(1.0), fresnel), 1 - metallic);
    return Add(Scale(Add(Mul(colour, kd), specular), nl), Scale(cool, 0.5 * (1.0 - nl)));
}

}  // namespace

Vec3 ShadeFragment(const ShadingUniforms& u, const Vec3& fragPos, const Vec3& normal)
{
    Vec3 n = Unit(normal);
    const Vec3 v = Unit(Sub(Scale(u.EyePos, 1000.0), fragPos));
    if (Dot(n, v) < 0) n = Scale(n, -1.0);

    const Vec3 lamps[3] = {
        Unit(TurnAbout(u.HeadDir, u.EyePos, -kPI * 0.2)),
        Unit(TurnAbout(u.HeadDir, u.EyePos, kPI * 0.5)),
        Unit(TurnAbout(Cross(u.HeadDir, u.EyePos), u.EyePos, -kPI * 0.6)),
    };
    Vec3 sum = Scale(u.ObjColor, 0.1);
    for (const Vec3& lamp : lamps) sum = Add(sum, OneLamp(lamp, n, v, u.ObjColor));
    return sum;
}

std::uint8_t ToFramebufferByte(double channel)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(channel, 0.0, 1.0) * 255.0));
}

}  // namespace orvane::testing
