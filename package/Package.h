// Package load and unload: the units' start-up code in dependency order, their shut-down
// code in the reverse order. Nothing runs in static initialisers; the host calls these two.
#pragma once

#include <span>

#include "contracts/Export.h"

namespace orvane {

// One unit of the package. A unit without start-up or shut-down work has null functions.
struct TPackageUnit {
    const char* Name;
    void (*Start)();
    void (*Stop)();
};

// Every unit of the package, in start-up order.
ORVANE_API std::span<const TPackageUnit> PackageUnits();

// Runs each unit's start-up in table order. Where one raises, the units already started are
// stopped in reverse order and the exception goes on to the caller.
ORVANE_API void StartUnits(std::span<const TPackageUnit> AUnits);
// Runs each unit's shut-down in reverse table order.
ORVANE_API void StopUnits(std::span<const TPackageUnit> AUnits);

// StartUnits and StopUnits over PackageUnits.
ORVANE_API void StartPackage();
ORVANE_API void StopPackage();

}  // namespace orvane
