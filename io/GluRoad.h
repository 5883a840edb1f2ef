// The GLU road for a whole model: GLU samples in pixels of the current view, so the faces are
// triangulated inside one headless context whose viewport and matrices fit the model's box
// into Width x Height pixels, the same view for every face.
#pragma once

#include <memory>
#include <string>

#include "contracts/Cadgeometry.h"
#include "io/CadFaceData.h"
#include "io/ModelMesher.h"

namespace orvane::io {

class GluRoad {
public:
    // Makes and activates the context and sets the view. Raises std::runtime_error when no
    // context can be made.
    GluRoad(const BoundingBox& Box, int Width, int Height);
    ~GluRoad();
    GluRoad(const GluRoad&) = delete;
    GluRoad& operator=(const GluRoad&) = delete;

    // Triangles of the surface as the GLU surface triangulator gives them.
    void Triangulate(const TGeSurface& Surface, TFloatDynArray& Tri, TFloatDynArray& Norm);

    // Pixels of the view per model unit: the scale GLU samples at.
    double PixelsPerUnit() const { return FPixelsPerUnit; }
    // The chordal tolerance, in model units, for a face that MeshFaceByGlu refuses and the quad
    // road meshes instead: half a pixel of the view, so that the stand-in is as fine as the
    // view GLU samples in; 0 for a model without extent.
    double QuadTolerance() const { return FPixelsPerUnit > 0.0 ? 0.5 / FPixelsPerUnit : 0.0; }
    int ViewWidth() const { return FWidth; }
    int ViewHeight() const { return FHeight; }

private:
    struct State;
    std::unique_ptr<State> FState;
    double FPixelsPerUnit = 0.0;
    int FWidth = 0;
    int FHeight = 0;
};

// What the GLU road may spend on one face, and how far its area may stray. A is the face's
// exact area measured in pixels of the view (FaceData::ExactArea times PixelsPerUnit squared),
// so both budgets grow with the view.
struct GluBudget {
    double TrianglesPerPixel = 0.5;   // triangles <= max(MinTriangles, TrianglesPerPixel * A)
    double MinTriangles = 2000;
    double BaseSeconds = 0.5;         // seconds <= BaseSeconds + SecondsPerTriangle * that triangle budget
    double SecondsPerTriangle = 5e-6;
    double MaxAreaError = 0.01;       // |mesh area - exact area| <= MaxAreaError * exact area
    // GLU is not called where the triangles it would sample, estimated from the surface's
    // speed in pixels patch by patch and its sampling tolerance, exceed this many times the
    // triangle budget (the estimate covers the whole surface, the face may be part of it).
    double PredictionSlack = 4.0;
};

// Meshes F on the GLU road into Out.Tri/Out.Norm, pointed out of the material (OrientFaceMesh).
// Returns "" when the result is kept; otherwise the reason it was refused, one line without
// the face's name, and Out's arrays empty. Refused: a face the kernel cannot build, a sampling
// that would exceed the triangle budget (judged before GLU runs, so that GLU's own sampling
// cannot run away), a result that is empty, not finite, over the triangle or the time budget,
// or whose area is off the face's exact area by more than the budget allows. A face that is
// its whole surface goes to GLU untrimmed: Mesa's GLU covers a rational surface twice over
// where a trim loop runs along the whole boundary.
std::string MeshFaceByGlu(GluRoad& Road, const FaceData& F, FaceMesh& Out, const GluBudget& Budget = {});

// The sampling tolerance in pixels that the GLU triangulator gives GLU for this surface (a
// trimmed surface or a bare NURBS surface), following its rules in
// glu_triangulation/uTriangulate.cpp and TrimTriangulate.cpp.
double GluSamplingTolerance(const TGeSurface& Surface);

// About how many triangles GLU samples the NURBS surface into at Tolerance pixels when the
// view shows PixelsPerUnit pixels a model unit: per Bezier patch, steps of Tolerance / 2
// pixels along the patch's greatest speed in each direction, two triangles a step square.
// Counting stops once the sum passes Cap.
double EstimateGluTriangles(const TGeNurbsSurface& Surface, double Tolerance, double PixelsPerUnit, double Cap);

}  // namespace orvane::io
