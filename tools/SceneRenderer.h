// Draws triangle meshes into a picture in a headless GL context, the way a host does it:
// each mesh merged and uploaded through a collected mesh in EBO mode, drawn by the vertex
// array manager with the view set up on the fixed-function matrix stack.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "contracts/Cadtypes.h"
#include "immediate/zqglTypes.h"

namespace orvane::tools {

// One surface's mesh as a triangulator delivers it, its colour and where it stands.
struct TSceneMesh {
    TFloatDynArray Tri;
    TFloatDynArray Norm;
    TColor Color = 0xE6965A;  // 00BBGGRR
    TPoint3D Offset;          // moves the mesh through its own transformation
};

struct TSceneView {
    // From the scene towards the viewer; the default looks down from the front right.
    TPoint3D ViewDirection{0.55, -1.0, 0.7};
    // Up on the picture, before it is made perpendicular to the view direction.
    TPoint3D Up{0.0, 0.0, 1.0};
    // Top and bottom of the background gradient, 00BBGGRR.
    TColor BackgroundTop = 0xF8F2EE;
    TColor BackgroundBottom = 0xD8C8BC;
    // Empty border around the fitted scene, as a share of the picture.
    double Margin = 0.06;
};

class TSceneRenderer {
public:
    // Makes the offscreen context (3.3 compatibility, depth buffer) at twice the size in
    // each direction, averaged down when read back. Raises std::runtime_error when no context
    // can be made.
    TSceneRenderer(int width, int height);
    ~TSceneRenderer();
    TSceneRenderer(const TSceneRenderer&) = delete;
    TSceneRenderer& operator=(const TSceneRenderer&) = delete;

    // Uploads one mesh; answers the number of triangles it draws (0 for an empty mesh).
    int AddMesh(const TSceneMesh& mesh);
    int MeshCount() const;
    // Distinct vertices kept on the graphics card over all meshes, after merging.
    std::size_t VertexCount() const;

    // Draws every mesh, fitted into the picture; RGBA, rows top first.
    std::vector<std::uint8_t> Render(const TSceneView& view = {});

private:
    struct TState;
    std::unique_ptr<TState> FState;
};

}  // namespace orvane::tools
