#include "contracts/Shapes.h"

#include <cmath>
#include <functional>
#include <numbers>

namespace orvane {

namespace {

constexpr double kPi = std::numbers::pi;
const double kHalfRoot2 = std::sqrt(0.5);

using TBuilder = std::function<std::unique_ptr<TGeSurface>()>;

struct TShape {
    const char* Name;
    const char* Description;
    double ExactArea;
    TBuilder Build;
};

// Unit circle of nine points in quarter arcs, with its weights and knots.
const TDynPoints2D kCircle{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
const TArrayDouble kCircleWeights{1, kHalfRoot2, 1, kHalfRoot2, 1, kHalfRoot2, 1, kHalfRoot2, 1};
const TArrayDouble kCircleKnots{0, 0, 0, .25, .25, .5, .5, .75, .75, 1, 1, 1};
const TArrayDouble kLinearKnots{0, 0, 1, 1};
const TArrayDouble kCubicKnots{0, 0, 0, 0, 1, 1, 1, 1};

// A surface of revolution about Z: the profile points are (radius, z) with their weights.
std::unique_ptr<TGeSurface> Revolve(const TDynPoints2D& Profile, const TArrayDouble& ProfileWeights,
                                    int ProfileDegree, const TArrayDouble& ProfileKnots)
{
    TDynPoints3D pts;
    TArrayDouble weights;
    for (std::size_t i = 0; i < kCircle.size(); ++i)
        for (std::size_t j = 0; j < Profile.size(); ++j) {
            pts.push_back({kCircle[i].X * Profile[j].X, kCircle[i].Y * Profile[j].X, Profile[j].Y});
            weights.push_back(kCircleWeights[i] * ProfileWeights[j]);
        }
    return std::make_unique<TGeNurbsSurface>(9, static_cast<int>(Profile.size()), 2, ProfileDegree, kCircleKnots,
                                             ProfileKnots, pts, weights);
}

std::unique_ptr<TGeSurface> Cylinder(bool Transposed)
{
    TDynPoints3D pts;
    TArrayDouble weights;
    const int across = Transposed ? 2 : 9;
    const int along = Transposed ? 9 : 2;
    for (int i = 0; i < across; ++i)
        for (int j = 0; j < along; ++j) {
            const int round = Transposed ? j : i;
            const int height = Transposed ? i : j;
            pts.push_back({kCircle[round].X, kCircle[round].Y, 2.0 * height});
            weights.push_back(kCircleWeights[round]);
        }
    return Transposed ? std::make_unique<TGeNurbsSurface>(2, 9, 1, 2, kLinearKnots, kCircleKnots, pts, weights)
                      : std::make_unique<TGeNurbsSurface>(9, 2, 2, 1, kCircleKnots, kLinearKnots, pts, weights);
}

std::unique_ptr<TGeSurface> PartialCylinder()
{
    // Two 60 degree spans from -60 to +60 degrees; the middle points lie on the tangents.
    const double c30 = std::cos(kPi / 6);
    TDynPoints3D pts;
    TArrayDouble weights;
    for (int i = 0; i < 5; ++i) {
        const double angle = (i - 2) * kPi / 6;
        const double radius = i % 2 == 1 ? 1.0 / c30 : 1.0;
        for (int j = 0; j < 2; ++j) pts.push_back({radius * std::cos(angle), radius * std::sin(angle), 2.0 * j});
        weights.insert(weights.end(), 2, i % 2 == 1 ? c30 : 1.0);
    }
    return std::make_unique<TGeNurbsSurface>(5, 2, 2, 1, TArrayDouble{0, 0, 0, .5, .5, 1, 1, 1}, kLinearKnots, pts,
                                             weights);
}

// Cubic control rows of the ruled surfaces: the two guide curves.
const TDynPoints3D kGuideA{{0, 0, 0}, {0, 1, 1}, {0, 2, -1}, {0, 3, 0}};
const TDynPoints3D kGuideB{{2, 0, 0.5}, {2, 1, -0.5}, {2, 2, 1}, {2, 3, 0.2}};

std::unique_ptr<TGeSurface> Ruled(bool StraightAlongU)
{
    TDynPoints3D pts;
    if (StraightAlongU) {
        pts = kGuideA;
        pts.insert(pts.end(), kGuideB.begin(), kGuideB.end());
        return std::make_unique<TGeNurbsSurface>(2, 4, 1, 3, kLinearKnots, kCubicKnots, pts);
    }
    // Straight along V: the guides run along U, swap x and y so that U still runs along y.
    for (int i = 0; i < 4; ++i) {
        pts.push_back({kGuideA[i].Y, kGuideA[i].X, kGuideA[i].Z});
        pts.push_back({kGuideB[i].Y, kGuideB[i].X, kGuideB[i].Z});
    }
    return std::make_unique<TGeNurbsSurface>(4, 2, 3, 1, kCubicKnots, kLinearKnots, pts);
}

std::unique_ptr<TGeSurface> Freeform()
{
    const double heights[4][5] = {{0.0, 0.4, 0.1, -0.3, 0.0},
                                  {0.3, 1.2, 0.8, 0.2, -0.2},
                                  {-0.2, 0.6, 1.5, 0.9, 0.3},
                                  {0.1, -0.1, 0.4, 0.7, 0.5}};
    TDynPoints3D pts;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 5; ++j) pts.push_back({1.0 * i, 0.8 * j, heights[i][j]});
    return std::make_unique<TGeNurbsSurface>(4, 5, 3, 3, kCubicKnots, TArrayDouble{0, 0, 0, 0, .5, 1, 1, 1, 1}, pts);
}

// The base of the trimmed shapes: a 3 x 2 rectangle of degree 2 over the unit square, its
// control points at the Greville abscissae so that the parametrisation stays linear.
std::unique_ptr<TGeSurface> TrimBase()
{
    TDynPoints3D pts;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) pts.push_back({1.5 * i, 1.0 * j, 0.0});
    const TArrayDouble knots{0, 0, 0, 1, 1, 1};
    return std::make_unique<TGeNurbsSurface>(3, 3, 2, 2, knots, knots, pts);
}
constexpr double kTrimBaseScale = 6.0;  // area of the base per unit of UV area

using TCurves = std::vector<std::unique_ptr<TGeCurve2D>>;

TCurves Lines(const TDynPoints2D& Corners)
{
    TCurves lines;
    for (std::size_t i = 0; i + 1 < Corners.size(); ++i)
        lines.push_back(std::make_unique<TGeLine2D>(Corners[i], Corners[i + 1]));
    return lines;
}

// A clockwise circle as one spline.
std::unique_ptr<TGeCurve2D> CircleHole(const TPoint2D& C, double R)
{
    TDynPoints2D pts;
    for (auto it = kCircle.rbegin(); it != kCircle.rend(); ++it) pts.push_back(C + *it * R);
    return std::make_unique<TGeSpline2D>(2, kCircleKnots, pts, kCircleWeights);
}

// A clockwise circle as two half-circle splines.
std::unique_ptr<TGeCurve2D> TwoHalvesHole(const TPoint2D& C, double R)
{
    const TDynPoints2D unit{{-1, 0}, {-1, 1}, {0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}};
    const TArrayDouble knots{0, 0, 0, .5, .5, 1, 1, 1};
    const TArrayDouble weights{1, kHalfRoot2, 1, kHalfRoot2, 1};
    TCurves halves;
    for (int h = 0; h < 2; ++h) {
        TDynPoints2D pts;
        for (int k = 0; k < 5; ++k) pts.push_back(C + unit[4 * h + k] * R);
        halves.push_back(std::make_unique<TGeSpline2D>(2, knots, pts, weights));
    }
    return std::make_unique<TGeCompositeCurve2D>(std::move(halves));
}

const TDynPoints2D kOuterSquare{{0.05, 0.05}, {0.95, 0.05}, {0.95, 0.95}, {0.05, 0.95}, {0.05, 0.05}};
constexpr double kOuterArea = 0.81;

std::unique_ptr<TGeSurface> TrimmedCircularHoles()
{
    TCurves holes;
    holes.push_back(CircleHole({0.3, 0.5}, 0.15));
    holes.push_back(TwoHalvesHole({0.7, 0.5}, 0.12));
    return std::make_unique<TGeTrimmedSurface>(TrimBase(), std::make_unique<TGeCompositeCurve2D>(Lines(kOuterSquare)),
                                               std::move(holes));
}
const double kCircularHolesArea = kTrimBaseScale * (kOuterArea - kPi * (0.15 * 0.15 + 0.12 * 0.12));

// Clockwise polygons of the polygon holes and their areas.
const TDynPoints2D kTriangle{{0.2, 0.2}, {0.3, 0.45}, {0.4, 0.2}, {0.2, 0.2}};
const TDynPoints2D kRectangle{{0.55, 0.15}, {0.55, 0.35}, {0.85, 0.35}, {0.85, 0.15}, {0.55, 0.15}};
const TDynPoints2D kPentagon{{0.5, 0.55}, {0.35, 0.65}, {0.42, 0.85}, {0.58, 0.85}, {0.65, 0.65}, {0.5, 0.55}};

double PolygonArea(const TDynPoints2D& Closed)
{
    double twice = 0.0;
    for (std::size_t i = 0; i + 1 < Closed.size(); ++i)
        twice += Closed[i].X * Closed[i + 1].Y - Closed[i + 1].X * Closed[i].Y;
    return std::fabs(twice) / 2.0;
}

std::unique_ptr<TGeSurface> TrimmedPolygonHoles()
{
    TCurves holes;
    holes.push_back(std::make_unique<TGeCompositeCurve2D>(Lines(kTriangle)));
    holes.push_back(std::make_unique<TGeCompositeCurve2D>(Lines(kRectangle)));
    holes.push_back(PolylineSpline(kPentagon));
    return std::make_unique<TGeTrimmedSurface>(TrimBase(), PolylineSpline(kOuterSquare), std::move(holes));
}
const double kPolygonHolesArea =
    kTrimBaseScale * (kOuterArea - PolygonArea(kTriangle) - PolygonArea(kRectangle) - PolygonArea(kPentagon));

const std::vector<TShape>& Library()
{
    static const std::vector<TShape> shapes{
        {"plane", "flat 3 x 2 rectangle, bilinear", 6.0,
         [] {
             return std::make_unique<TGeNurbsSurface>(2, 2, 1, 1, kLinearKnots, kLinearKnots,
                                                      TDynPoints3D{{0, 0, 0}, {0, 2, 0}, {3, 0, 0}, {3, 2, 0}});
         }},
        {"bilinear", "twisted bilinear patch (u, v, uv) over the unit square", NAN,
         [] {
             return std::make_unique<TGeNurbsSurface>(2, 2, 1, 1, kLinearKnots, kLinearKnots,
                                                      TDynPoints3D{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 1}});
         }},
        {"cylinder", "radius 1, height 2, round along U (9 points, quarter arcs), straight along V", 4 * kPi,
         [] { return Cylinder(false); }},
        {"cylinder-transposed", "radius 1, height 2, straight along U, round along V", 4 * kPi,
         [] { return Cylinder(true); }},
        {"partial-cylinder", "120 degree arc of radius 1 in two spans, height 2", 4 * kPi / 3,
         [] { return PartialCylinder(); }},
        {"cone", "base radius 1, height 2, apex a pole at V = 1", kPi * std::sqrt(5.0),
         [] { return Revolve({{1, 0}, {0, 2}}, {1, 1}, 1, kLinearKnots); }},
        {"sphere", "radius 2, U around the axis, V pole to pole", 16 * kPi,
         [] {
             return Revolve({{0, -2}, {2, -2}, {2, 0}, {2, 2}, {0, 2}}, {1, kHalfRoot2, 1, kHalfRoot2, 1}, 2,
                            {0, 0, 0, .5, .5, 1, 1, 1});
         }},
        {"torus", "major radius 3, minor radius 1, rational in U and V", 12 * kPi * kPi,
         [] {
             TDynPoints2D profile;
             for (const TPoint2D& p : kCircle) profile.push_back({3 + p.X, p.Y});
             return Revolve(profile, kCircleWeights, 2, kCircleKnots);
         }},
        {"freeform", "bicubic, 4 x 5 control points, an interior knot in V", NAN, [] { return Freeform(); }},
        {"ruled-u", "straight along U, cubic along V", NAN, [] { return Ruled(true); }},
        {"ruled-v", "straight along V, cubic along U", NAN, [] { return Ruled(false); }},
        {"trimmed-circular-holes", "plane of degree 2 in a square of lines, a spline circle hole, a hole of two half circles",
         kCircularHolesArea, [] { return TrimmedCircularHoles(); }},
        {"trimmed-polygon-holes", "plane of degree 2 in a degree-1 spline square, triangle, rectangle and pentagon holes",
         kPolygonHolesArea, [] { return TrimmedPolygonHoles(); }},
    };
    return shapes;
}

const TShape& Find(const std::string& Name)
{
    for (const TShape& s : Library())
        if (Name == s.Name) return s;
    throw EArgumentException("Unknown shape: " + Name);
}

}  // namespace

std::vector<std::string> ShapeNames()
{
    std::vector<std::string> names;
    for (const TShape& s : Library()) names.emplace_back(s.Name);
    return names;
}

std::unique_ptr<TGeSurface> MakeShape(const std::string& Name) { return Find(Name).Build(); }

double ShapeExactArea(const std::string& Name) { return Find(Name).ExactArea; }

std::string ShapeDescription(const std::string& Name) { return Find(Name).Description; }

std::unique_ptr<TGeSpline2D> PolylineSpline(const TDynPoints2D& Points)
{
    const std::size_t n = Points.size();
    TArrayDouble knots{0.0};
    for (std::size_t k = 0; k < n; ++k) knots.push_back(static_cast<double>(k) / static_cast<double>(n - 1));
    knots.push_back(1.0);
    return std::make_unique<TGeSpline2D>(1, knots, Points);
}

}  // namespace orvane
