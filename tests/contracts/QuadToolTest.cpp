// The quad tool against an independent checker of its result: quad shapes, no overlap, no
// cracks, coverage by random points and the area by brute force, over hand-made regions and
// seeded random ones (holes, self-crossing loops, lattices, jitter near the merge tolerances).
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <unordered_map>

#include "contracts/GeBezier.h"
#include "contracts/PrimitiveCodes.h"
#include "contracts/TessQuadsTool.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using QuadLoops = std::vector<TDynPoints2D>;

struct Quad {
    TPoint2D P[4];
};

std::vector<Quad> QuadsOf(const TViewUnitList& units)
{
    std::vector<Quad> quads;
    for (const TViewUnit& unit : units)
        for (int i = 0; i + 3 < unit.Points2D.Count(); i += 4)
            quads.push_back({{unit.Points2D[i], unit.Points2D[i + 1], unit.Points2D[i + 2], unit.Points2D[i + 3]}});
    return quads;
}

std::unique_ptr<TViewUnitList> Quads(const QuadLoops& loops, double xtol, double ytol, bool perColumn = false)
{
    TList<TVPolyline2D> polylines;
    for (const TDynPoints2D& loop : loops) polylines.Add(TVPolyline2D(loop));
    return TTessQuadsTool::CreateDrawQuads(polylines, xtol, ytol, perColumn);
}

// ---- The checker ----

struct Segment {
    TPoint2D A, B;
    int Loop;
};

std::vector<Segment> Segments(const QuadLoops& loops)
{
    std::vector<Segment> segs;
    for (std::size_t l = 0; l < loops.size(); ++l)
        for (std::size_t i = 0; i < loops[l].size(); ++i)
            segs.push_back({loops[l][i], loops[l][(i + 1) % loops[l].size()], static_cast<int>(l)});
    return segs;
}

double Cross(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return (b.X - a.X) * (c.Y - a.Y) - (b.Y - a.Y) * (c.X - a.X);
}

// True when p lies within tol of the segment (a box test first: most segments are far).
bool Near(const TPoint2D& p, const Segment& s, double tol)
{
    if (p.X < std::min(s.A.X, s.B.X) - tol || p.X > std::max(s.A.X, s.B.X) + tol ||
        p.Y < std::min(s.A.Y, s.B.Y) - tol || p.Y > std::max(s.A.Y, s.B.Y) + tol)
        return false;
    return ge::DistanceToSegment(p, s.A, s.B) <= tol;
}

// Taken about P0, so that coordinates far from the origin cost no precision.
double SignedArea(const Quad& q) { return (Cross(q.P[0], q.P[1], q.P[2]) + Cross(q.P[0], q.P[2], q.P[3])) / 2; }

double QuadsArea(const std::vector<Quad>& quads)
{
    double area = 0;
    for (const Quad& q : quads) area -= SignedArea(q);
    return area;
}

std::string Describe(const Quad& q)
{
    std::ostringstream s;
    s.precision(17);
    for (const TPoint2D& p : q.P) s << "(" << p.X << ", " << p.Y << ") ";
    return s.str();
}

// Inside the first loop and inside none of the others, each by even-odd.
bool InRegion(const QuadLoops& loops, const TPoint2D& p)
{
    for (std::size_t l = 0; l < loops.size(); ++l) {
        bool odd = false;
        const TDynPoints2D& loop = loops[l];
        for (std::size_t i = 0, j = loop.size() - 1; i < loop.size(); j = i++) {
            const TPoint2D &a = loop[i], &b = loop[j];
            if ((a.Y > p.Y) != (b.Y > p.Y) && p.X < a.X + (p.Y - a.Y) * (b.X - a.X) / (b.Y - a.Y)) odd = !odd;
        }
        if (odd != (l == 0)) return false;
    }
    return !loops.empty();
}

// The region's area by brute force: cut at every vertex and crossing X, and sum the lengths
// of the vertical sections through the middle of each slab.
double RegionArea(const QuadLoops& loops)
{
    const std::vector<Segment> segs = Segments(loops);
    std::vector<double> xs;
    for (const Segment& s : segs) xs.push_back(s.A.X);
    for (std::size_t i = 0; i < segs.size(); ++i)
        for (std::size_t j = i + 1; j < segs.size(); ++j) {
            const Segment &s = segs[i], &r = segs[j];
            const double o1 = Cross(s.A, s.B, r.A), o2 = Cross(s.A, s.B, r.B);
            const double o3 = Cross(r.A, r.B, s.A), o4 = Cross(r.A, r.B, s.B);
            if (o1 * o2 < 0 && o3 * o4 < 0) xs.push_back(s.A.X + o3 / (o3 - o4) * (s.B.X - s.A.X));
        }
    std::sort(xs.begin(), xs.end());
    double area = 0;
    for (std::size_t k = 0; k + 1 < xs.size(); ++k) {
        if (!(xs[k + 1] > xs[k])) continue;
        const double x = (xs[k] + xs[k + 1]) / 2;
        std::vector<std::pair<double, int>> ys;
        for (const Segment& s : segs)
            if ((s.A.X < x) != (s.B.X < x)) ys.emplace_back(s.A.Y + (x - s.A.X) * (s.B.Y - s.A.Y) / (s.B.X - s.A.X), s.Loop);
        std::sort(ys.begin(), ys.end());
        std::vector<bool> odd(loops.size(), false);
        for (std::size_t i = 0; i + 1 < ys.size(); ++i) {
            odd[static_cast<std::size_t>(ys[i].second)] = !odd[static_cast<std::size_t>(ys[i].second)];
            if (odd[0] && std::count(odd.begin(), odd.end(), true) == 1)
                area += (ys[i + 1].first - ys[i].first) * (xs[k + 1] - xs[k]);
        }
    }
    return area;
}

// Vertical sides, P0 top-left, P1 top-right, P2 bottom-right, P3 bottom-left, clockwise,
// convex, no zero area, width at most XTol and sides at most YTol (a merge may lengthen a side
// by twice its tolerance: a billionth of a row, or ulps); no quad narrower than minWidth, no
// side shorter than minSide unless it is a single point. Also: columns follow along X.
std::string CheckShapes(const std::vector<Quad>& quads, double XTol, double YTol, double minWidth, double minSide)
{
    for (std::size_t i = 0; i < quads.size(); ++i) {
        const Quad& q = quads[i];
        const TPoint2D* p = q.P;
        if (i > 0 && p[0].X < quads[i - 1].P[0].X) return "column order broken at quad " + std::to_string(i);
        if (p[0].X != p[3].X || p[1].X != p[2].X || !(p[0].X < p[1].X)) return "sides not vertical: " + Describe(q);
        if (p[1].X - p[0].X < minWidth) return "sliver in X: " + Describe(q);
        for (double side : {p[0].Y - p[3].Y, p[1].Y - p[2].Y})
            if (side != 0 && side < minSide) return "sliver in Y: " + Describe(q);
        if (p[0].Y < p[3].Y || p[1].Y < p[2].Y) return "not top-left first: " + Describe(q);
        if (!(p[0].Y > p[3].Y || p[1].Y > p[2].Y)) return "no area: " + Describe(q);
        if (p[1].X - p[0].X > XTol * (1 + 1e-9)) return "wider than XTol: " + Describe(q);
        const double yLimit = YTol * (1 + 3e-9) + 16 * DBL_EPSILON * std::fabs(p[0].Y);
        if (p[0].Y - p[3].Y > yLimit || p[1].Y - p[2].Y > yLimit) return "higher than YTol: " + Describe(q);
        if (!(SignedArea(q) < 0)) return "not clockwise: " + Describe(q);
        for (int k = 0; k < 4; ++k) {
            const TPoint2D &a = p[(k + 3) % 4], &b = p[k], &c = p[(k + 1) % 4];
            if (!(a == b) && !(b == c) && Cross(a, b, c) > 0) return "reflex corner: " + Describe(q);
        }
    }
    return "";
}

// Every quad edge is shared, reversed and bit for bit, by exactly one other quad edge, or lies
// on a boundary segment of the input (within tol). Quads that overlap, in a column or across
// columns that interleave, leave such edges unshared.
std::string CheckNoCracks(const std::vector<Quad>& quads, const QuadLoops& loops, double tol)
{
    struct Hash {
        std::size_t operator()(const std::array<double, 4>& k) const
        {
            std::size_t h = 0;
            for (double v : k) h = h * 1000003u ^ std::hash<double>()(v);
            return h;
        }
    };
    std::unordered_map<std::array<double, 4>, int, Hash> edges;
    for (const Quad& q : quads)
        for (int i = 0; i < 4; ++i) {
            const TPoint2D &a = q.P[i], &b = q.P[(i + 1) % 4];
            if (!(a == b)) ++edges[{a.X, a.Y, b.X, b.Y}];
        }
    const std::vector<Segment> segs = Segments(loops);
    for (const auto& [key, count] : edges) {
        const auto reverse = edges.find({key[2], key[3], key[0], key[1]});
        const int shared = reverse == edges.end() ? 0 : reverse->second;
        if (shared == 1 && count == 1) continue;
        // Collinear boundary segments may carry one quad edge between them: sample it.
        bool onBoundary = shared == 0;
        for (double t : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            const TPoint2D p{key[0] + t * (key[2] - key[0]), key[1] + t * (key[3] - key[1])};
            onBoundary = onBoundary && std::any_of(segs.begin(), segs.end(), [&](const Segment& s) { return Near(p, s, tol); });
        }
        if (onBoundary) continue;
        std::ostringstream where;
        where.precision(17);
        where << (shared == 0 ? "crack: unshared edge inside the region " : "edge used more than twice ") << "(" << key[0]
              << ", " << key[1] << ")-(" << key[2] << ", " << key[3] << ")";
        return where.str();
    }
    return "";
}

// Random points farther than tol from the boundary lie in exactly one quad when they are in the
// region and in none otherwise.
std::string CheckCoverage(const std::vector<Quad>& quads, const QuadLoops& loops, std::uint32_t seed, double tol)
{
    TRect2D box = CalcAABB(loops[0]);
    std::vector<const Quad*> byLeft;
    double widest = 0;
    for (const Quad& q : quads) byLeft.push_back(&q), widest = std::max(widest, q.P[1].X - q.P[0].X);
    std::sort(byLeft.begin(), byLeft.end(), [](const Quad* a, const Quad* b) { return a->P[0].X < b->P[0].X; });
    const std::vector<Segment> segs = Segments(loops);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> ux(box.Min.X, box.Max.X), uy(box.Min.Y, box.Max.Y);
    for (int n = 0; n < 300; ++n) {
        const TPoint2D p{ux(random), uy(random)};
        if (std::any_of(segs.begin(), segs.end(), [&](const Segment& s) { return Near(p, s, tol); })) continue;
        int covering = 0;
        auto first = std::lower_bound(byLeft.begin(), byLeft.end(), p.X - widest,
                                      [](const Quad* q, double x) { return q->P[0].X < x; });
        for (auto it = first; it != byLeft.end() && (*it)->P[0].X < p.X; ++it) {
            const Quad& q = **it;
            if (!(p.X < q.P[1].X)) continue;
            const double t = (p.X - q.P[0].X) / (q.P[1].X - q.P[0].X);
            if (p.Y > q.P[3].Y + t * (q.P[2].Y - q.P[3].Y) && p.Y < q.P[0].Y + t * (q.P[1].Y - q.P[0].Y)) ++covering;
        }
        if (covering != (InRegion(loops, p) ? 1 : 0)) {
            std::ostringstream s;
            s.precision(17);
            s << "point (" << p.X << ", " << p.Y << ") lies in " << covering << " quads, in region: " << InRegion(loops, p);
            return s.str();
        }
    }
    return "";
}

// What every region's quads must satisfy. Vertices closer than the merge tolerances are moved
// onto each other, which changes the area by up to about a billionth of a column times the
// boundary's length; regions built that way need a looser areaTol.
void ExpectQuadProperties(const QuadLoops& loops, double XTol, double YTol, const TViewUnitList& units,
                          std::uint32_t seed = 1, double areaTol = 1e-9)
{
    for (const TViewUnit& unit : units) {
        EXPECT_EQ(unit.DrawMode, GL_QUADS);
        EXPECT_EQ(unit.Points2D.Count() % 4, 0);
        EXPECT_GT(unit.Points2D.Count(), 0);
    }
    const std::vector<Quad> quads = QuadsOf(units);
    double scale = 0;
    for (const TDynPoints2D& loop : loops)
        for (const TPoint2D& p : loop) scale = std::max({scale, std::fabs(p.X), std::fabs(p.Y)});
    const double area = RegionArea(loops);
    // The reference sums slabs in floating point: a region of no area may come out a few ulps.
    EXPECT_NEAR(QuadsArea(quads), area, std::max(areaTol * area, 1e-15 * scale * scale));
    const TRect2D box = CalcAABB(loops[0]);
    EXPECT_EQ(CheckShapes(quads, XTol, YTol, 1e-10 * std::min(XTol, box.Width()), 1e-10 * std::min(YTol, box.Height())), "");
    EXPECT_EQ(CheckNoCracks(quads, loops, 1e-8 * scale), "");
    EXPECT_EQ(CheckCoverage(quads, loops, seed, 1e-7 * scale), "");
}

// ---- Hand-made regions ----

TDynPoints2D Square(double x0, double y0, double x1, double y1) { return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}; }

TDynPoints2D Circle(double cx, double cy, double r, int n)
{
    TDynPoints2D points;
    for (int i = 0; i < n; ++i) points.push_back({cx + r * std::cos(2 * M_PI * i / n), cy + r * std::sin(2 * M_PI * i / n)});
    return points;
}

void ExpectSameQuads(const std::vector<Quad>& a, const std::vector<Quad>& b)
{
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        for (int k = 0; k < 4; ++k) ASSERT_EQ(a[i].P[k], b[i].P[k]) << "quad " << i << " corner " << k;
}

// One unit per column: the same quads in the same order, each unit within one column.
void ExpectColumnUnits(const TViewUnitList& perColumn, const TViewUnitList& one, double XTol)
{
    for (const TViewUnit& unit : perColumn) EXPECT_LE(CalcAABB(unit.Points2D.Items()).Width(), XTol * (1 + 1e-9));
    ExpectSameQuads(QuadsOf(perColumn), QuadsOf(one));
}

TEST(QuadTool, HandMadeRegionsKeepEveryPropertyAndTheirArea)
{
    const double e = 1e-14;
    struct Case {
        const char* Name;
        QuadLoops Loops;
        double XTol, YTol, Area;  // Area NAN: only the brute-force one
        int Columns;              // -1: not counted
    } cases[] = {
        {"square", {Square(0, 0, 1, 1)}, 0.25, 0.25, 1.0, 4},
        // A slanted, bent strip exactly XTol wide is one column however its boundary runs.
        {"strip", {{{0, 0}, {0.1, 0.5}, {0.02, 1.2}, {0.05, 1.3}, {0.13, 0.6}, {0.13, 0.1}}}, 0.13, 0.1, NAN, 1},
        // An L whose corners lie on column lines, a hole touching the outer boundary at a point on
        // an edge, one at a corner, one with a vertex on a column line.
        {"L with touching holes",
         {{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}},
          {{0.5, 0}, {0.8, 0.3}, {0.2, 0.3}},
          {{2, 1}, {1.7, 0.8}, {1.9, 0.6}},
          {{0.25, 1.25}, {0.5, 1.0}, {0.75, 1.25}, {0.5, 1.5}}},
         0.25, 0.25, 3 - 0.09 - 0.05 - 0.125, -1},
        // Overlapping holes, a hole reaching out of the outer boundary, a hole inside a hole.
        {"crossing holes",
         {Square(0, 0, 4, 3), Square(0.5, 0.5, 2, 2), Square(1.5, 1, 3, 2.5), Square(3.5, -1, 5, 1), Square(0.7, 0.7, 0.9, 0.9)},
         0.3, 0.4, NAN, -1},
        {"bow tie", {{{0, 0}, {2, 2}, {2, 0}, {0, 2}}}, 0.3, 0.3, 2.0, -1},
        // Breakpoints within ulps of column lines and rows merge instead of making slivers.
        {"near lines", {{{0, 0}, {0.5 + e, 0.3}, {1, 0}, {1, 1 + e}, {0.25 - e, 0.5 - e}, {0.25 + e, 1}, {0, 1}}},
         0.25, 0.25, NAN, -1},
        {"circle with hole", {Circle(0, 0, 1, 40), Square(-0.3, -0.2, 0.4, 0.1)}, 0.3, 0.2, NAN, 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Name);
        const auto units = Quads(c.Loops, c.XTol, c.YTol);
        ExpectQuadProperties(c.Loops, c.XTol, c.YTol, *units);
        if (!std::isnan(c.Area)) {
            EXPECT_NEAR(QuadsArea(QuadsOf(*units)), c.Area, 1e-12);
        }
        const auto perColumn = Quads(c.Loops, c.XTol, c.YTol, true);
        if (c.Columns >= 0) {
            EXPECT_EQ(perColumn->Count(), c.Columns);
        }
        ExpectColumnUnits(*perColumn, *units, c.XTol);
        // Lists of owned polyline objects give the same quads too.
        TObjectList<TVPolyline2D> owned;
        for (const TDynPoints2D& loop : c.Loops) owned.Add(new TVPolyline2D(loop));
        ExpectSameQuads(QuadsOf(*TTessQuadsTool::CreateDrawQuads(owned, c.XTol, c.YTol, false)), QuadsOf(*units));
    }
    // The square: rows and columns of rectangles, column by column upwards, P0 top-left.
    const std::vector<Quad> quads = QuadsOf(*Quads({Square(0, 0, 1, 1)}, 0.25, 0.25));
    ASSERT_EQ(quads.size(), 16u);
    ExpectSameQuads({quads[0], quads[3]},
                    {{{{0, 0.25}, {0.25, 0.25}, {0.25, 0}, {0, 0}}}, {{{0, 1}, {0.25, 1}, {0.25, 0.75}, {0, 0.75}}}});
}

std::string MessageOf(const QuadLoops& loops, double xtol, double ytol)
{
    return testing::Raised<EArgumentException>([&] { Quads(loops, xtol, ytol); });
}

TEST(QuadTool, RegionsOfNoAreaAreEmptyBadArgumentsAndTooManyQuadsRaise)
{
    for (const QuadLoops& loops : std::vector<QuadLoops>{{},
                                                         {{{0, 0}, {1, 1}}},
                                                         {{{0, 0}, {1, 1}, {0, 0}, {1, 1}}},
                                                         {{{0, 0}, {0.3, 0.1}, {0.9, 0.3}, {0.6, 0.2}}},
                                                         {{{0, 0}, {1, 0}, {0.5, 0}}},
                                                         {Square(0, 0, 1, 1), Square(-1, -1, 2, 2)}})  // a hole over all
        EXPECT_EQ(Quads(loops, 0.1, 0.1)->Count(), 0);

    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(MessageOf({Square(0, 0, 1, 1), {{0.2, 0.2}, {0.3, nan}, {0.4, 0.2}}}, 0.1, 0.1),
              "CreateDrawQuads: point 1 of polyline 1 has a coordinate that is not finite");
    EXPECT_EQ(MessageOf({{{inf, 0}, {1, 0}, {1, 1}}}, 0.1, 0.1),
              "CreateDrawQuads: point 0 of polyline 0 has a coordinate that is not finite");
    for (double bad : {0.0, -0.1, nan, inf}) {
        EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, bad, 0.1), "CreateDrawQuads: XTol must be a positive finite number");
        EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, 0.1, bad), "CreateDrawQuads: YTol must be a positive finite number");
    }
    EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, 1e-4, 1e-4), "CreateDrawQuads: the region needs more than 20000000 quads");
    EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, 1e-8, 1), "CreateDrawQuads: the region needs more than 20000000 columns");
    EXPECT_EQ(MessageOf({Square(1e6, 0, 1e6 + 1e-6, 1)}, 1e-12, 1),
              "CreateDrawQuads: XTol is too small for the coordinates of the region");

    // The count is of the region, not of its box: a thin diagonal band whose box would hold
    // 2.5e7 quads needs some 1e4.
    const QuadLoops band = {{{0, 0}, {0.001, 0}, {5, 4.999}, {5, 5}, {4.999, 5}, {0, 0.001}}};
    const std::vector<Quad> quads = QuadsOf(*Quads(band, 1e-3, 1e-3));
    EXPECT_GT(quads.size(), 5000u);
    EXPECT_LT(quads.size(), 50000u);
    EXPECT_NEAR(QuadsArea(quads), RegionArea(band), 1e-9 * RegionArea(band));
}

// ---- Seeded random regions ----

class RegionMaker {
public:
    explicit RegionMaker(unsigned seed) : FRandom(seed) {}

    // Kinds by index: every third region lies on a coarse binary lattice, so that vertices
    // fall exactly on column lines, edges run vertical and loops touch and overlap along
    // edges, and every sixth is that lattice shaken by tiny amounts; every fifth has a
    // self-crossing outer loop; some sit far from the origin.
    QuadLoops Make(int index, double& XTol, double& YTol)
    {
        const bool lattice = index % 3 == 0;
        FJitter = index % 6 == 3;
        const double scale = index % 7 == 0 ? 1000.0 : (index % 11 == 0 ? 0.001 : 1.0);
        const double offset = index % 13 == 0 ? 5000.0 * scale : 0.0;
        QuadLoops loops{Star({offset, offset}, scale, Uniform(3, 40), index % 5 == 0, lattice, scale)};
        for (int h = Uniform(0, 6); h > 0; --h) {
            const TPoint2D centre{offset + Real(-0.9, 0.9) * scale, offset + Real(-0.9, 0.9) * scale};
            loops.push_back(Star(centre, Real(0.05, 0.45) * scale, Uniform(3, 20), false, lattice, scale));
        }
        XTol = (lattice ? Uniform(2, 16) / 64.0 : Real(0.05, 0.6)) * scale;
        YTol = (lattice ? Uniform(2, 16) / 64.0 : Real(0.05, 0.6)) * scale;
        return loops;
    }

    // The same loops with the quirks of real trim curves: either winding, a repeated closing
    // point, duplicate and collinear points.
    QuadLoops WithQuirks(const QuadLoops& loops)
    {
        QuadLoops result;
        for (const TDynPoints2D& loop : loops) {
            TDynPoints2D out;
            for (std::size_t i = 0; i < loop.size(); ++i) {
                out.push_back(loop[i]);
                if (Chance(0.1)) out.push_back(loop[i]);
                if (Chance(0.1)) out.push_back((loop[i] + loop[(i + 1) % loop.size()]) * 0.5);
            }
            if (Chance(0.5)) std::reverse(out.begin(), out.end());
            if (Chance(0.5)) out.push_back(out.front());
            result.push_back(out);
        }
        return result;
    }

    bool Shaken() const { return FJitter; }

private:
    int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(FRandom); }
    double Real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(FRandom); }
    bool Chance(double p) { return Real(0, 1) < p; }
    // Half the points moved by a few ulps to a few billionths of a column, around the merge tolerances.
    double Jitter(double scale) { return FJitter && Chance(0.5) ? Real(-1e-11, 1e-11) * scale : 0.0; }

    TDynPoints2D Star(TPoint2D centre, double radius, int n, bool crossing, bool lattice, double scale)
    {
        std::vector<double> angles;
        for (int i = 0; i < n; ++i) angles.push_back(Real(0, 2 * M_PI));
        std::sort(angles.begin(), angles.end());
        if (crossing) std::swap(angles[0], angles[static_cast<std::size_t>(n / 2)]);
        TDynPoints2D points;
        for (double a : angles) {
            const double r = radius * Real(0.3, 1.0);
            TPoint2D p{centre.X + r * std::cos(a), centre.Y + r * std::sin(a)};
            if (lattice) {
                const double step = scale / 16.0;
                p = {std::round(p.X / step) * step + Jitter(scale), std::round(p.Y / step) * step + Jitter(scale)};
            }
            points.push_back(p);
        }
        return points;
    }

    std::mt19937 FRandom;
    bool FJitter = false;
};

TEST(QuadToolRandom, SeededRegionsWithHolesKeepEveryProperty)
{
    RegionMaker maker(20240611);
    for (int index = 0; index < 200; ++index) {
        SCOPED_TRACE("region " + std::to_string(index));
        double xtol = 0, ytol = 0;
        const QuadLoops loops = maker.Make(index, xtol, ytol);
        const QuadLoops quirky = maker.WithQuirks(loops);
        const auto units = Quads(quirky, xtol, ytol);
        ASSERT_LE(units->Count(), 1);
        ExpectQuadProperties(loops, xtol, ytol, *units, static_cast<std::uint32_t>(index), maker.Shaken() ? 1e-8 : 1e-9);
        if (::testing::Test::HasFailure()) break;
        if (index % 2 == 0) ExpectColumnUnits(*Quads(quirky, xtol, ytol, true), *units, xtol);
    }
}

}  // namespace
}  // namespace orvane
