#include "tessellation/TriangleArrays.h"

#include "contracts/PrimitiveCodes.h"
#include "glu_triangulation/RecTriangles.h"

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTessQuadsTriangulator";

// P rounded to single precision and widened again, as the arrays hold it.
double* PutRounded(const TPoint3D& P, double* Out)
{
    *Out++ = static_cast<float>(P.X);
    *Out++ = static_cast<float>(P.Y);
    *Out++ = static_cast<float>(P.Z);
    return Out;
}

}  // namespace

void TTriangleArrays::TriangulateAndTransformToGLArray(Cardinal DrawMode, const TList<TPoint3D>& Vertices,
                                                       const TList<TPoint3D>& Normals, TDynGLFloat& GLVert,
                                                       TDynGLFloat& GLNorm)
{
    Assert(Vertices.Count() == Normals.Count());
    TransPointListToGLArray(Vertices, GLVert);
    TransPointListToGLArray(Normals, GLNorm);
    TriangulateVertexAndNormal(DrawMode, GLVert, GLNorm);
}

void TTriangleArrays::AppendTriangles(Cardinal DrawMode, const TList<TPoint3D>& Vertices,
                                      const TList<TPoint3D>& Normals, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    const int count = Vertices.Count();
    if (DrawMode != GL_QUADS || count % 4 != 0 || count != Normals.Count()) {
        TDynGLFloat glVert;
        TDynGLFloat glNorm;
        TriangulateAndTransformToGLArray(DrawMode, Vertices, Normals, glVert, glNorm);
        Tri.insert(Tri.end(), glVert.begin(), glVert.end());
        Norm.insert(Norm.end(), glNorm.begin(), glNorm.end());
        return;
    }
    const std::vector<TPoint3D>& v = Vertices.Items();
    const std::vector<TPoint3D>& n = Normals.Items();
    const std::size_t added = 9 * v.size() / 2;
    Tri.resize(Tri.size() + added);
    Norm.resize(Norm.size() + added);
    double* tri = Tri.data() + Tri.size() - added;
    double* norm = Norm.data() + Norm.size() - added;
    for (std::size_t q = 0; q < v.size(); q += 4)
        for (const std::size_t k : {q, q + 1, q + 2, q, q + 2, q + 3}) {
            tri = PutRounded(v[k], tri);
            norm = PutRounded(n[k], norm);
        }
}

void TTriangleArrays::TransPointListToGLArray(const TList<TPoint3D>& List, TDynGLFloat& Array)
{
    Array.resize(3 * static_cast<std::size_t>(List.Count()));
    std::size_t i = 0;
    for (const TPoint3D& p : List) {
        Array[i++] = static_cast<float>(p.X);
        Array[i++] = static_cast<float>(p.Y);
        Array[i++] = static_cast<float>(p.Z);
    }
}

void TTriangleArrays::TriangulateVertexAndNormal(Cardinal DrawMode, TDynGLFloat& Vertices, TDynGLFloat& Normals)
{
    Assert(Vertices.size() == Normals.size());
    TRecTriangles recorder;
    recorder.AddSurfaceData(DrawMode, Vertices, Normals);
    Vertices.clear();
    Normals.clear();
    recorder.GetRes(Vertices, Normals);
}

}  // namespace orvane
