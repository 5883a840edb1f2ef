// ORVANE_API marks a declaration that liborvane exports. The library is compiled with hidden
// symbols, so whatever a header declares without it stays inside the library.
#pragma once

#define ORVANE_API __attribute__((visibility("default")))
