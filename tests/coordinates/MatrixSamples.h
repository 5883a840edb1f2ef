// Matrices and points for the coordinate tests: random non-symmetric ones (so that a transposed
// layout or a swapped product order shows), and a few built by hand.
#pragma once

#include <random>

#include "coordinates/GLMatrix.h"

namespace orvane::testing {

class MatrixSamples {
public:
    explicit MatrixSamples(unsigned ASeed) : FRandom(ASeed) {}

    double Uniform(double ALow, double AHigh)
    {
        return std::uniform_real_distribution<double>(ALow, AHigh)(FRandom);
    }

    // Every element random: no symmetry, a projective bottom row, well conditioned.
    TGlMatrix General()
    {
        TGlMatrix m;
        for (double& e : m) e = Uniform(-0.5, 0.5);
        for (int i = 0; i < 4; ++i) m[5 * i] += Uniform(1.5, 2.5);
        return m;
    }

    TPoint3D Point(double AExtent)
    {
        return {Uniform(-AExtent, AExtent), Uniform(-AExtent, AExtent), Uniform(-AExtent, AExtent)};
    }

private:
    std::mt19937_64 FRandom;
};

inline TGlMatrix Identity()
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

// A projection as glFrustum builds it: the camera at the origin looking down -z.
inline TGlMatrix Frustum(double l, double r, double b, double t, double n, double f)
{
    return {2 * n / (r - l), 0, 0, 0,
            0, 2 * n / (t - b), 0, 0,
            (r + l) / (r - l), (t + b) / (t - b), -(f + n) / (f - n), -1,
            0, 0, -2 * f * n / (f - n), 0};
}

}  // namespace orvane::testing
