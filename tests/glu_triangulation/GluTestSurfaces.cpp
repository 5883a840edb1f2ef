#include "tests/glu_triangulation/GluTestSurfaces.h"

namespace orvane::testing {

TArrayDouble ClampedKnots(int Count, int Degree, double Range)
{
    TArrayDouble knots(Degree + 1, 0.0);
    const int inner = Count - Degree - 1;
    for (int k = 1; k <= inner; ++k) knots.push_back(Range * k / (inner + 1));
    knots.insert(knots.end(), Degree + 1, Range);
    return knots;
}

std::unique_ptr<TGeNurbsSurface> MakeGridSurface(int DegreeU, int DegreeV, int CountU, int CountV, double SizeU,
                                                 double SizeV)
{
    TDynPoints3D points;
    for (int i = 0; i < CountU; ++i)
        for (int j = 0; j < CountV; ++j) points.push_back({i * SizeU / (CountU - 1), j * SizeV / (CountV - 1), 0.0});
    return std::make_unique<TGeNurbsSurface>(CountU, CountV, DegreeU, DegreeV, ClampedKnots(CountU, DegreeU),
                                             ClampedKnots(CountV, DegreeV), points);
}

std::unique_ptr<TGeCompositeCurve2D> MakeLineLoop(const std::vector<TPoint2D>& Points)
{
    std::vector<std::unique_ptr<TGeCurve2D>> lines;
    for (std::size_t i = 0; i < Points.size(); ++i)
        lines.push_back(std::make_unique<TGeLine2D>(Points[i], Points[(i + 1) % Points.size()]));
    return std::make_unique<TGeCompositeCurve2D>(std::move(lines));
}

std::vector<std::unique_ptr<TGeCurve2D>> CurveList(std::unique_ptr<TGeCurve2D> A)
{
    std::vector<std::unique_ptr<TGeCurve2D>> list;
    list.push_back(std::move(A));
    return list;
}

std::unique_ptr<TGeCurve2D> NurbsTrimLine(const TPoint2D& A, const TPoint2D& B)
{
    return std::make_unique<TNurbsTrimSpline>(1, TArrayDouble{0, 0, 1, 1}, TDynPoints2D{A, B});
}

}  // namespace orvane::testing
