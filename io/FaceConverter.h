// Turns one face of an OpenCASCADE shape into plain values for the kernel: its surface as a
// clamped, non-periodic NURBS cut to the face's UV box, and its boundary as closed loops of
// planar curves in that surface's UV space.
#pragma once

#include <stdexcept>
#include <string>

#include <TopoDS_Face.hxx>

#include "io/CadFaceData.h"
#include "io/EdgeTable.h"

namespace orvane::io {

// A face that cannot be converted; the text is the reason, one line.
class EFaceSkipped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Converts Face. Number and Name only label the result. Seam edges appear in a loop in both
// their uses and degenerate edges at poles stay in their loops. Joints between consecutive
// edges closer than the edges' tolerance are closed; a joint whose gap collapses to one point
// on the surface (a pole without its degenerate edge) is bridged by a segment; any other gap
// raises EFaceSkipped "open trim loop: ...". The outer loop runs counter-clockwise in UV, the
// holes clockwise, so that the face lies to the left of every loop. Each curve that is the use
// of an edge names it in Edges (which discretises it on first use) and carries the UV of the
// edge's shared points.
FaceData ConvertFace(const TopoDS_Face& Face, int Number, const std::string& Name, EdgeTable& Edges);

}  // namespace orvane::io
