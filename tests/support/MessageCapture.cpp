#include "tests/support/MessageCapture.h"

namespace orvane::testing {

MessageCapture::MessageCapture()
{
    FPrevious = AppSys.SetMessageSink([this](const std::string& text, int kind) { FMessages.push_back({text, kind}); });
}

MessageCapture::~MessageCapture()
{
    AppSys.SetMessageSink(std::move(FPrevious));
}

std::vector<std::string> MessageCapture::Texts() const
{
    std::vector<std::string> texts;
    for (const auto& m : FMessages) texts.push_back(m.Text);
    return texts;
}

}  // namespace orvane::testing
