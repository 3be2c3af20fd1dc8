// Reference ids for the objects of one kind.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <span>
#include <xercesc/dom/DOM.hpp>

#include "host/hostmutex.h"

// What the exported data objects are made of is visible outside the library.
#define TESSEL_DATA __attribute__((visibility("default")))

// Gives each registered pointer an id and counts how often that id was handed
// out; the entry goes when as many hand-outs have come back. Objects are
// borrowed: a registry never frees one.
//
// Invariants, under m_Mutex:
// - m_PtrToSess and m_SessToPtr are inverse of each other, but for forgotten
//   ids: those stay in m_SessToPtr with a null pointer, because their object is
//   gone while the host still holds the id.
// - Every id of m_SessToPtr has a count of at least 1 in m_SessRefCount.
// - Ids only grow; none is issued twice.
// - m_Holders names the node whose memory a collection lives and dies with, and the
//   document that this node belongs to. An object without holder never dies.
// A registration that runs out of memory leaves the registry as it was.
template <class T>
class TESSEL_DATA CPtrSessMap {
 public:
  explicit CPtrSessMap(const char* pMutexName) : m_Mutex(pMutexName) {}
  virtual ~CPtrSessMap() = default;
  CPtrSessMap(const CPtrSessMap&) = delete;
  CPtrSessMap& operator=(const CPtrSessMap&) = delete;

  // Registers p, or counts one more hand-out of it. 0 for null.
  unsigned long Insert(T* p) {
    CHostLock lock(m_Mutex);
    if (p == nullptr) return 0;
    const unsigned long known = CountAgain(p);
    return known != 0 ? known : Register(p);
  }

  // As Insert, for a collection that goes when `holder` goes.
  unsigned long InsertHeld(T* p, const xercesc::DOMNode& holder) {
    const CHolder entry{&holder, holder.getOwnerDocument()};
    CHostLock lock(m_Mutex);
    if (p == nullptr) return 0;
    if (const unsigned long known = CountAgain(p)) return known;
    CHolders holders{{p, entry}};
    const unsigned long id = Register(p);
    m_Holders.merge(holders);
    return id;
  }

  // The node that a collection goes with; null for none.
  const xercesc::DOMNode* HolderOf(T* p) {
    CHostLock lock(m_Mutex);
    const auto found = m_Holders.find(p);
    return found != m_Holders.end() ? found->second.m_pNode : nullptr;
  }

  // Keeps the ids of the collections of these nodes, with no object. The nodes are
  // sorted by address and may be gone.
  void ForgetHeldBy(std::span<xercesc::DOMNode* const> sorted) {
    ForgetIf([&](const CHolder& holder) {
      return std::binary_search(sorted.begin(), sorted.end(), holder.m_pNode);
    });
  }

  // The same for all collections of a document that is about to go.
  void ForgetHeldIn(const xercesc::DOMDocument* pDoc) {
    const xercesc::DOMNode* pDocumentNode = pDoc;
    // A document type knew no document while it was free.
    const xercesc::DOMNode* pType = pDoc->getDoctype();
    ForgetIf([&](const CHolder& holder) {
      return holder.m_pTree == pDoc || holder.m_pNode == pDocumentNode ||
             (pType != nullptr && holder.m_pNode == pType);
    });
  }

  // Takes one hand-out back; true when it was the last and the entry is gone.
  bool DeleteBySess(unsigned long id) {
    CHostLock lock(m_Mutex);
    if (!CountBack(id)) return false;
    Erase(id);
    return true;
  }

  // The object of an id, null for 0, an unknown and a forgotten id. The caller
  // uses it unlocked: no other thread may close the same id meanwhile.
  T* GetPtrBySess(unsigned long id) {
    CHostLock lock(m_Mutex);
    return Find(id);
  }

  // How many ids name an object at the moment.
  size_t LiveCount() {
    CHostLock lock(m_Mutex);
    return m_PtrToSess.size();
  }

 protected:
  using CPtrToSess = std::map<T*, unsigned long>;
  using CSessToPtr = std::map<unsigned long, T*>;
  using CSessRefCount = std::map<unsigned long, int32_t>;

  T* Find(unsigned long id) const TESSEL_REQUIRES(m_Mutex) {
    const auto found = m_SessToPtr.find(id);
    return found != m_SessToPtr.end() ? found->second : nullptr;
  }

  // The id of a known pointer with one more hand-out, 0 for an unknown one.
  unsigned long CountAgain(T* p) TESSEL_REQUIRES(m_Mutex) {
    const auto found = m_PtrToSess.find(p);
    if (found == m_PtrToSess.end()) return 0;
    ++m_SessRefCount[found->second];
    return found->second;
  }

  unsigned long Register(T* p) TESSEL_REQUIRES(m_Mutex) {
    const unsigned long id = NextId();
    // All nodes are made before the first map changes.
    CPtrToSess ptrToSess{{p, id}};
    CSessToPtr sessToPtr{{id, p}};
    CSessRefCount sessRefCount{{id, 1}};
    m_PtrToSess.merge(ptrToSess);
    m_SessToPtr.merge(sessToPtr);
    m_SessRefCount.merge(sessRefCount);
    return id;
  }

  // Counts one hand-out of a live id back; true when none is left.
  bool CountBack(unsigned long id) TESSEL_REQUIRES(m_Mutex) {
    if (Find(id) == nullptr) return false;
    const auto count = m_SessRefCount.find(id);
    return count != m_SessRefCount.end() && --count->second == 0;
  }

  void Erase(unsigned long id) TESSEL_REQUIRES(m_Mutex) {
    m_Holders.erase(Find(id));
    m_PtrToSess.erase(Find(id));
    m_SessToPtr.erase(id);
    m_SessRefCount.erase(id);
  }

  // The id and its count stay with the host; the object is gone.
  void ForgetPtr(T* p) TESSEL_REQUIRES(m_Mutex) {
    const auto found = m_PtrToSess.find(p);
    if (found == m_PtrToSess.end()) return;
    m_SessToPtr[found->second] = nullptr;
    m_PtrToSess.erase(found);
  }

  CPtrToSess m_PtrToSess TESSEL_GUARDED_BY(m_Mutex);
  CSessToPtr m_SessToPtr TESSEL_GUARDED_BY(m_Mutex);
  CSessRefCount m_SessRefCount TESSEL_GUARDED_BY(m_Mutex);
  CHostMutex m_Mutex;

 private:
  struct CHolder {
    const xercesc::DOMNode* m_pNode;
    const xercesc::DOMDocument* m_pTree;
  };
  using CHolders = std::map<T*, CHolder>;

  template <class Dies>
  void ForgetIf(Dies dies) {
    CHostLock lock(m_Mutex);
    std::erase_if(m_Holders, [&](const auto& entry) TESSEL_REQUIRES(m_Mutex) {
      if (!dies(entry.second)) return false;
      ForgetPtr(entry.first);
      return true;
    });
  }

  unsigned long NextId() TESSEL_REQUIRES(m_Mutex) {
    do {
      ++m_LastSess;
    } while (m_SessToPtr.contains(m_LastSess));
    return m_LastSess;
  }

  CHolders m_Holders TESSEL_GUARDED_BY(m_Mutex);
  unsigned long m_LastSess TESSEL_GUARDED_BY(m_Mutex) = 0;
};
