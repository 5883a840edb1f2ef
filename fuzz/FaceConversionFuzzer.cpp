// Fuzzes the conversion of one face: a NURBS surface and a trim loop in its UV space, made from
// the fuzzer's bytes as a file could hold them (degrees, knots, poles, weights, open or closed
// loops, values out of any sane range), go through the converter, the checks, the kernel, the
// preparation for the quad road and the model stream. Only a crash, a sanitizer report or a
// round trip that changes the face is a finding; refusals with a reason are the point.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepLib.hxx>
#include <BRep_Builder.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Standard_Failure.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>
#include <fuzzer/FuzzedDataProvider.h>

#include "contracts/SysUtils.h"
#include "io/CadFileReader.h"
#include "io/FaceConverter.h"
#include "io/FacePreparation.h"
#include "io/FaceValidation.h"
#include "io/KernelFace.h"
#include "io/ModelStream.h"

namespace {

using namespace orvane;

// A value as a file may hold it: mostly within Lo and Hi, now and then anything at all.
double Value(FuzzedDataProvider& in, double lo, double hi)
{
    if (in.ConsumeIntegralInRange(0, 15) == 0) return in.ConsumeFloatingPoint<double>();
    return in.ConsumeFloatingPointInRange(lo, hi);
}

// Distinct knots and their multiplicities for `count` poles of `degree`, clamped at the ends.
void Knots(FuzzedDataProvider& in, int degree, int count, TColStd_Array1OfReal& knots, TColStd_Array1OfInteger& mults)
{
    std::vector<double> k{Value(in, -10, 10)};
    std::vector<int> m{degree + 1};
    int left = count - degree - 1;
    while (left > 0) {
        const int mult = std::min(left, in.ConsumeIntegralInRange(1, degree + 1));
        k.push_back(k.back() + Value(in, 0, 3));
        m.push_back(mult);
        left -= mult;
    }
    k.push_back(k.back() + Value(in, 0, 3));
    m.push_back(degree + 1);
    knots.Resize(1, static_cast<int>(k.size()), false);
    mults.Resize(1, static_cast<int>(m.size()), false);
    for (std::size_t i = 0; i < k.size(); ++i) {
        knots(static_cast<int>(i) + 1) = k[i];
        mults(static_cast<int>(i) + 1) = m[i];
    }
}

Handle(Geom_BSplineSurface) Surface(FuzzedDataProvider& in)
{
    const int du = in.ConsumeIntegralInRange(1, 3), dv = in.ConsumeIntegralInRange(1, 3);
    const int nu = in.ConsumeIntegralInRange(du + 1, du + 4), nv = in.ConsumeIntegralInRange(dv + 1, dv + 4);
    TColStd_Array1OfReal ku(1, 1), kv(1, 1);
    TColStd_Array1OfInteger mu(1, 1), mv(1, 1);
    Knots(in, du, nu, ku, mu);
    Knots(in, dv, nv, kv, mv);
    TColgp_Array2OfPnt poles(1, nu, 1, nv);
    TColStd_Array2OfReal weights(1, nu, 1, nv);
    const bool rational = in.ConsumeBool();
    for (int i = 1; i <= nu; ++i)
        for (int j = 1; j <= nv; ++j) {
            poles(i, j) = gp_Pnt(Value(in, -100, 100), Value(in, -100, 100), Value(in, -100, 100));
            weights(i, j) = rational ? Value(in, 0.05, 5) : 1.0;
        }
    return rational ? new Geom_BSplineSurface(poles, weights, ku, kv, mu, mv, du, dv)
                    : new Geom_BSplineSurface(poles, ku, kv, mu, mv, du, dv);
}

// A polygon of segments in UV, closed or not, each an edge with its curve on the surface.
TopoDS_Face Face(FuzzedDataProvider& in, const Handle(Geom_BSplineSurface)& surface)
{
    double u0, u1, v0, v1;
    surface->Bounds(u0, u1, v0, v1);
    const int corners = in.ConsumeIntegralInRange(2, 7);
    std::vector<gp_Pnt2d> points;
    for (int c = 0; c < corners; ++c) {
        const double a = Value(in, -0.2, 1.2), b = Value(in, -0.2, 1.2);
        points.emplace_back(u0 + a * (u1 - u0), v0 + b * (v1 - v0));
    }
    if (in.ConsumeBool()) points.push_back(points.front());
    BRep_Builder builder;
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const double length = points[i].Distance(points[i + 1]);
        if (!(length > 1e-9)) continue;
        Handle(Geom2d_Line) line = new Geom2d_Line(points[i], gp_Dir2d(points[i + 1].XY() - points[i].XY()));
        builder.Add(wire, BRepBuilderAPI_MakeEdge(line, surface, 0.0, length).Edge());
    }
    TopoDS_Face face;
    builder.MakeFace(face, surface, 1e-7);
    builder.Add(face, wire);
    BRepLib::BuildCurves3d(face);
    return TopoDS::Face(in.ConsumeBool() ? face.Reversed() : face);
}

void CheckRoundTrip(const io::FaceData& face)
{
    io::CadModelData model;
    model.Faces.push_back(face);
    const std::string bytes = io::EncodeModel(model);
    if (io::EncodeModel(io::DecodeModel(bytes)) != bytes) std::abort();
}

void Prepare(const io::FaceData& face, double tolerance)
{
    if (!io::FindFaceProblem(face, 1e-9).empty()) return;
    try {
        io::BuildKernelFace(face);
        io::PreparationSettings settings;
        settings.Tolerance = tolerance;
        settings.MaxQuads = 200'000;
        io::PrepareFace(face, settings);
    } catch (const io::EFaceRefused&) {
    } catch (const Exception&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    io::SilenceOcctMessages();
    FuzzedDataProvider in(data, size);
    TopoDS_Face face;
    try {
        face = Face(in, Surface(in));
    } catch (const Standard_Failure&) {
        return 0;  // the library refused to build it: no face to convert
    }
    const double tolerance = Value(in, 1e-3, 10);
    io::EdgeTable edges(tolerance);
    try {
        const io::FaceData converted = io::ConvertFace(face, 1, "face 1", edges);
        CheckRoundTrip(converted);
        Prepare(converted, tolerance);
    } catch (const io::EFaceSkipped&) {
    }
    return 0;
}
