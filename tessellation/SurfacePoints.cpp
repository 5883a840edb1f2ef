#include "tessellation/SurfacePoints.h"

#include <bit>

#include "contracts/Cadtypes.h"
#include "tessellation/TempNurbsPointEval.h"

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTessQuadsTriangulator";
constexpr std::size_t kExpectedLines = 32;

// The NURBS surface every surface class ends in, or nullptr.
const TGeNurbsSurface* FindNurbsSurface(const TGeSurface* GeSurf)
{
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(GeSurf)) GeSurf = trimmed->GetSurface();
    if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(GeSurf)) return nurbs;
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(GeSurf)) return ext->Surface;
    return nullptr;
}

// Keys are the bit patterns of the parameters: 0.0 and -0.0 are evaluated apart, as the
// arithmetic may tell them apart.
std::uint64_t Bits(double X)
{
    return std::bit_cast<std::uint64_t>(X);
}

}  // namespace

TKeyIndex::TKeyIndex(std::size_t Expected) : FSlots(std::bit_ceil(2 * Expected + 16)) {}

// Parameters such as 0.25 end in zero bits: every bit of both words is mixed into the low
// bits that pick the slot (the finaliser of MurmurHash3).
std::size_t TKeyIndex::Home(std::uint64_t A, std::uint64_t B) const
{
    std::uint64_t h = A ^ std::rotl(B, 32);
    h ^= h >> 33;
    h *= 0xff51afd7ed558ccdULL;
    h ^= h >> 33;
    h *= 0xc4ceb9fe1a85ec53ULL;
    h ^= h >> 33;
    return static_cast<std::size_t>(h) & (FSlots.size() - 1);
}

TKeyIndex::TFound TKeyIndex::Find(std::uint64_t A, std::uint64_t B)
{
    const std::size_t mask = FSlots.size() - 1;
    for (std::size_t i = Home(A, B);; i = (i + 1) & mask) {
        TSlot& slot = FSlots[i];
        if (slot.Index == kEmpty) {
            slot = {A, B, FCount++};
            const std::uint32_t index = slot.Index;
            // At most half full, so that probes stay short.
            if (2 * static_cast<std::size_t>(FCount) > FSlots.size()) Grow();
            return {index, true};
        }
        if (slot.A == A && slot.B == B) return {slot.Index, false};
    }
}

void TKeyIndex::Grow()
{
    std::vector<TSlot> old(2 * FSlots.size());
    old.swap(FSlots);
    const std::size_t mask = FSlots.size() - 1;
    for (const TSlot& slot : old) {
        if (slot.Index == kEmpty) continue;
        std::size_t i = Home(slot.A, slot.B);
        while (FSlots[i].Index != kEmpty) i = (i + 1) & mask;
        FSlots[i] = slot;
    }
}

TSurfacePoints::TBasisLines::TBasisLines(std::size_t Expected) : FKeys(Expected)
{
    FSpans.reserve(Expected);
    FValues.reserve(4 * Expected);
}

int TSurfacePoints::TBasisLines::Span(double Value, const std::vector<double>& Knots, int Degree,
                                      double SampleTolerance, const double*& Basis)
{
    const std::size_t width = static_cast<std::size_t>(Degree) + 1;
    const TKeyIndex::TFound found = FKeys.Find(Bits(Value), 0);
    if (found.New) {
        const int span = TTempNurbsPointEval::FindKnotSpan(Value, Knots, Degree);
        FSpans.push_back(span);
        FValues.resize(FValues.size() + width);
        if (FScratch.empty()) FScratch.resize(2 * (width + 1));
        TTempNurbsPointEval(SampleTolerance)
            .BasisFunctionsInto(span, Value, Degree, Knots, FValues.data() + FValues.size() - width, FScratch.data(),
                                FScratch.data() + width + 1);
    }
    Basis = FValues.data() + found.Index * width;
    return FSpans[found.Index];
}

TSurfacePoints::TSurfacePoints(const TGeSurface& Surface, double SampleTolerance, bool SwapXY,
                               std::size_t ExpectedPoints)
    : FSurface(Surface),
      FSampleTolerance(SampleTolerance),
      FSwapXY(SwapXY),
      FLinesU(kExpectedLines),
      FLinesV(kExpectedLines),
      FKeys(ExpectedPoints)
{
    FPoints.reserve(ExpectedPoints);
}

// The control net is copied once, so that the sums below index plain arrays.
void TSurfacePoints::Load()
{
    FNurbs = FindNurbsSurface(&FSurface);
    Assert(FNurbs != nullptr, "TessQuadsTriangulator, GetPoint3D can not get GeNurbsSurface");
    const TGeNurbsSurface& s = *FNurbs;
    const std::size_t count = static_cast<std::size_t>(s.CtrlCountU) * static_cast<std::size_t>(s.CtrlCountV);
    FCtrlPoints.reserve(count);
    FWeights.reserve(count);
    for (int i = 0; i < s.CtrlCountU; ++i)
        for (int j = 0; j < s.CtrlCountV; ++j) {
            FCtrlPoints.push_back(s.GetCtrlPoint(i, j));
            FWeights.push_back(s.GetWeight(i, j));
        }
}

TPoint3D TSurfacePoints::At(const TPoint2D& P)
{
    if (!FNurbs) Load();
    const double u = FSwapXY ? P.Y : P.X;
    const double v = FSwapXY ? P.X : P.Y;
    return FPoints[IndexOf(Bits(u), Bits(v))];
}

void TSurfacePoints::AddAll(const std::vector<TPoint2D>& P, std::vector<TPoint3D>& Out)
{
    if (P.empty()) return;
    if (!FNurbs) Load();
    for (const TPoint2D& p : P) {
        const double u = FSwapXY ? p.Y : p.X;
        const double v = FSwapXY ? p.X : p.Y;
        Out.push_back(FPoints[IndexOf(Bits(u), Bits(v))]);
    }
}

std::uint32_t TSurfacePoints::IndexOf(std::uint64_t U, std::uint64_t V)
{
    for (const TRecent& r : FRecent)
        if (r.U == U && r.V == V && r.Index != 0xffffffffu) return r.Index;
    const TKeyIndex::TFound found = FKeys.Find(U, V);
    if (found.New) {
        const TGeNurbsSurface& s = *FNurbs;
        const double* nu = nullptr;
        const double* nv = nullptr;
        const int spanU = FLinesU.Span(std::bit_cast<double>(U), s.KnotsU, s.DegreeU, FSampleTolerance, nu);
        const int spanV = FLinesV.Span(std::bit_cast<double>(V), s.KnotsV, s.DegreeV, FSampleTolerance, nv);
        FPoints.push_back(Evaluate(spanU, nu, spanV, nv));
    }
    FRecent[FNextRecent] = {U, V, found.Index};
    FNextRecent = (FNextRecent + 1) % kRecent;
    return found.Index;
}

// Row by row of V, as the point evaluator sums.
TPoint3D TSurfacePoints::Evaluate(int SpanU, const double* Nu, int SpanV, const double* Nv) const
{
    const TGeNurbsSurface& s = *FNurbs;
    const std::size_t stride = static_cast<std::size_t>(s.CtrlCountV);
    TPoint3D result = TPoint3D::FZero;
    double w = 0.0;
    for (int l = 0; l <= s.DegreeV; ++l) {
        TPoint3D row = TPoint3D::FZero;
        double rowW = 0.0;
        const std::size_t j = static_cast<std::size_t>(SpanV - s.DegreeV + l);
        for (int m = 0; m <= s.DegreeU; ++m) {
            const std::size_t k = static_cast<std::size_t>(SpanU - s.DegreeU + m) * stride + j;
            const double t = Nu[m] * FWeights[k];
            rowW += t;
            row += t * FCtrlPoints[k];
        }
        w += rowW * Nv[l];
        result += row * Nv[l];
    }
    if (s.GetRational()) result = result / w;
    return result;
}

}  // namespace orvane
