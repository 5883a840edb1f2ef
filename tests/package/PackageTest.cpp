#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "contracts/AppSystem.h"
#include "contracts/Cadgeometry.h"
#include "opengl/dglOpenGL.h"
#include "package/Package.h"
#include "tessellation/IGeSurfaceTriangulator.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> gSequence;

template <char Unit>
void StartFake()
{
    if (Unit == 'X') {
        gSequence.push_back("start X");
        throw std::runtime_error("start-up failed");
    }
    gSequence.push_back(std::string("start ") + Unit);
}
template <char Unit>
void StopFake()
{
    gSequence.push_back(std::string("stop ") + Unit);
}

TEST(PackageTest, UnitsStartInOrderStopInReverseAndAFailedStartUndoesWhatRan)
{
    std::vector<std::string> names;
    for (const TPackageUnit& unit : PackageUnits()) names.push_back(unit.Name);
    EXPECT_THAT(names, ElementsAre("dglOpenGL", "uGLHandleObj", "zqglUtils", "GL", "GLMatrix", "GLTriangles", "GLu",
                                   "TextureLoadUnit", "UDrawViewUnitTool", "uTriangulate", "uTessQuadsTriangulator"));

    // Units without work are skipped.
    const TPackageUnit units[] = {{"A", StartFake<'A'>, StopFake<'A'>},
                                  {"B", nullptr, nullptr},
                                  {"C", StartFake<'C'>, nullptr},
                                  {"D", StartFake<'D'>, StopFake<'D'>}};
    gSequence.clear();
    StartUnits(units);
    StopUnits(units);
    EXPECT_THAT(gSequence, ElementsAre("start A", "start C", "start D", "stop D", "stop A"));

    const TPackageUnit failing[] = {{"A", StartFake<'A'>, StopFake<'A'>},
                                    {"X", StartFake<'X'>, StopFake<'X'>},
                                    {"D", StartFake<'D'>, StopFake<'D'>}};
    gSequence.clear();
    EXPECT_THROW(StartUnits(failing), std::runtime_error);
    EXPECT_THAT(gSequence, ElementsAre("start A", "start X", "stop A"));
}

TEST(PackageTest, StartLoadsOpenGlFillsTheGluSlotAndRegistersTheService)
{
    AppSys.ClearServices();
    StartPackage();
    // Without a context only the OpenGL 1.1 names are loaded; the GLU triangulator is installed.
    EXPECT_NE(dglOpenGL::glBegin, nullptr);
    EXPECT_EQ(dglOpenGL::glGenVertexArrays, nullptr);
    EXPECT_NE(GeSurfTri, nullptr);
    IInterface* root = AppSys.GetService(IGeSurfaceTriangulator::IID);
    ASSERT_NE(root, nullptr);
    TInterfacePtr<IGeSurfaceTriangulator> service = TInterfacePtr<IInterface>(root).Query<IGeSurfaceTriangulator>();
    EXPECT_TRUE(service);
    StopPackage();
    EXPECT_EQ(GeSurfTri, nullptr);
    // Shut-down leaves the service registered.
    EXPECT_EQ(AppSys.GetService(IGeSurfaceTriangulator::IID), root);
    service = {};
    AppSys.ClearServices();
}

}  // namespace
}  // namespace orvane
