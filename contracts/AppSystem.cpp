#include "contracts/AppSystem.h"

#include <cstdio>

namespace orvane {

TAppSystem AppSys;

namespace {
void ShowOnStandardError(const std::string& text, int /*kind*/)
{
    std::fprintf(stderr, "%s\n", text.c_str());
}
}  // namespace

TAppSystem::TAppSystem() : FSink(ShowOnStandardError) {}

void TAppSystem::RegisterService(const TGUID& guid, IInterface* service)
{
    FServices.AddOrSetValue(guid, TInterfacePtr<IInterface>(service));
}

IInterface* TAppSystem::GetService(const TGUID& guid) const
{
    TInterfacePtr<IInterface> service;
    return FServices.TryGetValue(guid, service) ? service.get() : nullptr;
}

void TAppSystem::ClearServices()
{
    FServices.Clear();
}

void TAppSystem::ShowMsg(const std::string& text, int kind)
{
    FSink(text, kind);
}

TMessageSink TAppSystem::SetMessageSink(TMessageSink sink)
{
    TMessageSink previous = std::move(FSink);
    FSink = sink ? std::move(sink) : TMessageSink(ShowOnStandardError);
    return previous;
}

}  // namespace orvane
