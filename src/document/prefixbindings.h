// The prefixes that a host binds for the expressions of a document.
#pragma once

#include <map>
#include <string>
#include <string_view>

// From prefixes to namespace URIs. It belongs to a document object, so it has no lock.
class CPrefixBindings {
 public:
  // An empty URI unbinds.
  void Bind(std::u16string_view prefix, std::u16string_view uri) {
    if (uri.empty()) {
      m_URIs.erase(std::u16string(prefix));
    } else {
      m_URIs.insert_or_assign(std::u16string(prefix), std::u16string(uri));
    }
  }

  // Null for a prefix that is not bound; valid until the prefix is bound anew.
  const char16_t* Find(std::u16string_view prefix) const {
    const auto found = m_URIs.find(prefix);
    return found != m_URIs.end() ? found->second.c_str() : nullptr;
  }

 private:
  std::map<std::u16string, std::u16string, std::less<>> m_URIs;
};
