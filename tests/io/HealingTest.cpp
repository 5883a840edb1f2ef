#include <functional>
#include <string>
#include <vector>

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS.hxx>
#include <gtest/gtest.h>

#include "io/EdgeTable.h"
#include "io/FaceConverter.h"
#include "io/ModelMesher.h"
#include "io/ShapeHealing.h"
#include "tests/io/MeshChecks.h"
#include "tests/io/parts/FaultyParts.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using namespace orvane::io::testing;

struct Meshed {
    std::vector<std::string> Skipped;  // reasons, from the reader and the road
    double Area = 0.0;
};

// The face healed, converted and meshed on the quad road at the default tolerance, as
// ReadCadModel and MeshModel do with the faces of a file.
Meshed HealAndMesh(const TopoDS_Face& face)
{
    const HealedShape healed(face);
    CadModelData model;
    Bnd_Box box;
    BRepBndLib::Add(healed.Shape(), box);
    double x0, y0, z0, x1, y1, z1;
    box.Get(x0, y0, z0, x1, y1, z1);
    model.Box = {{x0, y0, z0}, {x1, y1, z1}};
    model.Tolerance = DefaultTolerance(model);
    EdgeTable edges(model.Tolerance);
    Meshed out;
    int number = 0;
    for (TopExp_Explorer ex(healed.Shape(), TopAbs_FACE); ex.More(); ex.Next()) {
        try {
            model.Faces.push_back(ConvertFace(TopoDS::Face(ex.Current()), ++number, "face", edges));
        } catch (const EFaceSkipped& e) {
            out.Skipped.push_back(e.what());
        }
    }
    model.Edges = edges.Take();
    const ModelMesh mesh = MeshModel(model, {});
    for (const SkippedFace& s : mesh.Skipped) out.Skipped.push_back(s.Reason);
    TFloatDynArray tri, norm;
    JoinFaces(mesh, tri, norm);
    out.Area = MeshArea(tri);
    return out;
}

// Faces whose boundary as stored cannot be converted as it stands: each is healed and
// converted, and its mesh covers the region its sound twin bounds, no more and no less.
TEST(Healing, FacesWithFaultyBoundariesAreConvertedWithTheirExactArea)
{
    const struct {
        const char* Fault;
        std::function<TopoDS_Face(bool)> Make;
    } cases[] = {
        {"a trim curve a little outside the surface's range", StrayingCurvePatch},
        {"a side a whole period away across the seam", ShiftedSeamBand},
        {"a loop whose sides along the surface's border are missing", HalfCylinderWithoutSides},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Fault);
        const Meshed meshed = HealAndMesh(c.Make(true));
        for (const std::string& reason : meshed.Skipped) ADD_FAILURE() << "skipped: " << reason;
        EXPECT_NEAR(meshed.Area / ExactArea(c.Make(false)), 1.0, 0.005);
    }
}

// A loop that runs back along its own curved side for a stretch, its two curves wavering
// across each other within their tolerance (the coil of a flat-ground spring where it meets
// the ground plane): the stretch bounds nothing, yet meshed as a region it gives slivers and
// folds, and OpenCASCADE's own checker and mesher refuse the face. Healing cuts the stretch
// out of the loop, which leaves a valid face that meshes to its exact area.
TEST(Healing, ALoopThatRunsBackAlongItselfIsCutWhereItTurns)
{
    const TopoDS_Face spiked = StripWithSpike();
    ASSERT_FALSE(BRepCheck_Analyzer(spiked).IsValid());
    EXPECT_TRUE(BRepCheck_Analyzer(HealedShape(spiked).Shape()).IsValid());
    const Meshed meshed = HealAndMesh(spiked);
    for (const std::string& reason : meshed.Skipped) ADD_FAILURE() << "skipped: " << reason;
    EXPECT_NEAR(meshed.Area / ExactArea(StripWithSpike(false)), 1.0, 0.005);
}

int FreeEdgeCount(const TopoDS_Shape& shape)
{
    TopTools_IndexedDataMapOfShapeListOfShape faces;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, faces);
    int free = 0;
    for (int i = 1; i <= faces.Extent(); ++i) free += faces(i).Extent() == 1;
    return free;
}

// A box whose six faces each have edges of their own, a little apart, as IGES files give
// them: sewn, the faces share their edges, and each still names the face it was read as.
TEST(Healing, FacesThatMeetAlongEdgesOfTheirOwnAreSewn)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
    BRep_Builder builder;
    TopoDS_Compound loose;
    builder.MakeCompound(loose);
    TopTools_MapOfShape read;
    double shift = 0.0;
    for (TopExp_Explorer ex(box, TopAbs_FACE); ex.More(); ex.Next()) {
        gp_Trsf apart;
        apart.SetTranslation(gp_Vec(shift, 0, 0));
        shift += 1e-3;
        const TopoDS_Shape face = BRepBuilderAPI_Transform(ex.Current(), apart, true).Shape();
        builder.Add(loose, face);
        read.Add(face);
    }
    ASSERT_EQ(FreeEdgeCount(loose), 24);
    const HealedShape healed(loose);
    EXPECT_EQ(FreeEdgeCount(healed.Shape()), 0);
    int faces = 0;
    for (TopExp_Explorer ex(healed.Shape(), TopAbs_FACE); ex.More(); ex.Next(), ++faces)
        EXPECT_TRUE(read.Contains(healed.Original(ex.Current())));
    EXPECT_EQ(faces, 6);
}

}  // namespace
}  // namespace orvane::io
