// The application object: a service registry keyed by GUID and the place messages are shown.
#pragma once

#include <functional>
#include <string>

#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "contracts/Interfaces.h"

namespace orvane {

// Receives each shown message: the text and the integer that came with it.
using TMessageSink = std::function<void(const std::string& text, int kind)>;

class ORVANE_API TAppSystem {
public:
    TAppSystem();

    // Keeps a counted reference to service under guid; a later registration of the same
    // GUID replaces the earlier one.
    void RegisterService(const TGUID& guid, IInterface* service);
    // The service registered under guid (not counted for the caller), or nullptr.
    IInterface* GetService(const TGUID& guid) const;
    // Drops every registration; the host does this when it ends.
    void ClearServices();

    // Hands the text to the message sink and returns.
    void ShowMsg(const std::string& text, int kind);
    // Installs a sink and answers the one it replaces; standard error is the default,
    // one line per message.
    TMessageSink SetMessageSink(TMessageSink sink);

private:
    TDictionary<TGUID, TInterfacePtr<IInterface>, TGUIDHash> FServices;
    TMessageSink FSink;
};

// The application object of the host.
extern ORVANE_API TAppSystem AppSys;

}  // namespace orvane
