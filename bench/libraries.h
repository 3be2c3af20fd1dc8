// The libraries behind one face: owners of their documents, and trees that a walk
// can follow.
#pragma once

#include <libxml/parser.h>
#include <tessel/standin.h>
#include <tessel/tessel.h>

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include "owners.h"

namespace bench {

// -- Owners -------------------------------------------------------------------

// Throws what went wrong for any status but 0.
void Require(TSXStatus status, const char* pCall);

void Load(const CDocument& document, CText& xml);
CDocument OpenDocument(const std::string& xml);

// A document with the parser that owns it, in the state that each starts with.
class CXercesDocument {
 public:
  CXercesDocument() = default;
  explicit CXercesDocument(const std::string& xml) { Parse(xml); }

  void HeedNamespaces() { m_pParser->setDoNamespaces(true); }
  void Parse(const std::string& xml);
  void ParseFile(const std::string& path);
  xercesc::DOMDocument* Get() const { return m_pParser->getDocument(); }
  xercesc::DOMElement* Root() const { return Get()->getDocumentElement(); }

 private:
  std::unique_ptr<xercesc::XercesDOMParser> m_pParser =
      std::make_unique<xercesc::XercesDOMParser>();
};

// An object of Xerces-C that is given back by release().
struct CReleaseDOM {
  template <class T>
  void operator()(T* pObject) const {
    pObject->release();
  }
};
template <class T>
using COwned = std::unique_ptr<T, CReleaseDOM>;

// A parser and a document without any node: what an empty document takes.
struct CXercesEmpty {
  xercesc::XercesDOMParser m_Parser;
  COwned<xercesc::DOMDocument> m_Document{
      xercesc::DOMImplementation::getImplementation()->createDocument()};
};

struct CLibxml2Free {
  void operator()(xmlDoc* pDoc) const { xmlFreeDoc(pDoc); }
};
using CLibxml2Document = std::unique_ptr<xmlDoc, CLibxml2Free>;
CLibxml2Document ParseLibxml2(const std::string& xml);

// The UTF-16 text that a literal or a row's own string stands for.
std::u16string Wide(const char* pText);

// What a C++ program does to have a text of the DOM in the local code page; gives
// its length.
uint64_t TranscodeOut(const XMLCh* pText);

// The same document in every library.
struct CDocuments {
  explicit CDocuments(const std::string& xml);

  TSXRefId Root() const { return m_TesselRoot.Get(); }
  xmlNode* Libxml2Root() const { return xmlDocGetRootElement(m_Libxml2.get()); }
  pugi::xml_node PugixmlRoot() const { return m_Pugixml.document_element(); }

  CDocument m_Tessel;
  CNode m_TesselRoot;
  CXercesDocument m_Xerces;
  CLibxml2Document m_Libxml2;
  pugi::xml_document m_Pugixml;
};

// -- Trees --------------------------------------------------------------------

// Visit counts a node; Leave follows when the walk needs the node no more.
struct CTesselTree {
  using Node = TSXRefId;
  static Node First(Node node) {
    TSXRefId child = 0;
    Require(TSXGetFirstChild(node, 0, &child), "TSXGetFirstChild");
    return child;
  }
  static Node Next(Node node) {
    TSXRefId sibling = 0;
    Require(TSXGetNextSibling(node, 0, &sibling), "TSXGetNextSibling");
    return sibling;
  }
  static uint64_t Visit(Node) { return 1; }
  static void Leave(Node node) { TSXNodeClose(node); }
};

// Leaves every id open and remembers it.
struct CTesselKeepingTree : CTesselTree {
  explicit CTesselKeepingTree(std::vector<TSXRefId>& ids) : m_Ids(ids) {}
  void Leave(Node node) { m_Ids.push_back(node); }
  std::vector<TSXRefId>& m_Ids;
};

struct CXercesTree {
  using Node = xercesc::DOMNode*;
  static Node First(Node node) { return node->getFirstChild(); }
  static Node Next(Node node) { return node->getNextSibling(); }
  static uint64_t Visit(Node) { return 1; }
  static void Leave(Node) {}
};

struct CLibxml2Tree {
  using Node = xmlNode*;
  static Node First(Node node) { return node->children; }
  static Node Next(Node node) { return node->next; }
  static uint64_t Visit(Node) { return 1; }
  static void Leave(Node) {}
};

struct CPugixmlTree {
  using Node = pugi::xml_node;
  static Node First(Node node) { return node.first_child(); }
  static Node Next(Node node) { return node.next_sibling(); }
  static uint64_t Visit(Node) { return 1; }
  static void Leave(Node) {}
};

// Walks a node and all below it by first child and next sibling, and adds up the
// visits. The node itself is not left.
template <class Tree>
uint64_t Walk(Tree&& tree, typename std::remove_reference_t<Tree>::Node node) {
  uint64_t sum = tree.Visit(node);
  auto child = tree.First(node);
  while (child) {
    sum += Walk(tree, child);
    const auto next = tree.Next(child);
    tree.Leave(child);
    child = next;
  }
  return sum;
}

// The children of a node; ids stay open.
template <class Tree>
std::vector<typename Tree::Node> Children(typename Tree::Node node) {
  std::vector<typename Tree::Node> children;
  for (auto child = Tree::First(node); child; child = Tree::Next(child)) children.push_back(child);
  return children;
}

// Ids that are closed together.
class CIds {
 public:
  CIds() = default;
  explicit CIds(std::vector<TSXRefId> ids) : m_Ids(std::move(ids)) {}
  ~CIds() { Close(); }
  CIds(const CIds&) = delete;
  CIds& operator=(const CIds&) = delete;

  std::vector<TSXRefId>& Get() { return m_Ids; }
  void Close() {
    for (const TSXRefId id : m_Ids) TSXNodeClose(id);
    m_Ids.clear();
  }

 private:
  std::vector<TSXRefId> m_Ids;
};

}  // namespace bench
