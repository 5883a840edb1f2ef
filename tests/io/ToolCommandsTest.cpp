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
#include <tuple>

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <Geom_BSplineSurface.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Writer.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <TopoDS_Compound.hxx>
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

using testing::Slurp;

// Runs the shell command; standard error is a file, no terminal.
Result RunShell(const testing::TempDir& dir, const std::string& command)
{
    const std::string out = dir.File("stdout.txt"), err = dir.File("stderr.txt");
    const int status = std::system((command + " >" + out + " 2>" + err).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(out), Slurp(err)};
}

// Runs the tool with Args (already quoted).
Result RunTool(const testing::TempDir& dir, const std::string& args)
{
    return RunShell(dir, std::string(ORVANE_TOOL_PATH) + " " + args);
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
        EXPECT_NE(r.Out.find("-> " + dir.File("box." + ext) + " (quad road, tolerance 0.04733, unit mm)"), std::string::npos)
            << r.Out;
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
    EXPECT_NE(glu.Out.find("(glu road, 300x200 view, unit mm)"), std::string::npos) << glu.Out;
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
}

TEST(ToolCommands, InfoListsFacesKindsAndTheBox)
{
    testing::TempDir dir;
    testing::WriteIges(testing::BoxWithHole(), dir.File("box.igs"));
    const Result r = RunTool(dir, "info " + dir.File("box.igs"));
    EXPECT_EQ(r.Code, 0) << r.Err;
    EXPECT_EQ(r.Out.rfind(dir.File("box.igs") + ": IGES in mm, 7 faces (7 meshed, 0 skipped), 1 solid\n"
                          "box (0, 0, 0) to (100, 60, 20), diagonal 118.322\narea 19028.3, volume 113717\nfaces:\n", 0),
              0u)
        << r.Out;
    EXPECT_NE(r.Out.find(": cylinder as rational NURBS of degree 2x1, "), std::string::npos) << r.Out;
    EXPECT_NE(r.Out.find(": plane as NURBS of degree 1x1, 2x2 poles, trimmed, 4-curve outer loop, 1 hole"),
              std::string::npos)
        << r.Out;
    // The mesh closes round the solid and encloses its volume to within 1%.
    const std::size_t solid = r.Out.find("solids, meshed at tolerance 0.04733 mm:\n  solid 1: closed, ");
    ASSERT_NE(solid, std::string::npos) << r.Out;
    const std::size_t share = r.Out.find(" against 113717 exact (", solid);
    ASSERT_NE(share, std::string::npos) << r.Out;
    EXPECT_LT(std::abs(std::atof(r.Out.c_str() + share + 23)), 1.0) << r.Out;
}


// Runs the tool in a shell where a file may grow to 2 KiB only: a write beyond fails as on a
// full disk (EFBIG), the signal that would kill the tool ignored.
Result RunToolWithSmallDisk(const testing::TempDir& dir, const std::string& args)
{
    return RunShell(dir, "sh -c 'trap \"\" XFSZ; ulimit -f 4; exec " + std::string(ORVANE_TOOL_PATH) + " " + args + "'");
}

bool HasTemporaries(const testing::TempDir& dir)
{
    for (const auto& entry : std::filesystem::directory_iterator(dir.File("")))
        if (entry.path().filename().string().find(".tmp-") != std::string::npos) return true;
    return false;
}

TEST(ToolCommands, BadOptionsAreOneLineAndExitCode2)
{
    testing::TempDir dir;
    const std::string part = dir.File("part.stp"), out = dir.File("out.stl");
    const std::string mesh = "mesh " + part + " -o " + out + " ";
    const std::pair<std::string, std::string> cases[] = {
        {mesh + "--tolerance nan", "--tolerance: not a finite number: \"nan\""},
        {mesh + "--tolerance abc", "--tolerance: not a number: \"abc\""},
        {mesh + "--tolerance -1", "--tolerance: must be above 0, not \"-1\""},
        {mesh + "--time-limit 1e10", "--time-limit: must be at most 1e+06, not \"1e10\""},
        {mesh + "--time-limit 1e400", "--time-limit: too large: \"1e400\""},
        {mesh + "--max-memory 0", "--max-memory: must be above 0, not \"0\""},
        {mesh + "--road glu --size 4294967297x1", "--size: WIDTHxHEIGHT in pixels, each 1 to 16384, not \"4294967297x1\""},
        {mesh + "--size 100x100", "--size sets the view of the glu road only; the quad road does not use it"},
        {mesh + "--road glu --tolerance 0.1", "--tolerance steers the quad road only; the glu road samples in pixels of --size"},
        {mesh + "--road bumpy", "--road: one of quad|glu, not \"bumpy\""},
        {mesh + "--unit furlong", "--unit: one of file|mm|in|m, not \"furlong\""},
        {mesh + "--quads", "--quads writes OBJ only: the output must end in .obj"},
        {mesh + "--quiet --verbose", "--quiet excludes --verbose"},
        {mesh + "-j 0", "--threads: must be 1 to 4096, not \"0\""},
        {mesh + "--report r.jsonl", "--report is for a batch: several files, a folder or @LIST"},
        {"mesh " + dir.File("") + " -o " + out + " --shard 3/2", "--shard takes K/N with 1 <= K <= N <= 1000000"},
        {"mesh " + part + " -o " + dir.File("out.ply"), "--output: the name must end in .obj, .stl or .glb: \"" + dir.File("out.ply") + "\""},
        {"mesh " + part + " -o " + dir.File("out.obj") + " --quads --road glu", "--quads gives the quad road's quads; the glu road has none"},
        {"render sphere -o " + dir.File("out.png") + " --time-limit 5", "--time-limit applies to IGES and STEP files; only built-in shapes are drawn"},
        {"render sphere -o " + dir.File("out.png") + " --size 800X600", "--size: WIDTHxHEIGHT in pixels, each 1 to 16384, not \"800X600\""},
        {"tessellate sphere -o " + out, "--output: the name must end in .obj: \"" + out + "\""},
        {"tessellate sphere -o " + dir.File("out.obj") + " --size 64x64", "--size sets the view of the glu road only; the quad road does not use it"},
        {"label hi -o " + part, "--output: the name must end in .png: \"" + part + "\""},
        {"info " + part + " --road glu --tolerance 1", "--tolerance steers the quad road only; the glu road samples in pixels of --size"},
    };
    for (const auto& [args, message] : cases) {
        const Result r = RunTool(dir, args);
        EXPECT_EQ(r.Code, 2) << args;
        EXPECT_EQ(r.Err, "orvane: " + message + "\n") << args;
        EXPECT_EQ(r.Out, "") << args;
    }
    for (const std::string name : {"out.stl", "out.ply", "out.obj", "out.png"}) EXPECT_FALSE(std::filesystem::exists(dir.File(name)));
    const Result version = RunTool(dir, "--version");
    EXPECT_EQ(version.Code, 0);
    EXPECT_EQ(version.Out.rfind("orvane ", 0), 0u) << version.Out;
}

TEST(ToolCommands, NoCommandWritesOverItsInputWhateverItsName)
{
    testing::TempDir dir;
    testing::WriteStep(testing::Cylinder(), dir.File("part.obj"));
    std::filesystem::create_hard_link(dir.File("part.obj"), dir.File("link.png"));
    std::ofstream(dir.File("loops.txt")) << "0 0\n1 0\n1 1\n0 1\n";
    std::filesystem::create_hard_link(dir.File("loops.txt"), dir.File("loops.svg"));
    const std::string part = Slurp(dir.File("part.obj")), loops = Slurp(dir.File("loops.txt"));
    const std::pair<std::string, std::string> cases[] = {
        {"mesh " + dir.File("part.obj") + " -o " + dir.File("part.obj"), dir.File("part.obj") + " is the input " + dir.File("part.obj")},
        {"render " + dir.File("part.obj") + " -o " + dir.File("link.png"), dir.File("link.png") + " is the input " + dir.File("part.obj")},
        {"quads " + dir.File("loops.txt") + " -o " + dir.File("loops.txt"), dir.File("loops.txt") + " is the input " + dir.File("loops.txt")},
        {"quads " + dir.File("loops.txt") + " --svg " + dir.File("loops.svg"), dir.File("loops.svg") + " is the input " + dir.File("loops.txt")},
    };
    for (const auto& [args, message] : cases) {
        const Result r = RunTool(dir, args);
        EXPECT_EQ(r.Code, 1) << args;
        EXPECT_EQ(r.Err, "orvane: " + message + ": refusing to write over it\n") << args;
    }
    EXPECT_EQ(Slurp(dir.File("part.obj")), part);
    EXPECT_EQ(Slurp(dir.File("loops.txt")), loops);
}

TEST(ToolCommands, AFailedWriteLeavesThePreviousFileAndNoTemporary)
{
    testing::TempDir dir;
    testing::WriteStep(testing::BoxWithHole(), dir.File("box.stp"));
    const std::string outputs[] = {"box.stl", "box.glb", "pic.png", "sphere.obj", "quads.txt", "loops.svg"};
    const std::string commands[] = {
        "mesh " + dir.File("box.stp") + " -o " + dir.File("box.stl"),
        "mesh " + dir.File("box.stp") + " -o " + dir.File("box.glb"),
        "render sphere -o " + dir.File("pic.png"),
        "tessellate sphere -o " + dir.File("sphere.obj"),
        "quads -o " + dir.File("quads.txt"),
        "quads --svg " + dir.File("loops.svg"),
    };
    for (std::size_t i = 0; i < std::size(commands); ++i) {
        const std::string out = dir.File(outputs[i]);
        std::ofstream(out) << "previous";
        const Result r = RunToolWithSmallDisk(dir, commands[i]);
        EXPECT_EQ(r.Code, 1) << commands[i];
        EXPECT_EQ(r.Err.rfind("orvane: cannot write " + out + ": ", 0), 0u) << r.Err;
        EXPECT_EQ(Slurp(out), "previous") << commands[i];
    }
    EXPECT_FALSE(HasTemporaries(dir));
}

TEST(ToolCommands, BoundsRefuseWhatPassesThemSayingWhichAndByHowMuch)
{
    testing::TempDir dir;
    testing::WriteStep(testing::BoxWithHole(), dir.File("box.stp"));
    // A file of 3 GB of nothing, no line end in sight: only a bounded head of it is read.
    std::ofstream(dir.File("huge.stp")).close();
    std::filesystem::resize_file(dir.File("huge.stp"), 3'000'000'000);
    const std::string box = dir.File("box.stp"), out = dir.File("out.stl");
    const std::pair<std::string, std::string> cases[] = {
        {"mesh " + box + " -o " + out + " --max-memory 0.01",
         box + ": the mesh needs about [0-9]+ triangles at tolerance 0.04733 mm, [0-9.]+ times the 10 that "
               "--max-memory 0.01 MiB allows"},
        {"mesh " + box + " -o " + out + " --time-limit 0.001",
         box + ": the run took longer than --time-limit 0.001 s and was stopped"},
        {"mesh " + dir.File("huge.stp") + " -o " + out, dir.File("huge.stp") + " is not an IGES or STEP file"},
        {"render sphere -o " + dir.File("out.png") + " --size 16384x16384 --max-memory 1000",
         "the picture 16384x16384 needs about 16384 MiB, 16.38 times the --max-memory 1000 MiB"},
    };
    for (const auto& [args, message] : cases) {
        const Result r = RunTool(dir, args);
        EXPECT_EQ(r.Code, 1) << args;
        EXPECT_TRUE(std::regex_match(r.Err, std::regex("orvane: " + message + "\n"))) << r.Err;
    }
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_FALSE(HasTemporaries(dir));
}

TEST(ToolCommands, SkippedFacesGiveExitCode3AndInfoCountsThemAsMeshDoes)
{
    testing::TempDir dir;
    TColgp_Array2OfPnt poles(1, 2, 1, 2);
    for (int i = 1; i <= 2; ++i)
        for (int j = 1; j <= 2; ++j) poles(i, j) = gp_Pnt(5.0 * i, 5.0 * j, 0.0);
    TColStd_Array1OfReal knotsU(1, 2), knotsV(1, 2);
    knotsU(1) = knotsV(1) = 0;
    knotsU(2) = 1e12;  // absurd: the face is skipped
    knotsV(2) = 1;
    TColStd_Array1OfInteger mults(1, 2);
    mults.Init(2);
    TopoDS_Compound both;
    BRep_Builder builder;
    builder.MakeCompound(both);
    builder.Add(both, BRepBuilderAPI_MakeFace(new Geom_BSplineSurface(poles, knotsU, knotsV, mults, mults, 1, 1), 1e-7));
    builder.Add(both, testing::Cylinder());
    testing::WriteStep(both, dir.File("two.stp"));
    const std::string count = "orvane: " + dir.File("two.stp") + ": 1 of 4 faces not written\n";
    const Result mesh = RunTool(dir, "mesh " + dir.File("two.stp") + " -o " + dir.File("two.stl"));
    EXPECT_EQ(mesh.Code, 3) << mesh.Err;
    EXPECT_TRUE(mesh.Err.ends_with(count)) << mesh.Err;
    EXPECT_NE(mesh.Out.find(": 3 of 4 faces,"), std::string::npos) << mesh.Out;
    const Result info = RunTool(dir, "info " + dir.File("two.stp"));
    EXPECT_EQ(info.Code, 3) << info.Err;
    EXPECT_TRUE(info.Err.ends_with(count)) << info.Err;
    const Result quiet = RunTool(dir, "mesh " + dir.File("two.stp") + " -o " + dir.File("two.stl") + " --quiet");
    EXPECT_EQ(quiet.Code, 3);
    EXPECT_EQ(quiet.Err, count);
    EXPECT_EQ(quiet.Out, "");
}

TEST(ToolCommands, TheLengthUnitIsMillimetresOrTheFilesOwnAndSaid)
{
    testing::TempDir dir;
    IGESControl_Controller::Init();
    IGESControl_Writer writer("INCH", 0);
    writer.AddShape(BRepPrimAPI_MakeBox(25.4, 50.8, 76.2).Shape());  // 1 x 2 x 3 inches
    writer.ComputeModel();
    writer.Write(dir.File("box.igs").c_str());
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {" --unit file", ": IGES in in, 6 faces", "\nbox (0, 0, 0) to (1, 2, 3),"},
        {"", ": IGES in mm, 6 faces", "\nbox (0, 0, 0) to (25.4, 50.8, 76.2),"},
    };
    for (const auto& [unit, head, box] : cases) {
        const Result r = RunTool(dir, "info " + dir.File("box.igs") + unit);
        EXPECT_EQ(r.Code, 0) << r.Err;
        EXPECT_EQ(r.Out.rfind(dir.File("box.igs") + head, 0), 0u) << r.Out;
        EXPECT_NE(r.Out.find(box), std::string::npos) << r.Out;
    }
}

}  // namespace
}  // namespace orvane::io

#endif
