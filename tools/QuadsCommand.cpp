// orvane quads [FILE] [--xtol X] [--ytol Y] [-o FILE] [--svg FILE]: splits a region into the
// quads of the quad tool. FILE holds polylines as blocks of "x y" lines separated by blank
// lines, the first block the outer boundary, each further one a hole; without FILE a
// built-in region is used. The quads go out as "x0 y0 x1 y1 x2 y2 x3 y3" lines, the summary
// to standard error.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "contracts/TessQuadsTool.h"
#include "io/AtomicFile.h"
#include "io/Printable.h"
#include "tools/Commands.h"

namespace orvane::tools {

namespace {

struct TQuadsOptions {
    std::string Input;
    double XTol = 0.1;
    double YTol = 0.1;
    std::string Output;
    std::string Svg;
};

using TLoops = std::vector<TDynPoints2D>;

// An outline with a wavy top and three holes: a circle, a tilted square, and a triangle that
// touches the bottom edge at one point.
TLoops SampleRegion()
{
    TLoops loops(4);
    loops[0] = {{0, 0}, {2, 0}};
    for (int i = 0; i <= 40; ++i) {
        const double x = 2.0 - 0.05 * i;
        loops[0].push_back({x, 1.0 + 0.15 * std::sin(3.0 * x)});
    }
    for (int i = 0; i < 32; ++i)
        loops[1].push_back({0.5 + 0.25 * std::cos(M_PI * i / 16), 0.5 + 0.25 * std::sin(M_PI * i / 16)});
    loops[2] = {{1.4, 0.25}, {1.6, 0.45}, {1.4, 0.65}, {1.2, 0.45}};
    loops[3] = {{1.0, 0.0}, {1.1, 0.2}, {0.9, 0.2}};
    return loops;
}

// One point of a "x y" line, or an error naming the line.
TPoint2D ParsePoint(const std::string& line, const std::string& where)
{
    const char* text = line.c_str();
    char* end = nullptr;
    const double x = std::strtod(text, &end);
    const char* afterX = end;
    const double y = std::strtod(afterX, &end);
    while (*end == ' ' || *end == '\t' || *end == '\r') ++end;
    if (afterX == text || end == afterX || *end != '\0')
        throw std::runtime_error(where + ": expected two numbers \"x y\", got \"" + io::Printable(line) + "\"");
    return {x, y};
}

TLoops ReadLoops(const std::string& path)
{
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    TLoops loops(1);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            if (!loops.back().empty()) loops.emplace_back();
        } else if (line[line.find_first_not_of(" \t")] != '#') {
            loops.back().push_back(ParsePoint(line, path + ":" + std::to_string(number)));
        }
    }
    if (in.bad()) throw std::runtime_error("cannot read " + path);
    if (loops.back().empty()) loops.pop_back();
    if (loops.empty()) throw std::runtime_error(path + " holds no polyline");
    return loops;
}

std::unique_ptr<TViewUnitList> Split(const TLoops& loops, const TQuadsOptions& options, bool perColumn)
{
    TList<TVPolyline2D> polylines;
    for (const TDynPoints2D& loop : loops) polylines.Add(TVPolyline2D(loop));
    try {
        return TTessQuadsTool::CreateDrawQuads(polylines, options.XTol, options.YTol, perColumn);
    } catch (const Exception& e) {
        throw std::runtime_error(e.Message());
    }
}

void WriteQuads(std::ostream& out, const TViewUnitList& units)
{
    char text[200];
    for (const TViewUnit& unit : units)
        for (int i = 0; i + 3 < unit.Points2D.Count(); i += 4) {
            const TPoint2D* p = &unit.Points2D.Items()[static_cast<std::size_t>(i)];
            std::snprintf(text, sizeof text, "%.17g %.17g %.17g %.17g %.17g %.17g %.17g %.17g\n", p[0].X, p[0].Y,
                          p[1].X, p[1].Y, p[2].X, p[2].Y, p[3].X, p[3].Y);
            out << text;
        }
}

// Plane coordinates to picture coordinates: Y up becomes Y down.
struct TSvgFrame {
    double XMin, YMax, Scale, Margin;
    double X(double x) const { return Margin + (x - XMin) * Scale; }
    double Y(double y) const { return Margin + (YMax - y) * Scale; }
};

std::string PointList(const TSvgFrame& frame, const TPoint2D* points, std::size_t count)
{
    std::ostringstream s;
    for (std::size_t i = 0; i < count; ++i) s << frame.X(points[i].X) << "," << frame.Y(points[i].Y) << " ";
    return s.str();
}

// Quads outlined, columns shaded alternately, the boundary in black.
void WriteSvg(const std::string& path, const TLoops& loops, const TViewUnitList& columns)
{
    double xmin = INFINITY, xmax = -INFINITY, ymin = INFINITY, ymax = -INFINITY;
    for (const TDynPoints2D& loop : loops)
        for (const TPoint2D& p : loop)
            xmin = std::min(xmin, p.X), xmax = std::max(xmax, p.X), ymin = std::min(ymin, p.Y), ymax = std::max(ymax, p.Y);
    const double scale = 900.0 / std::max({xmax - xmin, ymax - ymin, 1e-300});
    const TSvgFrame frame{xmin, ymax, scale, 20.0};
    io::WriteStreamAtomically(path, [&](std::ostream& out) {
        out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << frame.X(xmax) + 20 << "\" height=\""
            << frame.Y(ymin) + 20 << "\">\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
        const char* shades[] = {"#cfe3f7", "#f7e2c4"};
        for (int c = 0; c < columns.Count(); ++c) {
            const TVPoint2DList& points = columns[c].Points2D;
            for (int i = 0; i + 3 < points.Count(); i += 4)
                out << "<polygon points=\"" << PointList(frame, &points.Items()[static_cast<std::size_t>(i)], 4)
                    << "\" fill=\"" << shades[c % 2] << "\" stroke=\"#555\" stroke-width=\"0.6\"/>\n";
        }
        for (const TDynPoints2D& loop : loops)
            out << "<polygon points=\"" << PointList(frame, loop.data(), loop.size())
                << "\" fill=\"none\" stroke=\"black\" stroke-width=\"2\"/>\n";
        out << "</svg>\n";
    });
}

double Area(const TViewUnitList& units)
{
    double area = 0;
    for (const TViewUnit& unit : units)
        for (int i = 0; i + 3 < unit.Points2D.Count(); i += 4) {
            const TPoint2D* p = &unit.Points2D.Items()[static_cast<std::size_t>(i)];
            area += (p[1].X - p[0].X) * ((p[0].Y - p[3].Y) + (p[1].Y - p[2].Y)) / 2;
        }
    return area;
}

int RunQuads(const TQuadsOptions& options, TVerbosity verbosity)
{
    for (const std::string& output : {options.Output, options.Svg})
        if (!output.empty()) io::RefuseToWriteOverInputs(output, {options.Input});
    const TLoops loops = options.Input.empty() ? SampleRegion() : ReadLoops(options.Input);
    const auto start = std::chrono::steady_clock::now();
    const auto units = Split(loops, options, false);
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    const auto columns = Split(loops, options, true);
    if (options.Output.empty()) {
        WriteQuads(std::cout, *units);
    } else {
        io::WriteStreamAtomically(options.Output, [&](std::ostream& out) { WriteQuads(out, *units); });
    }
    if (!options.Svg.empty()) WriteSvg(options.Svg, loops, *columns);
    const int quads = units->Count() == 0 ? 0 : units->First().Points2D.Count() / 4;
    if (verbosity != TVerbosity::Quiet)
        std::fprintf(stderr, "quads: %d, columns: %d, area covered: %.12g, time: %.3f ms\n", quads, columns->Count(),
                     Area(*units), ms);
    return kExitDone;
}

}  // namespace

void AddQuadsCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TQuadsOptions>();
    CLI::App* cmd = app.add_subcommand("quads", "Split a region with holes into the quads of the quad tool");
    cmd->add_option("file", options->Input,
                    "Polylines: blocks of \"x y\" lines split by blank lines, the outer boundary first "
                    "(default: a built-in region)");
    AddNumber(*cmd, "--xtol", options->XTol, 0.0, 1e300, "Column spacing along X, in the region's units")
        ->capture_default_str();
    AddNumber(*cmd, "--ytol", options->YTol, 0.0, 1e300, "Row spacing along Y, in the region's units")
        ->capture_default_str();
    AddOutput(*cmd, "-o,--output", options->Output, {}, "Text file for the quads (default: standard output)");
    AddOutput(*cmd, "--svg", options->Svg, {".svg"}, "SVG picture: quads outlined, columns shaded alternately");
    cmd->callback([options, &tool] { tool.Command = [options, &tool] { return RunQuads(*options, tool.Verbosity); }; });
}

}  // namespace orvane::tools
