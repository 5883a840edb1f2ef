// Values of the CAD kernel: points, rectangles, tolerances, the 4x3 transform, and the
// tolerant comparisons of doubles. All in double precision.
#pragma once

#include <concepts>
#include <vector>

#include "contracts/Export.h"
#include "contracts/SysUtils.h"

namespace orvane {

// --- Tolerant comparisons ---------------------------------------------------------------
// fEqual: |A - B| <= Tol. fGreat: A above B by more than Tol. fSmall: A below B by more
// than Tol. The single-precision forms are chosen only when all three arguments are float;
// any mixed call compares in double.
ORVANE_API bool fEqual(double A, double B, double Tol);
ORVANE_API bool fGreat(double A, double B, double Tol);
ORVANE_API bool fSmall(double A, double B, double Tol);

template <std::same_as<float> F>
bool fEqual(F A, F B, F Tol) { return (A > B ? A - B : B - A) <= Tol; }
template <std::same_as<float> F>
bool fGreat(F A, F B, F Tol) { return A - B > Tol; }
template <std::same_as<float> F>
bool fSmall(F A, F B, F Tol) { return B - A > Tol; }

// --- Points -----------------------------------------------------------------------------
struct ORVANE_API TPoint2D {
    double X = 0.0;
    double Y = 0.0;

    constexpr TPoint2D() = default;
    constexpr TPoint2D(double AX, double AY) : X(AX), Y(AY) {}

    double DistanceTo(const TPoint2D& P) const;
    // True when the two points lie within Tol of each other (Euclidean distance).
    bool Equals(const TPoint2D& P, double Tol) const;

    friend constexpr TPoint2D operator+(TPoint2D A, TPoint2D B) { return {A.X + B.X, A.Y + B.Y}; }
    friend constexpr TPoint2D operator-(TPoint2D A, TPoint2D B) { return {A.X - B.X, A.Y - B.Y}; }
    friend constexpr TPoint2D operator-(TPoint2D A) { return {-A.X, -A.Y}; }
    friend constexpr TPoint2D operator*(TPoint2D A, double S) { return {A.X * S, A.Y * S}; }
    friend constexpr TPoint2D operator*(double S, TPoint2D A) { return {A.X * S, A.Y * S}; }
    friend constexpr TPoint2D operator/(TPoint2D A, double S) { return {A.X / S, A.Y / S}; }
    // Exact comparison; use Equals for a tolerant one.
    friend constexpr bool operator==(const TPoint2D&, const TPoint2D&) = default;
};

struct ORVANE_API TPoint3D {
    double X = 0.0;
    double Y = 0.0;
    double Z = 0.0;

    constexpr TPoint3D() = default;
    constexpr TPoint3D(double AX, double AY, double AZ) : X(AX), Y(AY), Z(AZ) {}

    // The zero point.
    static const TPoint3D FZero;

    double Length() const;
    double DistanceTo(const TPoint3D& P) const;
    // True when the two points lie within Tol of each other (Euclidean distance).
    bool Equals(const TPoint3D& P, double Tol) const;
    TPoint3D CrossMul(const TPoint3D& B) const;
    double DotMul(const TPoint3D& B) const;
    // The vector scaled to unit length. A vector shorter than kNormalMinLength has no
    // trustworthy direction and gives the zero vector, so that callers can detect it.
    TPoint3D Normal() const;
    static constexpr double kNormalMinLength = 1e-12;

    friend constexpr TPoint3D operator+(TPoint3D A, TPoint3D B) { return {A.X + B.X, A.Y + B.Y, A.Z + B.Z}; }
    friend constexpr TPoint3D operator-(TPoint3D A, TPoint3D B) { return {A.X - B.X, A.Y - B.Y, A.Z - B.Z}; }
    friend constexpr TPoint3D operator-(TPoint3D A) { return {-A.X, -A.Y, -A.Z}; }
    friend constexpr TPoint3D operator*(TPoint3D A, double S) { return {A.X * S, A.Y * S, A.Z * S}; }
    friend constexpr TPoint3D operator*(double S, TPoint3D A) { return {A.X * S, A.Y * S, A.Z * S}; }
    friend constexpr TPoint3D operator/(TPoint3D A, double S) { return {A.X / S, A.Y / S, A.Z / S}; }
    TPoint3D& operator+=(const TPoint3D& B) { return *this = *this + B; }
    TPoint3D& operator-=(const TPoint3D& B) { return *this = *this - B; }
    // Exact comparison; use Equals for a tolerant one.
    friend constexpr bool operator==(const TPoint3D&, const TPoint3D&) = default;
};
inline constexpr TPoint3D TPoint3D::FZero{0.0, 0.0, 0.0};

using TDynPoints2D = std::vector<TPoint2D>;
using TDynPoints3D = std::vector<TPoint3D>;
using TFloatDynArray = std::vector<double>;
using TArrayDouble = std::vector<double>;

// --- Rectangles and intervals -----------------------------------------------------------
struct ORVANE_API TRect2D {
    TPoint2D Min;
    TPoint2D Max;

    // The rectangle spanned by two opposite corners given in any order.
    static TRect2D CreateNormal(const TPoint2D& A, const TPoint2D& B);
    TPoint2D CenterPoint() const { return (Min + Max) / 2.0; }
    TPoint2D XMinYMax() const { return {Min.X, Max.Y}; }
    TPoint2D XMaxYMin() const { return {Max.X, Min.Y}; }
    double Width() const { return Max.X - Min.X; }
    double Height() const { return Max.Y - Min.Y; }
    friend constexpr bool operator==(const TRect2D&, const TRect2D&) = default;
};

// The smallest axis-aligned rectangle holding every point. Raises EArgumentException for
// an empty list.
ORVANE_API TRect2D CalcAABB(const TDynPoints2D& Points);

// A parameter range [Low, High].
struct TGeInterval {
    double Low = 0.0;
    double High = 0.0;
    double GetLength() const { return High - Low; }
};

// --- Tolerances -------------------------------------------------------------------------
struct TGeTolerance {
    double PointTol = 1e-6;
    bool PointEquals(const TPoint2D& A, const TPoint2D& B) const { return A.Equals(B, PointTol); }
    bool PointEquals(const TPoint3D& A, const TPoint3D& B) const { return A.Equals(B, PointTol); }
};

// The kernel's default tolerance: points within 1e-6 of each other are one point.
inline constexpr TGeTolerance DefTol{1e-6};

// --- Line segment -----------------------------------------------------------------------
struct ORVANE_API TLine3D {
    TPoint3D A;
    TPoint3D B;

    constexpr TLine3D() = default;
    constexpr TLine3D(const TPoint3D& AA, const TPoint3D& AB) : A(AA), B(AB) {}

    // True when P lies within Tol of the segment from A to B; Param receives the parameter
    // of P's projection on the line (0 at A, 1 at B). A segment whose ends coincide within
    // Tol has no direction: the answer is False and Param is 0.
    bool IsOn(const TPoint3D& P, const TGeTolerance& Tol, double& Param) const;
    bool IsOn(const TPoint3D& P, double Tol, double& Param) const;
};

// --- Transform --------------------------------------------------------------------------
// 4 rows of 3: rows 0 to 2 the linear part, row 3 the translation. Column c of the linear
// part is the image of axis c, so Transform(P) = sum over c of P[c] * column c, plus row 3.
// Operations that build a transform (ReflexXOZ, ReflexY, RotateZ) apply their map after
// the transform already held.
class ORVANE_API TMatrix3D {
public:
    double M[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};

    static TMatrix3D CreateIdent() { return TMatrix3D(); }
    void Reset() { *this = TMatrix3D(); }
    // Exact: every element equals the identity's.
    bool IsIdent() const { return *this == TMatrix3D(); }
    // Exact element-wise comparison.
    friend ORVANE_API bool operator==(const TMatrix3D& A, const TMatrix3D& B);

    // Composes with AOther. AApplyAfter True: the result applies the held transform first
    // and then AOther; False: AOther first, then the held transform.
    void Multiply(const TMatrix3D& AOther, bool AApplyAfter);
    // Mirror in the XOZ plane: (x, y, z) -> (x, -y, z).
    void ReflexXOZ();
    // Half turn about the Y axis: (x, y, z) -> (-x, y, -z).
    void ReflexY();
    // Rotation about +Z by AAngle in radians, counter-clockwise seen from +Z: the X axis goes
    // to (cos, sin, 0).
    void RotateZ(double AAngle);

    TPoint3D Transform(const TPoint3D& P) const;
    // A direction: the linear part only, no translation.
    TPoint3D TransformVector(const TPoint3D& V) const;

    // Row I (0 to 3) as a point; row 3 is the translation.
    TPoint3D GetRowVector(int I) const;
    void SetRowVector(int I, const TPoint3D& V);
    // Column C (0 to 2) of the linear part: the image of axis C.
    TPoint3D GetColVector(int C) const;
    void SetColVector(int C, const TPoint3D& V);
};

}  // namespace orvane
