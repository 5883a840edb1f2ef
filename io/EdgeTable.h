// The edges of a shape, each discretised once in 3D for every face that uses it, so that the
// faces on both sides of an edge take the same points and their meshes meet vertex to vertex.
#pragma once

#include <deque>
#include <mutex>
#include <vector>

#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Shape.hxx>

#include "io/CadFaceData.h"

namespace orvane::io {

// Largest turn of the edge's tangent between two consecutive points, in radians: keeps small
// circles round where the chordal tolerance alone would leave them a few segments.
inline constexpr double kEdgeAngularDeflection = 0.2;

class EdgeTable {
public:
    // Tolerance: the largest distance between an edge's polyline and its curve.
    explicit EdgeTable(double Tolerance);

    // Discretises every edge of Shape in the order the shape holds them: the indices do not
    // then depend on the order in which faces ask for them, on one thread or several.
    void AddAll(const TopoDS_Shape& Shape);

    // The index of Edge, whatever its orientation; discretises it when first asked. Safe to
    // call from several threads, as are the two below.
    int Index(const TopoDS_Edge& Edge);

    // The parameters of the edge's points on its 3D curve, ascending (first and last for a
    // degenerate edge).
    const std::vector<double>& Parameters(int Index) const;
    const EdgeData& Data(int Index) const;

    int Size() const;
    double Tolerance() const { return FTolerance; }
    std::vector<EdgeData> Take();

private:
    void Discretise(const TopoDS_Edge& Edge);

    double FTolerance;
    mutable std::mutex FMutex;
    TopTools_IndexedMapOfShape FEdges;
    std::deque<EdgeData> FData;  // a deque: what Data gives stays in place as edges are added
    std::deque<std::vector<double>> FParameters;
};

}  // namespace orvane::io
