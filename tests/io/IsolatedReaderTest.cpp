#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "io/CadFileReader.h"
#include "io/CadModelReader.h"
#include "io/IsolatedReader.h"
#include "io/ModelStream.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

std::string ErrorOf(const std::function<CadModelData(const ProgressFn&)>& work, double limit = 30.0)
{
    try {
        RunIsolated(work, "part.stp", limit);
    } catch (const ECadFileError& e) {
        return e.what();
    }
    return "no error";
}

TEST(IsolatedReader, GivesTheSameModelAsReadingInProcessAndPassesProgressOn)
{
    testing::TempDir dir;
    testing::WriteStep(testing::PlateWithHoles(), dir.File("plate.stp"));
    CadModelData direct = ReadCadModel(dir.File("plate.stp"));
    std::vector<std::pair<int, int>> steps;
    CadModelData isolated =
        ReadCadModelIsolated(dir.File("plate.stp"), 60.0, [&](int done, int total) { steps.emplace_back(done, total); });
    // The stages cross too; their times differ from run to run.
    ASSERT_EQ(isolated.Stages.size(), direct.Stages.size());
    EXPECT_EQ(isolated.Stages.back().Name, "convert");
    for (StageTime& s : isolated.Stages) s.Seconds = 0.0;
    for (StageTime& s : direct.Stages) s.Seconds = 0.0;
    EXPECT_EQ(EncodeModel(isolated), EncodeModel(direct));
    ASSERT_EQ(steps.size(), direct.Faces.size());
    EXPECT_EQ(steps.back(), std::make_pair(static_cast<int>(steps.size()), static_cast<int>(steps.size())));
    EXPECT_EQ(isolated.Faces[2].Loops.size(), direct.Faces[2].Loops.size());
}

TEST(IsolatedReader, SurvivesACrashAHangAndAFailureOfTheReader)
{
    EXPECT_EQ(ErrorOf([](const ProgressFn&) -> CadModelData { std::abort(); }),
              "part.stp: the reader crashed (signal " + std::to_string(SIGABRT) + ")");
    EXPECT_EQ(ErrorOf([](const ProgressFn&) -> CadModelData { std::_Exit(3); }),
              "part.stp: the reader ended without an answer (exit code 3)");
    EXPECT_EQ(ErrorOf([](const ProgressFn&) -> CadModelData {
                  for (;;) std::this_thread::sleep_for(std::chrono::seconds(1));
              }, 0.3),
              "part.stp: reading took longer than 0.3 s and was stopped");
    EXPECT_EQ(ErrorOf([](const ProgressFn&) -> CadModelData { throw ECadFileError("part.stp holds no faces"); }),
              "part.stp holds no faces");
}

TEST(IsolatedReader, TheReaderDiesWithItsParent)
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);  // the orphaned reader comes to this process, not to init
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    const pid_t parent = ::fork();
    ASSERT_GE(parent, 0);
    if (parent == 0) {
        RunIsolated([&](const ProgressFn&) -> CadModelData {
            const pid_t reader = ::getpid();
            (void)!::write(fds[1], &reader, sizeof reader);
            for (;;) ::pause();
        }, "part.stp", 600.0);
        ::_exit(0);
    }
    pid_t reader = 0;
    ASSERT_EQ(::read(fds[0], &reader, sizeof reader), static_cast<ssize_t>(sizeof reader));
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    int status = 0;
    pid_t gone = 0;
    for (int i = 0; i < 200 && gone == 0; ++i) {  // gives up after 10 s
        gone = ::waitpid(reader, &status, WNOHANG);
        if (gone == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    if (gone == 0) ::kill(reader, SIGKILL), ::waitpid(reader, nullptr, 0);
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
    ::close(fds[0]);
    ::close(fds[1]);
    ASSERT_EQ(gone, reader) << "the reader ran on without its parent";
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(IsolatedReader, ADamagedAnswerIsAnErrorNotAModel)
{
    CadModelData model;
    model.Format = "STEP";
    model.Faces.resize(1);
    model.Faces[0].Loops = {{TrimCurveData{1, {0, 0, 1, 1}, {{0, 0}, {1, 0}}, {}, -1, false, {}}}};
    const std::string bytes = EncodeModel(model);
    EXPECT_EQ(EncodeModel(DecodeModel(bytes)), bytes);
    for (std::size_t cut : {std::size_t{0}, std::size_t{3}, bytes.size() / 2, bytes.size() - 1}) {
        EXPECT_THROW(DecodeModel(std::string_view(bytes).substr(0, cut)), ECadFileError) << cut;
    }
    std::string huge = bytes;
    huge[4 + 8 + 4 + 8 + 2] = '\x7f';  // the face count's low byte, after the magic, "STEP" and "mm"
    EXPECT_THROW(DecodeModel(huge), ECadFileError);
}

}  // namespace
}  // namespace orvane::io
