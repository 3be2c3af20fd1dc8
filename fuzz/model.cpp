#include "model.h"

#include <cstdio>

#include "document/xercesdom.h"
#include "registry/globals.h"

namespace fuzz {

namespace {

using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMNode;

constexpr size_t kMostNodesCopied = 300;
constexpr int kMostCalls = 200;

// The document type whose map holds an entity or notation; a clone is in none.
const DOMNode* TypeOf(const DOMNode* pItem) {
  const DOMDocument* pDocument = pItem->getOwnerDocument();
  const auto* pType = pDocument != nullptr ? pDocument->getDoctype() : nullptr;
  if (pType == nullptr) return nullptr;
  const bool isEntity = pItem->getNodeType() == DOMNode::ENTITY_NODE;
  const auto* pMap = isEntity ? pType->getEntities() : pType->getNotations();
  return pMap->getNamedItem(pItem->getNodeName()) == pItem ? pType : nullptr;
}

// A node and all below it, with attributes; a document type's maps count as their items.
size_t CountNodes(const DOMNode& node) {
  size_t count = 1;
  if (const auto* pMap = node.getAttributes()) count += 2 * pMap->getLength();
  if (node.getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) {
    const auto& type = static_cast<const xercesc::DOMDocumentType&>(node);
    count += type.getEntities()->getLength() + type.getNotations()->getLength();
  }
  for (const DOMNode* p = node.getFirstChild(); p != nullptr; p = p->getNextSibling()) {
    count += CountNodes(*p);
  }
  return count;
}

// The node that a node hangs on in any way.
const DOMNode* HolderOf(const DOMNode* pNode) {
  switch (pNode->getNodeType()) {
    case DOMNode::ATTRIBUTE_NODE:
      return static_cast<const DOMAttr*>(pNode)->getOwnerElement();
    case DOMNode::ENTITY_NODE:
    case DOMNode::NOTATION_NODE:
      return TypeOf(pNode);
    default:
      return pNode->getParentNode();
  }
}

const DOMDocument* DocumentOf(const DOMNode* pNode, unsigned kind) {
  if (kind == kDocument) return static_cast<const CXercesDOM*>(pNode)->m_pDoc;
  if (kind == kBareDocument) return dynamic_cast<const DOMDocument*>(pNode);
  return pNode->getOwnerDocument();
}

// Which kinds a function wants behind its first id, so that many calls work.
unsigned WantedKinds(const CRow& row) {
  switch (row.m_Code) {
    case domErrRefSetAttribute:
    case domErrRefSetAttributeNodeNS:
    case domErrRefRemoveAttributeNode:
    case domErrRefSetNamedItem:
    case domErrRefSetNamedItemNS:
      return kAttribute;
    case domErrRefCreateDocument:
      return kType;
    default:
      return kAnyNode;
  }
}

bool Resolves(Registry registry, TSXRefId id) {
  switch (registry) {
    case Registry::kNode:
      return g_NodeSessMap.GetPtrBySess(id) != nullptr;
    case Registry::kList:
      return g_NodeListSessMap.GetPtrBySess(id) != nullptr;
    case Registry::kMap:
      return g_NamedNodeMapSessMap.GetPtrBySess(id) != nullptr;
    case Registry::kImplementation:
      return g_DOMImplSessMap.GetPtrBySess(id) != nullptr;
  }
  return false;
}

void Trace(const CCall& call) {
  if (!IsTraced()) return;
  std::fprintf(stderr, "%s(", call.m_Row.m_pName);
  for (const TSXRefId id : call.m_Ids) std::fprintf(stderr, " %ld", static_cast<long>(id));
  if (!call.m_WasMade) {
    std::fprintf(stderr, " ) left out\n");
    return;
  }
  std::fprintf(stderr, " ) %d -> %ld", call.m_Status, static_cast<long>(call.m_IdOut));
  for (size_t i = 0; i < call.m_Array.Count(); ++i) {
    std::fprintf(stderr, " %ld", static_cast<long>(call.m_Array.At(i)));
  }
  std::fprintf(stderr, "\n");
}

}  // namespace

// -- Ids ------------------------------------------------------------------------

void CModel::Differs(const std::string& what, TSXRefId id) const {
  Fail(std::string(m_pCall) + ": " + what + ", id " + std::to_string(id));
}

CModel::CEntry* CModel::Live(Registry registry, TSXRefId id) {
  const auto found = Of(registry).find(id);
  return found != Of(registry).end() && found->second.m_IsLive ? &found->second : nullptr;
}

TSXRefId CModel::Pick(Registry registry, bool isLive, unsigned kinds, uint8_t index) {
  std::vector<TSXRefId> fitting;
  for (const auto& [id, entry] : Of(registry)) {
    const bool fits = registry != Registry::kNode || (entry.m_Kind & kinds) != 0;
    if (entry.m_IsLive == isLive && fits) fitting.push_back(id);
  }
  // The latest first: what was just made is what the next call works on.
  return fitting.empty() ? 0 : fitting[fitting.size() - 1 - index % fitting.size()];
}

TSXRefId CModel::ChooseId(CBytes& bytes, const CCall& call) {
  const CRow& row = call.m_Row;
  const bool isFirst = call.m_Ids.empty();
  const Registry registry = isFirst ? row.m_Of : Registry::kNode;
  const uint8_t choice = bytes.Byte();
  if (choice < 0xd0) {
    const unsigned kinds = !isFirst ? WantedKinds(row) : row.m_Accepts != 0 ? row.m_Accepts : ~0u;
    return Pick(registry, true, kinds, choice);
  }
  if (choice < 0xe4) return Pick(registry, true, ~0u, bytes.Byte());
  if (choice < 0xf0) return 0;
  if (choice < 0xf8) return Pick(registry, false, ~0u, bytes.Byte());
  if (choice < 0xfc) return Pick(static_cast<Registry>(choice % kRegistries), true, ~0u, 0);
  return choice == 0xfc ? m_Last[static_cast<size_t>(registry)] + 1 : bytes.Word();
}

// -- Before a call ----------------------------------------------------------------

bool CModel::IsAccepted(const CCall& call) {
  const CRow& row = call.m_Row;
  if (call.m_Ids.empty()) return true;
  const CEntry* pEntry = Live(row.m_Of, call.m_Ids[0]);
  if (row.m_Of != Registry::kNode) return pEntry != nullptr;
  return row.m_Accepts == 0 || (pEntry != nullptr && (pEntry->m_Kind & row.m_Accepts) != 0);
}

// The code that answers for one of the ids behind the first, 0 where they will do.
TSXStatus CModel::CodeOfArgument(const CCall& call) {
  const auto isBad = [&](size_t index) { return LiveNode(call.m_Ids[index]) == nullptr; };
  switch (call.m_Row.m_Code) {
    case domErrRefAppendChild:
      return isBad(1) || call.m_Ids[0] == call.m_Ids[1] ? domErrRefAppendChildArg : 0;
    case domErrRefImportNode:
      return isBad(call.m_Ids.size() - 1) ? domErrRefImportNodeArg : 0;
    case domErrRefReplaceChild:
      return isBad(1) ? domErrRefReplaceChildNew : isBad(2) ? domErrRefReplaceChildOld : 0;
    case domErrRefRemoveChild:
      return isBad(1) ? domErrRefRemoveChildArg : 0;
    case domErrRefSetAttribute:
      return call.m_Ids.size() > 1 && isBad(1) ? domErrRefSetAttributeNodeArg : 0;
    case domErrRefSetAttributeNodeNS:
      return isBad(1) ? domErrRefSetAttributeNodeNSArg : 0;
    case domErrRefRemoveAttributeNode:
      return isBad(1) ? domErrRefRemoveAttributeNodeArg : 0;
    case domErrRefSetNamedItem:
      return isBad(1) ? domErrRefSetNamedItemArg : 0;
    case domErrRefSetNamedItemNS:
      return isBad(1) ? domErrRefSetNamedItemNSArg : 0;
    case domErrRefCreateDocument: {
      const CEntry* pType = LiveNode(call.m_Ids[1]);
      const bool isType = pType != nullptr && pType->m_Kind == kType;
      return call.m_Ids[1] != 0 && !isType ? domErrRefCreateDocumentDocType : 0;
    }
    default:
      return 0;
  }
}

// Copies of copies would fill the memory.
bool CModel::IsTooLarge(const CCall& call) {
  const TSXStatus code = call.m_Row.m_Code;
  if (code != domErrRefCloneNode && code != domErrRefImportNode) return false;
  const CEntry* pSource = LiveNode(call.m_Ids[code == domErrRefCloneNode ? 0 : 1]);
  size_t count = 0;
  if (pSource != nullptr) {
    count = CountNodes(*pSource->m_pNode);
  }
  return count > kMostNodesCopied;
}

CModel::CIdSet CModel::Below(TSXRefId root, bool attributesOnly) {
  CIdSet ids;
  const DOMNode* pRoot = LiveNode(root)->m_pNode;
  for (const auto& [id, entry] : Of(Registry::kNode)) {
    if (!entry.m_IsLive || (entry.m_Kind & (kDocument | kBareDocument)) != 0) continue;
    const DOMNode* pNode = entry.m_pNode;
    for (const DOMNode* pUp = HolderOf(pNode); pUp != nullptr; pNode = pUp, pUp = HolderOf(pUp)) {
      if (pUp != pRoot) continue;
      if (!attributesOnly || pNode->getNodeType() == DOMNode::ATTRIBUTE_NODE) ids.insert(id);
      break;
    }
  }
  return ids;
}

CModel::CIdSet CModel::Subtree(TSXRefId root) {
  CIdSet ids = Below(root, false);
  ids.insert(root);
  return ids;
}

CModel::CIdSet CModel::InDocument(TSXRefId id, bool withDocument) {
  CIdSet ids;
  const CEntry* pOf = LiveNode(id);
  const DOMDocument* pDocument = DocumentOf(pOf->m_pNode, pOf->m_Kind);
  for (const auto& [other, entry] : Of(Registry::kNode)) {
    if (!entry.m_IsLive || (entry.m_Kind == kDocument && !withDocument)) continue;
    if (DocumentOf(entry.m_pNode, entry.m_Kind) == pDocument) ids.insert(other);
  }
  return ids;
}

bool CModel::IsAttached(TSXRefId id) {
  const DOMNode* pTop = LiveNode(id)->m_pNode;
  while (const DOMNode* pUp = HolderOf(pTop)) pTop = pUp;
  return pTop->getNodeType() == DOMNode::DOCUMENT_NODE;
}

// What closing an id ends: the id itself with its last hand-out, a document's ids
// with the document's, and what hangs nowhere and is the library's, at any close.
void CModel::PlanClose(TSXRefId id, bool asDocument) {
  const CEntry& entry = *LiveNode(id);
  const bool isLast = entry.m_Count == 1;
  if ((entry.m_Kind & (kDocument | kBareDocument)) != 0) {
    if (isLast) m_MustEnd = InDocument(id, asDocument && entry.m_Kind == kDocument);
    if (isLast) m_MustEnd.insert(id);
  } else {
    if (isLast) m_MustEnd = {id};
    if (!asDocument && !IsAttached(id)) m_MayEnd = Subtree(id);
  }
}

void CModel::PlanEnds(const CCall& call) {
  const TSXRefId first = call.m_Ids.empty() ? 0 : call.m_Ids[0];
  const CEntry* pFirst = LiveNode(first);
  switch (call.m_Row.m_Ends) {
    case Ends::kNone:
    case Ends::kHandOut:
      break;
    case Ends::kTextOfAttribute:
      if (pFirst->m_Kind == kAttribute) m_MayEnd = Below(first, false);
      break;
    case Ends::kAttributes:
      m_MayEnd = Below(first, true);
      break;
    case Ends::kAttribute:
      m_MustEnd = Subtree(call.m_Ids[1]);
      break;
    case Ends::kBelow:
      m_MayEnd = Below(first, false);
      break;
    case Ends::kRemoved:
      if (LiveNode(call.m_Ids[1])->m_Count == 1) m_MustEnd = Subtree(call.m_Ids[1]);
      break;
    case Ends::kOneNode:
    case Ends::kOneDocument:
      if (pFirst != nullptr) PlanClose(first, call.m_Row.m_Ends == Ends::kOneDocument);
      break;
    case Ends::kOldTree:
      m_MayEnd = m_MustEnd = InDocument(first, false);
      break;
    case Ends::kCleanup:
      m_MustEnd = InDocument(first, true);
      break;
  }
}

void CModel::OrderFaults() {
  if (m_Fault > 0 && m_Fault <= 8) StandinFailAllocation(m_Fault);
  if (m_Fault > 8 && m_Fault <= 12) StandinFailAllocationsFrom(m_Fault - 8);
}

bool CModel::Before(const CCall& call) {
  m_pCall = Name(call);
  if (IsTooLarge(call)) return false;
  m_IsAccepted = IsAccepted(call);
  m_CodeOfArgument = m_IsAccepted ? CodeOfArgument(call) : 0;
  m_MayEnd.clear();
  m_MustEnd.clear();
  const bool closesAnything =
      call.m_Row.m_Ends == Ends::kOneNode || call.m_Row.m_Ends == Ends::kOneDocument;
  if ((m_IsAccepted || closesAnything) && m_CodeOfArgument == 0) PlanEnds(call);
  // The one thing that a host must not do: the last hand-out of a document's id goes
  // to TSXDocumentClose, or the document stays for good.
  const CEntry* pFirst = call.m_Ids.empty() ? nullptr : LiveNode(call.m_Ids[0]);
  const bool isLost = call.m_Row.m_Ends == Ends::kOneNode && pFirst != nullptr &&
                      pFirst->m_Kind == kDocument && pFirst->m_Count == 1;
  if (isLost) return false;
  OrderFaults();
  return true;
}

// -- After a call -------------------------------------------------------------------

// A refused id clears the outs. Contract: not those of these functions, the last of
// which empties its array in place.
void CModel::CheckOuts(const CCall& call) const {
  constexpr std::array kLeaving{
      "TSXCloneNode",          "TSXGetDoNamespaces",       "TSXGetDoSchema",
      "TSXGetEncoding",        "TSXGetValidateOnLoad",     "TSXGetValidationSchemaFullChecking",
      "TSXGetLoadExternalDTD", "TSXGetPreserveWhitespace", "XPathEvaluateContextToNodeArray",
      "TSXGetExternalAccess",  "TSXGetEntityTextLimit",    "TSXGetWriteDeclaration",
      "TSXGetKeepPositions",   "TSXGetSchemaLocation",     "TSXGetNoNamespaceSchemaLocation"};
  const bool leaves = std::ranges::find(kLeaving, std::string_view(Name(call))) != kLeaving.end();
  if (call.m_HoldsOut != (leaves && call.m_HeldOut)) {
    Differs("an out beside a bad id", call.m_Ids[0]);
  }
}

void CModel::CheckStatus(const CCall& call) {
  RequireKnown(call.m_Status, m_HostRefuses);
  const TSXStatus code = call.m_Row.m_Code;
  const TSXRefId first = call.m_Ids.empty() ? 0 : call.m_Ids[0];
  if (code != 0 && !m_IsAccepted && call.m_Status != code) Differs("a bad id was taken", first);
  if ((code != 0 && !m_IsAccepted) || m_CodeOfArgument != 0) CheckOuts(call);
  if (m_CodeOfArgument != 0 && call.m_Status != m_CodeOfArgument) {
    Differs("a bad id behind the first was taken", first);
  }
  // One number says also that an element has no parent.
  const bool isShared = call.m_Row.m_Ends == Ends::kBelow;
  if (code != 0 && m_IsAccepted && call.m_Status == code && !isShared) {
    Differs("a good id was refused", first);
  }
  const bool isRefused = !m_IsAccepted || call.m_Status != 0;
  if (isRefused && (call.m_IdOut != 0 || call.m_Array.Count() != 0)) {
    Differs("ids beside a failure", call.m_IdOut);
  }
}

// What a call gives back without ending the id.
void CModel::CountBack(const CCall& call) {
  const Ends ends = call.m_Row.m_Ends;
  const bool isClose = ends == Ends::kOneNode || ends == Ends::kOneDocument;
  const bool isRemoval = ends == Ends::kRemoved && call.m_Status == 0 && m_IsAccepted;
  if (isClose || isRemoval) {
    CEntry* pEntry = LiveNode(call.m_Ids[isRemoval ? 1 : 0]);
    if (pEntry != nullptr) --pEntry->m_Count;
  } else if (ends == Ends::kHandOut) {
    CEntry* pEntry = Live(call.m_Row.m_Of, call.m_Ids[0]);
    if (pEntry != nullptr && --pEntry->m_Count == 0) pEntry->m_IsLive = false;
  }
}

void CModel::EndIds(const CCall& call) {
  CountBack(call);
  for (const TSXRefId id : call.m_Status == 0 ? m_MustEnd : CIdSet{}) {
    if (Resolves(Registry::kNode, id)) Differs("an id outlived its node", id);
  }
  m_MayEnd.merge(call.m_Status == 0 ? m_MustEnd : CIdSet{});
  for (const TSXRefId id : m_MayEnd) {
    if (!Resolves(Registry::kNode, id)) LiveNode(id)->m_IsLive = false;
  }
}

void CModel::HandOut(Registry registry, TSXRefId id, unsigned kind, bool isFresh) {
  if (id == 0) return;
  CEntries& entries = Of(registry);
  TSXRefId& last = m_Last[static_cast<size_t>(registry)];
  const auto found = entries.find(id);
  if (found != entries.end()) {
    if (!found->second.m_IsLive) Differs("an id came back after its end", id);
    if (isFresh) Differs("a new node has an old id", id);
    ++found->second.m_Count;
    return;
  }
  if (id <= last) Differs("ids do not grow", id);
  last = id;
  CEntry& entry = entries[id];
  entry.m_Count = 1;
  if (registry != Registry::kNode) return;
  int32_t type = 0;
  if (TSXGetNodeType(id, 0, &type) != 0) Differs("a new id names nothing", id);
  entry.m_Kind = kind != 0 ? kind : 1u << type;
  entry.m_pNode = g_NodeSessMap.GetPtrBySess(id);
}

void CModel::TakeIds(const CCall& call) {
  for (size_t i = 0; i < call.m_Array.Count(); ++i) {
    HandOut(Registry::kNode, call.m_Array.At(i), 0, false);
  }
  switch (call.m_Row.m_Gives) {
    case Gives::kNode:
    case Gives::kFreshNode:
      HandOut(Registry::kNode, call.m_IdOut, 0, call.m_Row.m_Gives == Gives::kFreshNode);
      break;
    case Gives::kDocument:
    case Gives::kFreshDocument:
      HandOut(Registry::kNode, call.m_IdOut, kDocument,
              call.m_Row.m_Gives == Gives::kFreshDocument);
      break;
    case Gives::kList:
      HandOut(Registry::kList, call.m_IdOut, 0, false);
      break;
    case Gives::kMap:
      HandOut(Registry::kMap, call.m_IdOut, 0, false);
      break;
    case Gives::kImpl:
      HandOut(Registry::kImplementation, call.m_IdOut, 0, false);
      break;
  }
}

void CModel::CheckNodes(const CCall& call) {
  for (auto& [id, entry] : Of(Registry::kNode)) {
    int32_t type = 0;
    const bool resolves = TSXGetNodeType(id, 0, &type) == 0;
    if (resolves && !entry.m_IsLive) Differs("an id came to life again", id);
    if (!resolves && entry.m_IsLive) Differs("an id ended before its time", id);
    if (!resolves) continue;
    if (1u << type != (entry.m_Kind == kDocument ? kBareDocument : entry.m_Kind)) {
      Differs("an id names another kind of node", id);
    }
    const DOMNode* pNode = g_NodeSessMap.GetPtrBySess(id);
    const bool mayMove = call.m_Row.m_Ends == Ends::kBelow && id == call.m_Ids[0];
    if (pNode != entry.m_pNode && !mayMove) Differs("an id names another node", id);
    entry.m_pNode = pNode;
  }
}

// Collections end with their nodes; which are whose is left to the sanitizers, who
// watch the questions asked here.
void CModel::CheckOthers(const CCall& call) {
  const bool endsNodes = call.m_Row.m_Ends != Ends::kNone && call.m_Row.m_Ends != Ends::kHandOut;
  for (const Registry registry : {Registry::kList, Registry::kMap, Registry::kImplementation}) {
    for (auto& [id, entry] : Of(registry)) {
      const bool resolves = Resolves(registry, id);
      if (resolves && !entry.m_IsLive) Differs("a collection came to life again", id);
      if (resolves == entry.m_IsLive) continue;
      if (!endsNodes || registry == Registry::kImplementation) {
        Differs("a collection ended before its time", id);
      }
      entry.m_IsLive = false;
    }
  }
  int32_t length = 0;
  for (const auto& [id, entry] : Of(Registry::kList)) {
    if (entry.m_IsLive && endsNodes) TSXGetListLength(id, 0, &length);
  }
  for (const auto& [id, entry] : Of(Registry::kMap)) {
    if (entry.m_IsLive && endsNodes) TSXGetNamedNodeMapLength(id, 0, &length);
  }
}

// -- An input --------------------------------------------------------------------------

CModel::CResult CModel::Step(const CRow& row, CBytes& bytes, std::span<const TSXRefId> ids) {
  m_Fault = m_HostRefuses ? bytes.Byte() : 0;
  CCall call(row, bytes, *this);
  call.SetIds(ids);
  row.m_Run(call);
  StandinFailAllocation(0);
  Trace(call);
  if (call.m_WasMade) {
    CheckStatus(call);
    EndIds(call);
    TakeIds(call);
    CheckNodes(call);
    CheckOthers(call);
  }
  return {call.m_WasMade, call.m_Status, call.m_Ids.size(), call.m_Choices};
}

void CModel::Adopt(Registry registry, TSXRefId id, unsigned kind, int count) {
  m_pCall = "Adopt";
  if (Resolves(registry, id)) {
    HandOut(registry, id, kind, true);
    Of(registry)[id].m_Count = count;
  } else {
    Of(registry)[id].m_IsLive = false;
    m_Last[static_cast<size_t>(registry)] = id;
  }
}

size_t CModel::EndedCount() const {
  size_t count = 0;
  for (const CEntries& entries : m_Ids) {
    for (const auto& [id, entry] : entries) count += !entry.m_IsLive;
  }
  return count;
}

namespace {

const CRow& RowOf(std::string_view name) {
  for (const CRow& row : Rows()) {
    if (row.m_pName == name) return row;
  }
  Fail("no such function");
}

}  // namespace

void CModel::CloseAll(CBytes& bytes) {
  struct {
    Registry m_Of;
    unsigned m_Kinds;
    const char* m_pClose;
  } orders[] = {
      {Registry::kNode, kAnyNode & ~(kDocument | kBareDocument), "TSXNodeClose"},
      {Registry::kList, 0, "TSXNodeListClose"},
      {Registry::kMap, 0, "TSXNamedNodeMapClose"},
      {Registry::kImplementation, 0, "TSXImplementationClose"},
      {Registry::kNode, kDocument, "TSXDocumentClose"},
      {Registry::kNode, kAnyNode, "TSXNodeClose"},
  };
  if (bytes.Byte() % 2 != 0) std::swap(orders[0], orders[4]);
  for (const auto& order : orders) {
    const CRow& row = RowOf(order.m_pClose);
    while (const TSXRefId id = Pick(order.m_Of, true, order.m_Kinds, 0)) {
      Step(row, bytes, {&id, 1});
    }
  }
}

void CModel::Abandon(bool documentsFirst) {
  const auto close = [this](Registry registry, unsigned kinds, void (*pClose)(TSXRefId)) {
    for (const auto& [id, entry] : Of(registry)) {
      const bool fits = registry != Registry::kNode || (entry.m_Kind & kinds) != 0;
      for (int i = 0; fits && i < entry.m_Count; ++i) pClose(id);
    }
  };
  close(Registry::kList, 0, TSXNodeListClose);
  close(Registry::kMap, 0, TSXNamedNodeMapClose);
  close(Registry::kImplementation, 0, TSXImplementationClose);
  if (documentsFirst) close(Registry::kNode, kDocument, TSXDocumentClose);
  close(Registry::kNode, kAnyNode & ~kDocument, TSXNodeClose);
  if (!documentsFirst) close(Registry::kNode, kDocument, TSXDocumentClose);
}

void RunCalls(CBytes bytes, bool hostRefuses) {
  CModel model(hostRefuses);
  model.Step(RowOf("TSXDocumentOpen"), bytes);
  model.Step(RowOf("TSXLoadString"), bytes);
  for (int calls = 0; calls < kMostCalls && !bytes.IsEmpty(); ++calls) {
    model.Step(Rows()[bytes.Byte() % Rows().size()], bytes);
  }
  model.CloseAll(bytes);
}

}  // namespace fuzz
