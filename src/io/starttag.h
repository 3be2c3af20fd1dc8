// The start tag of an element, with the namespaces that it needs.
#pragma once

#include <xercesc/dom/DOM.hpp>

#include "io/prefixes.h"
#include "io/textwriter.h"

// A prefix that is used and not declared where it stands is declared there; one that
// the tree binds to two names at once is exchanged for another. Nodes that were made
// without namespaces stay as they are.
class CStartTags {
 public:
  // `hasDefaults` says that attributes with their default value come back by
  // themselves, since the document type is written too.
  CStartTags(CTextWriter& out, bool hasDefaults) : m_Out(out), m_HasDefaults(hasDefaults) {}

  // Writes it without its end, and gives the place of the name.
  CTextWriter::CPlace Write(const xercesc::DOMElement& element);

  CPrefixes& Prefixes() { return m_Prefixes; }

 private:
  // What is asked for several times of the element at hand.
  struct CElement {
    const xercesc::DOMNamedNodeMap* m_pAttributes;
    std::size_t m_Mark;
    bool m_KnowsNamespaces;
    std::u16string_view m_Prefix, m_Uri;
  };

  void BindElement(const CElement& element);
  void WriteAttribute(const CElement& element, const xercesc::DOMAttr& attribute);
  // Whether the attribute declares a prefix that this element binds already.
  bool Declares(const CElement& element, std::u16string_view prefix,
                const xercesc::DOMAttr& attribute, bool isLevel1);
  void WritePrefixed(const CElement& element, const xercesc::DOMAttr& attribute,
                     std::u16string_view uri);
  bool DefaultDeclares(const CElement& element, std::u16string_view prefix,
                       std::u16string_view uri) const;
  void Declare(std::u16string_view prefix, std::u16string_view uri);

  CTextWriter& m_Out;
  bool m_HasDefaults;
  CPrefixes m_Prefixes;
};

// An attribute without an element: its name, or "{namespace}name", and its value.
void WriteAttributeAlone(CTextWriter& out, const xercesc::DOMAttr& attribute);
