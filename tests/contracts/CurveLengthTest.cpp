#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "contracts/Cadgeometry.h"

namespace orvane {
namespace {

struct LengthCase {
    const char* Name;
    TDynPoints2D Ctrl;  // one Bezier piece
    TArrayDouble Weights;
    double Exact;   // at scale 1
    double RelTol;  // of Exact
};

// Lengths that are known in closed form, of curves that are hard to integrate: a conic, a
// cusp where the speed falls to zero with a kink, a line walked forth, back and forth again,
// and a cusp a billion times smaller than its distance from the origin, whose coordinates are
// rounded to 1e-7 of its size.
std::vector<LengthCase> Cases()
{
    const double h = std::sqrt(0.5);
    // (t^2, t^3) for t in [-1, 1]: 2 * integral of t sqrt(4 + 9 t^2) over [0, 1].
    const double cusp = 2.0 * (std::pow(13.0, 1.5) - 8.0) / 27.0;
    const TDynPoints2D cuspCtrl{{1, -1}, {-1.0 / 3, 1}, {-1.0 / 3, -1}, {1, 1}};
    TDynPoints2D tiny;
    for (const TPoint2D& p : cuspCtrl) tiny.push_back(TPoint2D{1, 1} + p * 1e-9);
    // x(s) = 16 s^3 - 24 s^2 + 9 s goes 0 -> 1 -> 0 -> 1, turning at s = 1/4 and 3/4.
    TDynPoints2D hairpin;
    for (double x : {0.0, 3.0, -2.0, 1.0}) hairpin.push_back({0.6 * x, 0.8 * x});
    return {
        {"quarter circle", {{1, 0}, {1, 1}, {0, 1}}, {1, h, 1}, std::numbers::pi / 2, 1e-12},
        {"cusp", cuspCtrl, {}, cusp, 1e-9},
        {"hairpin", hairpin, {}, 3.0, 1e-9},
        {"tiny cusp far out", tiny, {}, cusp * 1e-9, 1e-6},
    };
}

TEST(CurveLength, ExactAtAnyScaleOfCoordinates)
{
    for (const LengthCase& c : Cases())
        for (const double scale : {1.0, 1e150, 1e-300}) {
            SCOPED_TRACE(std::string(c.Name) + " scaled by " + std::to_string(std::log10(scale)) + " decades");
            TDynPoints2D pts;
            for (const TPoint2D& p : c.Ctrl) pts.push_back(p * scale);
            const int degree = static_cast<int>(pts.size()) - 1;
            TArrayDouble knots(pts.size(), 0.0);
            knots.resize(2 * pts.size(), 1.0);
            const TGeSpline2D spline(degree, knots, pts, c.Weights);
            const double length = spline.GetLength();
            ASSERT_TRUE(std::isfinite(length));
            EXPECT_NEAR(length / scale, c.Exact, c.RelTol * c.Exact);
        }
}

}  // namespace
}  // namespace orvane
