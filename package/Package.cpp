#include "package/Package.h"

#include <array>

#include "glu_triangulation/uTriangulate.h"
#include "immediate/zqglUtils.h"
#include "opengl/GL.h"
#include "opengl/GLu.h"
#include "opengl/dglOpenGL.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace orvane {

namespace {

// The order is the units' dependency order; each unit fills in its own functions.
constexpr std::array kUnits{
    TPackageUnit{"dglOpenGL", StartUnit_dglOpenGL, StopUnit_dglOpenGL},
    TPackageUnit{"uGLHandleObj", nullptr, nullptr},
    TPackageUnit{"zqglUtils", nullptr, StopUnit_zqglUtils},
    TPackageUnit{"GL", StartUnit_GL, StopUnit_GL},
    TPackageUnit{"GLMatrix", nullptr, nullptr},
    TPackageUnit{"GLTriangles", nullptr, nullptr},
    TPackageUnit{"GLu", StartUnit_GLu, StopUnit_GLu},
    TPackageUnit{"TextureLoadUnit", nullptr, nullptr},
    TPackageUnit{"UDrawViewUnitTool", nullptr, nullptr},
    TPackageUnit{"uTriangulate", StartUnit_uTriangulate, StopUnit_uTriangulate},
    TPackageUnit{"uTessQuadsTriangulator", StartUnit_uTessQuadsTriangulator, StopUnit_uTessQuadsTriangulator},
};

void StopFirst(std::span<const TPackageUnit> AUnits, std::size_t ACount)
{
    for (std::size_t i = ACount; i-- > 0;)
        if (AUnits[i].Stop) AUnits[i].Stop();
}

}  // namespace

std::span<const TPackageUnit> PackageUnits()
{
    return kUnits;
}

void StartUnits(std::span<const TPackageUnit> AUnits)
{
    for (std::size_t i = 0; i < AUnits.size(); ++i) {
        try {
            if (AUnits[i].Start) AUnits[i].Start();
        } catch (...) {
            StopFirst(AUnits, i);
            throw;
        }
    }
}

void StopUnits(std::span<const TPackageUnit> AUnits)
{
    StopFirst(AUnits, AUnits.size());
}

void StartPackage()
{
    StartUnits(PackageUnits());
}

void StopPackage()
{
    StopUnits(PackageUnits());
}

}  // namespace orvane
