#include "io/GluRoad.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "io/FaceOrientation.h"
#include "io/KernelFace.h"
#include "glu_triangulation/GluView.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace orvane::io {
namespace {

// The box's eight corners, for the view to fit.
std::array<TPoint3D, 8> Corners(const BoundingBox& box)
{
    std::array<TPoint3D, 8> corners;
    for (int c = 0; c < 8; ++c)
        corners[static_cast<std::size_t>(c)] = {c & 1 ? box.Max.X : box.Min.X, c & 2 ? box.Max.Y : box.Min.Y,
                                                c & 4 ? box.Max.Z : box.Min.Z};
    return corners;
}

// GLU's sampling tolerance in pixels for a bare surface (uTriangulate.cpp), and the
// triangulator's tolerance for knots and parameters that count as equal.
constexpr double kDefaultTolerance = 60.0;
constexpr double kGluZeroTol = 1e-6;

const TGeNurbsSurface* NurbsBase(const TGeSurface& Surface)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(&Surface)) return NurbsBase(*t->GetSurface());
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(&Surface)) return e->Surface;
    return dynamic_cast<const TGeNurbsSurface*>(&Surface);
}

// The control polygon's length along the first row (AlongU) or the first column.
double FirstRowLength(const TGeNurbsSurface& S, bool AlongU)
{
    double length = 0.0;
    const int count = AlongU ? S.CtrlCountU : S.CtrlCountV;
    for (int i = 1; i < count; ++i)
        length += AlongU ? S.GetCtrlPoint(i - 1, 0).DistanceTo(S.GetCtrlPoint(i, 0))
                         : S.GetCtrlPoint(0, i - 1).DistanceTo(S.GetCtrlPoint(0, i));
    return length;
}

// The distinct knots: the ends of the Bezier patches along one direction.
std::vector<double> Breakpoints(const TArrayDouble& Knots)
{
    std::vector<double> out;
    for (double k : Knots)
        if (out.empty() || k > out.back()) out.push_back(k);
    if (out.size() < 2) out.push_back(out.empty() ? 1.0 : out.back());
    return out;
}

// The length of a model vector as the view shows it, in model units.
double ScreenLength(const TPoint3D& V)
{
    const TPoint3D t = ObliqueViewTurn(V);
    return std::hypot(t.X, t.Y);
}

double MeshArea(const TFloatDynArray& Tri)
{
    double area = 0.0;
    for (std::size_t k = 0; k + 8 < Tri.size(); k += 9) {
        const TPoint3D a{Tri[k], Tri[k + 1], Tri[k + 2]};
        const TPoint3D b{Tri[k + 3], Tri[k + 4], Tri[k + 5]};
        const TPoint3D c{Tri[k + 6], Tri[k + 7], Tri[k + 8]};
        area += 0.5 * (b - a).CrossMul(c - a).Length();
    }
    return area;
}

// A count for a person: whole below a million, else three digits and an exponent.
std::string Count(double N)
{
    char text[32];
    std::snprintf(text, sizeof text, N < 1e6 ? "%.0f" : "%.3g", N);
    return text;
}

std::string Fixed(double X, int Digits)
{
    char text[48];
    std::snprintf(text, sizeof text, "%.*f", Digits, X);
    return text;
}

}  // namespace

struct GluRoad::State {
    State(int width, int height) : DC(width, height) {}
    TOffscreenDC DC;
    HGLRC RC = nullptr;
    TGLSurfaceTriangulator Triangulator;
};

GluRoad::GluRoad(const BoundingBox& Box, int Width, int Height)
    : FPixelsPerUnit(ObliqueViewPixelsPerUnit(Corners(Box), Width, Height)), FWidth(Width), FHeight(Height)
{
    try {
        FState = std::make_unique<State>(Width, Height);
        FState->RC = dglOpenGL::CreateRenderingContextVersion(FState->DC.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        try {
            dglOpenGL::ActivateRenderingContext(FState->DC.Handle(), FState->RC, true);
        } catch (...) {
            dglOpenGL::DestroyRenderingContext(FState->RC);
            throw;
        }
        LoadObliqueView(Corners(Box), Width, Height);
    } catch (const Exception& e) {
        throw std::runtime_error("the GLU road needs an OpenGL context: " + e.Message());
    }
}

GluRoad::~GluRoad()
{
    dglOpenGL::DeactivateRenderingContext();
    dglOpenGL::DestroyRenderingContext(FState->RC);
}

void GluRoad::Triangulate(const TGeSurface& Surface, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    FState->Triangulator.Triangulate(&Surface, Tri, Norm);
}

double GluSamplingTolerance(const TGeSurface& Surface)
{
    const auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(&Surface);
    const TGeNurbsSurface* base = trimmed != nullptr ? NurbsBase(*trimmed->GetSurface()) : nullptr;
    if (base == nullptr) return kDefaultTolerance;
    // A direction of degree 1: its first control step in model units, rounded up, as pixels.
    if (base->DegreeU == 1 || base->DegreeV == 1) {
        double step = 0.0;
        if (base->DegreeU == 1) step = base->GetCtrlPoint(0, 0).DistanceTo(base->GetCtrlPoint(1, 0));
        if (base->DegreeV == 1) step = std::max(step, base->GetCtrlPoint(0, 0).DistanceTo(base->GetCtrlPoint(0, 1)));
        if (step > 0.0) return std::ceil(step);
        if (base->DegreeU != 1) return 0.0;
        const double length = FirstRowLength(*base, true);
        const double interval = base->KnotsU.back() - base->KnotsU.front();
        double error = std::fabs(interval) <= kGluZeroTol ? 0.1 : length / interval / 10.0;
        if (length > 1000.0) error = error * length / 1000.0;
        return std::ceil(std::min(interval / 100.0, error));
    }
    const double uLen = FirstRowLength(*base, true);
    const double vLen = FirstRowLength(*base, false);
    const int holes = trimmed->GetInnerBoundaryCount();
    if (uLen > 700.0 && vLen > 700.0) return 100.0;
    if (holes > 20 || uLen > 500.0 || vLen > 500.0) return 10.0;
    if (holes >= 1) return 5.0;
    return kDefaultTolerance;
}

double EstimateGluTriangles(const TGeNurbsSurface& Surface, double Tolerance, double PixelsPerUnit, double Cap)
{
    const std::vector<double> us = Breakpoints(Surface.KnotsU);
    const std::vector<double> vs = Breakpoints(Surface.KnotsV);
    const double patches = static_cast<double>(us.size() - 1) * static_cast<double>(vs.size() - 1);
    if (2.0 * patches > Cap) return 2.0 * patches;
    if (!(Tolerance > 0.0)) return INFINITY;
    double total = 0.0;
    for (std::size_t i = 0; i + 1 < us.size(); ++i)
        for (std::size_t j = 0; j + 1 < vs.size(); ++j) {
            // The greatest speed in pixels along U and V, sampled at the patch's corners,
            // edge middles and centre.
            double speedU = 0.0, speedV = 0.0;
            for (int a = 0; a <= 2; ++a)
                for (int b = 0; b <= 2; ++b) {
                    const double u = us[i] + (us[i + 1] - us[i]) * a / 2.0;
                    const double v = vs[j] + (vs[j + 1] - vs[j]) * b / 2.0;
                    TPoint3D p, su, sv;
                    Surface.GetDerivatives(u, v, p, su, sv);
                    speedU = std::max(speedU, ScreenLength(su));
                    speedV = std::max(speedV, ScreenLength(sv));
                }
            const double stepsU = std::max(1.0, std::ceil(2.0 * speedU * PixelsPerUnit * (us[i + 1] - us[i]) / Tolerance));
            const double stepsV = std::max(1.0, std::ceil(2.0 * speedV * PixelsPerUnit * (vs[j + 1] - vs[j]) / Tolerance));
            total += 2.0 * stepsU * stepsV;
            if (!(total <= Cap)) return total;
        }
    return total;
}

std::string MeshFaceByGlu(GluRoad& Road, const FaceData& F, FaceMesh& Out, const GluBudget& Budget)
{
    Out.Tri.clear();
    Out.Norm.clear();
    const auto refuse = [&Out](const std::string& reason) {
        Out.Tri.clear();
        Out.Norm.clear();
        return reason;
    };
    std::unique_ptr<TGeSurface> surface;
    try {
        if (CoversWholeDomain(F))
            surface = BuildKernelSurface(F.Surface);
        else
            surface = BuildKernelFace(F);
    } catch (const std::exception& e) {
        return refuse(std::string("the kernel cannot build the face for GLU: ") + e.what());
    }
    const double scale = Road.PixelsPerUnit();
    const double pixels = F.ExactArea * scale * scale;
    const double triangleBudget =
        std::max(Budget.MinTriangles, std::isfinite(pixels) ? Budget.TrianglesPerPixel * pixels : 0.0);
    const double secondsBudget = Budget.BaseSeconds + Budget.SecondsPerTriangle * triangleBudget;
    const std::string view = std::to_string(Road.ViewWidth()) + "x" + std::to_string(Road.ViewHeight());

    const double tolerance = GluSamplingTolerance(*surface);
    if (!(tolerance > 0.0)) return refuse("GLU's sampling tolerance for the face comes out as 0 pixels");
    const TGeNurbsSurface* base = NurbsBase(*surface);
    if (base == nullptr) return refuse("the face has no NURBS surface for GLU");
    const double cap = Budget.PredictionSlack * triangleBudget;
    const double estimate = EstimateGluTriangles(*base, tolerance, scale, cap);
    if (estimate > cap)
        return refuse("GLU would sample over " + Count(estimate) + " triangles at " + Count(tolerance) + " px in the " +
                      view + " view, more than " + Count(Budget.PredictionSlack) + " times the face's budget of " +
                      Count(triangleBudget));

    const auto start = std::chrono::steady_clock::now();
    Road.Triangulate(*surface, Out.Tri, Out.Norm);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double triangles = static_cast<double>(Out.Tri.size() / 9);
    if (triangles < 1.0) return refuse("GLU gave no triangles");
    if (!std::all_of(Out.Tri.begin(), Out.Tri.end(), [](double x) { return std::isfinite(x); }))
        return refuse("GLU gave points that are not finite");
    if (triangles > triangleBudget)
        return refuse("GLU gave " + Count(triangles) + " triangles, more than the face's budget of " +
                      Count(triangleBudget) + " in the " + view + " view");
    if (seconds > secondsBudget)
        return refuse("GLU took " + Fixed(seconds, 2) + " s, more than the face's budget of " + Fixed(secondsBudget, 2) +
                      " s");
    if (F.ExactArea > 0.0 && std::isfinite(F.ExactArea)) {
        const double error = MeshArea(Out.Tri) / F.ExactArea - 1.0;
        if (!(std::fabs(error) <= Budget.MaxAreaError))
            return refuse("GLU's mesh has " + Fixed(100.0 * std::fabs(error), 1) + "% " + (error > 0 ? "more" : "less") +
                          " area than the face (at most " + Fixed(100.0 * Budget.MaxAreaError, 1) + "% allowed)");
    }
    OrientFaceMesh(F, Out.Tri, Out.Norm);
    return "";
}

}  // namespace orvane::io
