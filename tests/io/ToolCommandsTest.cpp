// The orvane tool on CAD files, run as a user runs it: exit codes, the lines it prints, and
// the files it leaves.
#ifdef ORVANE_TOOL_PATH

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <TopoDS_Edge.hxx>
#include <gp_Pnt.hxx>

#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

struct Result {
    int Code = -1;
    std::string Out;
    std::string Err;
};

std::string Slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Runs the tool with Args (already quoted) in Dir; standard error is a file, no terminal.
Result RunTool(const testing::TempDir& dir, const std::string& args)
{
    const std::string out = dir.File("stdout.txt"), err = dir.File("stderr.txt");
    const int status = std::system((std::string(ORVANE_TOOL_PATH) + " " + args + " >" + out + " 2>" + err).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(out), Slurp(err)};
}

TEST(ToolCommands, MeshWritesEachFormatAndSaysWhatItWrote)
{
    testing::TempDir dir;
    testing::WriteStep(testing::BoxWithHole(), dir.File("box.stp"));
    for (const std::string ext : {"obj", "stl", "glb"}) {
        const Result r = RunTool(dir, "mesh " + dir.File("box.stp") + " -o " + dir.File("box." + ext));
        EXPECT_EQ(r.Code, 0) << r.Err;
        EXPECT_EQ(r.Err, "");  // no progress bar where nobody watches
        EXPECT_EQ(r.Out.rfind(dir.File("box.stp") + ": 7 of 7 faces, ", 0), 0u) << r.Out;
        EXPECT_NE(r.Out.find("-> " + dir.File("box." + ext) + " (quad road, tolerance 0.04733)"), std::string::npos) << r.Out;
        EXPECT_GT(std::filesystem::file_size(dir.File("box." + ext)), 1000u);
    }
    const std::string obj = Slurp(dir.File("box.obj"));
    EXPECT_NE(obj.find("\ng face_7_(#402)\n"), std::string::npos);
    EXPECT_NE(obj.find("vn "), std::string::npos);
    const Result quads = RunTool(dir, "mesh " + dir.File("box.stp") + " -o " + dir.File("quads.obj") + " --quads");
    EXPECT_EQ(quads.Code, 0) << quads.Err;
    EXPECT_TRUE(std::regex_search(Slurp(dir.File("quads.obj")), std::regex("\nf( \\d+//\\d+){4}\n")));
    const Result glu = RunTool(dir, "mesh " + dir.File("box.stp") + " -o " + dir.File("glu.stl") + " --road glu --size 300x200");
    EXPECT_EQ(glu.Code, 0) << glu.Err;
    EXPECT_NE(glu.Out.find("(glu road, 300x200 view)"), std::string::npos) << glu.Out;
}

TEST(ToolCommands, EveryFailureIsOneLineAndAnExitCodeAndLeavesNoFile)
{
    testing::TempDir dir;
    testing::WriteStep(testing::Cylinder(), dir.File("cyl.stp"));
    testing::WriteStep(BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)).Edge(), dir.File("edge.stp"));
    std::ofstream(dir.File("junk.igs")) << "not a part\n";
    const std::string out = dir.File("out.stl");
    const std::pair<std::string, std::string> cases[] = {
        {"mesh " + dir.File("none.stp") + " -o " + out, "orvane: cannot open " + dir.File("none.stp") + "\n"},
        {"mesh " + dir.File("junk.igs") + " -o " + out,
         "orvane: " + dir.File("junk.igs") + " is not an IGES or STEP file\n"},
        {"mesh " + dir.File("edge.stp") + " -o " + out, "orvane: " + dir.File("edge.stp") + " holds no faces\n"},
        {"mesh " + dir.File("cyl.stp") + " -o " + dir.File("out.ply"),
         "orvane: " + dir.File("out.ply") + ": the output must end in .obj, .stl or .glb\n"},
        {"mesh " + dir.File("cyl.stp") + " -o " + out + " --quads",
         "orvane: " + out + ": --quads writes OBJ only, the output must end in .obj\n"},
        {"mesh " + dir.File("cyl.stp") + " -o " + dir.File("no/such/out.glb"),
         "orvane: cannot write " + dir.File("no/such/out.glb") + ": No such file or directory\n"},
        {"info " + dir.File("junk.igs"), "orvane: " + dir.File("junk.igs") + " is not an IGES or STEP file\n"},
    };
    for (const auto& [args, message] : cases) {
        const Result r = RunTool(dir, args);
        EXPECT_EQ(r.Code, 1) << args;
        EXPECT_EQ(r.Err, message);
        EXPECT_EQ(r.Out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.ply")));
}

TEST(ToolCommands, InfoListsFacesKindsAndTheBox)
{
    testing::TempDir dir;
    testing::WriteIges(testing::BoxWithHole(), dir.File("box.igs"));
    const Result r = RunTool(dir, "info " + dir.File("box.igs"));
    EXPECT_EQ(r.Code, 0) << r.Err;
    EXPECT_EQ(r.Out.rfind(dir.File("box.igs") + ": IGES, 7 faces (7 converted, 0 skipped), 1 solid\n"
                          "box (0, 0, 0) to (100, 60, 20), diagonal 118.322\narea 19028.3, volume 113717\nfaces:\n", 0),
              0u)
        << r.Out;
    EXPECT_NE(r.Out.find(": cylinder as rational NURBS of degree 2x1, "), std::string::npos) << r.Out;
    EXPECT_NE(r.Out.find(": plane as NURBS of degree 1x1, 2x2 poles, trimmed, 4-curve outer loop, 1 hole"),
              std::string::npos)
        << r.Out;
    // The mesh closes round the solid and encloses its volume to within 1%.
    const std::size_t solid = r.Out.find("solids, meshed at tolerance 0.04733:\n  solid 1: closed, ");
    ASSERT_NE(solid, std::string::npos) << r.Out;
    const std::size_t share = r.Out.find(" against 113717 exact (", solid);
    ASSERT_NE(share, std::string::npos) << r.Out;
    EXPECT_LT(std::abs(std::atof(r.Out.c_str() + share + 23)), 1.0) << r.Out;
}

}  // namespace
}  // namespace orvane::io

#endif
