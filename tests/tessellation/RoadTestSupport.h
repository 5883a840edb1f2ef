// Helpers of the quad road tests: the service object under test, a quad tool that records what
// it hands out, and quad tools that hand out units of a test's own.
#pragma once

#include <memory>
#include <vector>

#include "contracts/Shapes.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace orvane::testing {

using orvane::PolylineSpline;

// A TQuadSurfaceTriangulator held by a counted reference, with access to its own operations.
class TServiceUnderTest {
public:
    TServiceUnderTest() : TServiceUnderTest(new TQuadSurfaceTriangulator()) {}
    explicit TServiceUnderTest(double ASampleTolerance)
        : TServiceUnderTest(new TQuadSurfaceTriangulator(ASampleTolerance))
    {
    }

    TQuadSurfaceTriangulator* operator->() const { return FObject; }
    IGeSurfaceTriangulator& Service() const { return *FHolder.get(); }

private:
    explicit TServiceUnderTest(TQuadSurfaceTriangulator* AObject) : FObject(AObject), FHolder(AObject) {}
    TQuadSurfaceTriangulator* FObject;
    TInterfacePtr<IGeSurfaceTriangulator> FHolder;
};

// What a quad tool was asked and what it handed out, call by call.
struct TQuadToolCall {
    std::vector<std::vector<TPoint2D>> Polylines;
    double XTol = 0.0;
    double YTol = 0.0;
    bool UnitPerColumn = true;
    TViewUnitList Units;
};

// The real quad tool, recording each call into Calls.
TCreateDrawQuadsFunc RecordingQuadTool(std::shared_ptr<std::vector<TQuadToolCall>> Calls);

// A quad tool that hands out a copy of Units and records the calls.
TCreateDrawQuadsFunc FixedQuadTool(TViewUnitList Units, std::shared_ptr<std::vector<TQuadToolCall>> Calls = nullptr);

// A GL_QUADS unit of the given points.
TViewUnit QuadUnit(const std::vector<TPoint2D>& Points, Cardinal DrawMode = 7);

// A surface of no class the quad road knows: the point (U, V, 0), or an exception where told.
class TForeignSurface : public TGeSurface {
public:
    explicit TForeignSurface(bool AThrows = false) : FThrows(AThrows) {}
    TPoint3D GetPoint(double U, double V) const override;

private:
    bool FThrows;
};

// A NURBS surface that counts the kernel evaluations made through GetPoint.
class TCountingNurbsSurface : public TGeNurbsSurface {
public:
    using TGeNurbsSurface::TGeNurbsSurface;
    TPoint3D GetPoint(double U, double V) const override
    {
        ++Evaluations;
        return TGeNurbsSurface::GetPoint(U, V);
    }
    mutable int Evaluations = 0;
};

// The flat rectangle [0, 3] x [0, 2] over the unit square, of the given degree in both
// directions (control points evenly spaced, so the parametrisation stays linear).
std::unique_ptr<TGeNurbsSurface> FlatPatch(int Degree);

// A closed polygon of lines, as one composite curve.
std::unique_ptr<TGeCompositeCurve2D> LineLoop(const TDynPoints2D& Closed);

// A full circle as one rational quadratic spline of 9 control points, clockwise; with
// ASwapped, the same spline with X and Y of every control point exchanged.
std::unique_ptr<TGeSpline2D> CircleSpline(const TPoint2D& Centre, double Radius, bool ASwapped = false);

}  // namespace orvane::testing
