// What a model's mesh will cost, known before any of it is made: the quads the quad road plans
// for each face (the preparation's own plan, which the road then follows), or the triangles the
// GLU road may spend on each face before it refuses the face. A run refuses a model whose sum
// passes its budget, so that memory runs out by a message rather than by the system's hand.
#pragma once

#include <stdexcept>

#include "io/CadFaceData.h"
#include "io/ModelMesher.h"

namespace orvane::io {

// Bytes of memory a triangle of the model's mesh takes at the peak of a run (its draft, the
// face's indexed and flat arrays, the welded export): about 800 measured on the quad road (a
// spring at 617,000 planned triangles peaks at 536 MB), with a margin; a quad is two.
inline constexpr double kBytesPerTriangle = 1000.0;

// The mesh would need Needed triangles, more than the Allowed of the budget.
class EOverBudget : public std::runtime_error {
public:
    EOverBudget(double Needed, double Allowed);
    double Needed;
    double Allowed;
};

// The triangles the mesh of Model by Settings will have at most: twice the quads the quad road
// plans (a face the preparation refuses counts nothing: it is skipped), or on the GLU road the
// faces' triangle budgets (a face past its own is refused), plus what GLU may sample beyond the
// largest while it works on it.
double PlannedTriangles(const CadModelData& Model, const MeshSettings& Settings);

// Raises EOverBudget when PlannedTriangles passes MaxTriangles.
void CheckMeshBudget(const CadModelData& Model, const MeshSettings& Settings, double MaxTriangles);

}  // namespace orvane::io
