#include "io/ModelStream.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "io/CadFileReader.h"

namespace orvane::io {
namespace {

constexpr std::uint32_t kMagic = 0x4F52564D;  // "ORVM"

class Writer {
public:
    template <typename T>
        requires std::is_trivially_copyable_v<T>
    void Put(const T& value)
    {
        FBytes.append(reinterpret_cast<const char*>(&value), sizeof(T));
    }
    template <typename T>
    void PutVector(const std::vector<T>& values)
    {
        Put(static_cast<std::uint64_t>(values.size()));
        FBytes.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
    }
    void PutString(const std::string& s)
    {
        Put(static_cast<std::uint64_t>(s.size()));
        FBytes += s;
    }
    std::string Take() { return std::move(FBytes); }

private:
    std::string FBytes;
};

class Reader {
public:
    explicit Reader(std::string_view bytes) : FBytes(bytes) {}
    template <typename T>
        requires std::is_trivially_copyable_v<T>
    T Get()
    {
        T value;
        std::memcpy(&value, Take(sizeof(T)), sizeof(T));
        return value;
    }
    template <typename T>
    std::vector<T> GetVector()
    {
        const std::size_t n = Count(sizeof(T));
        std::vector<T> values(n);
        if (n > 0) std::memcpy(values.data(), Take(n * sizeof(T)), n * sizeof(T));
        return values;
    }
    std::string GetString()
    {
        const std::size_t n = Count(1);
        return std::string(Take(n), n);
    }
    // A count of items of the given size that the remaining bytes can hold.
    std::size_t Count(std::size_t itemSize)
    {
        const auto n = Get<std::uint64_t>();
        if (n > (FBytes.size() - FPos) / itemSize) Damaged();
        return static_cast<std::size_t>(n);
    }
    bool AtEnd() const { return FPos == FBytes.size(); }
    [[noreturn]] static void Damaged() { throw ECadFileError("the reader's answer is damaged"); }

private:
    const char* Take(std::size_t n)
    {
        if (n > FBytes.size() - FPos) Damaged();
        const char* p = FBytes.data() + FPos;
        FPos += n;
        return p;
    }
    std::string_view FBytes;
    std::size_t FPos = 0;
};

void PutSurface(Writer& w, const NurbsSurfaceData& s)
{
    w.Put(s.DegreeU);
    w.Put(s.DegreeV);
    w.Put(s.CountU);
    w.Put(s.CountV);
    w.PutVector(s.KnotsU);
    w.PutVector(s.KnotsV);
    w.PutVector(s.Poles);
    w.PutVector(s.Weights);
}

NurbsSurfaceData GetSurface(Reader& r)
{
    NurbsSurfaceData s;
    s.DegreeU = r.Get<int>();
    s.DegreeV = r.Get<int>();
    s.CountU = r.Get<int>();
    s.CountV = r.Get<int>();
    s.KnotsU = r.GetVector<double>();
    s.KnotsV = r.GetVector<double>();
    s.Poles = r.GetVector<TPoint3D>();
    s.Weights = r.GetVector<double>();
    return s;
}

void PutFace(Writer& w, const FaceData& f)
{
    w.Put(f.Number);
    w.PutString(f.Name);
    w.PutString(f.SourceKind);
    PutSurface(w, f.Surface);
    w.Put(static_cast<std::uint64_t>(f.Loops.size()));
    for (const TrimLoopData& loop : f.Loops) {
        w.Put(static_cast<std::uint64_t>(loop.size()));
        for (const TrimCurveData& c : loop) {
            w.Put(c.Degree);
            w.PutVector(c.Knots);
            w.PutVector(c.Poles);
            w.PutVector(c.Weights);
            w.Put(c.Edge);
            w.Put(static_cast<std::uint8_t>(c.AgainstEdge ? 1 : 0));
            w.PutVector(c.EdgeUV);
        }
    }
    w.Put(static_cast<std::uint8_t>(f.Reversed ? 1 : 0));
    w.Put(f.Bounds);
    w.Put(f.ExactArea);
    w.Put(f.Solid);
}

FaceData GetFace(Reader& r)
{
    FaceData f;
    f.Number = r.Get<int>();
    f.Name = r.GetString();
    f.SourceKind = r.GetString();
    f.Surface = GetSurface(r);
    f.Loops.resize(r.Count(8));
    for (TrimLoopData& loop : f.Loops) {
        loop.resize(r.Count(8));
        for (TrimCurveData& c : loop) {
            c.Degree = r.Get<int>();
            c.Knots = r.GetVector<double>();
            c.Poles = r.GetVector<TPoint2D>();
            c.Weights = r.GetVector<double>();
            c.Edge = r.Get<int>();
            c.AgainstEdge = r.Get<std::uint8_t>() != 0;
            c.EdgeUV = r.GetVector<TPoint2D>();
        }
    }
    f.Reversed = r.Get<std::uint8_t>() != 0;
    f.Bounds = r.Get<DerivativeBounds>();
    f.ExactArea = r.Get<double>();
    f.Solid = r.Get<int>();
    return f;
}

}  // namespace

std::string EncodeModel(const CadModelData& Model)
{
    Writer w;
    w.Put(kMagic);
    w.PutString(Model.Format);
    w.PutString(Model.Unit);
    w.Put(static_cast<std::uint64_t>(Model.Faces.size()));
    for (const FaceData& f : Model.Faces) PutFace(w, f);
    w.Put(static_cast<std::uint64_t>(Model.Skipped.size()));
    for (const SkippedFace& s : Model.Skipped) {
        w.Put(s.Number);
        w.PutString(s.Name);
        w.PutString(s.Reason);
        w.Put(static_cast<std::uint8_t>(s.Negligible ? 1 : 0));
    }
    w.Put(Model.Box);
    w.Put(Model.ExactArea);
    w.Put(Model.ExactVolume);
    w.Put(Model.SolidCount);
    w.Put(static_cast<std::uint64_t>(Model.Edges.size()));
    for (const EdgeData& e : Model.Edges) {
        w.PutVector(e.Points);
        w.Put(static_cast<std::uint8_t>(e.Degenerate ? 1 : 0));
    }
    w.PutVector(Model.Solids);
    w.Put(Model.Tolerance);
    w.Put(static_cast<std::uint64_t>(Model.Stages.size()));
    for (const StageTime& t : Model.Stages) {
        w.PutString(t.Name);
        w.Put(t.Seconds);
        w.Put(t.Count);
        w.PutString(t.Of);
    }
    return w.Take();
}

CadModelData DecodeModel(std::string_view Bytes)
{
    Reader r(Bytes);
    if (r.Get<std::uint32_t>() != kMagic) Reader::Damaged();
    CadModelData m;
    m.Format = r.GetString();
    m.Unit = r.GetString();
    m.Faces.resize(r.Count(8));
    for (FaceData& f : m.Faces) f = GetFace(r);
    m.Skipped.resize(r.Count(8));
    for (SkippedFace& s : m.Skipped) {
        s.Number = r.Get<int>();
        s.Name = r.GetString();
        s.Reason = r.GetString();
        s.Negligible = r.Get<std::uint8_t>() != 0;
    }
    m.Box = r.Get<BoundingBox>();
    m.ExactArea = r.Get<double>();
    m.ExactVolume = r.Get<double>();
    m.SolidCount = r.Get<int>();
    m.Edges.resize(r.Count(9));
    for (EdgeData& e : m.Edges) {
        e.Points = r.GetVector<TPoint3D>();
        e.Degenerate = r.Get<std::uint8_t>() != 0;
    }
    m.Solids = r.GetVector<SolidData>();
    m.Tolerance = r.Get<double>();
    m.Stages.resize(r.Count(8 + 8 + 8 + 8));
    for (StageTime& t : m.Stages) {
        t.Name = r.GetString();
        t.Seconds = r.Get<double>();
        t.Count = r.Get<long long>();
        t.Of = r.GetString();
    }
    if (!r.AtEnd()) Reader::Damaged();
    return m;
}

}  // namespace orvane::io
