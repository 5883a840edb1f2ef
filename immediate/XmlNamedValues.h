// Named values on an XML element, each with a default: the writer leaves out a value equal to
// its default and the reader answers the default for a value that is missing, so the pair
// agrees either way. Values are attributes, which keep CR LF as written (element text would not).
#pragma once

#include <pugixml.hpp>

#include <string>

namespace orvane {

void WriteNamedString(pugi::xml_node ANode, const char* AName, const std::string& AValue,
                      const std::string& ADefault);
// Written in the shortest form that reads back to the same double, independent of the locale.
void WriteNamedFloat(pugi::xml_node ANode, const char* AName, double AValue, double ADefault);

std::string ReadNamedString(pugi::xml_node ANode, const char* AName, const std::string& ADefault);
// The default also where the text is not a whole floating-point number.
double ReadNamedFloat(pugi::xml_node ANode, const char* AName, double ADefault);

}  // namespace orvane
