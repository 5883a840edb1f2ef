// Rational Bezier pieces of planar curves: the common ground on which the kernel measures,
// bounds and flattens its 2D curves. A spline is cut into pieces by knot insertion (Boehm);
// a piece is evaluated and halved by de Casteljau's algorithm in homogeneous coordinates.
// With positive weights a piece lies in the convex hull of its Cartesian control points,
// which gives the bounds that GetBoundRect and GetTolPoints rely on.
#pragma once

#include <vector>

#include "contracts/Cadtypes.h"

namespace orvane::ge {

// One piece: homogeneous control points (w x, w y, w) and the parameter range [T0, T1] of
// the curve that it comes from. Local parameter S runs from 0 to 1 over that range.
struct TBezier2D {
    std::vector<TPoint3D> Ctrl;
    double T0 = 0.0;
    double T1 = 1.0;

    int Degree() const { return static_cast<int>(Ctrl.size()) - 1; }
    TPoint2D CtrlPoint(int I) const { return {Ctrl[I].X / Ctrl[I].Z, Ctrl[I].Y / Ctrl[I].Z}; }
    TPoint2D Start() const { return CtrlPoint(0); }
    TPoint2D End() const { return CtrlPoint(Degree()); }
    TPoint2D PointAt(double S) const;
    // The point and dC/dS at local parameter S.
    void PointAndDeriv(double S, TPoint2D& P, TPoint2D& D) const;
    void Split(double S, TBezier2D& Left, TBezier2D& Right) const;
};
using TBezierPieces = std::vector<TBezier2D>;

// A straight piece of degree 1 from A to B over [T0, T1].
TBezier2D LinePiece(const TPoint2D& A, const TPoint2D& B, double T0, double T1);

// The pieces of a clamped spline (knots already checked), one per non-empty knot span.
TBezierPieces DecomposeSpline(int Degree, const std::vector<double>& Knots,
                              const std::vector<TPoint3D>& HomCtrl);

// The smallest box holding the curve itself, found by halving pieces whose control hull
// reaches beyond the points already found, down to 1e-13 of the curve's size.
TRect2D PiecesBoundRect(const TBezierPieces& Pieces);

// The arc length, about 1e-12 relative, by Gauss-Kronrod quadrature of each piece with at most
// 100 intervals a piece: bounded work for any finite input, at any scale of coordinates.
double PiecesLength(const TBezierPieces& Pieces);

// Appends to Points a polyline through curve points whose pieces all lie within Tol of
// their chords, hence within Tol of the curve everywhere. The first point of the first
// piece is appended only if AddStart.
void PiecesTolPoints(const TBezierPieces& Pieces, double Tol, bool AddStart, TDynPoints2D& Points);

// Distance from P to the segment from A to B.
double DistanceToSegment(const TPoint2D& P, const TPoint2D& A, const TPoint2D& B);

}  // namespace orvane::ge
