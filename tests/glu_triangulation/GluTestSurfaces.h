// Surfaces and curves the GLU road's tests build: flat grids of any degree, loops of lines,
// and curve doubles for what the kernel's own classes can't show.
#pragma once

#include <memory>
#include <vector>

#include "contracts/Cadgeometry.h"

namespace orvane::testing {

// Clamped uniform knots from 0 to Range for Count control points of Degree.
TArrayDouble ClampedKnots(int Count, int Degree, double Range = 1.0);

// A flat grid in the plane z = 0: control point (i, j) at (i SizeU / (CountU - 1),
// j SizeV / (CountV - 1)); knots from 0 to 1 unless given.
std::unique_ptr<TGeNurbsSurface> MakeGridSurface(int DegreeU, int DegreeV, int CountU, int CountV, double SizeU,
                                                 double SizeV);

// The closed polygon of lines through the points, as a composite curve.
std::unique_ptr<TGeCompositeCurve2D> MakeLineLoop(const std::vector<TPoint2D>& Points);

std::vector<std::unique_ptr<TGeCurve2D>> CurveList(std::unique_ptr<TGeCurve2D> A);

// A clamped spline that reports a start point off its first control point by Offset in U,
// as a spline that isn't clamped would: the GLU road sends it as a NURBS curve.
class TNurbsTrimSpline : public TGeSpline2D {
public:
    TNurbsTrimSpline(int ADegree, TArrayDouble AKnots, TDynPoints2D ACtrlPoints, double AOffset = 1e-5)
        : TGeSpline2D(ADegree, std::move(AKnots), std::move(ACtrlPoints)), FOffset(AOffset)
    {
    }
    TPoint2D GetStartPoint() const override { return TGeSpline2D::GetStartPoint() + TPoint2D(FOffset, 0.0); }

private:
    double FOffset;
};

// A straight line between two points as a NURBS trim curve of degree 1.
std::unique_ptr<TGeCurve2D> NurbsTrimLine(const TPoint2D& A, const TPoint2D& B);

// A curve that hands out fixed points whatever count it is asked for, and remembers the count.
class TFixedPointsCurve : public TGeCurve2D {
public:
    TFixedPointsCurve(TDynPoints2D APoints, double ALength) : FPoints(std::move(APoints)), FLength(ALength) {}

    mutable int LastCount = -1;

    TPoint2D GetStartPoint() const override { return FPoints.front(); }
    TPoint2D GetEndPoint() const override { return FPoints.back(); }
    double GetLength() const override { return FLength; }
    TRect2D GetBoundRect() const override { return CalcAABB(FPoints); }
    void GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const override
    {
        LastCount = Count;
        Points = FPoints;
        Params.assign(FPoints.size(), 0.0);
    }
    void GetTolPoints(double, TDynPoints2D& Points) const override { Points = FPoints; }
    TGeInterval GetInterval() const override { return {0.0, 1.0}; }
    TPoint2D GetPoint(double) const override { return FPoints.front(); }

private:
    TDynPoints2D FPoints;
    double FLength;
};

}  // namespace orvane::testing
