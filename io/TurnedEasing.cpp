#include "io/TurnedEasing.h"

#include <vector>

#include "io/DraftGeometry.h"

namespace orvane::io {
namespace {

constexpr int kPasses = 4;

class Easer {
public:
    Easer(FaceDraft& draft, const FaceData& face)
        : FDraft(draft), FFace(face), FGeometry(draft, face, draft.Tolerance / 2.0), FAround(draft.Vertices.size())
    {
        for (int t = 0; t < static_cast<int>(draft.Triangles.size()); ++t)
            for (const int v : draft.Triangles[static_cast<std::size_t>(t)]) FAround[static_cast<std::size_t>(v)].push_back(t);
    }

    // True if any vertex moved.
    bool Pass()
    {
        bool moved = false;
        for (const auto& t : FDraft.Triangles) {
            if (FGeometry.Faces(t)) continue;
            for (const int v : t)
                if (FDraft.Vertices[static_cast<std::size_t>(v)].Where.Loop < 0 && TryMove(v)) {
                    moved = true;
                    break;
                }
        }
        return moved;
    }

private:
    // Triangles round v that are turned, slivered or off the surface.
    int Faults(int v) const
    {
        int faults = 0;
        for (const int t : FAround[static_cast<std::size_t>(v)]) {
            const auto& tri = FDraft.Triangles[static_cast<std::size_t>(t)];
            faults += !FGeometry.Faces(tri) || !FGeometry.Close(tri);
        }
        return faults;
    }

    bool TryMove(int v)
    {
        DraftVertex& vertex = FDraft.Vertices[static_cast<std::size_t>(v)];
        TPoint2D middle{};
        int count = 0;
        for (const int t : FAround[static_cast<std::size_t>(v)])
            for (const int w : FDraft.Triangles[static_cast<std::size_t>(t)])
                if (w != v) {
                    middle = {middle.X + FDraft.Vertices[static_cast<std::size_t>(w)].UV.X,
                              middle.Y + FDraft.Vertices[static_cast<std::size_t>(w)].UV.Y};
                    ++count;
                }
        if (count == 0) return false;
        const int before = Faults(v);
        const DraftVertex saved = vertex;
        vertex.UV = {middle.X / count, middle.Y / count};
        vertex.Position = FGeometry.Surface().GetPoint(vertex.UV.X, vertex.UV.Y);
        vertex.Normal = SurfaceNormal(FGeometry.Surface(), FFace.Reversed, vertex.UV, vertex.UV, NormalFloor(FFace));
        if (vertex.Normal != TPoint3D{} && Faults(v) < before) return true;
        vertex = saved;
        return false;
    }

    FaceDraft& FDraft;
    const FaceData& FFace;
    DraftGeometry FGeometry;
    std::vector<std::vector<int>> FAround;  // triangles round each vertex
};

}  // namespace

void EaseTurned(FaceDraft& Draft, const FaceData& Face)
{
    Easer easer(Draft, Face);
    for (int pass = 0; pass < kPasses && easer.Pass(); ++pass) {
    }
}

}  // namespace orvane::io
