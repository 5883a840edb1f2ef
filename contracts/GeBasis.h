// B-spline basis functions and the checks every spline constructor makes on its input.
// Algorithms after Piegl and Tiller, The NURBS Book (2nd ed., 1997), A2.1 to A2.3.
#pragma once

#include <string>
#include <vector>

#include "contracts/Cadtypes.h"

namespace orvane::ge {

// Scratch doubles on the stack for the usual degrees, on the heap beyond.
class TScratch {
public:
    explicit TScratch(std::size_t N) : FHeap(N > kStack ? N : 0), FData(N > kStack ? FHeap.data() : FStack) {}
    TScratch(const TScratch&) = delete;
    TScratch& operator=(const TScratch&) = delete;
    double* Data() { return FData; }
    double& operator[](std::size_t I) { return FData[I]; }

private:
    static constexpr std::size_t kStack = 64;
    double FStack[kStack];
    std::vector<double> FHeap;
    double* FData;
};

// The span index k with Knots[k] <= U < Knots[k + 1], limited to [Degree, CtrlCount - 1]:
// a parameter outside the knot range gets the end span, whose polynomial extrapolates.
int FindSpan(double U, int Degree, int CtrlCount, const std::vector<double>& Knots);

// The Degree + 1 basis functions that do not vanish in Span, at U.
void BasisFuns(int Span, double U, int Degree, const std::vector<double>& Knots, double* N);

// The same functions (N) and their first derivatives (D).
void BasisFunsAndDerivs(int Span, double U, int Degree, const std::vector<double>& Knots,
                        double* N, double* D);

// Raises EArgumentException, "<Owner>: <what is wrong>", unless the knots form a clamped
// vector for CtrlCount control points of Degree: Degree >= 1, CtrlCount >= Degree + 1,
// CtrlCount + Degree + 1 finite knots, non-decreasing, both end knots of multiplicity
// exactly Degree + 1 and interior ones of at most Degree. Direction is "" or e.g. " in U".
void CheckKnots(const std::string& Owner, const std::string& Direction, int Degree,
                int CtrlCount, const std::vector<double>& Knots);

// Raises EArgumentException unless the weight is positive and finite. Which names the
// control point, e.g. "3" or "(1, 2)".
void CheckWeight(const std::string& Owner, const std::string& Which, double W);

// Raises EArgumentException unless every coordinate is finite.
void CheckFinite(const std::string& Owner, const std::string& Which, const TPoint3D& P);
void CheckFinite(const std::string& Owner, const std::string& Which, const TPoint2D& P);

// A number as the messages write it (shortest form, like %g).
std::string FormatNumber(double X);

}  // namespace orvane::ge
