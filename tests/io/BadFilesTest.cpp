#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRep_Builder.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_Plane.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Circ.hxx>

#include "io/CadFileReader.h"
#include "io/CadModelReader.h"
#include "io/EdgeTable.h"
#include "io/FaceConverter.h"
#include "io/IsolatedReader.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using testing::Slurp;

void Spit(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadError(const std::string& path)
{
    try {
        ReadCadModelIsolated(path, 60.0);
    } catch (const ECadFileError& e) {
        return e.what();
    }
    return "no error";
}

// A square plate 10 x 10 whose boundary misses its last side.
TopoDS_Face FaceWithOpenLoop()
{
    BRepBuilderAPI_MakePolygon polygon;
    polygon.Add(gp_Pnt(0, 0, 0));
    polygon.Add(gp_Pnt(10, 0, 0));
    polygon.Add(gp_Pnt(10, 10, 0));
    polygon.Add(gp_Pnt(0, 10, 0));
    const TopoDS_Wire open = polygon.Wire();
    TopoDS_Face face = BRepBuilderAPI_MakeFace(new Geom_Plane(gp::XOY()), -1, 20, -1, 20, 1e-7);
    BRep_Builder builder;
    TopoDS_Face bare = TopoDS::Face(face.EmptyCopied());
    builder.Add(bare, open);
    return bare;
}

// A flat patch of 3 x 3 poles whose U knots run from 0 to 1e12.
TopoDS_Face FaceWithAbsurdKnots()
{
    TColgp_Array2OfPnt poles(1, 3, 1, 3);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) poles(i, j) = gp_Pnt(5.0 * i, 5.0 * j, 0.0);
    TColStd_Array1OfReal knotsU(1, 2), knotsV(1, 2);
    knotsU(1) = 0;
    knotsU(2) = 1e12;
    knotsV(1) = 0;
    knotsV(2) = 1;
    TColStd_Array1OfInteger mults(1, 2);
    mults.Init(3);
    return BRepBuilderAPI_MakeFace(new Geom_BSplineSurface(poles, knotsU, knotsV, mults, mults, 2, 2), 1e-7);
}

TEST(BadFiles, MissingGarbageAndTruncatedFilesGiveOneClearLine)
{
    testing::TempDir dir;
    EXPECT_EQ(ReadError(dir.File("none.stp")), "cannot open " + dir.File("none.stp"));
    Spit(dir.File("garbage.igs"), std::string("\x7f" "ELF\x01\x02 not a part at all\n", 26));
    EXPECT_EQ(ReadError(dir.File("garbage.igs")), dir.File("garbage.igs") + " is not an IGES or STEP file");
    Spit(dir.File("empty.stp"), "");
    EXPECT_EQ(ReadError(dir.File("empty.stp")), dir.File("empty.stp") + " is not an IGES or STEP file");
    Spit(dir.File("header.stp"), "ISO-10303-21;\nHEADER;\n\x01\x02\x03 garbage;;;\n");
    EXPECT_EQ(ReadError(dir.File("header.stp")), dir.File("header.stp") + ": the STEP reader cannot make sense of it");

    testing::WriteStep(testing::BoxWithHole(), dir.File("box.stp"));
    testing::WriteIges(testing::BoxWithHole(), dir.File("box.igs"));
    for (const std::string name : {"box.stp", "box.igs"}) {
        const std::string whole = Slurp(dir.File(name));
        for (const double part : {0.2, 0.5, 0.8}) {
            const std::string cut = dir.File("cut_" + std::to_string(part) + name);
            Spit(cut, whole.substr(0, static_cast<std::size_t>(part * static_cast<double>(whole.size()))));
            SCOPED_TRACE(cut);
            try {
                const CadModelData model = ReadCadModelIsolated(cut, 60.0);
                EXPECT_LT(model.Faces.size(), 7u);  // whatever survived, not the whole part
            } catch (const ECadFileError& e) {
                EXPECT_EQ(std::string(e.what()).find('\n'), std::string::npos);
                EXPECT_EQ(std::string(e.what()).rfind(cut, 0), 0u) << e.what();
            }
        }
    }
}

TEST(BadFiles, AFaceWithAnOpenLoopIsSkippedWithItsReason)
{
    EdgeTable edges(0.01);
    try {
        ConvertFace(FaceWithOpenLoop(), 3, "face 3", edges);
        FAIL() << "converted";
    } catch (const EFaceSkipped& e) {
        EXPECT_STREQ(e.what(), "open trim loop: loop 1 has a gap of 10 in UV after edge 3");
    }
}

TEST(BadFiles, AnEdgeFarLargerThanTheToleranceTakesBoundedPoints)
{
    // A circle a billion times the tolerance would need tens of millions of chords.
    EdgeTable edges(1e-3);
    const TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(gp_Circ(gp_Ax2(), 1e12)).Edge();
    const std::size_t points = edges.Data(edges.Index(edge)).Points.size();
    EXPECT_GT(points, 30u);
    EXPECT_LT(points, 10'000u);
}

TEST(BadFiles, AFaceWithAbsurdKnotsIsSkippedAndTheRestGoOn)
{
    testing::TempDir dir;
    BRep_Builder builder;
    TopoDS_Compound both;
    builder.MakeCompound(both);
    builder.Add(both, FaceWithAbsurdKnots());
    builder.Add(both, testing::Cylinder());
    testing::WriteStep(both, dir.File("absurd.stp"));
    const CadModelData model = ReadCadModelIsolated(dir.File("absurd.stp"), 60.0);
    ASSERT_EQ(model.Skipped.size(), 1u);
    EXPECT_EQ(model.Skipped[0].Reason, "absurd knots: a U knot is 1e+12");
    EXPECT_EQ(model.Skipped[0].Number, 1);
    EXPECT_EQ(model.Skipped[0].Name.rfind("face 1", 0), 0u) << model.Skipped[0].Name;
    EXPECT_EQ(model.Faces.size(), 3u);
}

}  // namespace
}  // namespace orvane::io
