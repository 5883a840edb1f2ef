#include "io/MeshBudget.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <vector>

#include "glu_triangulation/GluView.h"
#include "io/EveryCore.h"
#include "io/FacePreparation.h"
#include "io/FaceValidation.h"
#include "io/GluRoad.h"
#include "io/KernelFace.h"
#include "tessellation/SurfaceTriangulatorChecker.h"

namespace orvane::io {
namespace {

// The quads the preparation plans for the face; 0 for a face it will refuse.
double PlannedQuads(const FaceData& f, const PreparationSettings& settings)
{
    try {
        if (!FindFaceProblem(f, 1e-9).empty()) return 0.0;
        const std::unique_ptr<TGeTrimmedSurface> surface = BuildKernelFace(f);
        const TExtrusionType type = TSurfaceTriangulatorChecker::CheckExtrusionDirection(surface.get());
        const bool simple = TSurfaceTriangulatorChecker::CheckSimpleSurface(surface.get(), type);
        const PreparationPlan plan = PlanPreparation(f, type, simple, settings);
        const double quads = static_cast<double>(plan.X.Parts) * static_cast<double>(plan.Y.Parts);
        return quads > static_cast<double>(settings.MaxQuads) ? 0.0 : quads;
    } catch (...) {
        return 0.0;  // the road refuses it too, with its reason
    }
}

// The GLU road's triangles at most, in the view the road fits the model's box into.
double GluTriangles(const CadModelData& model, const MeshSettings& settings)
{
    const BoundingBox& b = model.Box;
    std::array<TPoint3D, 8> corners;
    for (int i = 0; i < 8; ++i)
        corners[static_cast<std::size_t>(i)] = {(i & 1 ? b.Max : b.Min).X, (i & 2 ? b.Max : b.Min).Y, (i & 4 ? b.Max : b.Min).Z};
    const double pixelsPerUnit = ObliqueViewPixelsPerUnit(corners, settings.ViewWidth, settings.ViewHeight);
    const GluBudget budget;
    double sum = 0.0, largest = 0.0;
    for (const FaceData& f : model.Faces) {
        const double area = f.ExactArea * pixelsPerUnit * pixelsPerUnit;
        const double faceBudget = std::max(budget.MinTriangles, budget.TrianglesPerPixel * area);
        sum += faceBudget;
        largest = std::max(largest, faceBudget);
    }
    // A face is kept only within its budget; GLU may sample up to the slack times it while it
    // works, one face at a time.
    return sum + (budget.PredictionSlack - 1.0) * largest;
}

}  // namespace

EOverBudget::EOverBudget(double needed, double allowed)
    : std::runtime_error("the mesh would pass its triangle budget"), Needed(needed), Allowed(allowed)
{
}

double PlannedTriangles(const CadModelData& Model, const MeshSettings& Settings)
{
    if (Settings.Road == MeshRoad::Glu) return GluTriangles(Model, Settings);
    const PreparationSettings settings{Settings.Tolerance > 0.0 ? Settings.Tolerance : DefaultTolerance(Model),
                                       Settings.MaxQuads};
    std::vector<double> quads(Model.Faces.size(), 0.0);
    OnEveryCore(static_cast<int>(quads.size()), [&](int i) {
        quads[static_cast<std::size_t>(i)] = PlannedQuads(Model.Faces[static_cast<std::size_t>(i)], settings);
    }, {}, Settings.Threads);
    double sum = 0.0;
    for (const double q : quads) sum += q;
    return 2.0 * sum;
}

void CheckMeshBudget(const CadModelData& Model, const MeshSettings& Settings, double MaxTriangles)
{
    const double needed = PlannedTriangles(Model, Settings);
    if (needed > MaxTriangles) throw EOverBudget(needed, MaxTriangles);
}

}  // namespace orvane::io
