// Plain values that carry a face of a CAD file from the reader to the kernel: its NURBS
// surface, its boundary loops in the surface's UV space and what the mesh export needs to
// know of it. Nothing here refers to the reader's library, so that these values can cross a
// process boundary (see IsolatedReader.h) and be checked and prepared without it.
#pragma once

#include <string>
#include <vector>

#include "contracts/Cadtypes.h"
#include "io/StageTimes.h"

namespace orvane::io {

// A tensor-product NURBS surface with clamped knot vectors, knots written out by multiplicity
// (CountU + DegreeU + 1 of them in U). Poles are U-major: the pole (I, J) at I * CountV + J.
struct NurbsSurfaceData {
    int DegreeU = 1;
    int DegreeV = 1;
    int CountU = 0;
    int CountV = 0;
    std::vector<double> KnotsU;
    std::vector<double> KnotsV;
    std::vector<TPoint3D> Poles;
    std::vector<double> Weights;  // empty: not rational

    const TPoint3D& Pole(int I, int J) const { return Poles[static_cast<std::size_t>(I) * CountV + J]; }
    double Weight(int I, int J) const;
    TRect2D Domain() const;
};

// One boundary curve in UV space: a clamped planar NURBS curve, a segment when Degree is 1
// and it has two poles. Where the curve is the use of a B-rep edge, Edge names it and
// EdgeUV holds the UV of the edge's shared points (EdgeData::Points) in the curve's running
// direction: EdgeUV.front() is where the curve starts.
struct TrimCurveData {
    int Degree = 1;
    std::vector<double> Knots;
    std::vector<TPoint2D> Poles;
    std::vector<double> Weights;  // empty: not rational
    int Edge = -1;                // index into CadModelData::Edges; -1: a bridge the reader added
    bool AgainstEdge = false;     // the curve runs from the edge's last point to its first
    std::vector<TPoint2D> EdgeUV;

    bool IsLine() const { return Degree == 1 && Poles.size() == 2; }
    TPoint2D Start() const { return Poles.front(); }
    TPoint2D End() const { return Poles.back(); }
};

// A closed loop: each curve starts where the one before it ends, the last ends at the start
// of the first.
using TrimLoopData = std::vector<TrimCurveData>;

// Bounds of the surface's partial derivatives over the face's UV box, in the surface's own
// parameters, sampled on a grid: they steer the preparation for a chordal tolerance. The
// second derivatives count only across the surface (along its normal n): what lies in the
// tangent plane moves a mesh vertex along the surface, not away from it.
struct DerivativeBounds {
    double MaxSu = 0.0;   // largest |dS/du|
    double MaxSv = 0.0;   // largest |dS/dv|
    double MaxSuu = 0.0;  // largest |d2S/du2 . n|; |d2S/du2| where n is undefined (a pole)
    double MaxSvv = 0.0;  // largest |d2S/dv2 . n|; likewise
    double MaxTurnU = 0.0;  // largest |d2S/du2 . n| / |dS/du|: radians the normal turns per unit of u
    double MaxTurnV = 0.0;  // likewise along v
};

struct FaceData {
    int Number = 0;    // 1-based, in the order the file's faces are met
    std::string Name;  // what a person is told: "face 12", with the file's name for it if any
    std::string SourceKind;  // the surface as the file gives it: "plane", "cylinder", "B-spline", ...
    NurbsSurfaceData Surface;
    std::vector<TrimLoopData> Loops;  // the outer loop first, then the holes
    bool Reversed = false;            // material normal is the surface normal negated
    DerivativeBounds Bounds;
    double ExactArea = 0.0;           // the face's area as the reader's library measures it (the reader sets it)
    int Solid = -1;                   // index into CadModelData::Solids; -1: not in a solid
};

// An edge of the B-rep, discretised once for every face that uses it: a polyline within the
// meshing tolerance of the edge's curve, its ends the edge's vertices (so that edges meeting
// at a vertex share that point bit for bit). A degenerate edge (a pole) is one point repeated.
struct EdgeData {
    std::vector<TPoint3D> Points;
    bool Degenerate = false;
};

// A solid of the file: its faces carry its index.
struct SolidData {
    double ExactVolume = 0.0;
};

// A face that could not be converted, with the reason.
struct SkippedFace {
    int Number = 0;
    std::string Name;
    std::string Reason;
    // Nothing a mesh at the tolerance could show is lost: the face is smaller than the tolerance
    // squared, or thinner than the tolerance (its edges' points enclose no area).
    bool Negligible = false;
};

struct BoundingBox {
    TPoint3D Min;
    TPoint3D Max;
    double Diagonal() const { return Max.DistanceTo(Min); }
};

// Everything read from one file.
struct CadModelData {
    std::string Format;  // "IGES" or "STEP"
    std::string Unit = "mm";  // the length unit of every coordinate and measure, as LengthUnitNamed takes it
    std::vector<FaceData> Faces;
    std::vector<SkippedFace> Skipped;
    BoundingBox Box;
    double ExactArea = 0.0;    // of all faces, converted or not
    double ExactVolume = 0.0;  // of the solids; 0 when there are none
    int SolidCount = 0;
    std::vector<EdgeData> Edges;    // the edges the faces' loops use
    std::vector<SolidData> Solids;
    double Tolerance = 0.0;         // the chordal tolerance the edges were discretised at
    StageTimes Stages;              // reading it: read, heal, measure, label, edges, convert

    int FaceCount() const { return static_cast<int>(Faces.size() + Skipped.size()); }
};

}  // namespace orvane::io
