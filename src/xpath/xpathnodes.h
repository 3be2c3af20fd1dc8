// The wrapping nodes, one class per Xalan-C interface. Xalan-C casts by node type,
// so each kind must be of the class that its type promises.
#pragma once

#include <xalanc/XalanDOM/XalanAttr.hpp>
#include <xalanc/XalanDOM/XalanCDATASection.hpp>
#include <xalanc/XalanDOM/XalanComment.hpp>
#include <xalanc/XalanDOM/XalanDOMException.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanDOM/XalanNamedNodeMap.hpp>
#include <xalanc/XalanDOM/XalanProcessingInstruction.hpp>
#include <xercesc/util/XMLChar.hpp>

#include "xpath/xpathtree.h"

// What is the same for every kind.
template <class Base>
class CNodeOf : public Base {
 public:
  using typename Base::IndexType;
  using typename Base::NodeType;

  explicit CNodeOf(const CWrapped& wrapped) : m_Wrapped(wrapped) {}

  CWrapped& Wrapped() const { return m_Wrapped; }

  const xalanc::XalanDOMString& getNodeName() const override {
    return Name(&xercesc::DOMNode::getNodeName);
  }
  const xalanc::XalanDOMString& getNodeValue() const override { return m_Wrapped.Value(); }
  // Asked at every step of every recursion of Xalan-C over nodes.
  NodeType getNodeType() const override {
    m_Wrapped.Tree().CheckStack();
    return m_Wrapped.Type();
  }
  xalanc::XalanNode* getParentNode() const override { return m_Wrapped.Parent(); }
  const xalanc::XalanNodeList* getChildNodes() const override {
    throw xalanc::XalanDOMException(xalanc::XalanDOMException::NOT_SUPPORTED_ERR);
  }
  xalanc::XalanNode* getFirstChild() const override { return m_Wrapped.FirstChild(); }
  xalanc::XalanNode* getLastChild() const override { return m_Wrapped.LastChild(); }
  xalanc::XalanNode* getPreviousSibling() const override { return m_Wrapped.PreviousSibling(); }
  xalanc::XalanNode* getNextSibling() const override { return m_Wrapped.NextSibling(); }
  const xalanc::XalanNamedNodeMap* getAttributes() const override { return nullptr; }
  xalanc::XalanDocument* getOwnerDocument() const override { return &m_Wrapped.Tree().Root(); }
  const xalanc::XalanDOMString& getNamespaceURI() const override {
    return Name(&xercesc::DOMNode::getNamespaceURI);
  }
  const xalanc::XalanDOMString& getPrefix() const override {
    return Name(&xercesc::DOMNode::getPrefix);
  }
  const xalanc::XalanDOMString& getLocalName() const override {
    return Name(&xercesc::DOMNode::getLocalName);
  }
  bool isIndexed() const override { return m_Wrapped.Tree().IsNumbered(); }
  IndexType getIndex() const override { return m_Wrapped.m_Index; }

 protected:
  const xalanc::XalanDOMString& Name(const XMLCh* (xercesc::DOMNode::*pName)() const) const {
    const xercesc::DOMNode* pNode = m_Wrapped.Node();
    return m_Wrapped.Tree().Name(pNode == nullptr ? nullptr : (pNode->*pName)());
  }

  mutable CWrapped m_Wrapped;
};

// The attributes of an element; of the element that stands for none, the loose
// attribute below it.
class CAttributes final : public xalanc::XalanNamedNodeMap {
 public:
  explicit CAttributes(CWrapped& element) : m_Element(element) {}

  xalanc::XalanNode* item(xalanc::XalanSize_t index) const override {
    const xercesc::DOMNamedNodeMap* pMap = Map();
    return m_Element.Tree().Wrap(pMap == nullptr ? m_Element.Tree().Top() : pMap->item(index));
  }
  xalanc::XalanSize_t getLength() const override {
    const xercesc::DOMNamedNodeMap* pMap = Map();
    return pMap == nullptr ? 1 : pMap->getLength();
  }
  xalanc::XalanNode* getNamedItem(const xalanc::XalanDOMString& name) const override {
    const xercesc::DOMNamedNodeMap* pMap = Map();
    return pMap == nullptr ? nullptr : m_Element.Tree().Wrap(pMap->getNamedItem(name.c_str()));
  }
  xalanc::XalanNode* getNamedItemNS(const xalanc::XalanDOMString& uri,
                                    const xalanc::XalanDOMString& localName) const override {
    const xercesc::DOMNamedNodeMap* pMap = Map();
    if (pMap == nullptr) return nullptr;
    return m_Element.Tree().Wrap(pMap->getNamedItemNS(uri.c_str(), localName.c_str()));
  }

 private:
  const xercesc::DOMNamedNodeMap* Map() const {
    return m_Element.Node() == nullptr ? nullptr : m_Element.Node()->getAttributes();
  }

  CWrapped& m_Element;
};

class CElementNode final : public CNodeOf<xalanc::XalanElement> {
 public:
  explicit CElementNode(const CWrapped& wrapped) : CNodeOf(wrapped), m_Attributes(m_Wrapped) {}
  const xalanc::XalanNamedNodeMap* getAttributes() const override { return &m_Attributes; }
  const xalanc::XalanDOMString& getTagName() const override { return getNodeName(); }

 private:
  CAttributes m_Attributes;
};

class CAttributeNode final : public CNodeOf<xalanc::XalanAttr> {
 public:
  using CNodeOf::CNodeOf;
  xalanc::XalanNode* getParentNode() const override { return nullptr; }
  const xalanc::XalanDOMString& getName() const override { return getNodeName(); }
  const xalanc::XalanDOMString& getValue() const override { return getNodeValue(); }
  xalanc::XalanElement* getOwnerElement() const override {
    return static_cast<xalanc::XalanElement*>(m_Wrapped.Parent());
  }
};

// Text and CDATA sections.
template <class Base>
class CTextNodeOf final : public CNodeOf<Base> {
 public:
  using CNodeOf<Base>::CNodeOf;
  const xalanc::XalanDOMString& getData() const override { return this->getNodeValue(); }
  bool isWhitespace() const override {
    const xalanc::XalanDOMString& data = getData();
    return xercesc::XMLChar1_0::isAllSpaces(data.c_str(), data.size());
  }
};
using CTextNode = CTextNodeOf<xalanc::XalanText>;
using CCDATANode = CTextNodeOf<xalanc::XalanCDATASection>;

class CCommentNode final : public CNodeOf<xalanc::XalanComment> {
 public:
  using CNodeOf::CNodeOf;
  const xalanc::XalanDOMString& getData() const override { return getNodeValue(); }
};

class CInstructionNode final : public CNodeOf<xalanc::XalanProcessingInstruction> {
 public:
  using CNodeOf::CNodeOf;
  const xalanc::XalanDOMString& getTarget() const override { return getNodeName(); }
  const xalanc::XalanDOMString& getData() const override { return getNodeValue(); }
};

class CRootNode final : public CNodeOf<xalanc::XalanDocument> {
 public:
  using CNodeOf::CNodeOf;
  // Never null: without a root element Xalan-C would take "/" for the top of a
  // result tree fragment, climb past it and crash.
  xalanc::XalanElement* getDocumentElement() const override {
    return &m_Wrapped.Tree().WholeContent();
  }
  xalanc::XalanElement* getElementById(const xalanc::XalanDOMString& id) const override {
    return static_cast<xalanc::XalanElement*>(m_Wrapped.Tree().FindById(id.c_str()));
  }
};

// Document types, entities, entity references and notations.
class COtherNode final : public CNodeOf<xalanc::XalanNode> {
 public:
  using CNodeOf::CNodeOf;
};

// The data of a wrapping node of any kind.
inline CWrapped& WrappedOf(const xalanc::XalanNode& node) {
  using xalanc::XalanNode;
  switch (node.getNodeType()) {
    case XalanNode::ELEMENT_NODE:
      return static_cast<const CElementNode&>(node).Wrapped();
    case XalanNode::ATTRIBUTE_NODE:
      return static_cast<const CAttributeNode&>(node).Wrapped();
    case XalanNode::TEXT_NODE:
      return static_cast<const CTextNode&>(node).Wrapped();
    case XalanNode::CDATA_SECTION_NODE:
      return static_cast<const CCDATANode&>(node).Wrapped();
    case XalanNode::COMMENT_NODE:
      return static_cast<const CCommentNode&>(node).Wrapped();
    case XalanNode::PROCESSING_INSTRUCTION_NODE:
      return static_cast<const CInstructionNode&>(node).Wrapped();
    case XalanNode::DOCUMENT_NODE:
      return static_cast<const CRootNode&>(node).Wrapped();
    default:
      return static_cast<const COtherNode&>(node).Wrapped();
  }
}
