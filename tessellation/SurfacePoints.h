// The points of one surface as the quad road asks for them, in the tessellation plane: each
// distinct parameter pair is evaluated once, and the basis functions of each distinct U and V
// once, so that the quads of a row or a column share them. The values are those of
// TTempNurbsPointEval::EvalPointOnNurbsSurface bit for bit: the same arithmetic in the same
// order, only not repeated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "contracts/Cadgeometry.h"

namespace orvane {

// Dense indices 0, 1, 2, ... for keys of two 64-bit words, in the order they are first met.
// Open addressing in one array, so that a lookup allocates nothing.
class TKeyIndex {
public:
    explicit TKeyIndex(std::size_t Expected);

    // The index of the key and whether it is new.
    struct TFound {
        std::uint32_t Index;
        bool New;
    };
    TFound Find(std::uint64_t A, std::uint64_t B);

private:
    struct TSlot {
        std::uint64_t A = 0;
        std::uint64_t B = 0;
        std::uint32_t Index = kEmpty;
    };
    static constexpr std::uint32_t kEmpty = 0xffffffffu;

    void Grow();
    std::size_t Home(std::uint64_t A, std::uint64_t B) const;

    std::vector<TSlot> FSlots;
    std::uint32_t FCount = 0;
};

class TSurfacePoints {
public:
    // Surface is the road's surface (a NURBS surface, or trimmed or extended over one); SwapXY
    // where the plane's X is V. ExpectedPoints sizes the tables.
    TSurfacePoints(const TGeSurface& Surface, double SampleTolerance, bool SwapXY, std::size_t ExpectedPoints);

    // The point at P of the plane. The first call fails the assertion "TessQuadsTriangulator,
    // GetPoint3D can not get GeNurbsSurface" where the surface has no NURBS surface.
    TPoint3D At(const TPoint2D& P);
    // The points at each of P, in order, added to Out.
    void AddAll(const std::vector<TPoint2D>& P, std::vector<TPoint3D>& Out);

private:
    // The basis functions of each distinct parameter of one direction.
    class TBasisLines {
    public:
        explicit TBasisLines(std::size_t Expected);
        // The span at Value; its Degree + 1 basis functions start at Basis.
        int Span(double Value, const std::vector<double>& Knots, int Degree, double SampleTolerance,
                 const double*& Basis);

    private:
        TKeyIndex FKeys;
        std::vector<int> FSpans;
        std::vector<double> FValues;
        std::vector<double> FScratch;
    };

    // The last points asked for: a quad mostly repeats two corners of the one before it.
    struct TRecent {
        std::uint64_t U = 0;
        std::uint64_t V = 0;
        std::uint32_t Index = 0xffffffffu;
    };
    static constexpr std::size_t kRecent = 4;

    void Load();
    std::uint32_t IndexOf(std::uint64_t U, std::uint64_t V);
    TPoint3D Evaluate(int SpanU, const double* Nu, int SpanV, const double* Nv) const;

    const TGeSurface& FSurface;
    const TGeNurbsSurface* FNurbs = nullptr;
    double FSampleTolerance;
    bool FSwapXY;
    std::vector<TPoint3D> FCtrlPoints;  // I * CtrlCountV + J
    std::vector<double> FWeights;
    TBasisLines FLinesU;
    TBasisLines FLinesV;
    TKeyIndex FKeys;
    std::vector<TPoint3D> FPoints;
    TRecent FRecent[kRecent];
    std::size_t FNextRecent = 0;
};

}  // namespace orvane
