#include "io/ModelMesher.h"

#include <chrono>
#include <utility>
#include <memory>
#include <optional>

#include "contracts/AppSystem.h"
#include "contracts/Interfaces.h"
#include "io/FaceOrientation.h"
#include "io/FacePreparation.h"
#include "io/FaceValidation.h"
#include "io/GluRoad.h"
#include "io/KernelFace.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace orvane::io {
namespace {

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Builds what the road is given: the prepared face for the quad road; for the GLU road the
// face in its own parameters (GLU samples in pixels, and its trim polylines count their
// samples by UV length), and the bare surface where the face is all of it: Mesa's GLU covers
// a rational surface twice over where a trim loop runs along the whole boundary. Raises what
// the kernel or the preparation raise.
std::unique_ptr<TGeSurface> KernelFaceFor(const FaceData& f, const MeshSettings& s, double tolerance,
                                          long long& plannedQuads)
{
    if (s.Road == MeshRoad::Glu) {
        if (CoversWholeDomain(f)) return BuildKernelSurface(f.Surface);
        return BuildKernelFace(f);
    }
    PreparationSettings p;
    p.Tolerance = tolerance;
    p.MaxQuads = s.MaxQuads;
    PreparedFace prepared = PrepareFace(f, p);
    plannedQuads = prepared.Plan.Quads();
    return std::move(prepared.Surface);
}

// Catches what is shown through the application's message sink while it lives.
class MessageCatcher {
public:
    MessageCatcher() : FPrevious(AppSys.SetMessageSink([this](const std::string& text, int) { FTexts.push_back(text); })) {}
    ~MessageCatcher() { AppSys.SetMessageSink(FPrevious); }
    MessageCatcher(const MessageCatcher&) = delete;
    MessageCatcher& operator=(const MessageCatcher&) = delete;
    std::vector<std::string> Take() { return std::exchange(FTexts, {}); }

private:
    std::vector<std::string> FTexts;
    TMessageSink FPrevious;
};

}  // namespace

double DefaultTolerance(const CadModelData& Model)
{
    const double d = Model.Box.Diagonal();
    return d > 0.0 ? kDefaultToleranceShare * d : 1e-3;
}

std::size_t ModelMesh::TriangleCount() const
{
    std::size_t n = 0;
    for (const FaceMesh& f : Faces) n += f.Tri.size() / 9;
    return n;
}

ModelMesh MeshModel(const CadModelData& Model, const MeshSettings& Settings, const ProgressFn& Progress)
{
    ModelMesh mesh;
    mesh.Skipped = Model.Skipped;
    mesh.Tolerance = Settings.Tolerance > 0.0 ? Settings.Tolerance : DefaultTolerance(Model);
    std::optional<GluRoad> glu;
    if (Settings.Road == MeshRoad::Glu) glu.emplace(Model.Box, Settings.ViewWidth, Settings.ViewHeight);
    const TInterfacePtr<IGeSurfaceTriangulator> quad(new TQuadSurfaceTriangulator());
    MessageCatcher messages;
    int done = 0;
    for (const FaceData& f : Model.Faces) {
        FaceMesh out{f.Number, f.Name, {}, {}, 0};
        try {
            if (auto problem = FindFaceProblem(f, 1e-9); !problem.empty()) throw EFaceRefused(problem);
            auto start = Clock::now();
            const auto surface = KernelFaceFor(f, Settings, mesh.Tolerance, out.PlannedQuads);
            mesh.ConvertSeconds += Since(start);
            start = Clock::now();
            if (glu)
                glu->Triangulate(*surface, out.Tri, out.Norm);
            else
                quad->Triangulate(surface.get(), out.Tri, out.Norm);
            mesh.TessellateSeconds += Since(start);
            start = Clock::now();
            OrientFaceMesh(f, out.Tri, out.Norm);
            mesh.OrientSeconds += Since(start);
            if (out.Tri.size() < 9) throw EFaceRefused("the road gave no triangles");
            mesh.Faces.push_back(std::move(out));
        } catch (const std::exception& e) {
            mesh.Skipped.push_back({f.Number, f.Name, e.what()});
        }
        for (const std::string& text : messages.Take()) mesh.Notes.push_back({f.Number, f.Name, text});
        if (Progress) Progress(++done, static_cast<int>(Model.Faces.size()));
    }
    return mesh;
}

void JoinFaces(const ModelMesh& Mesh, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    Tri.clear();
    Norm.clear();
    for (const FaceMesh& f : Mesh.Faces) {
        Tri.insert(Tri.end(), f.Tri.begin(), f.Tri.end());
        Norm.insert(Norm.end(), f.Norm.begin(), f.Norm.end());
    }
}

}  // namespace orvane::io
