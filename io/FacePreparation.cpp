#include "io/FacePreparation.h"

#include <cmath>
#include <sstream>

#include "io/KernelFace.h"
#include "io/NurbsEdit.h"
#include "tessellation/SurfaceTriangulatorChecker.h"

namespace orvane::io {
namespace {

constexpr double kRowSpacing = DefaultSampleRange / 2.0;  // h: the road's row spacing and column floor
constexpr double kRangeTol = 1e-6;                        // the road's margin on the column floor

constexpr double kMostTurn = 0.35;  // a: radians the normal may turn across one part

constexpr long long kHugeParts = 1'000'000'000'000'000LL;  // stands for "more than any bound"

// Parts of a grid over span L at spacing w: the quad tool's rounding, to 1e-12 relative.
long long PartsOf(double L, double w)
{
    const double parts = std::ceil(L / w * (1.0 - 1e-12));
    if (!(parts < static_cast<double>(kHugeParts))) return kHugeParts;
    return std::max(1LL, static_cast<long long>(parts));
}

// The road's column divisor for n control points of degree p.
double Divisor(int n, int p)
{
    return p == 1 ? n + 1.0 : (n + p) * 8.0;
}

// Knots to insert so that Divisor reaches `needed` columns.
int KnotsForColumns(int n, int p, double needed)
{
    const double target = std::ceil(needed);
    const double missing = p == 1 ? target - (n + 1) : std::ceil(target / 8.0) - (n + p);
    return missing > 0 ? static_cast<int>(missing) : 0;
}

// N_d and L_d of one direction; fills Span, Needed and Scale.
DirectionPlan ScaleDirection(double span, double maxSecond, double maxTurn, const PreparationSettings& s)
{
    DirectionPlan d;
    d.Span = span;
    d.Needed = span * std::max(std::sqrt(maxSecond / (2.0 * s.Tolerance)), maxTurn / kMostTurn);
    const double length = kRowSpacing * std::max(d.Needed, 1.0);
    d.Scale = length / span;
    return d;
}

void SetChord(DirectionPlan& d, double maxSecond)
{
    const double part = d.Span / static_cast<double>(d.Parts);
    d.Chord = part * part * maxSecond / 8.0;
}

// Columns as the road chooses them for a surface that is not simple, after inserting knots.
void PlanColumns(DirectionPlan& x, int count, int degree)
{
    if (!(x.Needed < static_cast<double>(kHugeParts))) {  // absurd: left to the refusal
        x.Parts = kHugeParts;
        return;
    }
    x.InsertedKnots = KnotsForColumns(count, degree, x.Needed);
    const double length = x.Scale * x.Span;
    const double range = length / Divisor(count + x.InsertedKnots, degree);
    const double width = range < kRowSpacing - kRangeTol ? kRowSpacing : range;
    x.Parts = PartsOf(length, width);
}

std::string Text(const auto&... parts)
{
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

}  // namespace

PreparationPlan PlanPreparation(const FaceData& F, TExtrusionType Type, bool Simple, const PreparationSettings& Settings)
{
    if (!(Settings.Tolerance > 0.0)) throw EFaceRefused("the chordal tolerance must be positive");
    const NurbsSurfaceData& s = F.Surface;
    const DerivativeBounds& b = F.Bounds;
    PreparationPlan plan;
    plan.Type = Type;
    plan.Simple = Simple;
    plan.XIsU = Type != TExtrusionType::UDir;
    const double spanU = s.KnotsU.back() - s.KnotsU.front(), spanV = s.KnotsV.back() - s.KnotsV.front();
    const DirectionPlan u = ScaleDirection(spanU, b.MaxSuu, b.MaxTurnU, Settings);
    const DirectionPlan v = ScaleDirection(spanV, b.MaxSvv, b.MaxTurnV, Settings);
    plan.X = plan.XIsU ? u : v;
    plan.Y = plan.XIsU ? v : u;
    plan.Y.Parts = PartsOf(plan.Y.Scale * plan.Y.Span, kRowSpacing);
    if (Simple)
        plan.X.Parts = 1;
    else
        PlanColumns(plan.X, plan.XIsU ? s.CountU : s.CountV, plan.XIsU ? s.DegreeU : s.DegreeV);
    SetChord(plan.X, plan.XIsU ? b.MaxSuu : b.MaxSvv);
    SetChord(plan.Y, plan.XIsU ? b.MaxSvv : b.MaxSuu);
    return plan;
}

void ApplyPreparation(FaceData& F, const PreparationPlan& Plan)
{
    const ParamDir x = Plan.XIsU ? ParamDir::U : ParamDir::V;
    const ParamDir y = Plan.XIsU ? ParamDir::V : ParamDir::U;
    InsertKnots(F.Surface, x, Plan.X.InsertedKnots);
    InsertKnots(F.Surface, y, Plan.Y.InsertedKnots);
    const double x0 = (x == ParamDir::U ? F.Surface.KnotsU : F.Surface.KnotsV).front();
    const double y0 = (y == ParamDir::U ? F.Surface.KnotsU : F.Surface.KnotsV).front();
    MapParameter(F, x, Plan.X.Scale, -Plan.X.Scale * x0);
    MapParameter(F, y, Plan.Y.Scale, -Plan.Y.Scale * y0);
}

PreparedFace PrepareFace(const FaceData& F, const PreparationSettings& Settings)
{
    const std::unique_ptr<TGeTrimmedSurface> original = BuildKernelFace(F);
    const TExtrusionType type = TSurfaceTriangulatorChecker::CheckExtrusionDirection(original.get());
    const bool simple = TSurfaceTriangulatorChecker::CheckSimpleSurface(original.get(), type);
    PreparedFace prepared{F, PlanPreparation(F, type, simple, Settings), nullptr};
    const double quads = static_cast<double>(prepared.Plan.X.Parts) * static_cast<double>(prepared.Plan.Y.Parts);
    if (quads > static_cast<double>(Settings.MaxQuads))
        throw EFaceRefused(Text("needs about ", static_cast<long long>(std::min(quads, 1e18)), " quads, more than the ",
                                Settings.MaxQuads, " a face may have"));
    ApplyPreparation(prepared.Data, prepared.Plan);
    prepared.Surface = BuildKernelFace(prepared.Data);
    return prepared;
}

}  // namespace orvane::io
