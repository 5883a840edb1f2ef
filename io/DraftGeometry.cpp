#include "io/DraftGeometry.h"

#include <algorithm>
#include <initializer_list>

#include "io/KernelFace.h"

namespace orvane::io {

DraftGeometry::DraftGeometry(const FaceDraft& Draft, const FaceData& Face, double Limit)
    : FDraft(Draft), FSurface(BuildKernelSurface(Face.Surface)), FLimit(Limit)
{
}

bool DraftGeometry::Faces(const std::array<int, 3>& T) const
{
    const DraftVertex& a = FDraft.Vertices[static_cast<std::size_t>(T[0])];
    const DraftVertex& b = FDraft.Vertices[static_cast<std::size_t>(T[1])];
    const DraftVertex& c = FDraft.Vertices[static_cast<std::size_t>(T[2])];
    const TPoint3D ab = b.Position - a.Position, ac = c.Position - a.Position, bc = c.Position - b.Position;
    const double side2 = std::max({ab.DotMul(ab), ac.DotMul(ac), bc.DotMul(bc)});
    return ab.CrossMul(ac).DotMul(a.Normal + b.Normal + c.Normal) > 1e-6 * side2;
}

bool DraftGeometry::Close(const std::array<int, 3>& T) const
{
    auto near = [&](const std::initializer_list<int> corners) {
        TPoint2D uv{};
        TPoint3D p{};
        for (const int k : corners) {
            const DraftVertex& v = FDraft.Vertices[static_cast<std::size_t>(T[static_cast<std::size_t>(k)])];
            uv = {uv.X + v.UV.X / corners.size(), uv.Y + v.UV.Y / corners.size()};
            p += v.Position / static_cast<double>(corners.size());
        }
        return FSurface->GetPoint(uv.X, uv.Y).DistanceTo(p) <= FLimit;
    };
    return near({0, 1}) && near({1, 2}) && near({2, 0}) && near({0, 1, 2});
}

}  // namespace orvane::io
