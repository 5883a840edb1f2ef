#include "tessellation/QuadNormals.h"

#include <cmath>
#include <vector>

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTessQuadsTriangulator";
constexpr double kZeroTol = 1e-6;

// TPoint3D's Length, Normal, CrossMul and Equals with the same arithmetic, where the compiler can see
// it: every quad needs several.
double LengthOf(const TPoint3D& P)
{
    return std::sqrt(P.X * P.X + P.Y * P.Y + P.Z * P.Z);
}

TPoint3D UnitOf(const TPoint3D& P)
{
    const double len = LengthOf(P);
    if (!(len >= TPoint3D::kNormalMinLength)) return TPoint3D::FZero;
    return P / len;
}

TPoint3D Cross(const TPoint3D& A, const TPoint3D& B)
{
    return {A.Y * B.Z - A.Z * B.Y, A.Z * B.X - A.X * B.Z, A.X * B.Y - A.Y * B.X};
}

bool Near(const TPoint3D& A, const TPoint3D& B)
{
    return LengthOf(B - A) <= kZeroTol;
}

bool IsZero(const TPoint3D& P)
{
    return LengthOf(P) <= kZeroTol;
}

// The run bookkeeping over one normal list of C entries.
class TNormalRuns {
public:
    explicit TNormalRuns(TList<TPoint3D>& AN) : N(AN), C(AN.Count()) {}

    bool IsOppositeNormal(const TPoint3D& A, const TPoint3D& B) const { return fSmall(A.DotMul(B), 0.0, 1e-6); }
    // Quads at I and J share the normals of their points 0 and 1.
    bool IsSameQuadNormal(int I, int J) const
    {
        return Near(N[I], N[J]) && Near(N[I + 1], N[J + 1]);
    }
    // The first quad behind the run that starts at I.
    int FindRunEnd(int I) const
    {
        int j = I + 4;
        while (j < C && IsSameQuadNormal(I, j)) j += 4;
        return j;
    }
    // The first quad of the run that ends just before I.
    int FindRunStart(int I) const
    {
        int j = I - 4;
        while (j - 4 >= 0 && IsSameQuadNormal(j - 4, I - 4)) j -= 4;
        return j;
    }

    TList<TPoint3D>& N;
    const int C;
};

}  // namespace

TPoint3D TQuadNormals::CalcNormal(const TPoint3D& A, const TPoint3D& B, const TPoint3D& C)
{
    return UnitOf(Cross(UnitOf(B - A), C - A));
}

TPoint3D TQuadNormals::CalcNormal(const TPoint3D& P0, const TPoint3D& P1, const TPoint3D& P2, const TPoint3D& P3)
{
    TPoint3D n = CalcNormal(P0, P1, P3);
    if (!IsZero(n)) return n;
    n = CalcNormal(P1, P2, P3);
    if (!IsZero(n)) return n;
    n = CalcNormal(P2, P3, P1);
    if (!IsZero(n)) return n;
    return CalcNormal(P3, P0, P2);
}

std::unique_ptr<TList<TPoint3D>> TQuadNormals::GetNormalListFromVertexList(const TList<TPoint3D>& Vertices)
{
    Assert(Vertices.Count() % 4 == 0, "得到四边形划分数据不为4的倍数");
    const std::vector<TPoint3D>& v = Vertices.Items();
    std::vector<TPoint3D> normals;
    normals.reserve(v.size());
    for (std::size_t q = 0; q < v.size(); q += 4) {
        TPoint3D n = CalcNormal(v[q], v[q + 1], v[q + 2], v[q + 3]);
        if (IsZero(n) && !normals.empty()) n = normals.back();
        normals.insert(normals.end(), 4, n);
    }
    return std::make_unique<TList<TPoint3D>>(std::move(normals));
}

// A run's two sides are written at different times, but its points 0 and 1 stay equal from
// quad to quad, so the runs are found the same way throughout.
void TQuadNormals::FixNormalRuns(TList<TPoint3D>& N, TPoint3D S, TPoint3D T)
{
    TNormalRuns runs(N);
    const int c = runs.C;
    if (runs.IsOppositeNormal(S, N[0])) S = -S;
    const int e = runs.FindRunEnd(0);
    for (int i = 0; i < e; i += 4) {
        N[i] = S;
        N[i + 3] = S;
    }

    if (runs.IsOppositeNormal(T, N[c - 2])) T = -T;
    const int b = runs.FindRunStart(c);
    for (int i = c; i > b; i -= 4) {
        N[i - 2] = T;
        N[i - 3] = T;
    }

    for (int i = e; i < c;) {
        const TPoint3D a = (N[i - 3] + N[i]).Normal();
        const TPoint3D d = (N[i - 2] + N[i + 3]).Normal();
        const int next = runs.FindRunEnd(i);
        const int prev = runs.FindRunStart(i);
        for (int k = i; k > prev; k -= 4) {
            N[k - 2] = d;
            N[k - 3] = a;
        }
        for (int k = i; k < next; k += 4) {
            N[k] = a;
            N[k + 3] = d;
        }
        i = next;
    }
}

}  // namespace orvane
