#include "io/ModelMesher.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <memory>
#include <optional>

#include "contracts/AppSystem.h"
#include "contracts/Interfaces.h"
#include "io/EdgeStitching.h"
#include "io/FacePreparation.h"
#include "io/FaceValidation.h"
#include "io/GluRoad.h"
#include "io/QuadFaceMesher.h"

namespace orvane::io {
namespace {

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
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

// The flat arrays of a face the GLU road meshed, as an indexed mesh: each vertex its own,
// points that GLU gave twice welded.
void IndexGluFace(FaceMesh& m, PointWelder& points)
{
    for (std::size_t k = 0; k + 2 < m.Tri.size(); k += 3) {
        m.Points.push_back(points.Of({m.Tri[k], m.Tri[k + 1], m.Tri[k + 2]}));
        m.Normals.push_back(TPoint3D{m.Norm[k], m.Norm[k + 1], m.Norm[k + 2]});
    }
    for (int v = 0; v + 2 < static_cast<int>(m.Points.size()); v += 3) m.Triangles.push_back({v, v + 1, v + 2});
}

// One face on its way: a draft of the quad road or a finished GLU mesh.
struct FaceSlot {
    const FaceData* Face = nullptr;
    int Draft = -1;
    FaceMesh Glu;
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
    mesh.Solids = Model.Solids;
    mesh.Tolerance = Settings.Tolerance > 0.0 ? Settings.Tolerance : DefaultTolerance(Model);
    std::optional<GluRoad> glu;
    if (Settings.Road == MeshRoad::Glu) glu.emplace(Model.Box, Settings.ViewWidth, Settings.ViewHeight);
    MessageCatcher messages;
    std::vector<FaceSlot> slots;
    std::vector<const FaceData*> quadFaces;
    std::vector<FaceDraft> drafts;
    int done = 0;
    for (const FaceData& f : Model.Faces) {
        try {
            if (auto problem = FindFaceProblem(f, 1e-9); !problem.empty()) throw EFaceRefused(problem);
            FaceSlot slot{&f, -1, {f.Number, f.Name, f.Solid, {}, {}, 0, true, {}, {}, {}, {}}};
            const std::string refused = glu ? MeshFaceByGlu(*glu, f, slot.Glu) : "quad";
            if (refused.empty()) {
                slots.push_back(std::move(slot));
            } else {
                if (glu) mesh.Notes.push_back({f.Number, f.Name, refused + "; meshed on the quad road instead"});
                const auto start = Clock::now();
                // A face GLU gave up on is meshed no coarser than the GLU road's half pixel.
                const double tolerance = glu && glu->QuadTolerance() > 0.0 ? std::min(mesh.Tolerance, glu->QuadTolerance())
                                                                           : mesh.Tolerance;
                FaceDraft draft = DraftQuadFace(f, tolerance, Settings.MaxQuads);
                mesh.TessellateSeconds += Since(start);
                if (draft.Triangles.empty()) throw EFaceRefused("the road gave no triangles");
                slots.push_back({&f, static_cast<int>(drafts.size()), {}});
                quadFaces.push_back(&f);
                drafts.push_back(std::move(draft));
            }
        } catch (const std::exception& e) {
            mesh.Skipped.push_back({f.Number, f.Name, e.what()});
        }
        for (const std::string& text : messages.Take()) mesh.Notes.push_back({f.Number, f.Name, text});
        if (Progress) Progress(++done, static_cast<int>(Model.Faces.size()));
    }
    const auto start = Clock::now();
    StitchDrafts(Model, quadFaces, drafts);
    PointWelder points(kSamePointShare * Model.Box.Diagonal());
    for (FaceSlot& slot : slots) {
        if (slot.Draft < 0) {
            IndexGluFace(slot.Glu, points);
            mesh.Faces.push_back(std::move(slot.Glu));
            continue;
        }
        FaceMesh face = FaceMeshOf(*slot.Face, drafts[static_cast<std::size_t>(slot.Draft)], points);
        if (face.Triangles.empty())
            mesh.Skipped.push_back({face.Number, face.Name, "its edges' shared points enclose no area"});
        else
            mesh.Faces.push_back(std::move(face));
    }
    mesh.Points = points.Take();
    for (FaceMesh& f : mesh.Faces)
        if (!f.FromGlu) FillFlatArrays(mesh.Points, f);
    mesh.OrientSeconds += Since(start);
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
