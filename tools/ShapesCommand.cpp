// orvane shapes [--shape NAME] [--svg FILE]: lists the shape library with the structure of
// each shape and its area by quadrature; --svg draws the trim loops of one trimmed shape in
// its UV domain.
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "contracts/Shapes.h"
#include "contracts/SurfaceArea.h"
#include "io/AtomicFile.h"
#include "tools/Commands.h"

namespace orvane::tools {

namespace {

struct TShapesOptions {
    std::string Shape;
    std::string Svg;
};

// The NURBS surface that carries the structure: the shape itself or its base.
const TGeNurbsSurface* NurbsOf(const TGeSurface* S)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(S)) return NurbsOf(t->GetSurface());
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(S)) return e->Surface;
    return dynamic_cast<const TGeNurbsSurface*>(S);
}

void PrintRow(const std::string& Name)
{
    const auto shape = MakeShape(Name);
    const TGeNurbsSurface* n = NurbsOf(shape.get());
    const bool trimmed = dynamic_cast<const TGeTrimmedSurface*>(shape.get()) != nullptr;
    const double area = SurfaceArea(*shape);
    const double exact = ShapeExactArea(Name);
    std::string error = "-";
    if (!std::isnan(exact)) {
        char buf[32];
        std::snprintf(buf, sizeof buf, "%.1e", std::fabs(area - exact) / exact);
        error = buf;
    }
    std::printf("%-24s %3d x %-3d %3d x %-3d %-8s %-7s %20.13f  %s\n", Name.c_str(), n->DegreeU, n->DegreeV,
                n->CtrlCountU, n->CtrlCountV, n->GetRational() ? "yes" : "no", trimmed ? "yes" : "no", area,
                error.c_str());
}

void AppendLoop(std::string& Svg, const TGeCurve2D& Curve, const char* Colour, const TRect2D& D, double Scale)
{
    TDynPoints2D pts;
    Curve.GetTolPoints(1e-4 * std::max(D.Width(), D.Height()), pts);
    if (pts.empty()) return;
    const auto x = [&](const TPoint2D& p) { return (p.X - D.Min.X) * Scale + 20; };
    const auto y = [&](const TPoint2D& p) { return (D.Max.Y - p.Y) * Scale + 20; };  // V upwards
    Svg += "<polyline fill=\"none\" stroke=\"" + std::string(Colour) + "\" stroke-width=\"1.5\" points=\"";
    for (const TPoint2D& p : pts) Svg += std::to_string(x(p)) + "," + std::to_string(y(p)) + " ";
    Svg += "\"/>\n<circle r=\"4\" fill=\"" + std::string(Colour) + "\" cx=\"" + std::to_string(x(pts.front())) +
           "\" cy=\"" + std::to_string(y(pts.front())) + "\"/>\n";
}

void WriteSvg(const std::string& Name, const std::string& File)
{
    const auto shape = MakeShape(Name);
    const auto* t = dynamic_cast<const TGeTrimmedSurface*>(shape.get());
    if (!t) throw std::runtime_error("shape " + Name + " is not trimmed: it has no trim loops to draw");
    const TRect2D d = NurbsOf(shape.get())->GetDomain();
    const double scale = 800.0 / std::max(d.Width(), d.Height());
    const double w = d.Width() * scale + 40, h = d.Height() * scale + 40;
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + std::to_string(w) + "\" height=\"" +
                      std::to_string(h) + "\">\n<title>" + Name +
                      ": trim loops in UV (outer blue, holes red, dots at the start)</title>\n" +
                      "<rect x=\"20\" y=\"20\" width=\"" + std::to_string(w - 40) + "\" height=\"" +
                      std::to_string(h - 40) + "\" fill=\"none\" stroke=\"#bbb\"/>\n";
    AppendLoop(svg, *t->OuterBoundary.GetCurve(), "#1f5fbf", d, scale);
    for (int i = 0; i < t->GetInnerBoundaryCount(); ++i)
        AppendLoop(svg, *t->GetInnerBoundary(i).GetCurve(), "#c0392b", d, scale);
    svg += "</svg>\n";
    io::WriteStreamAtomically(File, [&](std::ostream& out) { out << svg; });
}

int RunShapes(const TShapesOptions& AOptions)
{
    try {
        const std::vector<std::string> names =
            AOptions.Shape.empty() ? ShapeNames() : std::vector<std::string>{AOptions.Shape};
        std::printf("%-24s %-9s %-9s %-8s %-7s %20s  %s\n", "name", "degrees", "controls", "rational", "trimmed",
                    "area", "rel.error");
        for (const std::string& name : names) PrintRow(name);
        if (!AOptions.Svg.empty()) WriteSvg(AOptions.Shape, AOptions.Svg);
    } catch (const Exception& e) {
        throw std::runtime_error(e.Message());
    }
    return kExitDone;
}

}  // namespace

void AddShapesCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TShapesOptions>();
    CLI::App* shapes = app.add_subcommand(
        "shapes", "List the shape library: degrees, control points, rational, trimmed, area by quadrature");
    shapes->add_option("--shape", options->Shape, "Only this shape");
    AddOutput(*shapes, "--svg", options->Svg, {".svg"}, "Draw the trim loops of the --shape in UV into this SVG file")
        ->needs(shapes->get_option("--shape"));
    shapes->callback([options, &tool] { tool.Command = [options] { return RunShapes(*options); }; });
}

}  // namespace orvane::tools
