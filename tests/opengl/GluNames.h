// The GLU functions of the GLU library, for comparing the hand-written function types with the
// library's own header.
#pragma once

#include <map>
#include <string>

#define ORVANE_GLU_FUNCTIONS(X)                                                                  \
    X(gluErrorString) X(gluGetString) X(gluOrtho2D) X(gluPerspective) X(gluPickMatrix)           \
    X(gluLookAt) X(gluProject) X(gluUnProject) X(gluScaleImage) X(gluBuild1DMipmaps)              \
    X(gluBuild2DMipmaps) X(gluNewQuadric) X(gluDeleteQuadric) X(gluQuadricNormals)                \
    X(gluQuadricTexture) X(gluQuadricOrientation) X(gluQuadricDrawStyle) X(gluCylinder)           \
    X(gluDisk) X(gluPartialDisk) X(gluSphere) X(gluQuadricCallback) X(gluNewTess)                 \
    X(gluDeleteTess) X(gluTessBeginPolygon) X(gluTessBeginContour) X(gluTessVertex)               \
    X(gluTessEndContour) X(gluTessEndPolygon) X(gluTessProperty) X(gluTessNormal)                 \
    X(gluTessCallback) X(gluGetTessProperty) X(gluNewNurbsRenderer) X(gluDeleteNurbsRenderer)     \
    X(gluBeginSurface) X(gluBeginCurve) X(gluEndCurve) X(gluEndSurface) X(gluBeginTrim)           \
    X(gluEndTrim) X(gluPwlCurve) X(gluNurbsCurve) X(gluNurbsSurface) X(gluLoadSamplingMatrices)   \
    X(gluNurbsProperty) X(gluGetNurbsProperty) X(gluNurbsCallback) X(gluBeginPolygon)             \
    X(gluNextContour) X(gluEndPolygon) X(gluNurbsCallbackData)

namespace orvane::testing {

// Name to the mangled type of the function pointer, as the library's header declares it; made
// in a file of its own, the only one of these tests that sees the system's GLU header.
std::map<std::string, std::string> GluHeaderTypes();

}  // namespace orvane::testing
