#include <gtest/gtest.h>

#include "io/TurnedEasing.h"

namespace orvane::io {
namespace {

// The unit square of the plane z = 0 as a face.
FaceData UnitSquare()
{
    FaceData f;
    NurbsSurfaceData& s = f.Surface;
    s.DegreeU = s.DegreeV = 1;
    s.CountU = s.CountV = 2;
    s.KnotsU = s.KnotsV = {0, 0, 1, 1};
    s.Poles = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}};
    return f;
}

TEST(TurnedEasing, AnInnerVertexOutsideItsFanMovesBackOntoTheSurfaceAndTheBoundaryStays)
{
    FaceDraft d;
    d.Tolerance = 0.1;
    const TPoint2D corners[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (const TPoint2D& uv : corners) d.Vertices.push_back({uv, {0, 0, 0.0}, {uv.X, uv.Y, 0}, {0, 0, 1}});
    // The inner vertex lies beyond the right side: the fan's right triangle is turned over.
    d.Vertices.push_back({{1.2, 0.5}, {}, {1.2, 0.5, 0}, {0, 0, 1}});
    d.Triangles = {{0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}};
    EaseTurned(d, UnitSquare());
    for (int k = 0; k < 4; ++k) EXPECT_EQ(d.Vertices[static_cast<std::size_t>(k)].UV, corners[k]);
    const DraftVertex& inner = d.Vertices[4];
    EXPECT_DOUBLE_EQ(inner.UV.X, 0.5);
    EXPECT_DOUBLE_EQ(inner.UV.Y, 0.5);
    EXPECT_NEAR(inner.Position.DistanceTo({0.5, 0.5, 0}), 0.0, 1e-12);
    for (const auto& t : d.Triangles) {
        const TPoint3D a = d.Vertices[static_cast<std::size_t>(t[0])].Position, b = d.Vertices[static_cast<std::size_t>(t[1])].Position,
                       c = d.Vertices[static_cast<std::size_t>(t[2])].Position;
        EXPECT_GT((b - a).CrossMul(c - a).Z, 0.0);
    }
}

}  // namespace
}  // namespace orvane::io
