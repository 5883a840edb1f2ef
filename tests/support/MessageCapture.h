// Collects what the application object shows for the length of a test.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "contracts/AppSystem.h"

namespace orvane::testing {

struct ShownMessage {
    std::string Text;
    int Kind;
};

class MessageCapture {
public:
    MessageCapture() { FPrevious = AppSys.SetMessageSink([this](const std::string& text, int kind) { FMessages.push_back({text, kind}); }); }
    ~MessageCapture() { AppSys.SetMessageSink(std::move(FPrevious)); }
    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;

    const std::vector<ShownMessage>& Messages() const { return FMessages; }
    // The texts alone, in the order shown.
    std::vector<std::string> Texts() const
    {
        std::vector<std::string> texts;
        for (const auto& m : FMessages) texts.push_back(m.Text);
        return texts;
    }

private:
    std::vector<ShownMessage> FMessages;
    TMessageSink FPrevious;
};

// The text of the E that action raises; "(nothing raised)" when it returns.
template <typename E = std::exception, typename F>
std::string Raised(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.what();
    }
    return "(nothing raised)";
}

}  // namespace orvane::testing
