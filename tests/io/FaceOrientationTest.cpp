#include <gtest/gtest.h>

#include "io/FaceOrientation.h"

namespace orvane::io {
namespace {

// A flat 10 x 10 patch in z = 0 whose surface normal is +z.
FaceData Patch(bool reversed)
{
    FaceData f;
    f.Surface.CountU = f.Surface.CountV = 2;
    f.Surface.KnotsU = f.Surface.KnotsV = {0, 0, 1, 1};
    f.Surface.Poles = {{0, 0, 0}, {0, 10, 0}, {10, 0, 0}, {10, 10, 0}};
    f.Reversed = reversed;
    return f;
}

// Two triangles of the patch, counter-clockwise seen from +z, with the normal N at every vertex.
void Mesh(TFloatDynArray& tri, TFloatDynArray& norm, double n)
{
    tri = {0, 0, 0, 10, 0, 0, 10, 10, 0, 0, 0, 0, 10, 10, 0, 0, 10, 0};
    norm.assign(18, 0.0);
    for (std::size_t v = 0; v < 6; ++v) norm[3 * v + 2] = n;
}

TEST(FaceOrientation, TurnsNormalsAndWindingApartWhereEachDisagreesWithTheFace)
{
    TFloatDynArray tri, norm;
    Mesh(tri, norm, 1.0);
    OrientationResult r = OrientFaceMesh(Patch(false), tri, norm);
    EXPECT_FALSE(r.FlippedNormals);
    EXPECT_FALSE(r.FlippedWinding);

    Mesh(tri, norm, 1.0);
    r = OrientFaceMesh(Patch(true), tri, norm);  // the material lies above: both point down now
    EXPECT_TRUE(r.FlippedNormals);
    EXPECT_TRUE(r.FlippedWinding);
    EXPECT_EQ(norm[2], -1.0);
    EXPECT_EQ((TFloatDynArray(tri.begin(), tri.begin() + 9)), (TFloatDynArray{0, 0, 0, 10, 10, 0, 10, 0, 0}));

    Mesh(tri, norm, -1.0);
    r = OrientFaceMesh(Patch(false), tri, norm);
    EXPECT_TRUE(r.FlippedNormals);
    EXPECT_FALSE(r.FlippedWinding);
    EXPECT_EQ(norm[17], 1.0);
}

TEST(FaceOrientation, MendsZeroNormalsFromTheTriangleOrTheSurface)
{
    TFloatDynArray tri, norm;
    Mesh(tri, norm, 1.0);
    norm[3] = norm[4] = norm[5] = 0.0;  // vertex 1
    // A third triangle of no area, all its normals zero.
    tri.insert(tri.end(), {5, 5, 0, 5, 5, 0, 6, 6, 0});
    norm.insert(norm.end(), 9, 0.0);
    const OrientationResult r = OrientFaceMesh(Patch(true), tri, norm);
    EXPECT_EQ(r.MendedNormals, 4);
    for (std::size_t v = 0; v < tri.size() / 3; ++v) EXPECT_EQ(norm[3 * v + 2], -1.0) << v;
}

}  // namespace
}  // namespace orvane::io
