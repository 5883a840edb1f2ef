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

namespace orvane::io {
namespace {

std::string FaceName(const CadFileReader& reader, const TopoDS_Shape& face, int number)
{
    const std::string label = reader.EntityLabel(face);
    return "face " + std::to_string(number) + (label.empty() ? "" : " (" + label + ")");
}

void ConvertOne(const CadFileReader& reader, const TopoDS_Face& face, int number, CadModelData& model)
{
    const std::string name = FaceName(reader, face, number);
    try {
        model.Faces.push_back(ConvertFace(face, number, name));
    } catch (const EFaceSkipped& e) {
        model.Skipped.push_back({number, name, e.what()});
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
    for (TopExp_Explorer ex(shape, TopAbs_SOLID); ex.More(); ex.Next()) {
        GProp_GProps volume;
        BRepGProp::VolumeProperties(ex.Current(), volume);
        model.ExactVolume += volume.Mass();
        ++model.SolidCount;
    }
    Bnd_Box box;
    BRepBndLib::AddOptimal(shape, box, Standard_False, Standard_False);
    if (box.IsVoid()) return;
    double x0, y0, z0, x1, y1, z1;
    box.Get(x0, y0, z0, x1, y1, z1);
    model.Box = {{x0, y0, z0}, {x1, y1, z1}};
}

}  // namespace

CadModelData ReadCadModel(const std::string& Path, const ProgressFn& Progress)
{
    const CadFileReader reader(Path);
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(reader.Shape(), TopAbs_FACE, faces);
    if (faces.IsEmpty()) throw ECadFileError(Path + " holds no faces");
    CadModelData model;
    model.Format = reader.FormatName();
    for (int i = 1; i <= faces.Extent(); ++i) {
        ConvertOne(reader, TopoDS::Face(faces(i)), i, model);
        if (Progress) Progress(i, faces.Extent());
    }
    try {
        MeasureShape(reader.Shape(), model);
    } catch (const Standard_Failure&) {
        // Measures are for reports and checks; a shape the library cannot measure still meshes.
    }
    return model;
}

}  // namespace orvane::io
