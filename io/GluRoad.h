// The GLU road for a whole model: GLU samples in pixels of the current view, so the faces are
// triangulated inside one headless context whose viewport and matrices fit the model's box
// into Width x Height pixels, the same view for every face.
#pragma once

#include <memory>

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

private:
    struct State;
    std::unique_ptr<State> FState;
};

// Meshes F on the GLU road into Out.Tri and Out.Norm, pointed out of the material. Returns ""
// when the result is kept; otherwise the reason it was refused, one line without the face's
// name, with Out's arrays empty.
std::string MeshFaceByGlu(GluRoad& Road, const FaceData& F, FaceMesh& Out);

}  // namespace orvane::io
