// The quad road of one face of a CAD model: the face's UV region, bounded by polylines through
// its edges' shared points, is split into quads by the quad tool in the plane the face's
// preparation gives it (so that rows and columns keep the chordal tolerance), and every vertex
// is put on the exact surface with the exact surface normal. Vertices on the boundary only know
// where they lie on the loops here; EdgeStitching gives them their shared 3D points.
#pragma once

#include <array>
#include <vector>

#include "contracts/Cadgeometry.h"
#include "io/CadFaceData.h"
#include "io/FaceBoundary.h"

namespace orvane::io {

struct DraftVertex {
    TPoint2D UV;           // in the face's own parameters
    LoopLocation Where;    // Where.Loop -1: inside the face
    TPoint3D Position;     // on the surface
    TPoint3D Normal;       // the surface's unit normal, out of the material
};

struct FaceDraft {
    std::vector<BoundaryLoop> Loops;
    std::vector<DraftVertex> Vertices;
    std::vector<std::array<int, 3>> Triangles;  // counter-clockwise seen from outside
    std::vector<int> QuadStarts;                // see FaceMesh::QuadStarts
    long long PlannedQuads = 0;
    double Tolerance = 0.0;                     // the chordal tolerance it was made for
};

// Raises EFaceRefused (FacePreparation.h) for a face the preparation refuses, and what the
// kernel or the quad tool raise.
FaceDraft DraftQuadFace(const FaceData& F, double Tolerance, long long MaxQuads);

// The exact unit normal of F's surface at UV, out of the material; at a point where the
// surface has none (a pole: |Su x Sv| not above Floor), the limit from the direction of
// Toward; zero where that does not help either.
TPoint3D SurfaceNormal(const TGeNurbsSurface& S, bool Reversed, const TPoint2D& UV, const TPoint2D& Toward, double Floor);

// Gives each vertex left without a normal (a pole) the limit from the first triangle that
// holds it.
void MendPoleNormals(FaceDraft& D, const TGeNurbsSurface& S, bool Reversed, double Floor);

// The Floor of SurfaceNormal for a face: far below its derivatives' sizes, far above rounding.
double NormalFloor(const FaceData& F);

}  // namespace orvane::io
