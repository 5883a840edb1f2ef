// The edges of a shape, each discretised once in 3D for every face that uses it, so that the
// faces on both sides of an edge take the same points and their meshes meet vertex to vertex.
#pragma once

#include <vector>

#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Edge.hxx>

#include "io/CadFaceData.h"

namespace orvane::io {

// Largest turn of the edge's tangent between two consecutive points, in radians: keeps small
// circles round where the chordal tolerance alone would leave them a few segments.
inline constexpr double kEdgeAngularDeflection = 0.2;

class EdgeTable {
public:
    // Tolerance: the largest distance between an edge's polyline and its curve.
    explicit EdgeTable(double Tolerance);

    // The index of Edge, whatever its orientation; discretises it when first asked.
    int Index(const TopoDS_Edge& Edge);

    // The parameters of the edge's points on its 3D curve, ascending (first and last for a
    // degenerate edge).
    const std::vector<double>& Parameters(int Index) const { return FParameters[static_cast<std::size_t>(Index)]; }
    const EdgeData& Data(int Index) const { return FData[static_cast<std::size_t>(Index)]; }

    std::vector<EdgeData> Take() { return std::move(FData); }

private:
    void Discretise(const TopoDS_Edge& Edge);

    double FTolerance;
    TopTools_IndexedMapOfShape FEdges;
    std::vector<EdgeData> FData;
    std::vector<std::vector<double>> FParameters;
};

}  // namespace orvane::io
