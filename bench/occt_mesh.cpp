// OpenCASCADE alone on one CAD file, as the yardstick for `orvane mesh`: read the file (STEP or
// IGES by its extension), then BRepMesh_IncrementalMesh at a share of the box diagonal (angle
// 0.5 rad), once sequential and once in its parallel mode, the triangulation cleared between.
// Prints one line: diagonal, read seconds, sequential mesh seconds, parallel mesh seconds,
// triangles.
//
// usage: bench_occt_mesh FILE [SHARE]    (SHARE of the diagonal, default 0.01)
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <IGESControl_Reader.hxx>
#include <Poly_Triangulation.hxx>
#include <STEPControl_Reader.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

namespace {

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point Start)
{
    return std::chrono::duration<double>(Clock::now() - Start).count();
}

bool IsIges(const std::string& Path)
{
    const std::string ext = Path.substr(Path.find_last_of('.') + 1);
    return ext == "igs" || ext == "iges" || ext == "IGS" || ext == "IGES";
}

template <typename Reader>
TopoDS_Shape ReadWith(const std::string& Path)
{
    Reader reader;
    if (reader.ReadFile(Path.c_str()) != IFSelect_RetDone) return {};
    reader.TransferRoots();
    return reader.OneShape();
}

long long Triangles(const TopoDS_Shape& Shape)
{
    long long count = 0;
    for (TopExp_Explorer it(Shape, TopAbs_FACE); it.More(); it.Next()) {
        TopLoc_Location where;
        const Handle(Poly_Triangulation) t = BRep_Tool::Triangulation(TopoDS::Face(it.Current()), where);
        if (!t.IsNull()) count += t->NbTriangles();
    }
    return count;
}

double Mesh(const TopoDS_Shape& Shape, double Deflection, bool Parallel)
{
    BRepTools::Clean(Shape);
    const auto start = Clock::now();
    BRepMesh_IncrementalMesh mesh(Shape, Deflection, Standard_False, 0.5, Parallel ? Standard_True : Standard_False);
    return Since(start);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s FILE [SHARE]\n", argv[0]);
        return 2;
    }
    const std::string path = argv[1];
    const double share = argc > 2 ? std::atof(argv[2]) : 0.01;
    const auto start = Clock::now();
    const TopoDS_Shape shape =
        IsIges(path) ? ReadWith<IGESControl_Reader>(path) : ReadWith<STEPControl_Reader>(path);
    const double read = Since(start);
    if (shape.IsNull()) {
        std::fprintf(stderr, "%s: nothing read\n", path.c_str());
        return 1;
    }
    Bnd_Box box;
    BRepBndLib::AddOptimal(shape, box, Standard_False, Standard_False);
    const double diagonal = std::sqrt(box.SquareExtent());
    const double sequential = Mesh(shape, share * diagonal, false);
    const double parallel = Mesh(shape, share * diagonal, true);
    std::printf("%.9g %.6f %.6f %.6f %lld\n", diagonal, read, sequential, parallel, Triangles(shape));
    return 0;
}
