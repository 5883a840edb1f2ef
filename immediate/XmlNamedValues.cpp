#include "immediate/XmlNamedValues.h"

#include <charconv>
#include <cstring>

namespace orvane {

namespace {

void SetAttribute(pugi::xml_node ANode, const char* AName, const char* AText)
{
    pugi::xml_attribute attribute = ANode.attribute(AName);
    if (!attribute) attribute = ANode.append_attribute(AName);
    attribute.set_value(AText);
}

}  // namespace

void WriteNamedString(pugi::xml_node ANode, const char* AName, const std::string& AValue,
                      const std::string& ADefault)
{
    if (AValue == ADefault)
        ANode.remove_attribute(AName);
    else
        SetAttribute(ANode, AName, AValue.c_str());
}

void WriteNamedFloat(pugi::xml_node ANode, const char* AName, double AValue, double ADefault)
{
    if (AValue == ADefault) {
        ANode.remove_attribute(AName);
        return;
    }
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text - 1, AValue);
    *end.ptr = '\0';
    SetAttribute(ANode, AName, text);
}

std::string ReadNamedString(pugi::xml_node ANode, const char* AName, const std::string& ADefault)
{
    const pugi::xml_attribute attribute = ANode.attribute(AName);
    return attribute ? std::string(attribute.value()) : ADefault;
}

double ReadNamedFloat(pugi::xml_node ANode, const char* AName, double ADefault)
{
    const pugi::xml_attribute attribute = ANode.attribute(AName);
    if (!attribute) return ADefault;
    const char* text = attribute.value();
    const char* end = text + std::strlen(text);
    double value = 0.0;
    const std::from_chars_result parsed = std::from_chars(text, end, value);
    return parsed.ec == std::errc() && parsed.ptr == end ? value : ADefault;
}

}  // namespace orvane
