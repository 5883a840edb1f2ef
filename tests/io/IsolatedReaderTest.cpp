#include <gtest/gtest.h>

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
    const CadModelData direct = ReadCadModel(dir.File("plate.stp"));
    std::vector<std::pair<int, int>> steps;
    const CadModelData isolated =
        ReadCadModelIsolated(dir.File("plate.stp"), 60.0, [&](int done, int total) { steps.emplace_back(done, total); });
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
    huge[4 + 8 + 4] = '\x7f';  // the face count's low byte, after the magic and "STEP"
    EXPECT_THROW(DecodeModel(huge), ECadFileError);
}

}  // namespace
}  // namespace orvane::io
