#include <gtest/gtest.h>

#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>

#include "io/CadModelReader.h"
#include "io/KernelFace.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

// All edges of the shape, in one compound to measure distances to.
TopoDS_Compound Edges(const TopoDS_Shape& shape)
{
    BRep_Builder builder;
    TopoDS_Compound edges;
    builder.MakeCompound(edges);
    for (TopExp_Explorer ex(shape, TopAbs_EDGE); ex.More(); ex.Next()) builder.Add(edges, ex.Current());
    return edges;
}

double DistanceTo(const TopoDS_Shape& shape, const TPoint3D& p)
{
    BRepExtrema_DistShapeShape dist(BRepBuilderAPI_MakeVertex(gp_Pnt(p.X, p.Y, p.Z)), shape);
    return dist.Value();
}

double SignedArea(const TGeCurve2D& loop)
{
    TDynPoints2D pts;
    TFloatDynArray params;
    loop.GetSamplePoints(400, pts, params);
    double a = 0.0;
    for (std::size_t i = 0; i + 1 < pts.size(); ++i) a += pts[i].X * pts[i + 1].Y - pts[i + 1].X * pts[i].Y;
    return a / 2.0;
}

// The boundary loops, mapped through the converted surface, lie on the part's edges: the
// surface and the trim curves were converted together (a cylinder's NURBS form has other
// parameters than the cylinder). Loops are closed, the outer one counter-clockwise and the
// holes clockwise.
TEST(FaceConversion, BoundaryLoopsMapOntoThePartsEdgesAndRunTheKernelsWay)
{
    testing::TempDir dir;
    for (const auto& part : {testing::TestShape{"box_with_hole", testing::BoxWithHole()},
                             {"sphere", testing::Sphere()}, {"torus", testing::Torus()},
                             {"filleted_box", testing::FilletedBox()}, {"lofted_freeform", testing::LoftedFreeform()}}) {
        const std::string path = dir.File(part.Name + ".stp");
        testing::WriteStep(part.Shape, path);
        const CadModelData model = ReadCadModel(path);
        const TopoDS_Compound edges = Edges(part.Shape);
        const double size = model.Box.Diagonal();
        for (const FaceData& f : model.Faces) {
            SCOPED_TRACE(part.Name + " " + f.Name);
            const auto face = BuildKernelFace(f);
            EXPECT_GT(SignedArea(*face->OuterBoundary.GetCurve()), 0.0);
            for (int h = 0; h < face->GetInnerBoundaryCount(); ++h)
                EXPECT_LT(SignedArea(*face->GetInnerBoundary(h).GetCurve()), 0.0);
            TDynPoints2D uv;
            TFloatDynArray params;
            face->OuterBoundary.GetCurve()->GetSamplePoints(7, uv, params);
            EXPECT_TRUE(uv.front().Equals(uv.back(), 1e-9));
            for (const TPoint2D& p : uv) EXPECT_LT(DistanceTo(edges, face->GetPoint(p.X, p.Y)), 1e-6 * size);
        }
    }
}

}  // namespace
}  // namespace orvane::io
