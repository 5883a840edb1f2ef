// orvane mesh over many files: what a batch reports, what it writes, what a second run redoes,
// how shards split the set, and that the thread count leaves the bytes alone.
#ifdef ORVANE_TOOL_PATH

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include <nlohmann/json.hpp>

#include "tests/io/parts/TestShapes.h"

namespace fs = std::filesystem;

namespace orvane::io {
namespace {

using testing::Slurp;

int RunTool(const testing::TempDir& dir, const std::string& args)
{
    const int status = std::system((std::string(ORVANE_TOOL_PATH) + " " + args + " 2>" + dir.File("err.txt")).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Each file's report line by the file's name.
std::map<std::string, nlohmann::json> Reports(const std::string& path)
{
    std::map<std::string, nlohmann::json> reports;
    std::istringstream lines(Slurp(path));
    for (std::string line; std::getline(lines, line);) {
        const nlohmann::json j = nlohmann::json::parse(line);
        reports[fs::path(j.at("file").get<std::string>()).filename().string()] = j;
    }
    return reports;
}

TEST(Batch, BadFilesAreReportedTheRestWrittenAndASecondRunRedoesNothing)
{
    testing::TempDir dir;
    fs::create_directories(dir.File("in/sub"));
    testing::WriteStep(testing::BoxWithHole(), dir.File("in/good.stp"));
    testing::WriteStep(testing::BoxWithHole(), dir.File("in/sub/deep.step"));
    std::ofstream(dir.File("in/bad.stp")) << "ISO-10303-21;\nnothing a reader takes\n";
    std::ofstream(dir.File("list.txt")) << "# the missing one\n" << dir.File("missing.stp") << "\n";
    const std::string command = "mesh " + dir.File("in") + " @" + dir.File("list.txt") + " -o " + dir.File("out") +
                                " --format stl --report " + dir.File("report.jsonl");

    EXPECT_EQ(RunTool(dir, command), 1) << Slurp(dir.File("err.txt"));
    auto reports = Reports(dir.File("report.jsonl"));
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_EQ(reports["good.stp"]["status"], "done");
    EXPECT_EQ(reports["good.stp"]["faces"], 7);
    EXPECT_GT(reports["deep.step"]["triangles"].get<int>(), 0);
    EXPECT_TRUE(reports["deep.step"]["seconds"].contains("tessellate"));
    EXPECT_EQ(reports["bad.stp"]["status"], "failed");
    EXPECT_EQ(reports["missing.stp"]["status"], "failed");
    EXPECT_NE(reports["missing.stp"]["error"].get<std::string>().find("cannot open"), std::string::npos);
    EXPECT_TRUE(fs::exists(dir.File("out/good.stl")));
    EXPECT_TRUE(fs::exists(dir.File("out/sub/deep.stl")));
    EXPECT_FALSE(fs::exists(dir.File("out/bad.stl")));

    const auto written = fs::last_write_time(dir.File("out/good.stl"));
    EXPECT_EQ(RunTool(dir, command), 1);
    reports = Reports(dir.File("report.jsonl"));
    EXPECT_EQ(reports["good.stp"]["status"], "up to date");
    EXPECT_EQ(reports["deep.step"]["status"], "up to date");
    EXPECT_EQ(fs::last_write_time(dir.File("out/good.stl")), written);
}

TEST(Batch, ShardsCoverTheSetOnceAndThreadsLeaveTheBytesAlone)
{
    testing::TempDir dir;
    fs::create_directories(dir.File("in"));
    for (int i = 0; i < 6; ++i) testing::WriteStep(testing::BoxWithHole(), dir.File("in/part" + std::to_string(i) + ".stp"));
    std::multiset<std::string> written;
    for (int k = 1; k <= 3; ++k) {
        const std::string out = dir.File("out" + std::to_string(k));
        EXPECT_EQ(RunTool(dir, "mesh " + dir.File("in") + " -o " + out + " --shard " + std::to_string(k) + "/3 > " +
                               dir.File("report.jsonl")),
                  0);
        if (fs::exists(out))
            for (const auto& entry : fs::directory_iterator(out)) written.insert(entry.path().filename().string());
    }
    EXPECT_EQ(written.size(), 6u);
    EXPECT_EQ(std::set<std::string>(written.begin(), written.end()).size(), 6u);

    EXPECT_EQ(RunTool(dir, "mesh " + dir.File("in/part0.stp") + " -o " + dir.File("one.glb") + " -j 1"), 0);
    EXPECT_EQ(RunTool(dir, "mesh " + dir.File("in/part0.stp") + " -o " + dir.File("four.glb") + " -j 4"), 0);
    EXPECT_EQ(Slurp(dir.File("one.glb")), Slurp(dir.File("four.glb")));
}

}  // namespace
}  // namespace orvane::io

#endif
