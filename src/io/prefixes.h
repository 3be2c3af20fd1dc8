// The prefixes that are declared where the writer is.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xercesc/util/XercesDefs.hpp>

// The declarations in force, the innermost last. The default namespace has the empty
// prefix, and no namespace the empty name. Null texts are empty ones. Texts are the
// tree's and stay with it; those of prefixes made here stay with this object.
class CPrefixes {
 public:
  struct CBinding {
    std::u16string_view m_Prefix;
    std::u16string_view m_Uri;
    bool m_IsLevel1;   // declared by an attribute that itself knows of no namespaces
    bool m_IsWritten;  // stands in the text, or in the document type
  };

  bool IsEmpty() const { return m_Bindings.empty(); }
  // Where an element begins; what it declares goes at its end.
  std::size_t Mark() const { return m_Bindings.size(); }
  void GoBackTo(std::size_t mark) { m_Bindings.resize(mark); }

  void Add(const CBinding& binding) { m_Bindings.push_back(binding); }
  // The binding of a prefix since a mark; null for none.
  const CBinding* Find(std::u16string_view prefix, std::size_t mark = 0) const;
  bool IsBound(std::u16string_view prefix, std::u16string_view uri) const;

  // A prefix that is bound to the name here; empty for none.
  std::u16string_view PrefixOf(std::u16string_view uri) const;
  // One that means nothing here.
  std::u16string_view NewPrefix();

 private:
  std::vector<CBinding> m_Bindings;
  std::vector<std::unique_ptr<std::u16string>> m_Made;
};
