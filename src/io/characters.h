// Which characters may stand where in XML.
#pragma once

#include <string_view>
#include <xercesc/util/XercesDefs.hpp>

namespace characters {

// One of the characters that a public identifier consists of.
bool IsPublicId(std::u16string_view text);

bool IsSpace(std::u16string_view text);

// ASCII that stands for itself everywhere, without a look at the rest of its text.
constexpr bool IsPlainControl(XMLCh unit) { return unit == u'\n' || unit == u'\t'; }

// What the runs below are made of: the bits that are not 0 stop a run. Written without
// a branch, since the compiler makes vector code of it.
struct CText {
  static constexpr XMLCh Stops(XMLCh unit) {
    return static_cast<XMLCh>(((unit < 0x20) & (unit != u'\n') & (unit != u'\t')) | (unit >= 0x7F) |
                              (unit == u'&') | (unit == u'<') | (unit == u'>'));
  }
  static constexpr std::string_view Escape(XMLCh unit) {
    switch (unit) {
      case u'&':
        return "&amp;";
      case u'<':
        return "&lt;";
      case u'>':
        return "&gt;";
      case u'\r':
        return "&#xD;";
      default:
        return {};
    }
  }
  static constexpr bool kHasReferences = true;
};

// The value of an attribute between double quotes.
struct CValue {
  static constexpr XMLCh Stops(XMLCh unit) {
    return static_cast<XMLCh>((unit < 0x20) | (unit >= 0x7F) | (unit == u'&') | (unit == u'<') |
                              (unit == u'"'));
  }
  static constexpr std::string_view Escape(XMLCh unit) {
    switch (unit) {
      case u'&':
        return "&amp;";
      case u'<':
        return "&lt;";
      case u'"':
        return "&quot;";
      case u'\t':
        return "&#x9;";
      case u'\n':
        return "&#xA;";
      case u'\r':
        return "&#xD;";
      default:
        return {};
    }
  }
  static constexpr bool kHasReferences = true;
};

// Where nothing can be escaped: comments, instructions, identifiers, the subset.
struct CVerbatim {
  static constexpr XMLCh Stops(XMLCh unit) {
    return static_cast<XMLCh>(((unit < 0x20) & (unit != u'\n') & (unit != u'\t')) | (unit >= 0x7F));
  }
  static constexpr std::string_view Escape(XMLCh unit) {
    return unit == u'\r' ? std::string_view("\r") : std::string_view();
  }
  static constexpr bool kHasReferences = false;
};

}  // namespace characters
