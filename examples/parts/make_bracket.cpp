// Writes bracket.step, the part the main job meshes and renders: a base plate with rounded
// corners and two bolt holes, an upright web, and a boss on top with a bore through it, made
// with OpenCASCADE's modelling algorithms. Millimetres.
//
//   g++ -std=c++20 -isystem /usr/include/opencascade make_bracket.cpp -o make_bracket \
//       -lTKernel -lTKMath -lTKG3d -lTKBRep -lTKTopAlgo -lTKPrim -lTKBO -lTKFillet \
//       -lTKXSBase -lTKSTEP -lTKSTEPBase -lTKSTEPAttr && ./make_bracket bracket.step
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <IFSelect_ReturnStatus.hxx>
#include <STEPControl_Writer.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <BRepAdaptor_Curve.hxx>
#include <gp_Ax2.hxx>

#include <cmath>
#include <cstdio>

namespace {

// The plate, 80 x 50 x 10, its four vertical edges rounded with radius 8.
TopoDS_Shape Plate()
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(gp_Pnt(-40, -25, 0), 80, 50, 10).Shape();
    BRepFilletAPI_MakeFillet fillet(box);
    for (TopExp_Explorer e(box, TopAbs_EDGE); e.More(); e.Next()) {
        BRepAdaptor_Curve curve(TopoDS::Edge(e.Current()));
        const gp_Pnt a = curve.Value(curve.FirstParameter()), b = curve.Value(curve.LastParameter());
        if (std::abs(a.X() - b.X()) < 1e-9 && std::abs(a.Y() - b.Y()) < 1e-9) fillet.Add(8, TopoDS::Edge(e.Current()));
    }
    return fillet.Shape();
}

TopoDS_Shape Cylinder(const gp_Pnt& base, const gp_Dir& axis, double radius, double length)
{
    return BRepPrimAPI_MakeCylinder(gp_Ax2(base, axis), radius, length).Shape();
}

}  // namespace

int main(int argc, char** argv)
{
    const char* path = argc > 1 ? argv[1] : "bracket.step";
    TopoDS_Shape part = Plate();
    // The web, 36 wide and 14 thick, up to the boss's axis at height 52.
    part = BRepAlgoAPI_Fuse(part, BRepPrimAPI_MakeBox(gp_Pnt(-18, -7, 10), 36, 14, 42).Shape()).Shape();
    // The boss, radius 18, 24 long along Y, and its bore of radius 10.
    part = BRepAlgoAPI_Fuse(part, Cylinder(gp_Pnt(0, -12, 52), gp_Dir(0, 1, 0), 18, 24)).Shape();
    part = BRepAlgoAPI_Cut(part, Cylinder(gp_Pnt(0, -20, 52), gp_Dir(0, 1, 0), 10, 40)).Shape();
    // Two bolt holes of radius 4.5 through the plate.
    for (double x : {-28.0, 28.0})
        part = BRepAlgoAPI_Cut(part, Cylinder(gp_Pnt(x, 0, -5), gp_Dir(0, 0, 1), 4.5, 20)).Shape();

    STEPControl_Writer writer;
    if (writer.Transfer(part, STEPControl_AsIs) != IFSelect_RetDone || writer.Write(path) != IFSelect_RetDone) {
        std::fprintf(stderr, "cannot write %s\n", path);
        return 1;
    }
    return 0;
}
