// TGLTriangles: one drawable primitive as vertices with one normal each and an OpenGL mode,
// in double precision on the host's side. The host fills the public lists; the object can be
// drawn, copied and moved by a kernel transform. TGLTrianglesList collects such objects.
#pragma once

#include <memory>

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "contracts/SysUtils.h"

namespace orvane {

class ORVANE_API TGLTriangles {
public:
    // The mode 6, GL_TRIANGLE_FAN.
    TGLTriangles();
    explicit TGLTriangles(Cardinal Amode);
    TGLTriangles(const TGLTriangles&) = delete;
    TGLTriangles& operator=(const TGLTriangles&) = delete;
    virtual ~TGLTriangles();

    // glBegin with the mode, a normal and a vertex for each point, glEnd, into the current
    // context. The two lists must have the same length; the class does not check it.
    void Draw3D() const;
    // A copy with the same mode and points, sharing nothing with this one.
    std::unique_ptr<TGLTriangles> GetCopy() const;
    // Points through AMatrix3D. Normals as directions, not renormalised, through the same
    // matrix except under the mirror in the XOZ plane, where they go through ReflexY; under
    // the identity they are left alone.
    void Transform(TMatrix3D AMatrix3D);

    std::unique_ptr<TList<TPoint3D>> FPoints;
    std::unique_ptr<TList<TPoint3D>> FNormalPoints;
    Cardinal FConnectMode;
};

// An owning list of triangle objects.
class ORVANE_API TGLTrianglesList : public TObjectList<TGLTriangles> {
public:
    using TObjectList<TGLTriangles>::TObjectList;
};

}  // namespace orvane
