#include "tests/io/MeshChecks.h"

#include <algorithm>
#include <cmath>

#include <GeomAPI_ProjectPointOnSurf.hxx>
#include <ShapeAnalysis_Surface.hxx>

#include "io/OcctSurface.h"

namespace orvane::io::testing {
namespace {

TPoint3D At(const TFloatDynArray& a, std::size_t v)
{
    return {a[3 * v], a[3 * v + 1], a[3 * v + 2]};
}

const FaceData& FaceOf(const CadModelData& model, int number)
{
    return *std::find_if(model.Faces.begin(), model.Faces.end(), [&](const FaceData& f) { return f.Number == number; });
}

// A projector onto the face's surface. Distances start each search from the point before
// (the vertices come in runs of neighbours) and fall back on a global search.
class Projector {
public:
    explicit Projector(const FaceData& f)
        : FSurface(OcctSurface(f.Surface)), FAnalysis(new ShapeAnalysis_Surface(FSurface)), FSign(f.Reversed ? -1.0 : 1.0)
    {
        const TRect2D d = f.Surface.Domain();
        FGlobal.Init(FSurface, d.Min.X, d.Max.X, d.Min.Y, d.Max.Y);
    }
    // Searches globally only where the search from the point before ends farther than Enough.
    double Distance(const TPoint3D& p, double enough)
    {
        Project(p);
        if (FAnalysis->Gap() <= enough) return FAnalysis->Gap();
        // The search from the point before may end in a local minimum far away.
        FGlobal.Perform(gp_Pnt(p.X, p.Y, p.Z));
        return std::min(FAnalysis->Gap(), FGlobal.NbPoints() > 0 ? FGlobal.LowerDistance() : 1e300);
    }
    // The exact normal out of the material at the nearest point (a global search, slow but
    // sure); zero at a pole.
    TPoint3D Normal(const TPoint3D& p)
    {
        FGlobal.Perform(gp_Pnt(p.X, p.Y, p.Z));
        if (FGlobal.NbPoints() == 0) return {};
        double u, v;
        FGlobal.LowerDistanceParameters(u, v);
        gp_Pnt q;
        gp_Vec su, sv;
        FSurface->D1(u, v, q, su, sv);
        const gp_Vec n = su.Crossed(sv);
        if (n.Magnitude() < 1e-9 * (su.SquareMagnitude() + sv.SquareMagnitude())) return {};
        const gp_Vec unit = n.Normalized() * FSign;
        return {unit.X(), unit.Y(), unit.Z()};
    }

private:
    gp_Pnt2d Project(const TPoint3D& p)
    {
        const gp_Pnt q(p.X, p.Y, p.Z);
        FLast = FHasLast ? FAnalysis->NextValueOfUV(FLast, q, 1e-9) : FAnalysis->ValueOfUV(q, 1e-9);
        FHasLast = true;
        return FLast;
    }
    Handle(Geom_BSplineSurface) FSurface;
    Handle(ShapeAnalysis_Surface) FAnalysis;
    double FSign;
    GeomAPI_ProjectPointOnSurf FGlobal;
    gp_Pnt2d FLast;
    bool FHasLast = false;
};

}  // namespace

double MeshArea(const TFloatDynArray& tri)
{
    double area = 0.0;
    for (std::size_t t = 0; t + 9 <= tri.size(); t += 9) {
        const TPoint3D a = At(tri, t / 3), b = At(tri, t / 3 + 1), c = At(tri, t / 3 + 2);
        area += (b - a).CrossMul(c - a).Length() / 2.0;
    }
    return area;
}

double SignedVolume(const TFloatDynArray& tri)
{
    double volume = 0.0;
    for (std::size_t t = 0; t + 9 <= tri.size(); t += 9)
        volume += At(tri, t / 3).DotMul(At(tri, t / 3 + 1).CrossMul(At(tri, t / 3 + 2))) / 6.0;
    return volume;
}

namespace {

TPoint3D PointOf(const ModelMesh& mesh, const FaceMesh& f, int v)
{
    return mesh.Points[static_cast<std::size_t>(f.Points[static_cast<std::size_t>(v)])];
}

}  // namespace

double WorstVertexDistance(const CadModelData& model, const ModelMesh& mesh)
{
    const double enough = 1e-7 * model.Box.Diagonal();
    double worst = 0.0;
    for (const FaceMesh& f : mesh.Faces) {
        Projector projector(FaceOf(model, f.Number));
        // Each of the face's model points once: its triangles share them.
        std::vector<bool> seen(mesh.Points.size(), false);
        for (const int point : f.Points) {
            if (seen[static_cast<std::size_t>(point)]) continue;
            seen[static_cast<std::size_t>(point)] = true;
            worst = std::max(worst, projector.Distance(mesh.Points[static_cast<std::size_t>(point)], enough));
        }
    }
    return worst;
}

Deviation WorstDeviation(const CadModelData& model, const ModelMesh& mesh, double enough)
{
    Deviation worst;
    for (const FaceMesh& f : mesh.Faces) {
        Projector projector(FaceOf(model, f.Number));
        const std::size_t step = std::max<std::size_t>(1, f.Triangles.size() / 400);
        for (std::size_t t = 0; t < f.Triangles.size(); t += step) {
            const auto& tri = f.Triangles[t];
            const TPoint3D a = PointOf(mesh, f, tri[0]), b = PointOf(mesh, f, tri[1]), c = PointOf(mesh, f, tri[2]);
            const double da = projector.Distance(a, enough), db = projector.Distance(b, enough), dc = projector.Distance(c, enough);
            worst.Corner = std::max({worst.Corner, da, db, dc});
            const std::pair<TPoint3D, double> between[] = {
                {(a + b) / 2.0, (da + db) / 2.0}, {(b + c) / 2.0, (db + dc) / 2.0}, {(c + a) / 2.0, (dc + da) / 2.0}, {(a + b + c) / 3.0, (da + db + dc) / 3.0}};
            for (const auto& [p, corners] : between) {
                const double d = projector.Distance(p, enough + corners);
                worst.Mesh = std::max(worst.Mesh, d - corners);
                worst.Total = std::max({worst.Total, d, worst.Corner});
            }
        }
    }
    return worst;
}

double WorstNormalAngle(const CadModelData& model, const ModelMesh& mesh)
{
    const double onSurface = 1e-9 * model.Box.Diagonal();
    double worst = 0.0;
    for (const FaceMesh& f : mesh.Faces) {
        Projector projector(FaceOf(model, f.Number));
        const std::size_t step = std::max<std::size_t>(1, f.Points.size() / 100);
        for (std::size_t v = 0; v < f.Points.size(); v += step) {
            const TPoint3D p = PointOf(mesh, f, static_cast<int>(v));
            if (projector.Distance(p, onSurface) > onSurface) continue;
            const TPoint3D exact = projector.Normal(p);
            if (exact.Length() == 0.0) continue;
            const TPoint3D& n = f.Normals[v];
            worst = std::max(worst, std::atan2(exact.CrossMul(n).Length(), exact.DotMul(n)));
        }
    }
    return worst;
}

std::size_t ZeroAreaTriangles(const CadModelData& model, const ModelMesh& mesh)
{
    const double floor = 1e-12 * model.Box.Diagonal() * model.Box.Diagonal();
    std::size_t count = 0;
    for (const FaceMesh& f : mesh.Faces)
        for (const auto& t : f.Triangles) {
            const TPoint3D a = PointOf(mesh, f, t[0]);
            count += (PointOf(mesh, f, t[1]) - a).CrossMul(PointOf(mesh, f, t[2]) - a).Length() <= floor;
        }
    return count;
}

double WorstNormalAgreement(const CadModelData& model, const ModelMesh& mesh)
{
    double worst = 1.0;
    for (const FaceMesh& f : mesh.Faces) {
        Projector projector(FaceOf(model, f.Number));
        const std::size_t count = f.Tri.size() / 3, step = std::max<std::size_t>(1, count / 50);
        for (std::size_t v = 0; v < count; v += step) {
            const TPoint3D exact = projector.Normal(At(f.Tri, v));
            if (exact.Length() == 0.0) continue;
            worst = std::min(worst, exact.DotMul(At(f.Norm, v)));
        }
    }
    return worst;
}

}  // namespace orvane::io::testing
