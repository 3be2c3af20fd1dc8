#include "markup.h"

std::string Escaped(std::string_view value) {
  std::string escaped;
  for (const char c : value) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\n':
        escaped += "&#xA;";
        break;
      case '\r':
        escaped += "&#xD;";
        break;
      case '\t':
        escaped += "&#x9;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}
