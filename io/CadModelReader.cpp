#include "io/CadModelReader.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include <Bnd_Box.hxx>
#include <BRepBndLib.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>

#include "io/CadFileReader.h"
#include "io/EveryCore.h"
#include "io/FaceConverter.h"
#include "io/ModelMesher.h"
#include "io/ShapeHealing.h"

namespace orvane::io {
namespace {

constexpr double kRelativeMeasureError = 1e-6;

std::string FaceName(const CadFileReader& reader, const TopoDS_Shape& face, int number)
{
    const std::string label = reader.EntityLabel(face);
    return "face " + std::to_string(number) + (label.empty() ? "" : " (" + label + ")");
}

// For a face skipped for its boundary, what OpenCASCADE's own mesher makes of it.
std::string BoundaryVerdict(const std::string& reason, const TopoDS_Face& face)
{
    const bool boundary = reason.rfind("open trim loop", 0) == 0 || reason.rfind("boundary loop", 0) == 0;
    return boundary ? KernelMesherVerdict(face) : std::string();
}

// A face as converted, or the reason it was skipped.
struct Conversion {
    std::optional<FaceData> Face;
    SkippedFace Skipped;
};

Conversion ConvertOne(const TopoDS_Face& face, int number, const std::string& name, EdgeTable& edges, int solid, double area)
{
    Conversion c;
    const bool negligible = area <= edges.Tolerance() * edges.Tolerance() * 4.0;  // edges at half the tolerance
    try {
        c.Face = ConvertFace(face, number, name, edges);
        c.Face->Solid = solid;
        c.Face->ExactArea = area;
    } catch (const EFaceSkipped& e) {
        c.Skipped = {number, name, e.what() + BoundaryVerdict(e.what(), face), negligible};
    } catch (const Standard_Failure& e) {
        c.Skipped = {number, name, std::string("the geometry library failed: ") + e.DynamicType()->Name(), negligible};
    } catch (const std::exception& e) {
        c.Skipped = {number, name, e.what(), negligible};
    } catch (...) {
        c.Skipped = {number, name, "the conversion failed", negligible};
    }
    return c;
}

// Converts the faces on as many threads as the machine has: each face converts on its own,
// reading the shape and the prepared edge table only (the reader's labels are looked up
// first, here). Progress is told on this thread.
std::vector<Conversion> ConvertAll(const std::vector<std::string>& names, const TopTools_IndexedMapOfShape& faces,
                                   EdgeTable& edges, const std::vector<int>& solidOf, const std::vector<double>& areas,
                                   const ProgressFn& progress, int threads)
{
    const int count = faces.Extent();
    std::vector<Conversion> done(static_cast<std::size_t>(count));
    OnEveryCore(
        count,
        [&](int i) {
            const auto k = static_cast<std::size_t>(i);
            done[k] = ConvertOne(TopoDS::Face(faces(i + 1)), i + 1, names[k], edges, solidOf[k], areas[k]);
        },
        [&](int n) {
            if (progress) progress(n, count);
        },
        threads);
    return done;
}

bool Inside(const Bnd_Box& inner, const Bnd_Box& outer)
{
    if (inner.IsVoid()) return true;
    if (outer.IsVoid() || inner.IsWhole() || inner.IsOpen()) return false;
    double a[6], b[6];
    inner.Get(a[0], a[1], a[2], a[3], a[4], a[5]);
    outer.Get(b[0], b[1], b[2], b[3], b[4], b[5]);
    return a[0] >= b[0] && a[1] >= b[1] && a[2] >= b[2] && a[3] <= b[3] && a[4] <= b[4] && a[5] <= b[5];
}

// The faces Which, boxed optimally on every core, joined into Box.
void AddOptimalBoxes(const TopTools_IndexedMapOfShape& faces, const std::vector<int>& which, Bnd_Box& box, int threads)
{
    std::vector<Bnd_Box> boxes(which.size());
    OnEveryCore(static_cast<int>(which.size()), [&](int k) {
        try {
            BRepBndLib::AddOptimal(faces(which[static_cast<std::size_t>(k)] + 1), boxes[static_cast<std::size_t>(k)],
                                   Standard_False, Standard_False);
        } catch (const Standard_Failure&) {
            // Measures are for the tolerance, reports and checks: such a face still converts.
        }
    }, {}, threads);
    for (const Bnd_Box& b : boxes) box.Add(b);
}

// The model's box: its faces' optimal boxes joined. An optimal box is a search over the surface,
// and lies inside the face's quick box (from its poles, widened by its tolerance); a face whose
// quick box lies inside what the faces reaching furthest already cover cannot widen the union,
// so only the faces that reach out are boxed optimally. The same box, at a fraction of the cost.
Bnd_Box ModelBox(const TopTools_IndexedMapOfShape& faces, int threads)
{
    const int count = faces.Extent();
    std::vector<Bnd_Box> quick(static_cast<std::size_t>(count));
    OnEveryCore(count, [&](int i) {
        try {
            BRepBndLib::Add(faces(i + 1), quick[static_cast<std::size_t>(i)], Standard_False);
        } catch (const Standard_Failure&) {
            quick[static_cast<std::size_t>(i)].SetWhole();
        }
    }, {}, threads);
    // First the faces whose quick boxes reach furthest in each of the six directions.
    std::vector<int> furthest;
    for (int d = 0; d < 6; ++d) {
        int best = -1;
        double reach = std::numeric_limits<double>::lowest();
        for (int i = 0; i < count; ++i) {
            const Bnd_Box& q = quick[static_cast<std::size_t>(i)];
            if (q.IsVoid() || q.IsWhole() || q.IsOpen()) continue;
            double c[6];
            q.Get(c[0], c[1], c[2], c[3], c[4], c[5]);
            const double r = d < 3 ? -c[d] : c[d];
            if (r > reach) reach = r, best = i;
        }
        if (best >= 0 && std::find(furthest.begin(), furthest.end(), best) == furthest.end()) furthest.push_back(best);
    }
    Bnd_Box box;
    AddOptimalBoxes(faces, furthest, box, threads);
    std::vector<int> rest;
    for (int i = 0; i < count; ++i)
        if (std::find(furthest.begin(), furthest.end(), i) == furthest.end() && !Inside(quick[static_cast<std::size_t>(i)], box))
            rest.push_back(i);
    AddOptimalBoxes(faces, rest, box, threads);
    return box;
}

// The model's box and exact area; gives each face's area.
std::vector<double> MeasureFaces(const TopTools_IndexedMapOfShape& faces, CadModelData& model, int threads)
{
    std::vector<double> areas(static_cast<std::size_t>(faces.Extent()), 0.0);
    OnEveryCore(faces.Extent(), [&](int i) {
        try {
            GProp_GProps area;
            BRepGProp::SurfaceProperties(faces(i + 1), area);
            areas[static_cast<std::size_t>(i)] = area.Mass();
        } catch (const Standard_Failure&) {
        }
    }, {}, threads);
    for (const double a : areas) model.ExactArea += a;
    const Bnd_Box box = ModelBox(faces, threads);
    if (box.IsVoid()) return areas;  // the default tolerance then falls back to its floor
    double x0, y0, z0, x1, y1, z1;
    box.Get(x0, y0, z0, x1, y1, z1);
    model.Box = {{x0, y0, z0}, {x1, y1, z1}};
    return areas;
}

// The solid each face belongs to (the first that holds it), -1 for a face in none; one entry
// of Model.Solids a solid, with its exact volume where asked (the solids measured on every core).
std::vector<int> SolidOfFaces(const TopoDS_Shape& shape, const TopTools_IndexedMapOfShape& faces, CadModelData& model,
                              int threads, bool volumes)
{
    std::vector<TopoDS_Shape> solids;
    for (TopExp_Explorer ex(shape, TopAbs_SOLID); ex.More(); ex.Next()) solids.push_back(ex.Current());
    model.Solids.resize(solids.size());
    OnEveryCore(volumes ? static_cast<int>(solids.size()) : 0, [&](int i) {
        try {
            GProp_GProps volume;
            // Adaptive: the fixed rule is off by half a percent on a lofted B-spline solid.
            BRepGProp::VolumeProperties(solids[static_cast<std::size_t>(i)], volume, kRelativeMeasureError);
            model.Solids[static_cast<std::size_t>(i)].ExactVolume = volume.Mass();
        } catch (const Standard_Failure&) {
        }
    }, {}, threads);
    std::vector<int> solidOf(static_cast<std::size_t>(faces.Extent()), -1);
    for (std::size_t solid = 0; solid < solids.size(); ++solid) {
        model.ExactVolume += model.Solids[solid].ExactVolume;
        for (TopExp_Explorer f(solids[solid], TopAbs_FACE); f.More(); f.Next()) {
            const int index = faces.FindIndex(f.Current());
            if (index > 0 && solidOf[static_cast<std::size_t>(index - 1)] < 0) solidOf[static_cast<std::size_t>(index - 1)] = static_cast<int>(solid);
        }
    }
    model.SolidCount = static_cast<int>(solids.size());
    return solidOf;
}

}  // namespace

CadModelData ReadCadModel(const std::string& Path, const ProgressFn& Progress, double Tolerance, const std::string& Unit,
                          int Threads, bool Volumes)
{
    CadModelData model;
    StageClock clock(model.Stages);
    const CadFileReader reader(Path, Unit);
    clock.Lap("read", 1, "file");
    const HealedShape healed(reader.Shape());
    const TopoDS_Shape& shape = healed.Shape();
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    if (faces.IsEmpty()) throw ECadFileError(Path + " holds no faces");
    clock.Lap("heal", faces.Extent(), "faces");
    model.Format = reader.FormatName();
    model.Unit = reader.Unit().Name;
    const std::vector<double> areas = MeasureFaces(faces, model, Threads);
    model.Tolerance = Tolerance > 0.0 ? Tolerance : DefaultTolerance(model);
    const std::vector<int> solidOf = SolidOfFaces(shape, faces, model, Threads, Volumes);
    clock.Lap("measure", faces.Extent(), "faces");
    std::vector<std::string> names;
    for (int i = 1; i <= faces.Extent(); ++i) names.push_back(FaceName(reader, healed.Original(faces(i)), i));
    clock.Lap("label", faces.Extent(), "faces");
    // Half the tolerance: a boundary triangle adds its own chord to its side's.
    EdgeTable edges(model.Tolerance / 2.0);
    edges.AddAll(shape);
    clock.Lap("edges", edges.Size(), "edges");
    for (Conversion& c : ConvertAll(names, faces, edges, solidOf, areas, Progress, Threads)) {
        if (c.Face)
            model.Faces.push_back(std::move(*c.Face));
        else
            model.Skipped.push_back(std::move(c.Skipped));
    }
    model.Edges = edges.Take();
    clock.Lap("convert", static_cast<long long>(model.Faces.size()), "faces");
    return model;
}

}  // namespace orvane::io
