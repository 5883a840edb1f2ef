#include "contracts/Cadtypes.h"

#include <algorithm>
#include <cmath>

namespace orvane {

bool fEqual(double A, double B, double Tol) { return std::fabs(A - B) <= Tol; }
bool fGreat(double A, double B, double Tol) { return A - B > Tol; }
bool fSmall(double A, double B, double Tol) { return B - A > Tol; }

double TPoint2D::DistanceTo(const TPoint2D& P) const { return std::hypot(P.X - X, P.Y - Y); }

bool TPoint2D::Equals(const TPoint2D& P, double Tol) const { return DistanceTo(P) <= Tol; }

double TPoint3D::Length() const { return std::sqrt(X * X + Y * Y + Z * Z); }

double TPoint3D::DistanceTo(const TPoint3D& P) const { return (P - *this).Length(); }

bool TPoint3D::Equals(const TPoint3D& P, double Tol) const { return DistanceTo(P) <= Tol; }

TPoint3D TPoint3D::CrossMul(const TPoint3D& B) const
{
    return {Y * B.Z - Z * B.Y, Z * B.X - X * B.Z, X * B.Y - Y * B.X};
}

double TPoint3D::DotMul(const TPoint3D& B) const { return X * B.X + Y * B.Y + Z * B.Z; }

TPoint3D TPoint3D::Normal() const
{
    const double len = Length();
    if (!(len >= kNormalMinLength)) return FZero;  // also catches NaN
    return *this / len;
}

TRect2D TRect2D::CreateNormal(const TPoint2D& A, const TPoint2D& B)
{
    return {{std::min(A.X, B.X), std::min(A.Y, B.Y)}, {std::max(A.X, B.X), std::max(A.Y, B.Y)}};
}

TRect2D CalcAABB(const TDynPoints2D& Points)
{
    if (Points.empty()) throw EArgumentException("CalcAABB: the point list is empty");
    TRect2D box{Points.front(), Points.front()};
    for (const TPoint2D& p : Points) {
        box.Min = {std::min(box.Min.X, p.X), std::min(box.Min.Y, p.Y)};
        box.Max = {std::max(box.Max.X, p.X), std::max(box.Max.Y, p.Y)};
    }
    return box;
}

bool TLine3D::IsOn(const TPoint3D& P, const TGeTolerance& Tol, double& Param) const
{
    return IsOn(P, Tol.PointTol, Param);
}

bool TLine3D::IsOn(const TPoint3D& P, double Tol, double& Param) const
{
    const TPoint3D d = B - A;
    const double len = d.Length();
    Param = 0.0;
    // A collapsed segment has no direction; every point would be "on" it otherwise.
    if (len <= Tol) return false;
    Param = (P - A).DotMul(d) / (len * len);
    const double t = std::clamp(Param, 0.0, 1.0);
    return P.DistanceTo(A + d * t) <= Tol;
}

bool operator==(const TMatrix3D& A, const TMatrix3D& B)
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 3; ++c)
            if (A.M[r][c] != B.M[r][c]) return false;
    return true;
}

namespace {

// First applies Inner, then Outer.
TMatrix3D Compose(const TMatrix3D& Outer, const TMatrix3D& Inner)
{
    TMatrix3D r;
    for (int c = 0; c < 3; ++c) r.SetColVector(c, Outer.TransformVector(Inner.GetColVector(c)));
    r.SetRowVector(3, Outer.Transform(Inner.GetRowVector(3)));
    return r;
}

TMatrix3D Linear(const TPoint3D& ImageX, const TPoint3D& ImageY, const TPoint3D& ImageZ)
{
    TMatrix3D r;
    r.SetColVector(0, ImageX);
    r.SetColVector(1, ImageY);
    r.SetColVector(2, ImageZ);
    return r;
}

void CheckIndex(int I, int Count)
{
    if (I < 0 || I >= Count) throw EArgumentOutOfRangeException(SArgumentOutOfRange);
}

}  // namespace

void TMatrix3D::Multiply(const TMatrix3D& AOther, bool AApplyAfter)
{
    *this = AApplyAfter ? Compose(AOther, *this) : Compose(*this, AOther);
}

void TMatrix3D::ReflexXOZ() { Multiply(Linear({1, 0, 0}, {0, -1, 0}, {0, 0, 1}), true); }

void TMatrix3D::ReflexY() { Multiply(Linear({-1, 0, 0}, {0, 1, 0}, {0, 0, -1}), true); }

void TMatrix3D::RotateZ(double AAngle)
{
    const double c = std::cos(AAngle);
    const double s = std::sin(AAngle);
    Multiply(Linear({c, s, 0}, {-s, c, 0}, {0, 0, 1}), true);
}

TPoint3D TMatrix3D::Transform(const TPoint3D& P) const { return TransformVector(P) + GetRowVector(3); }

TPoint3D TMatrix3D::TransformVector(const TPoint3D& V) const
{
    return GetColVector(0) * V.X + GetColVector(1) * V.Y + GetColVector(2) * V.Z;
}

TPoint3D TMatrix3D::GetRowVector(int I) const
{
    CheckIndex(I, 4);
    return {M[I][0], M[I][1], M[I][2]};
}

void TMatrix3D::SetRowVector(int I, const TPoint3D& V)
{
    CheckIndex(I, 4);
    M[I][0] = V.X;
    M[I][1] = V.Y;
    M[I][2] = V.Z;
}

TPoint3D TMatrix3D::GetColVector(int C) const
{
    CheckIndex(C, 3);
    return {M[0][C], M[1][C], M[2][C]};
}

void TMatrix3D::SetColVector(int C, const TPoint3D& V)
{
    CheckIndex(C, 3);
    M[0][C] = V.X;
    M[1][C] = V.Y;
    M[2][C] = V.Z;
}

}  // namespace orvane
