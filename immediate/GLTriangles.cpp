#include "immediate/GLTriangles.h"

#include <string>

#include "contracts/PrimitiveCodes.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

namespace {

// A call through an entry point that is not loaded raises instead of jumping to address 0.
template <typename F>
F Loaded(F AEntry, const char* AName)
{
    if (AEntry == nullptr) throw Exception(std::string("OpenGL entry point not loaded: ") + AName);
    return AEntry;
}

}  // namespace

TGLTriangles::TGLTriangles() : TGLTriangles(orvane::GL_TRIANGLE_FAN) {}

TGLTriangles::TGLTriangles(Cardinal Amode)
    : FPoints(std::make_unique<TList<TPoint3D>>()),
      FNormalPoints(std::make_unique<TList<TPoint3D>>()),
      FConnectMode(Amode)
{
}

TGLTriangles::~TGLTriangles()
{
    FPoints.reset();
    FNormalPoints.reset();
}

void TGLTriangles::Draw3D() const
{
    const auto normal = Loaded(dglOpenGL::glNormal3d, "glNormal3d");
    const auto vertex = Loaded(dglOpenGL::glVertex3d, "glVertex3d");
    Loaded(dglOpenGL::glBegin, "glBegin")(FConnectMode);
    for (int i = 0; i < FPoints->Count(); ++i) {
        const TPoint3D& n = FNormalPoints->GetItem(i);
        const TPoint3D& p = FPoints->GetItem(i);
        normal(n.X, n.Y, n.Z);
        vertex(p.X, p.Y, p.Z);
    }
    Loaded(dglOpenGL::glEnd, "glEnd")();
}

std::unique_ptr<TGLTriangles> TGLTriangles::GetCopy() const
{
    auto copy = std::make_unique<TGLTriangles>(FConnectMode);
    for (int i = 0; i < FPoints->Count(); ++i) {
        copy->FPoints->Add(FPoints->GetItem(i));
        copy->FNormalPoints->Add(FNormalPoints->GetItem(i));
    }
    return copy;
}

void TGLTriangles::Transform(TMatrix3D AMatrix3D)
{
    for (TPoint3D& p : *FPoints) p = AMatrix3D.Transform(p);

    TMatrix3D normalMatrix = TMatrix3D::CreateIdent();
    normalMatrix.ReflexXOZ();
    if (normalMatrix == AMatrix3D) {
        // Under the XOZ mirror a normal does not follow the points.
        normalMatrix.Reset();
        normalMatrix.ReflexY();
    } else {
        normalMatrix = TMatrix3D::CreateIdent();
        normalMatrix.Multiply(AMatrix3D, true);
    }
    if (AMatrix3D.IsIdent()) return;
    for (TPoint3D& n : *FNormalPoints) n = normalMatrix.TransformVector(n);
}

}  // namespace orvane
