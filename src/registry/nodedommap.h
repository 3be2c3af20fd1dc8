// Ties nodes to the document object that answers for them.
#pragma once

#include <absl/container/btree_map.h>
#include <absl/container/btree_set.h>

#include <span>
#include <utility>
#include <xercesc/dom/DOM.hpp>

#include "host/hostmutex.h"

class CXercesDOM;

// Two kinds of entry: the document node of every document object, so that the
// object can be found from any node of its tree, and every node that the library
// created and no tree owns yet, or that was taken out of its element or map, so that
// closing its id frees it.
//
// An entry also remembers the document whose tree its node dies with: an import
// enters a node of one document against the document object of another.
class CNodeDomMap {
 public:
  explicit CNodeDomMap(const char* pMutexName) : m_Mutex(pMutexName) {}
  CNodeDomMap(const CNodeDomMap&) = delete;
  CNodeDomMap& operator=(const CNodeDomMap&) = delete;

  // The first entry of a node wins; a null argument changes nothing.
  void Insert(xercesc::DOMNode* pNode, CXercesDOM* pDom);

  CXercesDOM* GetDomByNode(xercesc::DOMNode* pNode);

  // True exactly when an entry was erased.
  bool DeleteByNode(xercesc::DOMNode* pNode);

  // Erases every entry of a document object; true when there was one.
  bool DeleteByDom(CXercesDOM* pDom);

  // Erases every entry of a node that dies with this document's tree, the
  // document node included.
  void DeleteByTree(const xercesc::DOMDocument* pDoc);

  // Erases the entries that these nodes have.
  void Delete(std::span<xercesc::DOMNode* const> nodes);

  size_t EntryCount();

 private:
  struct CEntry {
    CXercesDOM* m_pDom;
    const xercesc::DOMDocument* m_pTree;
  };

  template <class Owner>
  using CIndex = absl::btree_set<std::pair<Owner, xercesc::DOMNode*>>;

  bool Erase(xercesc::DOMNode* pNode) TESSEL_REQUIRES(m_Mutex);
  template <class Owner>
  bool EraseAll(CIndex<Owner>& index, Owner CEntry::*pOwner, Owner owner) TESSEL_REQUIRES(m_Mutex);

  // The indexes say which entries go with a document object and which with a tree.
  absl::btree_map<xercesc::DOMNode*, CEntry> m_NodeToDom TESSEL_GUARDED_BY(m_Mutex);
  CIndex<CXercesDOM*> m_ByDom TESSEL_GUARDED_BY(m_Mutex);
  CIndex<const xercesc::DOMDocument*> m_ByTree TESSEL_GUARDED_BY(m_Mutex);
  CHostMutex m_Mutex;
};
