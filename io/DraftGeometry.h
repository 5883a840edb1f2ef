// Checks of a draft's triangles against the surface they lie on, for the steps that move a
// draft's vertices after the quad tool made them.
#pragma once

#include <array>
#include <memory>

#include "contracts/Cadgeometry.h"
#include "io/QuadFaceMesher.h"

namespace orvane::io {

class DraftGeometry {
public:
    // Limit: how far a triangle may lie from the surface.
    DraftGeometry(const FaceDraft& Draft, const FaceData& Face, double Limit);

    // Whether the triangle faces the way its corners' normals do, and is no sliver: its
    // doubled area along them above a millionth of its longest side squared.
    bool Faces(const std::array<int, 3>& T) const;
    // Whether the triangle's side midpoints and centre lie within the limit of the surface
    // at their UV.
    bool Close(const std::array<int, 3>& T) const;

    const TGeNurbsSurface& Surface() const { return *FSurface; }

private:
    const FaceDraft& FDraft;
    std::unique_ptr<TGeNurbsSurface> FSurface;
    double FLimit;
};

}  // namespace orvane::io
