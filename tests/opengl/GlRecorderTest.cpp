// The recording fakes that the GL tests of the other subsystems build on.
#include <gtest/gtest.h>

#include "opengl/dglOpenGL.h"
#include "tests/support/GlRecorder.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;

TEST(GlRecorder, RecordsCallsInOrderAndPutsTheRealEntriesBack)
{
    const auto realBegin = glBegin;
    const auto realGen = glGenBuffers;
    {
        GlRecorder rec;
        rec.Record<&glBegin>();
        rec.Record<&glGenBuffers>([](GLsizei n, GLuint* ids) {
            for (GLsizei i = 0; i < n; ++i)
                ids[i] = 40u + static_cast<GLuint>(i);
        });
        rec.Record<&glClearColor>();
        rec.Record<&gluNurbsProperty>();

        glBegin(GL_TRIANGLES);
        GLuint ids[2] = {};
        glGenBuffers(2, ids);
        glClearColor(0.25f, 1.0f, 0.0f, 1.0f);
        gluNurbsProperty(nullptr, GLU_SAMPLING_TOLERANCE, 12.5f);

        EXPECT_EQ(ids[1], 41u);
        EXPECT_EQ(rec.Texts(), (std::vector<std::string>{
                                   "glBegin(4)", "glGenBuffers(2, ptr)",
                                   "glClearColor(0.25, 1, 0, 1)", "gluNurbsProperty(nil, 100203, 12.5)"}));
        EXPECT_EQ(rec.Calls()[1].Pointer(1), ids);
        EXPECT_EQ(rec.Count("glBegin"), 1u);
        rec.Clear();
        EXPECT_TRUE(rec.Calls().empty());
    }
    EXPECT_EQ(glBegin, realBegin);
    EXPECT_EQ(glGenBuffers, realGen);
    EXPECT_EQ(GlRecorder::Current(), nullptr);
}

TEST(GlRecorder, FakeWithoutBehaviourReturnsZero)
{
    GlRecorder rec;
    rec.Record<&glCreateShader>();
    rec.Record<&glGetString>();
    EXPECT_EQ(glCreateShader(GL_VERTEX_SHADER), 0u);
    EXPECT_EQ(glGetString(GL_VERSION), nullptr);
    EXPECT_EQ(rec.Calls()[0].Args, (std::vector<double>{GL_VERTEX_SHADER}));
}

}  // namespace
}  // namespace orvane
