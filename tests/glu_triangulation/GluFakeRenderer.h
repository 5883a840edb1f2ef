// A fake GLU NURBS renderer for tests of the GLU road: swaps the GLU entries of the dglOpenGL
// table for recording functions, keeps what they were given, and at gluEndSurface plays a
// scripted primitive stream through the callbacks installed on it. The real entries come back
// when the object goes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "opengl/dglOpenGL.h"

namespace orvane::testing {

// One primitive to play: a code and x, y, z of each vertex; the normals are (0, 0, 1).
struct TFakePrimitive {
    dglOpenGL::GLenum Type = 0;
    std::vector<float> Vertices;
};

struct TFakeNurbsSurface {
    std::vector<float> KnotsS, KnotsT;
    int StrideS = 0, StrideT = 0, OrderS = 0, OrderT = 0;
    dglOpenGL::GLenum Type = 0;
    std::vector<float> Control;  // (knots - order) points in s times those in t, 4 floats each
};

struct TFakeTrimCurve {
    bool Pwl = false;             // gluPwlCurve, else gluNurbsCurve
    std::vector<float> Knots;     // gluNurbsCurve only
    int Count = 0, Stride = 0, Order = 0;
    dglOpenGL::GLenum Type = 0;
    std::vector<float> Points;    // 3 floats a point, as given
};

class TFakeGlu {
public:
    TFakeGlu();
    ~TFakeGlu();
    TFakeGlu(const TFakeGlu&) = delete;
    TFakeGlu& operator=(const TFakeGlu&) = delete;

    // The names of the calls in order; gluNurbsProperty as "gluNurbsProperty <property>=<value>",
    // gluNurbsCallback as "gluNurbsCallback <which>".
    std::vector<std::string> Calls;
    std::vector<TFakeNurbsSurface> Surfaces;
    std::vector<TFakeTrimCurve> TrimCurves;
    // Played at every gluEndSurface.
    std::vector<TFakePrimitive> Script;
    // Set by the fake renderer's creation; 0 after its deletion.
    int LiveRenderers = 0;

    // The values given to gluNurbsProperty for a property, in order.
    std::vector<float> PropertyValues(dglOpenGL::GLenum property) const;

    static TFakeGlu* Active;

private:
    struct TSaved;
    std::unique_ptr<TSaved> FSaved;
};

}  // namespace orvane::testing
