#include "tessellation/TriangleArrays.h"

#include "contracts/PrimitiveCodes.h"
#include "glu_triangulation/RecTriangles.h"

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTessQuadsTriangulator";

// P rounded to single precision and widened again, as the arrays hold it.
void AppendRounded(const TPoint3D& P, TFloatDynArray& Array)
{
    Array.push_back(static_cast<float>(P.X));
    Array.push_back(static_cast<float>(P.Y));
    Array.push_back(static_cast<float>(P.Z));
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
    for (std::size_t q = 0; q < v.size(); q += 4)
        for (const std::size_t k : {q, q + 1, q + 2, q, q + 2, q + 3}) {
            AppendRounded(v[k], Tri);
            AppendRounded(n[k], Norm);
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
