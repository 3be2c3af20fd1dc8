// The tree of a text without a document type.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dom/hashroom.h"
#include "dom/parts.h"
#include "host/domowner.h"

namespace dom {

// Makes the tree that the parser would make of a text without faults: the same nodes, flags
// and pooled names. What gives a truth value gives false where only the parser can tell what
// is right; the tree is of no use then.
//
// Names are views of the text in UTF-8, which lives as long as the builder.
class CPlainBuilder {
 public:
  CPlainBuilder(const XMLCh* pURI, bool hasNamespaces);
  CPlainBuilder(const CPlainBuilder&) = delete;
  CPlainBuilder& operator=(const CPlainBuilder&) = delete;

  // An attribute of a start tag. Its normalised value is among those of the whole tag.
  struct CAttribute {
    std::string_view m_Name;
    std::size_t m_Offset;  // units
    std::size_t m_Length;
  };

  // Of the text; an encoding that is not told is empty.
  void Declare(const XMLCh* pEncoding, bool isStandalone);
  bool Start(std::string_view name, std::span<const CAttribute> attributes, const XMLCh* pValues);
  void End();
  // Two texts in a row would be two nodes.
  void AddText(std::u16string_view text);
  void AddCData(std::u16string_view text);
  void AddComment(const XMLCh* pText);
  bool AddInstruction(std::string_view target, const XMLCh* pData);

  // Whether an element has started and not ended, and the name of the innermost one.
  bool IsInElement() const { return !m_Open.empty(); }
  std::string_view OpenName() const { return m_Open.back().m_Name; }

  CDOMOwner<xercesc::DOMDocumentImpl> TakeDocument();

 private:
  // What a prefix stands for at the place that has been reached; null for nothing.
  struct CPrefix {
    const XMLCh* m_pName = nullptr;
    const XMLCh* m_pURI = nullptr;
  };
  struct CName {
    std::string_view m_Text;          // empty for none
    const XMLCh* m_pName = nullptr;   // pooled, as all of them
    const XMLCh* m_pLocal = nullptr;  // the same pointer where there is no prefix
    CPrefix* m_pPrefix = nullptr;     // null for none
    bool m_IsDeclaration = false;     // of a namespace, where it is an attribute's
  };
  struct CBinding {
    CPrefix* m_pPrefix;
    const XMLCh* m_pURI;
  };
  struct COpen {
    std::string_view m_Name;
    xercesc::DOMElementImpl* m_pElement;
    std::size_t m_Hidden;  // bindings when it started
  };

  const XMLCh* Pooled(const XMLCh* pText);
  CPrefix& PrefixOf(const XMLCh* pPooled);
  const CName* NameOf(std::string_view text);
  bool Widen(std::string_view text);
  bool Read(CName& name, std::string_view text);
  bool Bind(const CName& name, std::u16string_view uri);
  void Unbind(std::size_t hidden);
  template <class Names, class Node>
  bool SetName(Node& node, const CName& name, const XMLCh* pDefault);
  xercesc::DOMElementImpl* MakeElement(const CName& name);
  xercesc::DOMAttrImpl* MakeAttribute(const CName& name, std::u16string_view value);
  bool AddAttributes(xercesc::DOMElementImpl& element, std::span<const CAttribute> attributes,
                     const XMLCh* pValues);
  void Add(DOMNode& child);

  static constexpr std::size_t kSlots = 256;

  CDOMOwner<xercesc::DOMDocumentImpl> m_pOwned;
  xercesc::DOMDocumentImpl* m_pDocument;
  bool m_HasNamespaces;
  CNameRoom m_Room;
  std::array<CName, kSlots> m_Names;  // each where its text leads to, the last one of them
  std::unordered_map<const XMLCh*, CPrefix> m_Prefixes;  // by pooled name
  CPrefix* m_pXml = nullptr;
  CPrefix* m_pXmlns = nullptr;
  CPrefix m_Default;                    // of elements that have no prefix
  std::vector<CBinding> m_Hidden;       // what the declarations in force have hidden
  std::vector<COpen> m_Open;            // elements
  std::vector<CName> m_AttributeNames;  // of the start tag at hand
  std::vector<xercesc::DOMAttrImpl*> m_Attributes;
  std::u16string m_Wide;  // the text at hand
};

}  // namespace dom
