#include "tests/io/parts/TestShapes.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

#include <BRepAlgoAPI_Cut.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Shell.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepGProp.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <GProp_GProps.hxx>
#include <Geom_BSplineCurve.hxx>
#include <GeomAPI_PointsToBSpline.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Writer.hxx>
#include <Interface_Static.hxx>
#include <STEPControl_Writer.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <cmath>

#include "io/CadFileReader.h"

namespace orvane::io::testing {
namespace {

TopoDS_Shape Drill(const TopoDS_Shape& part, double x, double y, double z0, double r, double h)
{
    const TopoDS_Shape tool = BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(x, y, z0), gp_Dir(0, 0, 1)), r, h).Shape();
    return BRepAlgoAPI_Cut(part, tool).Shape();
}

// A closed section through wavy points at height z, for the loft.
TopoDS_Wire WavySection(double z, double phase)
{
    const int n = 12;
    TColgp_Array1OfPnt pts(1, n + 1);
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * M_PI * i / n;
        const double r = 30.0 + 6.0 * std::sin(3.0 * a + phase);
        pts(i + 1) = gp_Pnt(r * std::cos(a), 0.8 * r * std::sin(a), z);
    }
    pts(n + 1) = pts(1);
    Handle(Geom_BSplineCurve) curve = GeomAPI_PointsToBSpline(pts, 3, 3, GeomAbs_C2, 1e-6).Curve();
    return BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(curve));
}

}  // namespace

TopoDS_Shape BoxWithHole()
{
    return Drill(BRepPrimAPI_MakeBox(100, 60, 20).Shape(), 50, 30, -5, 10, 30);
}

TopoDS_Shape Cylinder()
{
    return BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(0, 0, 0), gp_Dir(0, 0, 1)), 25, 80).Shape();
}

TopoDS_Shape OpenBox()
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(40, 30, kOpenBoxHeight).Shape();
    BRep_Builder builder;
    TopoDS_Shell shell;
    builder.MakeShell(shell);
    for (TopExp_Explorer ex(box, TopAbs_FACE); ex.More(); ex.Next()) {
        GProp_GProps props;
        BRepGProp::SurfaceProperties(ex.Current(), props);
        if (props.CentreOfMass().Z() < kOpenBoxHeight - 1e-9) builder.Add(shell, ex.Current());
    }
    return shell;
}

TopoDS_Shape Sphere()
{
    return BRepPrimAPI_MakeSphere(gp_Pnt(10, -5, 3), 40).Shape();
}

TopoDS_Shape Torus()
{
    return BRepPrimAPI_MakeTorus(gp_Ax2(gp_Pnt(0, 0, 0), gp_Dir(0, 0, 1)), 50, 15).Shape();
}

TopoDS_Shape FilletedBox()
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(100, 60, 40).Shape();
    BRepFilletAPI_MakeFillet fillet(box);
    for (TopExp_Explorer ex(box, TopAbs_EDGE); ex.More(); ex.Next()) fillet.Add(8, TopoDS::Edge(ex.Current()));
    return fillet.Shape();
}

TopoDS_Shape PlateWithHoles()
{
    TopoDS_Shape plate = BRepPrimAPI_MakeBox(200, 120, 8).Shape();
    plate = Drill(plate, 40, 40, -1, 12, 10);
    plate = Drill(plate, 160, 40, -1, 12, 10);
    plate = Drill(plate, 100, 80, -1, 25, 10);
    return Drill(plate, 40, 95, -1, 5, 10);
}

TopoDS_Shape LoftedFreeform()
{
    BRepOffsetAPI_ThruSections loft(Standard_True, Standard_False);
    loft.AddWire(WavySection(0.0, 0.0));
    loft.AddWire(WavySection(40.0, 1.0));
    loft.AddWire(WavySection(90.0, 2.5));
    loft.Build();
    return loft.Shape();
}

std::vector<TestShape> AllTestShapes()
{
    return {{"box_with_hole", BoxWithHole()}, {"cylinder", Cylinder()}, {"sphere", Sphere()},
            {"torus", Torus()}, {"filleted_box", FilletedBox()}, {"plate_with_holes", PlateWithHoles()},
            {"lofted_freeform", LoftedFreeform()}};
}

std::string Slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TempDir::TempDir()
{
    std::random_device rd;
    FPath = std::filesystem::temp_directory_path() / ("orvane_io_" + std::to_string(rd()) + std::to_string(rd()));
    std::filesystem::create_directories(FPath);
}

TempDir::~TempDir()
{
    std::error_code ec;
    std::filesystem::remove_all(FPath, ec);
}

void WriteIges(const TopoDS_Shape& shape, const std::string& path)
{
    SilenceOcctMessages();
    IGESControl_Controller::Init();
    IGESControl_Writer writer("MM", 1);
    writer.AddShape(shape);
    writer.ComputeModel();
    if (!writer.Write(path.c_str())) throw std::runtime_error("cannot write " + path);
}

void WriteStep(const TopoDS_Shape& shape, const std::string& path)
{
    SilenceOcctMessages();
    STEPControl_Writer writer;
    if (writer.Transfer(shape, STEPControl_AsIs) != IFSelect_RetDone || writer.Write(path.c_str()) != IFSelect_RetDone)
        throw std::runtime_error("cannot write " + path);
}

double ExactArea(const TopoDS_Shape& shape)
{
    GProp_GProps props;
    BRepGProp::SurfaceProperties(shape, props);
    return props.Mass();
}

double ExactVolume(const TopoDS_Shape& shape)
{
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props, 1e-7);
    return props.Mass();
}

}  // namespace orvane::io::testing
