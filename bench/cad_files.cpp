// The test parts, written as STEP and read back, meshed three ways at the same chordal
// tolerance (1/2500 of each part's box diagonal): OpenCASCADE's BRepMesh_IncrementalMesh
// (angular deflection at its default 0.5 rad), the quad road and the GLU road (which samples in
// pixels of a 1024 x 1024 view and takes no tolerance). Reading is not timed. Each road's time
// covers the flat vertex and normal arrays of all faces: for BRepMesh the extraction of its
// triangulations into them, for our roads the roads themselves; the conversion of faces to
// the kernel (and their preparation) is a counter of its own. At the end a table gives the
// roads against BRepMesh as ratios.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

#include "io/CadFileReader.h"
#include "io/CadModelReader.h"
#include "io/ModelMesher.h"
#include "tests/io/parts/TestShapes.h"

namespace {

using namespace orvane;
using Clock = std::chrono::steady_clock;

struct Measure {
    double Seconds = 0.0;
    double ConvertSeconds = 0.0;
    double OrientSeconds = 0.0;
    double Triangles = 0.0;
    double AreaError = 0.0;
    double ToleranceShare = 1.0;  // of the default tolerance
};

// The last measure of each part and method; printed as ratios when the program ends.
struct Table {
    std::map<std::string, std::map<std::string, Measure>> Rows;
    ~Table();
};

Table& Results()
{
    static Table table;
    return table;
}

struct Part {
    std::string Name;
    io::CadModelData Model;
    TopoDS_Shape Shape;
};

// The parts, made on first use: not while the program starts.
const std::vector<Part>& Parts()
{
    static const std::vector<Part> parts = [] {
        io::testing::TempDir dir;
        std::vector<Part> all;
        for (const auto& shape : io::testing::AllTestShapes()) {
            const std::string path = dir.File(shape.Name + ".stp");
            io::testing::WriteStep(shape.Shape, path);
            all.push_back({shape.Name, io::ReadCadModel(path), io::CadFileReader(path).Shape()});
        }
        return all;
    }();
    return parts;
}

double Area(const TFloatDynArray& tri)
{
    double area = 0.0;
    for (std::size_t t = 0; t + 9 <= tri.size(); t += 9) {
        const TPoint3D a{tri[t], tri[t + 1], tri[t + 2]}, b{tri[t + 3], tri[t + 4], tri[t + 5]},
            c{tri[t + 6], tri[t + 7], tri[t + 8]};
        area += (b - a).CrossMul(c - a).Length() / 2.0;
    }
    return area;
}

// BRepMesh's triangulations as flat arrays, three vertices a triangle, in the same form as
// the roads give.
void Extract(const TopoDS_Shape& shape, TFloatDynArray& tri, TFloatDynArray& norm)
{
    tri.clear();
    norm.clear();
    for (TopExp_Explorer ex(shape, TopAbs_FACE); ex.More(); ex.Next()) {
        const TopoDS_Face& face = TopoDS::Face(ex.Current());
        TopLoc_Location loc;
        const Handle(Poly_Triangulation)& t = BRep_Tool::Triangulation(face, loc);
        if (t.IsNull()) continue;
        if (!t->HasNormals()) t->ComputeNormals();
        const gp_Trsf trsf = loc.Transformation();
        const bool reversed = face.Orientation() == TopAbs_REVERSED;
        for (int i = 1; i <= t->NbTriangles(); ++i) {
            int n[3];
            t->Triangle(i).Get(n[0], n[1], n[2]);
            if (reversed) std::swap(n[1], n[2]);
            for (int k : n) {
                const gp_Pnt p = t->Node(k).Transformed(trsf);
                gp_Dir d = t->Normal(k).Transformed(trsf);
                if (reversed) d.Reverse();
                tri.insert(tri.end(), {p.X(), p.Y(), p.Z()});
                norm.insert(norm.end(), {d.X(), d.Y(), d.Z()});
            }
        }
    }
}

void BM_BRepMesh(benchmark::State& state, const Part* part)
{
    const double tolerance = io::DefaultTolerance(part->Model);
    TFloatDynArray tri, norm;
    double total = 0.0;
    for (auto _ : state) {
        BRepTools::Clean(part->Shape);
        const auto start = Clock::now();
        BRepMesh_IncrementalMesh mesher(part->Shape, tolerance, Standard_False, 0.5, Standard_False);
        Extract(part->Shape, tri, norm);
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(seconds);
        total += seconds;
    }
    Measure& m = Results().Rows[part->Name]["brepmesh"];
    m.Seconds = total / static_cast<double>(state.iterations());
    m.Triangles = static_cast<double>(tri.size() / 9);
    m.AreaError = std::fabs(Area(tri) / part->Model.ExactArea - 1.0);
    state.counters["triangles"] = m.Triangles;
    state.counters["area_error"] = m.AreaError;
}

double BRepMeshAreaError(const Part* part)
{
    BRepTools::Clean(part->Shape);
    BRepMesh_IncrementalMesh mesher(part->Shape, io::DefaultTolerance(part->Model), Standard_False, 0.5, Standard_False);
    TFloatDynArray tri, norm;
    Extract(part->Shape, tri, norm);
    return std::fabs(Area(tri) / part->Model.ExactArea - 1.0);
}

// The quad road's tolerance, halved from the default until its area error is no worse than
// BRepMesh's at the default (at most 6 times): the time at equal or better area error.
double MatchedTolerance(const Part* part)
{
    const double target = BRepMeshAreaError(part);
    io::MeshSettings settings;
    settings.Tolerance = io::DefaultTolerance(part->Model);
    for (int halvings = 0; halvings < 6; ++halvings, settings.Tolerance /= 2) {
        TFloatDynArray tri, norm;
        io::JoinFaces(io::MeshModel(part->Model, settings), tri, norm);
        if (std::fabs(Area(tri) / part->Model.ExactArea - 1.0) <= target) break;
    }
    return settings.Tolerance;
}

void BM_Road(benchmark::State& state, const Part* part, io::MeshRoad road, bool matched = false)
{
    io::MeshSettings settings;
    settings.Road = road;
    if (matched) settings.Tolerance = MatchedTolerance(part);
    io::ModelMesh mesh;
    double convert = 0.0, tessellate = 0.0, orient = 0.0;
    for (auto _ : state) {
        mesh = io::MeshModel(part->Model, settings);
        const double seconds = io::StageSeconds(mesh.Stages, "tessellate");
        state.SetIterationTime(seconds);
        convert += io::StageSeconds(mesh.Stages, "budget");
        tessellate += seconds;
        orient += io::StageSeconds(mesh.Stages, "stitch") + io::StageSeconds(mesh.Stages, "orient");
    }
    TFloatDynArray tri, norm;
    io::JoinFaces(mesh, tri, norm);
    Measure& m = Results().Rows[part->Name][matched ? "matched" : road == io::MeshRoad::Quad ? "quad" : "glu"];
    const double n = static_cast<double>(state.iterations());
    m.Seconds = tessellate / n;
    m.ConvertSeconds = convert / n;
    m.OrientSeconds = orient / n;
    m.Triangles = static_cast<double>(mesh.TriangleCount());
    m.AreaError = std::fabs(Area(tri) / part->Model.ExactArea - 1.0);
    state.counters["triangles"] = m.Triangles;
    state.counters["area_error"] = m.AreaError;
    state.counters["convert_ms"] = m.ConvertSeconds * 1e3;
    state.counters["orient_ms"] = m.OrientSeconds * 1e3;
    state.counters["skipped"] = static_cast<double>(mesh.Skipped.size());
    if (matched) m.ToleranceShare = mesh.Tolerance / io::DefaultTolerance(part->Model);
}

const Part* PartNamed(const std::string& name)
{
    for (const Part& p : Parts())
        if (p.Name == name) return &p;
    return nullptr;
}

// The names of AllTestShapes, in its order; the parts themselves are made when first run.
const char* const kPartNames[] = {"box_with_hole", "cylinder", "sphere", "torus", "filleted_box",
                                  "plate_with_holes", "lofted_freeform"};

void Register()
{
    for (const std::string name : kPartNames) {
        benchmark::RegisterBenchmark(("BRepMesh/" + name).c_str(),
                                     [name](benchmark::State& s) { BM_BRepMesh(s, PartNamed(name)); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("QuadRoad/" + name).c_str(),
                                     [name](benchmark::State& s) { BM_Road(s, PartNamed(name), io::MeshRoad::Quad); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("QuadRoadMatched/" + name).c_str(),
                                     [name](benchmark::State& s) { BM_Road(s, PartNamed(name), io::MeshRoad::Quad, true); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("GluRoad/" + name).c_str(),
                                     [name](benchmark::State& s) { BM_Road(s, PartNamed(name), io::MeshRoad::Glu); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

const bool gRegistered = (Register(), true);

Table::~Table()
{
    if (Rows.empty()) return;
    std::printf("\nAgainst BRepMesh: ratios road / BRepMesh of time (reading excluded), triangles and area error;"
                "\nconv, orient = converting and preparing the faces, turning them out of the material, over"
                "\nBRepMesh's time; matched = the quad road at the share T of the tolerance that gives no more"
                "\narea error than BRepMesh\n");
    std::printf("%-17s %8s %6s %8s |%6s %5s %6s %5s %6s |%6s %5s %5s %5s |%6s %5s %6s\n", "part", "BRep ms", "tris",
                "area err", "quad t", "conv", "orient", "tris", "err", "match", "T", "tris", "err", "glu t", "tris",
                "err");
    for (const auto& [name, row] : Rows) {
        const auto b = row.find("brepmesh"), q = row.find("quad"), m = row.find("matched"), g = row.find("glu");
        if (b == row.end() || q == row.end() || m == row.end() || g == row.end()) continue;
        const Measure& B = b->second;
        auto r = [](double a, double c) { return c > 0 ? a / c : 0.0; };
        std::printf("%-17s %8.2f %6.0f %8.1e |%6.2f %5.2f %6.2f %5.2f %6.2f |%6.2f %5.3f %5.2f %5.2f |%6.2f %5.2f %6.2f\n",
                    name.c_str(), B.Seconds * 1e3, B.Triangles, B.AreaError, r(q->second.Seconds, B.Seconds),
                    r(q->second.ConvertSeconds, B.Seconds), r(q->second.OrientSeconds, B.Seconds),
                    r(q->second.Triangles, B.Triangles),
                    r(q->second.AreaError, B.AreaError), r(m->second.Seconds, B.Seconds), m->second.ToleranceShare,
                    r(m->second.Triangles, B.Triangles), r(m->second.AreaError, B.AreaError),
                    r(g->second.Seconds, B.Seconds), r(g->second.Triangles, B.Triangles),
                    r(g->second.AreaError, B.AreaError));
    }
}

}  // namespace
