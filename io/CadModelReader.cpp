#include "io/CadModelReader.h"

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

void ConvertOne(const CadFileReader& reader, const HealedShape& healed, const TopoDS_Face& face, int number,
                EdgeTable& edges, int solid, CadModelData& model)
{
    const std::string name = FaceName(reader, healed.Original(face), number);
    try {
        model.Faces.push_back(ConvertFace(face, number, name, edges));
        model.Faces.back().Solid = solid;
    } catch (const EFaceSkipped& e) {
        model.Skipped.push_back({number, name, e.what() + BoundaryVerdict(e.what(), face)});
    } catch (const Standard_Failure& e) {
        model.Skipped.push_back({number, name, std::string("the geometry library failed: ") + e.DynamicType()->Name()});
    } catch (const std::exception& e) {
        model.Skipped.push_back({number, name, e.what()});
    }
}

void MeasureShape(const TopoDS_Shape& shape, CadModelData& model)
{
    GProp_GProps area;
    BRepGProp::SurfaceProperties(shape, area);
    model.ExactArea = area.Mass();
    for (const SolidData& solid : model.Solids) model.ExactVolume += solid.ExactVolume;
    model.SolidCount = static_cast<int>(model.Solids.size());
}

void MeasureBox(const TopoDS_Shape& shape, CadModelData& model)
{
    Bnd_Box box;
    BRepBndLib::AddOptimal(shape, box, Standard_False, Standard_False);
    if (box.IsVoid()) return;
    double x0, y0, z0, x1, y1, z1;
    box.Get(x0, y0, z0, x1, y1, z1);
    model.Box = {{x0, y0, z0}, {x1, y1, z1}};
}

// The solid each face belongs to (the first that holds it), -1 for a face in none; one entry
// of Model.Solids a solid, with its exact volume.
std::vector<int> SolidOfFaces(const TopoDS_Shape& shape, const TopTools_IndexedMapOfShape& faces, CadModelData& model)
{
    std::vector<int> solidOf(static_cast<std::size_t>(faces.Extent()), -1);
    for (TopExp_Explorer ex(shape, TopAbs_SOLID); ex.More(); ex.Next()) {
        const int solid = static_cast<int>(model.Solids.size());
        SolidData data;
        try {
            GProp_GProps volume;
            // Adaptive: the fixed rule is off by half a percent on a lofted B-spline solid.
            BRepGProp::VolumeProperties(ex.Current(), volume, kRelativeMeasureError);
            data.ExactVolume = volume.Mass();
        } catch (const Standard_Failure&) {
        }
        model.Solids.push_back(data);
        for (TopExp_Explorer f(ex.Current(), TopAbs_FACE); f.More(); f.Next()) {
            const int index = faces.FindIndex(f.Current());
            if (index > 0 && solidOf[static_cast<std::size_t>(index - 1)] < 0) solidOf[static_cast<std::size_t>(index - 1)] = solid;
        }
    }
    return solidOf;
}

}  // namespace

CadModelData ReadCadModel(const std::string& Path, const ProgressFn& Progress, double Tolerance)
{
    const CadFileReader reader(Path);
    const HealedShape healed(reader.Shape());
    const TopoDS_Shape& shape = healed.Shape();
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    if (faces.IsEmpty()) throw ECadFileError(Path + " holds no faces");
    CadModelData model;
    model.Format = reader.FormatName();
    try {
        MeasureBox(shape, model);
    } catch (const Standard_Failure&) {
        // The default tolerance then falls back to its floor.
    }
    model.Tolerance = Tolerance > 0.0 ? Tolerance : DefaultTolerance(model);
    const std::vector<int> solidOf = SolidOfFaces(shape, faces, model);
    // Half the tolerance: a boundary triangle adds its own chord to its side's.
    EdgeTable edges(model.Tolerance / 2.0);
    for (int i = 1; i <= faces.Extent(); ++i) {
        ConvertOne(reader, healed, TopoDS::Face(faces(i)), i, edges, solidOf[static_cast<std::size_t>(i - 1)], model);
        if (Progress) Progress(i, faces.Extent());
    }
    model.Edges = edges.Take();
    try {
        MeasureShape(shape, model);
    } catch (const Standard_Failure&) {
        // Measures are for reports and checks; a shape the library cannot measure still meshes.
    }
    return model;
}

}  // namespace orvane::io
