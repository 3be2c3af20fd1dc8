// Two equal documents whose nodes are known in pairs: one is edited by the room for the
// DOM, the other by the DOM's own methods.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMNodeImpl.hpp>

#include "harness.h"

namespace fuzz {

class CTwins {
 public:
  using DOMNode = xercesc::DOMNode;

  explicit CTwins(const char* pXml);
  ~CTwins();
  CTwins(const CTwins&) = delete;
  CTwins& operator=(const CTwins&) = delete;

  xercesc::DOMDocument& Ours() const { return *m_pOurs; }
  xercesc::DOMDocument& Theirs() const { return *m_pTheirs; }

  // One of our nodes, in the order in which they came; the DOM's one in its place.
  DOMNode& Choose(CBytes& bytes) const;
  DOMNode& TwinOf(const DOMNode& ours) const { return *m_Twins.at(&ours).m_pTheirs; }

  // Enters two new nodes and what is in them. Null for both is no pair.
  void Pair(const DOMNode* pOurs, DOMNode* pTheirs);

  // Forgets nodes that are about to be freed, with all that is in them.
  void Forget(const DOMNode& ours);
  void ForgetBelow(const DOMNode& ours);

  // What a failure names.
  void Begin(const char* pEdit) { m_Edit = pEdit; }
  // Fails where anything differs that can be seen of any node, hanging or loose.
  void Compare(bool withIds);

 private:
  // The other node of a pair, and the parts of both that hold their flags.
  struct CTwin {
    DOMNode* m_pTheirs;
    const xercesc::DOMNodeImpl* m_pOurPart;
    const xercesc::DOMNodeImpl* m_pTheirPart;
  };
  void CompareNode(const DOMNode& ours, const CTwin& twin);
  void CompareLink(const DOMNode* pOurs, const DOMNode* pTheirs, const char* pLink);
  void CompareText(const XMLCh* pOurs, const XMLCh* pTheirs, const char* pWhat);
  void Require(bool isEqual, const char* pWhat) const;

  xercesc::DOMDocument* m_pOurs;
  xercesc::DOMDocument* m_pTheirs;
  std::unordered_map<const DOMNode*, CTwin> m_Twins;
  std::vector<const DOMNode*> m_Order;
  std::string m_Edit;
};

}  // namespace fuzz
