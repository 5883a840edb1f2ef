// Fuzzes the whole path of `orvane mesh` on a file: a small STEP or IGES part, written by
// OpenCASCADE once at start, is damaged as the fuzzer's bytes say (bytes overwritten, inserted
// or cut, numbers replaced by any number at all, the file cut short), then read, healed and
// converted, meshed on the quad road within a triangle budget, welded, checked solid by solid,
// written as OBJ, STL and glTF, and its model sent through the model stream. A crash, a
// sanitizer report, an exception that is no std::exception (the tool could not report it) or a
// round trip that changes the model is a finding; a refusal with a reason is the point.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Writer.hxx>
#include <OSD.hxx>
#include <STEPControl_Writer.hxx>
#include <gp_Ax2.hxx>
#include <fuzzer/FuzzedDataProvider.h>

#include "io/CadFileReader.h"
#include "io/CadModelReader.h"
#include "io/MeshBudget.h"
#include "io/MeshWelding.h"
#include "io/MeshWriters.h"
#include "io/ModelMesher.h"
#include "io/ModelStream.h"
#include "io/SolidChecks.h"

namespace {

using namespace orvane;

std::string Slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Where this process keeps its files: the damaged part and the meshes written from it.
std::string Scratch(const std::string& name)
{
    return "/tmp/orvane_model_fuzz_" + std::to_string(::getpid()) + "_" + name;
}

// The parts the damage starts from: a box with a bored hole as STEP, a torus as IGES faces in
// inches, a cylinder as an IGES solid.
std::vector<std::string> MakeSeeds()
{
    io::SilenceOcctMessages();
    const TopoDS_Shape box = BRepAlgoAPI_Cut(BRepPrimAPI_MakeBox(40, 30, 10).Shape(),
                                             BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(20, 15, -1), gp::DZ()), 6, 12).Shape())
                                 .Shape();
    STEPControl_Writer step;
    step.Transfer(box, STEPControl_AsIs);
    step.Write(Scratch("seed.stp").c_str());
    IGESControl_Controller::Init();
    IGESControl_Writer faces("INCH", 0);
    faces.AddShape(BRepPrimAPI_MakeTorus(20, 5).Shape());
    faces.ComputeModel();
    faces.Write(Scratch("seed1.igs").c_str());
    IGESControl_Writer solid("MM", 1);
    solid.AddShape(BRepPrimAPI_MakeCylinder(8, 20).Shape());
    solid.ComputeModel();
    solid.Write(Scratch("seed2.igs").c_str());
    std::vector<std::string> seeds;
    for (const char* name : {"seed.stp", "seed1.igs", "seed2.igs"}) {
        seeds.push_back(Slurp(Scratch(name)));
        std::remove(Scratch(name).c_str());
    }
    return seeds;
}

std::string Damaged(const std::string& seed, FuzzedDataProvider& in)
{
    std::string text = seed;
    const int edits = in.ConsumeIntegralInRange(0, 8);
    for (int e = 0; e < edits && !text.empty(); ++e) {
        const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, text.size() - 1);
        switch (in.ConsumeIntegralInRange(0, 4)) {
        case 0:
            text.replace(at, 1, in.ConsumeBytesAsString(in.ConsumeIntegralInRange(1, 8)));
            break;
        case 1:
            text.insert(at, in.ConsumeBytesAsString(in.ConsumeIntegralInRange(1, 16)));
            break;
        case 2:
            text.erase(at, in.ConsumeIntegralInRange<std::size_t>(1, 200));
            break;
        case 3: {  // a number where a number was: the parser takes it, the geometry gets it
            const std::size_t end = text.find_first_not_of("0123456789.E+-", at);
            char number[32];
            std::snprintf(number, sizeof number, "%.17g", in.ConsumeFloatingPoint<double>());
            text.replace(at, (end == std::string::npos ? text.size() : end) - at, number);
            break;
        }
        default:
            text.resize(at);
        }
    }
    return text;
}

void MeshAndWrite(const io::CadModelData& model, double tolerance)
{
    io::MeshSettings settings;
    settings.Tolerance = tolerance;
    settings.MaxQuads = 20'000;
    settings.MaxTriangles = 100'000;
    io::ModelMesh mesh;
    try {
        mesh = io::MeshModel(model, settings);
    } catch (const std::exception&) {
        return;  // over the budget, or a failure the tool reports in one line
    }
    io::CheckSolids(mesh);
    const io::WeldedMesh welded = io::WeldFaces(mesh);
    try {
        io::WriteObj(Scratch("out.obj"), welded, {"fuzz", true});
        io::WriteStl(Scratch("out.stl"), welded);
        io::WriteGlb(Scratch("out.glb"), welded);
    } catch (const std::exception&) {
    }
}

}  // namespace

// OpenCASCADE's readers dereference null on some damaged files (the STEP reader in
// StepShape_FaceBound::Bound, for one); the tool reads in a child process and survives that
// with one line. Here, in one process, the library's own signal handling turns such a fault into
// its exception instead (scripts/fuzz.sh leaves SIGSEGV to it), which the read stage takes as
// the tool takes the child's death. UBSan still stops at a null pointer in this project's code.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    OSD::SetSignal(Standard_False);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<std::string> seeds = MakeSeeds();
    FuzzedDataProvider in(data, size);
    const std::string& seed = seeds[in.ConsumeIntegralInRange<std::size_t>(0, seeds.size() - 1)];
    const char* units[] = {"file", "mm", "in", "m"};
    const char* unit = units[in.ConsumeIntegralInRange(0, 3)];
    // Coarse: the parts are some 50 mm across, and a fine mesh only makes each run slower.
    const double tolerance = in.ConsumeFloatingPointInRange(0.2, 10.0);
    {
        std::ofstream out(Scratch("part"), std::ios::binary);
        out << Damaged(seed, in);
    }
    io::CadModelData model;
    try {
        model = io::ReadCadModel(Scratch("part"), {}, tolerance, unit);
    } catch (...) {
        return 0;  // the reading child sends any failure back as one line
    }
    const std::string bytes = io::EncodeModel(model);
    if (io::EncodeModel(io::DecodeModel(bytes)) != bytes) std::abort();
    MeshAndWrite(model, tolerance);
    return 0;
}
