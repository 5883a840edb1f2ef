// Mends the faults real CAD files carry before their faces are converted: trim curves on the
// wrong side of a periodic surface's seam, small gaps between the edges of a loop, trim curves
// that stray a little outside the parameter range of a bounded surface. OpenCASCADE's shape
// healing does the topological part; the straying curves are pulled back here.
#pragma once

#include <string>

#include <TopTools_DataMapOfShapeShape.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>

namespace orvane::io {

// The shape after healing, and for each face that healing replaced, the face of the file it
// stands for (labels and reports name the file's faces).
// The largest tolerance of the edge and its vertices, and never below OpenCASCADE's confusion.
double EdgeTolerance(const TopoDS_Edge& Edge);

class HealedShape {
public:
    // Heals Shape; a shape the healing fails on is kept as read.
    explicit HealedShape(const TopoDS_Shape& Shape);

    const TopoDS_Shape& Shape() const { return FShape; }
    // The face of the file that Face of the healed shape comes from; Face itself when healing
    // left it alone.
    TopoDS_Shape Original(const TopoDS_Shape& Face) const;

private:
    TopoDS_Shape FShape;
    TopTools_DataMapOfShapeShape FOriginal;
};

// Pulls the trim curves of Face that stray outside its surface's parameter range, in a
// direction that is bounded and not periodic, back onto the range, where the surface moves by
// no more than the edge's tolerance (or 1% of the range) over the part that strays. Edits the
// edges' curves in place; true when any changed.
bool FitTrimCurvesIntoRange(const TopoDS_Face& Face);

// Projects anew, with OpenCASCADE's shape healing, the trim curves of Face (not at a pole,
// not on a seam) whose poles leave the box [U0, U1] x [V0, V1] by more than 1e-6 of its size:
// the curves a conversion recomputed that wander where the surface collapses to a pole.
// Edits the edges in place; true when any changed.
bool ReprojectStrayTrimCurves(const TopoDS_Face& Face, double U0, double U1, double V0, double V1);

// What OpenCASCADE's own mesher (BRepMesh_IncrementalMesh at 1% of the face's size) makes of
// a face this reader has to skip, as a clause to append to the reason: "; OpenCASCADE's
// mesher leaves it without triangles too", or how many it gives.
std::string KernelMesherVerdict(const TopoDS_Face& Face);

}  // namespace orvane::io
