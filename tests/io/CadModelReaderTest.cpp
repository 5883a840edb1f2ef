#include <gtest/gtest.h>

#include "io/CadFileReader.h"
#include "io/CadModelReader.h"
#include "io/FaceValidation.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using testing::AllTestShapes;
using testing::TempDir;

TEST(CadModelReader, ReadsEveryTestPartFromIgesAndStepWithoutSkippingAFace)
{
    TempDir dir;
    for (const auto& part : AllTestShapes()) {
        for (const std::string ext : {"igs", "stp"}) {
            const std::string path = dir.File(part.Name + "." + ext);
            ext == "igs" ? testing::WriteIges(part.Shape, path) : testing::WriteStep(part.Shape, path);
            SCOPED_TRACE(path);
            const CadModelData model = ReadCadModel(path);
            EXPECT_EQ(model.Format, ext == "igs" ? "IGES" : "STEP");
            for (const auto& s : model.Skipped) ADD_FAILURE() << s.Name << ": " << s.Reason;
            EXPECT_GT(model.Faces.size(), 0u);
            EXPECT_NEAR(model.ExactArea, testing::ExactArea(part.Shape), 1e-6 * model.ExactArea);
            EXPECT_EQ(model.SolidCount, 1);
            EXPECT_NEAR(model.ExactVolume, testing::ExactVolume(part.Shape), 1e-6 * model.ExactVolume);
            for (const FaceData& f : model.Faces) EXPECT_EQ(FindFaceProblem(f, 1e-9), "") << f.Name;
        }
    }
}

TEST(FaceValidation, ANetOrCurveWithTooFewPolesForItsDegreeIsRefused)
{
    NurbsSurfaceData net;
    net.DegreeU = 2;
    net.CountU = net.CountV = 2;
    net.KnotsU = {0, 0, 0, 1, 1, 1};
    net.KnotsV = {0, 0, 1, 1};
    net.Poles.resize(4);
    EXPECT_EQ(FindSurfaceProblem(net), "2 poles in U are too few for degree 2");
    const TrimCurveData curve{3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0}, {1, 0}, {1, 1}}, {}, -1, false, {}};
    EXPECT_EQ(FindCurveProblem(curve), "3 poles in curve are too few for degree 3");
}

}  // namespace
}  // namespace orvane::io
