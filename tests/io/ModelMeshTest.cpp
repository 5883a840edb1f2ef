#include <gtest/gtest.h>

#include "io/CadModelReader.h"
#include "io/ModelMesher.h"
#include "tests/io/MeshChecks.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using namespace orvane::io::testing;

// Each test part, as IGES and as STEP, through the quad road at the default tolerance: the
// mesh's area within 0.5% of the exact area, every vertex within 1e-6 of the model's size of
// its face's surface, the signed volume positive and within 1% of the exact one, and the
// normals out of the material.
TEST(ModelMesh, QuadRoadMeshesEveryTestPartWithinTheLimits)
{
    TempDir dir;
    for (const auto& part : AllTestShapes()) {
        for (const std::string ext : {"igs", "stp"}) {
            const std::string path = dir.File(part.Name + "." + ext);
            ext == "igs" ? WriteIges(part.Shape, path) : WriteStep(part.Shape, path);
            SCOPED_TRACE(path);
            const CadModelData model = ReadCadModel(path);
            const ModelMesh mesh = MeshModel(model, {});
            for (const auto& s : mesh.Skipped) ADD_FAILURE() << s.Name << ": " << s.Reason;
            TFloatDynArray tri, norm;
            JoinFaces(mesh, tri, norm);
            const double size = model.Box.Diagonal();
            EXPECT_NEAR(MeshArea(tri) / model.ExactArea, 1.0, 0.005);
            EXPECT_NEAR(SignedVolume(tri) / model.ExactVolume, 1.0, 0.01);
            EXPECT_LT(WorstVertexDistance(model, mesh), 1e-6 * size);
            EXPECT_GT(WorstNormalAgreement(model, mesh), 0.5);
        }
    }
}

}  // namespace
}  // namespace orvane::io

namespace orvane::io {
namespace {

using namespace orvane::io::testing;

// The GLU road samples in pixels of a view fitted to the whole model; its meshes come out
// pointing out of the material as well.
TEST(ModelMesh, GluRoadMeshesComeOutPointingOutOfTheMaterial)
{
    TempDir dir;
    for (const auto& part : {TestShape{"box_with_hole", BoxWithHole()}, TestShape{"torus", Torus()}}) {
        const std::string path = dir.File(part.Name + ".stp");
        WriteStep(part.Shape, path);
        SCOPED_TRACE(path);
        const CadModelData model = ReadCadModel(path);
        MeshSettings settings;
        settings.Road = MeshRoad::Glu;
        const ModelMesh mesh = MeshModel(model, settings);
        for (const auto& s : mesh.Skipped) ADD_FAILURE() << s.Name << ": " << s.Reason;
        TFloatDynArray tri, norm;
        JoinFaces(mesh, tri, norm);
        EXPECT_NEAR(MeshArea(tri) / model.ExactArea, 1.0, 0.05);
        EXPECT_NEAR(SignedVolume(tri) / model.ExactVolume, 1.0, 0.1);
        EXPECT_LT(WorstVertexDistance(model, mesh), 1e-6 * model.Box.Diagonal());
        EXPECT_GT(WorstNormalAgreement(model, mesh), 0.5);
    }
}

}  // namespace
}  // namespace orvane::io
