#include "coordinates/GLMatrix.h"

namespace orvane {

namespace {

constexpr double kWTolerance = 1e-6;
constexpr float kSizeTolerance = 1e-6f;

// The homogeneous w counts as zero.
bool WIsZero(double AW)
{
    return fEqual(AW, 0.0, kWTolerance);
}

// Rejects a negative width or height; the comparison runs in single precision.
bool SizeIsValid(const TGlViewport& AViewport)
{
    if (fSmall(static_cast<float>(AViewport[2]), 0.0f, kSizeTolerance)) return false;
    return !fSmall(static_cast<float>(AViewport[3]), 0.0f, kSizeTolerance);
}

TPoint3D Coord(const TGlMatrix& AMatrix, int AStart)
{
    return {AMatrix[AStart], AMatrix[AStart + 1], AMatrix[AStart + 2]};
}

void SetCoord(TGlMatrix& AMatrix, int AStart, const TPoint3D& APoint)
{
    AMatrix[AStart] = APoint.X;
    AMatrix[AStart + 1] = APoint.Y;
    AMatrix[AStart + 2] = APoint.Z;
}

// Reading element 4i + j as row i, column j: the determinant of the 3 x 3 matrix left when
// row ARow and column ACol are taken away, as a six-term sum of triple products.
double Minor(const TGlMatrix& AMatrix, int ARow, int ACol)
{
    int rows[3];
    int cols[3];
    for (int i = 0, r = 0, c = 0; i < 4; ++i) {
        if (i != ARow) rows[r++] = i;
        if (i != ACol) cols[c++] = i;
    }
    auto at = [&](int r, int c) { return AMatrix[4 * rows[r] + cols[c]]; };
    return at(0, 0) * at(1, 1) * at(2, 2) + at(0, 1) * at(1, 2) * at(2, 0) +
           at(0, 2) * at(1, 0) * at(2, 1) - at(0, 2) * at(1, 1) * at(2, 0) -
           at(0, 1) * at(1, 0) * at(2, 2) - at(0, 0) * at(1, 2) * at(2, 1);
}

// The point (x, y, z, 1) through the matrix, divided by w. False, APoint untouched: w test.
bool ApplyProjective(const TGlMatrix& AMatrix, double AX, double AY, double AZ, TPoint3D& APoint)
{
    TGlVector t;
    MultMatrixVecd(AMatrix, TGlVector{AX, AY, AZ, 1.0}, t);
    if (WIsZero(t[3])) return false;
    APoint = {t[0] / t[3], t[1] / t[3], t[2] / t[3]};
    return true;
}

// A clip-space vector to window coordinates: division by w, -1..1 to 0..1, the viewport.
bool ClipToWindow(const TGlVector& AClip, const TGlViewport& AViewport, TPoint3D& AWindow)
{
    if (WIsZero(AClip[3])) return false;
    double x = AClip[0] / AClip[3] * 0.5 + 0.5;
    double y = AClip[1] / AClip[3] * 0.5 + 0.5;
    const double z = AClip[2] / AClip[3] * 0.5 + 0.5;
    if (!SizeIsValid(AViewport)) return false;
    x = x * AViewport[2] + AViewport[0];
    y = y * AViewport[3] + AViewport[1];
    AWindow = {x, y, z};
    return true;
}

}  // namespace

bool GksMatrixToGl(const TMatrix3D& AMatrix, TGlMatrix& AGlMatrix)
{
    for (int c = 0; c < 3; ++c) SetCoord(AGlMatrix, 4 * c, AMatrix.GetColVector(c));
    SetCoord(AGlMatrix, 12, AMatrix.GetRowVector(3));
    AGlMatrix[3] = 0.0;
    AGlMatrix[7] = 0.0;
    AGlMatrix[11] = 0.0;
    AGlMatrix[15] = 1.0;
    return true;
}

bool GlMatrixToGks(const TGlMatrix& AGlMatrix, TMatrix3D& AMatrix)
{
    for (int c = 0; c < 3; ++c) AMatrix.SetColVector(c, Coord(AGlMatrix, 4 * c));
    AMatrix.SetRowVector(3, Coord(AGlMatrix, 12));
    return true;
}

bool MultMatrixVecd(const TGlMatrix& AMatrix, const TGlVector& AVector, TGlVector& AOut)
{
    for (int i = 0; i < 4; ++i)
        AOut[i] = AVector[0] * AMatrix[i] + AVector[1] * AMatrix[4 + i] +
                  AVector[2] * AMatrix[8 + i] + AVector[3] * AMatrix[12 + i];
    return true;
}

bool MultMatricesd(const TGlMatrix& A, const TGlMatrix& B, TGlMatrix& AOut)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            AOut[4 * i + j] = A[4 * i] * B[j] + A[4 * i + 1] * B[4 + j] +
                              A[4 * i + 2] * B[8 + j] + A[4 * i + 3] * B[12 + j];
    return true;
}

bool InvertMatrixd(const TGlMatrix& AMatrix, TGlMatrix& AOut)
{
    // The adjugate: c[4i + j] is the signed minor without row j and column i, so that the
    // product of the matrix and c is the determinant times the identity.
    TGlMatrix c;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            c[4 * i + j] = ((i + j) % 2 == 0 ? 1.0 : -1.0) * Minor(AMatrix, j, i);
    const double det = AMatrix[0] * c[0] + AMatrix[1] * c[4] + AMatrix[2] * c[8] + AMatrix[3] * c[12];
    if (det == 0.0) return false;
    const double factor = 1.0 / det;
    for (int i = 0; i < 16; ++i) AOut[i] = c[i] * factor;
    return true;
}

bool GLWcsToVcs(const TPoint3D& AWcs, const TGlMatrix& AModelView, TPoint3D& AVcs)
{
    return ApplyProjective(AModelView, AWcs.X, AWcs.Y, AWcs.Z, AVcs);
}

bool GLVcsToWcs(const TPoint3D& AVcs, const TGlMatrix& AModelView, TPoint3D& AWcs)
{
    TGlMatrix inverse;
    if (!InvertMatrixd(AModelView, inverse)) return false;
    return ApplyProjective(inverse, AVcs.X, AVcs.Y, AVcs.Z, AWcs);
}

bool GLVcsToDcs(const TPoint3D& AVcs, const TGlMatrix& AProjection, const TGlViewport& AViewport,
                TPoint3D& ADcs)
{
    TGlVector clip;
    MultMatrixVecd(AProjection, TGlVector{AVcs.X, AVcs.Y, AVcs.Z, 1.0}, clip);
    return ClipToWindow(clip, AViewport, ADcs);
}

bool GLDcsToVcs(const TPoint3D& ADcs, const TGlMatrix& AProjection, const TGlViewport& AViewport,
                TPoint3D& AVcs)
{
    TPoint3D q = ADcs;
    if (fGreat(q.Z, 0.0, kWTolerance) || fSmall(q.Z, 0.0, kWTolerance))
        q = {q.X / q.Z, q.Y / q.Z, 1.0};
    TGlMatrix inverse;
    if (!InvertMatrixd(AProjection, inverse)) return false;
    if (!SizeIsValid(AViewport)) return false;
    return ApplyProjective(inverse, q.X * 2.0 - 1.0, q.Y * 2.0 - 1.0, q.Z * 2.0 - 1.0, AVcs);
}

bool GLDcsToScr(const TPoint3D& ADcs, TPoint2D& AScr)
{
    AScr = {ADcs.X, ADcs.Y};
    return true;
}

bool GLScrToDcs(const TPoint3D& AScr, TPoint3D& ADcs)
{
    ADcs = AScr;
    return true;
}

bool GlWcsToScr(const TPoint3D& AWcs, const TGlMatrix& AModelView, const TGlMatrix& AProjection,
                const TGlViewport& AViewport, TPoint2D& AScr)
{
    TGlVector view;
    TGlVector clip;
    MultMatrixVecd(AModelView, TGlVector{AWcs.X, AWcs.Y, AWcs.Z, 1.0}, view);
    MultMatrixVecd(AProjection, view, clip);
    TPoint3D window;
    if (!ClipToWindow(clip, AViewport, window)) return false;
    AScr = {window.X, window.Y};
    return true;
}

bool GlScrToWcs(const TPoint3D& AScr, const TGlMatrix& AModelView, const TGlMatrix& AProjection,
                const TGlViewport& AViewport, TPoint3D& AWcs)
{
    TGlMatrix f;
    MultMatricesd(AModelView, AProjection, f);
    if (!InvertMatrixd(f, f)) return false;
    if (!SizeIsValid(AViewport)) return false;
    const double x = (AScr.X - AViewport[0]) / AViewport[2];
    const double y = (AScr.Y - AViewport[1]) / AViewport[3];
    return ApplyProjective(f, x * 2.0 - 1.0, y * 2.0 - 1.0, AScr.Z * 2.0 - 1.0, AWcs);
}

}  // namespace orvane
