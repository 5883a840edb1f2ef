// Surfaces and curves of the CAD kernel: NURBS surfaces (rational or not), trimmed surfaces
// bounded by curves in UV space, planar lines, splines and composite curves, the 3D spline
// of a surface's edge, and the slot of the GLU triangulator.
//
// Every object is immutable once built, except TGeSpline3D, which its creator fills.
// Constructors check their input and raise EArgumentException, "<class>: <what is wrong>".
//
// Ownership: a composite curve owns its sub-curves, a TGeCurveOnSurface owns its curve, a
// TGeNurbsSurfaceExt owns its wrapped surface, and a trimmed surface owns its base surface
// and its boundaries. Everything is handed over as std::unique_ptr; the getters return
// plain pointers that stay valid as long as the owner lives.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "contracts/GeBezier.h"

namespace orvane {

// --- Surfaces ---------------------------------------------------------------------------

class ORVANE_API TGeSurface {
public:
    virtual ~TGeSurface() = default;
    virtual TPoint3D GetPoint(double U, double V) const = 0;
};

// A tensor-product NURBS surface with clamped knot vectors. Control points and weights are
// stored U-major: the point (I, J) at index I * CtrlCountV + J.
class ORVANE_API TGeNurbsSurface : public TGeSurface {
public:
    // AWeights empty: a non-rational surface, every weight 1. Otherwise one weight a point,
    // and the surface is rational whatever the values.
    TGeNurbsSurface(int ACtrlCountU, int ACtrlCountV, int ADegreeU, int ADegreeV, TArrayDouble AKnotsU,
                    TArrayDouble AKnotsV, TDynPoints3D ACtrlPoints, TArrayDouble AWeights = {});

    const int CtrlCountU;
    const int CtrlCountV;
    const int DegreeU;
    const int DegreeV;
    const TArrayDouble KnotsU;
    const TArrayDouble KnotsV;

    // The exact point. A parameter outside the knot range is clamped to it: the surface
    // ends at its boundary.
    TPoint3D GetPoint(double U, double V) const override;
    // The point and its first partial derivatives, with the same clamping.
    void GetDerivatives(double U, double V, TPoint3D& P, TPoint3D& Su, TPoint3D& Sv) const;

    // Cartesian control point, I along U, J along V. Indices are checked.
    TPoint3D GetCtrlPoint(int I, int J) const;
    // 1 where the surface is not rational.
    double GetWeight(int I, int J) const;
    bool GetRational() const { return !FWeights.empty(); }
    int GetKnotCountU() const { return static_cast<int>(KnotsU.size()); }
    int GetKnotCountV() const { return static_cast<int>(KnotsV.size()); }
    double GetKnotsU(int I) const;
    double GetKnotsV(int I) const;
    // The knot range: (first U knot, first V knot) to (last U knot, last V knot).
    TRect2D GetDomain() const;

private:
    std::size_t Index(int I, int J) const;

    TDynPoints3D FCtrlPoints;
    TArrayDouble FWeights;
};

// A NURBS surface wrapped with the kernel's extended data; it is the wrapped surface.
class ORVANE_API TGeNurbsSurfaceExt : public TGeSurface {
public:
    explicit TGeNurbsSurfaceExt(std::unique_ptr<TGeNurbsSurface> ASurface);

    // The wrapped surface, owned by this object.
    const TGeNurbsSurface* const Surface;

    TPoint3D GetPoint(double U, double V) const override { return Surface->GetPoint(U, V); }

private:
    std::unique_ptr<TGeNurbsSurface> FSurface;
};

// --- Planar curves ----------------------------------------------------------------------

class ORVANE_API TGeCurve2D {
public:
    virtual ~TGeCurve2D() = default;
    virtual TPoint2D GetStartPoint() const = 0;
    virtual TPoint2D GetEndPoint() const = 0;
    // True arc length.
    virtual double GetLength() const = 0;
    // The tight box of the curve itself (not of its control polygon).
    virtual TRect2D GetBoundRect() const = 0;
    // Replaces Points and Params by Count points from start to end, evenly spaced in the
    // parameter, and their parameters. Count 1 gives the start; Count <= 0 nothing.
    virtual void GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const = 0;
    // Replaces Points by a polyline from start to end whose distance from the curve is at
    // most Tol everywhere. Tol must be positive.
    virtual void GetTolPoints(double Tol, TDynPoints2D& Points) const = 0;
    // The parameter range and the point at a parameter (clamped to the range; NaN gives
    // the start).
    virtual TGeInterval GetInterval() const = 0;
    virtual TPoint2D GetPoint(double T) const = 0;
};

// The segment from a start to an end point, parameter 0 to 1.
class ORVANE_API TGeLine2D : public TGeCurve2D {
public:
    TGeLine2D(const TPoint2D& AStart, const TPoint2D& AEnd);

    TPoint2D GetStartPoint() const override { return FStart; }
    TPoint2D GetEndPoint() const override { return FEnd; }
    double GetLength() const override;
    TRect2D GetBoundRect() const override;
    void GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const override;
    void GetTolPoints(double Tol, TDynPoints2D& Points) const override;
    TGeInterval GetInterval() const override { return {0.0, 1.0}; }
    TPoint2D GetPoint(double T) const override;

private:
    TPoint2D FStart;
    TPoint2D FEnd;
};

// A clamped planar NURBS curve, rational or not; parameter from the first to the last knot.
class ORVANE_API TGeSpline2D : public TGeCurve2D {
public:
    // AWeights empty: not rational, every weight 1.
    TGeSpline2D(int ADegree, TArrayDouble AKnots, TDynPoints2D ACtrlPoints, TArrayDouble AWeights = {});

    const int Degree;

    TPoint2D GetStartPoint() const override;
    TPoint2D GetEndPoint() const override;
    double GetLength() const override;
    TRect2D GetBoundRect() const override;
    void GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const override;
    void GetTolPoints(double Tol, TDynPoints2D& Points) const override;
    TGeInterval GetInterval() const override;
    TPoint2D GetPoint(double T) const override;

    int GetCtrlPointCount() const { return static_cast<int>(FCtrlPoints.size()); }
    // Cartesian.
    TPoint2D GetCtrlPoint(int I) const;
    // Homogeneous: X = w x, Y = w y, Z = w.
    TPoint3D GetCtrlPointW(int I) const;
    double GetWeight(int I) const;
    bool GetRational() const { return !FWeights.empty(); }
    int GetKnotCount() const { return static_cast<int>(FKnots.size()); }
    double GetKnots(int I) const;
    // The rational Bezier pieces, one per non-empty knot span.
    const ge::TBezierPieces& GetPieces() const { return FPieces; }

private:
    TArrayDouble FKnots;
    TDynPoints2D FCtrlPoints;
    TArrayDouble FWeights;
    ge::TBezierPieces FPieces;
};

// Sub-curves one after another. The parameter runs from 0 to the curve count: sub-curve i
// covers [i, i + 1], mapped linearly onto its own range. An empty composite is allowed;
// reading a point of it raises EArgumentOutOfRangeException.
class ORVANE_API TGeCompositeCurve2D : public TGeCurve2D {
public:
    explicit TGeCompositeCurve2D(std::vector<std::unique_ptr<TGeCurve2D>> ACurves);

    int GetCurveCount() const { return static_cast<int>(FCurves.size()); }
    // Raises EArgumentOutOfRangeException for an index out of range.
    const TGeCurve2D* GetCurve(int I) const;

    TPoint2D GetStartPoint() const override;
    TPoint2D GetEndPoint() const override;
    double GetLength() const override;
    TRect2D GetBoundRect() const override;
    void GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const override;
    // The sub-curves' polylines joined; a point shared by consecutive sub-curves once.
    void GetTolPoints(double Tol, TDynPoints2D& Points) const override;
    TGeInterval GetInterval() const override { return {0.0, static_cast<double>(FCurves.size())}; }
    TPoint2D GetPoint(double T) const override;

private:
    std::vector<std::unique_ptr<TGeCurve2D>> FCurves;
};

// --- Trimmed surfaces -------------------------------------------------------------------

// A boundary loop of a trimmed surface: a curve in the UV space of the base surface.
class ORVANE_API TGeCurveOnSurface {
public:
    explicit TGeCurveOnSurface(std::unique_ptr<TGeCurve2D> ACurve);
    const TGeCurve2D* GetCurve() const { return FCurve.get(); }

private:
    std::unique_ptr<TGeCurve2D> FCurve;
};

// A base surface restricted to the UV region inside its outer boundary and outside its
// inner boundaries. Its points are the base surface's; the curves keep the direction they
// are given in, and the region is not checked against them.
class ORVANE_API TGeTrimmedSurface : public TGeSurface {
public:
    TGeTrimmedSurface(std::unique_ptr<TGeSurface> ASurface, std::unique_ptr<TGeCurve2D> AOuter,
                      std::vector<std::unique_ptr<TGeCurve2D>> AInner = {});

    const TGeCurveOnSurface OuterBoundary;

    TPoint3D GetPoint(double U, double V) const override { return FSurface->GetPoint(U, V); }
    // The base surface: the kernel builds TGeNurbsSurface or TGeNurbsSurfaceExt bases.
    const TGeSurface* GetSurface() const { return FSurface.get(); }
    int GetInnerBoundaryCount() const { return static_cast<int>(FInner.size()); }
    // Raises EArgumentOutOfRangeException for an index out of range.
    const TGeCurveOnSurface& GetInnerBoundary(int I) const;

private:
    std::unique_ptr<TGeSurface> FSurface;
    std::vector<TGeCurveOnSurface> FInner;
};

// --- Space curve ------------------------------------------------------------------------

// A NURBS curve in space that its creator fills point by point and knot by knot; built with
// zero points, weights 1 and zero knots. Indices are checked; values must be finite and
// weights positive (EArgumentException otherwise).
class ORVANE_API TGeSpline3D {
public:
    TGeSpline3D(int ACtrlPointCount, int ADegree);
    virtual ~TGeSpline3D() = default;

    const int Degree;

    void SetCtrlPoint(int I, const TPoint3D& P);
    void SetWeight(int I, double W);
    void SetKnots(int I, double K);
    int GetCtrlPointCount() const { return static_cast<int>(FCtrlPoints.size()); }
    TPoint3D GetCtrlPoint(int I) const;
    double GetWeight(int I) const;
    int GetKnotCount() const { return static_cast<int>(FKnots.size()); }
    double GetKnots(int I) const;
    // The parameter range: knot Degree to knot CtrlPointCount, which for a clamped vector is
    // the first to the last knot.
    virtual TGeInterval GetInterval() const;

private:
    TDynPoints3D FCtrlPoints;
    TArrayDouble FWeights;
    TArrayDouble FKnots;
};

// --- Triangulator slot ------------------------------------------------------------------

class ORVANE_API TGeSurfaceTriangulator {
public:
    virtual ~TGeSurfaceTriangulator() = default;
    virtual void Triangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm) = 0;
};

// The installed triangulator, nullptr until one is installed. The kernel does not own it:
// whoever installs it frees it and sets this back to nullptr.
extern ORVANE_API TGeSurfaceTriangulator* GeSurfTri;

}  // namespace orvane
