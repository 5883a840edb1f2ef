#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "io/CadModelReader.h"
#include "io/ModelMesher.h"
#include "io/SolidChecks.h"
#include "tests/io/MeshChecks.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using namespace orvane::io::testing;

// Each test part, read from STEP, through the quad road at a tolerance T of about
// 1/8000 of its size: every solid closed (seams and poles included) with its volume within
// 0.1%, the area within 0.5%, the mesh within T of the exact surfaces, no triangle without
// area, the normals out of the material and, on the doubly curved parts, the exact surface
// normals.
TEST(ModelMesh, QuadRoadClosesEveryTestPartWithinTheTolerance)
{
    TempDir dir;
    for (const auto& part : AllTestShapes()) {
        {
            const std::string path = dir.File(part.Name + ".stp");
            WriteStep(part.Shape, path);
            SCOPED_TRACE(path);
            constexpr double tolerance = 0.02;
            const CadModelData model = ReadCadModel(path, {}, tolerance);
            MeshSettings settings;
            settings.Tolerance = tolerance;
            const ModelMesh mesh = MeshModel(model, settings);
            for (const auto& s : mesh.Skipped) ADD_FAILURE() << s.Name << ": " << s.Reason;
            const std::vector<SolidCheck> solids = CheckSolids(mesh);
            ASSERT_EQ(solids.size(), 1u);
            EXPECT_EQ(solids[0].FreeEdges.size(), 0u);
            EXPECT_EQ(solids[0].NonManifoldEdges, 0u);
            EXPECT_NEAR(solids[0].Volume / model.ExactVolume, 1.0, 0.001);
            TFloatDynArray tri, norm;
            JoinFaces(mesh, tri, norm);
            EXPECT_NEAR(MeshArea(tri) / model.ExactArea, 1.0, 0.005);
            EXPECT_LE(WorstDeviation(model, mesh, tolerance).Total, tolerance);
            EXPECT_EQ(ZeroAreaTriangles(model, mesh), 0u);
            EXPECT_GT(WorstNormalAgreement(model, mesh), 0.5);
            if (part.Name == "sphere" || part.Name == "torus") {
                EXPECT_LT(WorstNormalAngle(model, mesh), 1e-9);
            }
        }
    }
}

// An open shell (a box without its top) keeps exactly the missing face's outline as free
// edges: all of them on it, together as long as it.
TEST(ModelMesh, OpenShellKeepsItsBoundaryAsFreeEdges)
{
    TempDir dir;
    const std::string path = dir.File("open_box.stp");
    WriteStep(OpenBox(), path);
    const CadModelData model = ReadCadModel(path);
    const ModelMesh mesh = MeshModel(model, {});
    ASSERT_EQ(mesh.Faces.size(), 5u);
    std::map<std::pair<int, int>, int> uses;
    for (const FaceMesh& f : mesh.Faces)
        for (const auto& t : f.Triangles)
            for (int k = 0; k < 3; ++k) {
                const int a = f.Points[static_cast<std::size_t>(t[static_cast<std::size_t>(k)])];
                const int b = f.Points[static_cast<std::size_t>(t[static_cast<std::size_t>((k + 1) % 3)])];
                ++uses[{std::min(a, b), std::max(a, b)}];
            }
    double length = 0.0;
    for (const auto& [e, count] : uses) {
        EXPECT_LE(count, 2);
        if (count != 1) continue;
        const TPoint3D a = mesh.Points[static_cast<std::size_t>(e.first)], b = mesh.Points[static_cast<std::size_t>(e.second)];
        EXPECT_NEAR(a.Z, kOpenBoxHeight, 1e-9);
        EXPECT_NEAR(b.Z, kOpenBoxHeight, 1e-9);
        length += a.DistanceTo(b);
    }
    EXPECT_NEAR(length, kOpenBoxRim, 1e-9);
}

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

// Real CAD files, where ORVANE_CAD_SAMPLES names a folder of them (they are not in the
// repository): at 1% of the diagonal and at the default tolerance, every face meshed and the
// mesh within the tolerance of the exact surfaces. Prints the worst deviation over T.
TEST(ModelMesh, CadSamplesStayWithinTheTolerance)
{
    const char* folder = std::getenv("ORVANE_CAD_SAMPLES");
    if (!folder) GTEST_SKIP() << "ORVANE_CAD_SAMPLES names no folder of CAD files";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string ext = entry.path().extension().string();
        if (ext != ".stp" && ext != ".step" && ext != ".igs") continue;
        for (const double share : {0.01, kDefaultToleranceShare}) {
            const std::string path = entry.path().string();
            SCOPED_TRACE(path);
            const CadModelData probe = ReadCadModel(path);
            const double tolerance = share * probe.Box.Diagonal();
            const CadModelData model = ReadCadModel(path, {}, tolerance);
            MeshSettings settings;
            settings.Tolerance = tolerance;
            const ModelMesh mesh = MeshModel(model, settings);
            const Deviation worst = WorstDeviation(model, mesh, tolerance);
            std::printf("%s at %g of the diagonal: worst deviation %.3f T (corners on the file's edges up to %.3f T off), "
                        "%zu zero-area triangles\n",
                        entry.path().filename().c_str(), share, worst.Mesh / tolerance, worst.Corner / tolerance,
                        ZeroAreaTriangles(model, mesh));
            EXPECT_LE(worst.Mesh, tolerance);
        }
    }
}

}  // namespace
}  // namespace orvane::io
