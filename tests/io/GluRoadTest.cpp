#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "io/CadModelReader.h"
#include "io/GluRoad.h"
#include "tests/io/MeshChecks.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using namespace orvane::io::testing;

struct JudgementCase {
    const char* Name;
    double AreaFactor;  // the face's exact area is claimed this many times too large
    GluBudget Budget;
    const char* Reason;  // a part of the reason; "" for a kept mesh
};

GluBudget With(double TrianglesPerPixel, double MinTriangles, double PredictionSlack, double BaseSeconds)
{
    GluBudget b;
    b.TrianglesPerPixel = TrianglesPerPixel;
    b.MinTriangles = MinTriangles;
    b.PredictionSlack = PredictionSlack;
    b.BaseSeconds = BaseSeconds;
    b.SecondsPerTriangle = BaseSeconds < 0 ? 0.0 : b.SecondsPerTriangle;
    return b;
}

// The top of the box with a hole, a plane trimmed by a circle, through Mesa's GLU: kept as it
// is, and refused for each reason in turn when the face or the budget is made to call for it,
// with nothing left in the arrays.
TEST(GluRoad, FaceIsKeptOrRefusedWithItsReason)
{
    TempDir dir;
    const std::string path = dir.File("box_with_hole.stp");
    WriteStep(BoxWithHole(), path);
    const CadModelData model = ReadCadModel(path);
    const FaceData* holed = nullptr;
    for (const FaceData& f : model.Faces)
        if (f.Loops.size() == 2 && (holed == nullptr || f.ExactArea > holed->ExactArea)) holed = &f;
    ASSERT_NE(holed, nullptr);
    GluRoad road(model.Box, 1024, 1024);
    const std::vector<JudgementCase> cases{
        {"kept", 1.0, {}, ""},
        {"area", 1.05, {}, "less area than the face"},
        {"estimate", 1.0, With(0.0, 0.1, 4.0, 0.5), "GLU would sample over"},
        {"triangles", 1.0, With(0.0, 1.0, 1e9, 0.5), "more than the face's budget of 1 in the 1024x1024 view"},
        {"time", 1.0, With(0.5, 2000, 4.0, -1.0), "GLU took"},
    };
    for (const JudgementCase& c : cases) {
        SCOPED_TRACE(c.Name);
        FaceData face = *holed;
        face.ExactArea *= c.AreaFactor;
        FaceMesh out;
        const std::string reason = MeshFaceByGlu(road, face, out, c.Budget);
        if (*c.Reason == '\0') {
            EXPECT_EQ(reason, "");
            ASSERT_GT(out.Tri.size(), 0u);
            EXPECT_EQ(out.Norm.size(), out.Tri.size());
            EXPECT_NEAR(MeshArea(out.Tri) / holed->ExactArea, 1.0, 0.01);
        } else {
            EXPECT_NE(reason.find(c.Reason), std::string::npos) << reason;
            EXPECT_EQ(reason.find('\n'), std::string::npos);
            EXPECT_TRUE(out.Tri.empty() && out.Norm.empty());
        }
    }
}

}  // namespace
}  // namespace orvane::io
