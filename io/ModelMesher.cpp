#include "io/ModelMesher.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <memory>
#include <optional>

#include "contracts/AppSystem.h"
#include "contracts/Interfaces.h"
#include "io/EdgeStitching.h"
#include "io/EveryCore.h"
#include "io/FacePreparation.h"
#include "io/FaceValidation.h"
#include "io/GluRoad.h"
#include "io/MeshBudget.h"
#include "io/QuadFaceMesher.h"

namespace orvane::io {
namespace {

// Where the messages shown on this thread go while a face is meshed on it.
thread_local std::vector<std::string>* tShown = nullptr;

// Catches what is shown through the application's message sink while it lives: each message
// goes to the face being meshed on the thread that showed it (see ShownFor).
class MessageCatcher {
public:
    MessageCatcher()
        : FPrevious(AppSys.SetMessageSink([](const std::string& text, int) {
              if (tShown) tShown->push_back(text);
          }))
    {
    }
    ~MessageCatcher() { AppSys.SetMessageSink(FPrevious); }
    MessageCatcher(const MessageCatcher&) = delete;
    MessageCatcher& operator=(const MessageCatcher&) = delete;

private:
    TMessageSink FPrevious;
};

// Sends what this thread shows into Texts while it lives.
class ShownFor {
public:
    explicit ShownFor(std::vector<std::string>& texts) { tShown = &texts; }
    ~ShownFor() { tShown = nullptr; }
    ShownFor(const ShownFor&) = delete;
    ShownFor& operator=(const ShownFor&) = delete;
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

// What became of a face on its road: the GLU road's mesh, or else the quad road's draft, or
// else why the face is skipped; with what it showed on the way.
struct FaceOutcome {
    FaceMesh Glu;
    std::optional<FaceDraft> Draft;
    std::string Refused;
    std::string GluNote;  // why GLU handed the face to the quad road
    std::vector<std::string> Shown;
};

FaceOutcome MeshOne(const FaceData& f, GluRoad* glu, double tolerance, long long maxQuads)
{
    FaceOutcome o;
    const ShownFor shown(o.Shown);
    try {
        if (auto problem = FindFaceProblem(f, 1e-9); !problem.empty()) throw EFaceRefused(problem);
        o.Glu = {f.Number, f.Name, f.Solid, {}, {}, 0, true, {}, {}, {}, {}};
        const std::string refused = glu ? MeshFaceByGlu(*glu, f, o.Glu) : "quad";
        if (refused.empty()) return o;
        if (glu) o.GluNote = refused + "; meshed on the quad road instead";
        // A face GLU gave up on is meshed no coarser than the GLU road's half pixel.
        if (glu && glu->QuadTolerance() > 0.0) tolerance = std::min(tolerance, glu->QuadTolerance());
        o.Draft = DraftQuadFace(f, tolerance, maxQuads);
        if (o.Draft->Triangles.empty()) throw EFaceRefused("the road gave no triangles");
    } catch (const std::exception& e) {
        o.Draft.reset();
        o.Refused = e.what();
    }
    return o;
}

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
    StageClock clock(mesh.Stages);
    if (Settings.MaxTriangles > 0.0) CheckMeshBudget(Model, Settings, Settings.MaxTriangles);
    clock.Lap("budget", static_cast<long long>(Model.Faces.size()), "faces");
    mesh.Skipped = Model.Skipped;
    mesh.Solids = Model.Solids;
    mesh.Tolerance = Settings.Tolerance > 0.0 ? Settings.Tolerance : DefaultTolerance(Model);
    std::optional<GluRoad> glu;
    if (Settings.Road == MeshRoad::Glu) glu.emplace(Model.Box, Settings.ViewWidth, Settings.ViewHeight);
    const MessageCatcher messages;
    // The quad road meshes the faces on every core; GLU's context serves one face at a time.
    const int count = static_cast<int>(Model.Faces.size());
    std::vector<FaceOutcome> outcomes(Model.Faces.size());
    auto meshOne = [&](int i) {
        outcomes[static_cast<std::size_t>(i)] =
            MeshOne(Model.Faces[static_cast<std::size_t>(i)], glu ? &*glu : nullptr, mesh.Tolerance, Settings.MaxQuads);
    };
    auto told = [&](int n) {
        if (Progress) Progress(n, count);
    };
    if (glu) {
        for (int i = 0; i < count; ++i) meshOne(i), told(i + 1);
    } else {
        OnEveryCore(count, meshOne, told, Settings.Threads);
    }
    std::vector<FaceSlot> slots;
    std::vector<const FaceData*> quadFaces;
    std::vector<FaceDraft> drafts;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const FaceData& f = Model.Faces[i];
        FaceOutcome& o = outcomes[i];
        if (!o.GluNote.empty()) mesh.Notes.push_back({f.Number, f.Name, o.GluNote});
        if (!o.Refused.empty()) {
            mesh.Skipped.push_back({f.Number, f.Name, o.Refused, f.ExactArea <= mesh.Tolerance * mesh.Tolerance});
        } else if (o.Draft) {
            slots.push_back({&f, static_cast<int>(drafts.size()), {}});
            quadFaces.push_back(&f);
            drafts.push_back(std::move(*o.Draft));
        } else {
            slots.push_back({&f, -1, std::move(o.Glu)});
        }
        for (const std::string& text : o.Shown) mesh.Notes.push_back({f.Number, f.Name, text});
    }
    clock.Lap("tessellate", static_cast<long long>(slots.size()), "faces");
    StitchDrafts(Model, quadFaces, drafts, Settings.Threads);
    clock.Lap("stitch", static_cast<long long>(drafts.size()), "faces");
    PointWelder points(kSamePointShare * Model.Box.Diagonal());
    for (FaceSlot& slot : slots) {
        if (slot.Draft < 0) {
            IndexGluFace(slot.Glu, points);
            mesh.Faces.push_back(std::move(slot.Glu));
            continue;
        }
        FaceMesh face = FaceMeshOf(*slot.Face, drafts[static_cast<std::size_t>(slot.Draft)], points);
        if (face.Triangles.empty())
            mesh.Skipped.push_back({face.Number, face.Name, "its edges' shared points enclose no area", true});
        else
            mesh.Faces.push_back(std::move(face));
    }
    mesh.Points = points.Take();
    for (FaceMesh& f : mesh.Faces)
        if (!f.FromGlu) FillFlatArrays(mesh.Points, f);
    clock.Lap("orient", static_cast<long long>(mesh.TriangleCount()), "triangles");
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
