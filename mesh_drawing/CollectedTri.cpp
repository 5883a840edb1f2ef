#include "mesh_drawing/CollectedTri.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "contracts/Generics.h"
#include "mesh_drawing/GLVAOManager.h"

namespace orvane {
namespace {

constexpr double kPairTolerance = 1e-6;

using TPair = TCollectedTri::TPointComparePair;

std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }

// Exact equality: all six doubles with the same bits.
struct TPairBitsEqual {
    bool operator()(const TPair& a, const TPair& b) const noexcept
    {
        return Bits(a.Vertex.X) == Bits(b.Vertex.X) && Bits(a.Vertex.Y) == Bits(b.Vertex.Y) &&
               Bits(a.Vertex.Z) == Bits(b.Vertex.Z) && Bits(a.Normal.X) == Bits(b.Normal.X) &&
               Bits(a.Normal.Y) == Bits(b.Normal.Y) && Bits(a.Normal.Z) == Bits(b.Normal.Z);
    }
};

// Mixes the bits of all six doubles (a multiply-xorshift over each 64-bit word).
std::uint64_t HashBits(const TPair& p) noexcept
{
    std::uint64_t h = 0x9E3779B97F4A7C15ull;
    for (double d : {p.Vertex.X, p.Vertex.Y, p.Vertex.Z, p.Normal.X, p.Normal.Y, p.Normal.Z}) {
        h ^= Bits(d);
        h *= 0xFF51AFD7ED558CCDull;
        h ^= h >> 32;
    }
    return h;
}

// The vertex table: open addressing over the positions in the unique lists, which hold the
// keys themselves. At least twice as many slots as vertices keep the probes short.
class TVertexTable {
public:
    explicit TVertexTable(std::size_t count)
        : FMask(std::bit_ceil(std::max<std::size_t>(2 * count, 16)) - 1), FSlots(FMask + 1, -1)
    {
    }

    // The value of key, or, where the table does not hold it yet, the value next (entered).
    std::int32_t FindOrAdd(const TPair& key, std::int32_t next, const TList<TPoint3D>& vertices,
                           const TList<TPoint3D>& normals)
    {
        for (std::size_t slot = HashBits(key) & FMask;; slot = (slot + 1) & FMask) {
            const std::int32_t held = FSlots[slot];
            if (held < 0) return FSlots[slot] = next;
            if (TPairBitsEqual()(key, TPair{vertices[held], normals[held]})) return held;
        }
    }

private:
    std::size_t FMask;
    std::vector<std::int32_t> FSlots;
};

TPoint3D PointAt(const TFloatDynArray& a, std::size_t i) { return {a[3 * i], a[3 * i + 1], a[3 * i + 2]}; }

void WriteBack(const TList<TPoint3D>& points, TFloatDynArray& a)
{
    a.resize(3 * static_cast<std::size_t>(points.Count()));
    std::size_t k = 0;
    for (const TPoint3D& p : points) {
        a[k++] = p.X;
        a[k++] = p.Y;
        a[k++] = p.Z;
    }
}

}  // namespace

bool operator==(const TCollectedTri::TPointComparePair& pt1, const TCollectedTri::TPointComparePair& pt2)
{
    return pt1.Vertex.Equals(pt2.Vertex, kPairTolerance) && pt1.Normal.Equals(pt2.Normal, kPairTolerance);
}

TCollectedTri::TCollectedTri(bool EBOMode) : FEBOMode(EBOMode) { Reset(); }

void TCollectedTri::Reset()
{
    FTriOut.clear();
    FNormOut.clear();
    FTriIn.clear();
    FNormIn.clear();
    FIndexOut.clear();
    FIndexIn.clear();
}

void TCollectedTri::LoadMesh(bool merge, TFloatDynArray& tri, TFloatDynArray& norm, TDynGLFloat& triOut,
                             TDynGLFloat& normOut, TDynGLinteger& index)
{
    if (merge) {
        index.clear();
        ExtractIndexInVertexArray(tri, norm, index);
    }
    triOut.clear();
    FloatDynArrayToDynGLFloat(tri, triOut);
    normOut.clear();
    FloatDynArrayToDynGLFloat(norm, normOut);
}

void TCollectedTri::LoadOuter(TFloatDynArray ATriOuter, TFloatDynArray ANormOuter)
{
    LoadMesh(FEBOMode, ATriOuter, ANormOuter, FTriOut, FNormOut, FIndexOut);
}

void TCollectedTri::LoadInner(TFloatDynArray ATriIner, TFloatDynArray ANormInner)
{
    LoadMesh(FEBOMode, ATriIner, ANormInner, FTriIn, FNormIn, FIndexIn);
}

void TCollectedTri::LoadOuter(TDynGLFloat ATriOuter, TDynGLFloat ANormOuter)
{
    FTriOut = std::move(ATriOuter);
    FNormOut = std::move(ANormOuter);
    FIndexOut.clear();
}

void TCollectedTri::LoadInner(TDynGLFloat ATriIner, TDynGLFloat ANormInner)
{
    FTriIn = std::move(ATriIner);
    FNormIn = std::move(ANormInner);
    FIndexIn.clear();
}

void TCollectedTri::ExtractIndexInVertexArray(TFloatDynArray& vertices, TFloatDynArray& normals,
                                              TDynGLinteger& index)
{
    // Arrays of unequal length are outside the contract; reading stops at the shorter one.
    const std::size_t count = std::min(vertices.size(), normals.size()) / 3;
    index.assign(count, 0);
    TVertexTable table(count);
    TList<TPoint3D> uniqueVertices;
    TList<TPoint3D> uniqueNormals;
    for (std::size_t i = 0; i < count; ++i) {
        const TPair key = TPair::Create(PointAt(vertices, i), PointAt(normals, i));
        const std::int32_t next = uniqueVertices.Count();
        index[i] = table.FindOrAdd(key, next, uniqueVertices, uniqueNormals);
        if (index[i] == next) {
            uniqueVertices.Add(key.Vertex);
            uniqueNormals.Add(key.Normal);
        }
    }
    WriteBack(uniqueVertices, vertices);
    WriteBack(uniqueNormals, normals);
}

void TCollectedTri::GenerateTriVAO(TGLVAOManager& VAOManager, Cardinal& OuterVAOID, Cardinal& InnerVAOID) const
{
    OuterVAOID = 0;
    InnerVAOID = 0;
    if (FEBOMode && !FIndexOut.empty())
        VAOManager.GenerateTriVAO(FTriOut, FNormOut, FIndexOut, OuterVAOID);
    else
        VAOManager.GenerateTriVAO(FTriOut, FNormOut, OuterVAOID);
    if (FEBOMode && !FIndexIn.empty())
        VAOManager.GenerateTriVAO(FTriIn, FNormIn, FIndexIn, InnerVAOID);
    else
        VAOManager.GenerateTriVAO(FTriIn, FNormIn, InnerVAOID);
}

bool TCollectedTri::Valid() const noexcept { return FTriOut.size() > 2 || FTriIn.size() > 2; }

}  // namespace orvane
