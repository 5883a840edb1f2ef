#include "tessellation/TriangleArrays.h"

#include "glu_triangulation/RecTriangles.h"

namespace orvane {

namespace {
constexpr const char* kUnitName = "uTessQuadsTriangulator";
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
