#include "contracts/Interfaces.h"

#include <cstdio>

namespace orvane {

std::string TGUID::ToString() const
{
    char text[39];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", D1, D2, D3, D4[0],
                  D4[1], D4[2], D4[3], D4[4], D4[5], D4[6], D4[7]);
    return text;
}

std::size_t TGUIDHash::operator()(const TGUID& g) const noexcept
{
    std::size_t h = g.D1 ^ (std::size_t(g.D2) << 32) ^ (std::size_t(g.D3) << 48);
    for (std::uint8_t b : g.D4) h = h * 131 + b;
    return h;
}

int TInterfacedObject::QueryInterface(const TGUID& iid, void** obj)
{
    *obj = nullptr;
    return Answer<IInterface>(iid, obj);
}

int TInterfacedObject::_Release()
{
    int count = --FRefCount;
    if (count == 0) delete this;
    return count;
}

}  // namespace orvane
