// From what a row writes to ids, and from ids to what it writes.
#include <sstream>

#include "answers/script.h"
#include "document/find.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace answers {

namespace {

template <class Each>
std::string Listed(size_t count, Each each) {
  std::string all;
  for (size_t i = 0; i < count; ++i) all += (i == 0 ? "" : ", ") + each(i);
  return "[" + all + "]";
}

// "2", "2.5", "nan", "-inf".
std::string Written(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

}  // namespace

DOMDocument* CScene::DocumentOf(TSXRefId id) {
  const CXercesDOM* pDom = FindObject<CXercesDOM>(id);
  return pDom != nullptr ? pDom->m_pDoc : nullptr;
}

TSXRefId CScene::Other() {
  if (m_Other == 0) {
    TSXDocumentOpen(0, &m_Other);
    EXPECT_EQ(support::Load(m_Other, "<o k='1'><p>q</p></o>"), 0);
  }
  return m_Other;
}

CRef CScene::HandOut(DOMNode* pNode) {
  return m_Issued.emplace_back(CRef{Registry::kNode, g_NodeSessMap.Insert(pNode)});
}

DOMNode* CScene::Base(std::string_view head) {
  if (head.empty()) return DocumentOf(m_Document);
  if (head == "other") return DocumentOf(Other());
  if (const auto found = m_Variables.find(head); found != m_Variables.end()) {
    if (DOMDocument* pDoc = DocumentOf(found->second.m_Id)) return pDoc;
    return FindObject<DOMNode>(found->second.m_Id);
  }
  const size_t bracket = head.find('(');
  if (bracket == std::string_view::npos) return nullptr;
  return Declared(*DocumentOf(m_Document), head.substr(0, bracket),
                  head.substr(bracket + 1, head.size() - bracket - 2));
}

CRef CScene::Resolve(std::string_view operand) {
  if (operand == "none") return {};
  if (operand == "unknown") return {Registry::kNode, 424242};
  if (operand == "doc") return {Registry::kNode, m_Document};
  if (operand == "other") return {Registry::kNode, Other()};
  if (operand == "bare") return HandOut(DocumentOf(m_Document));
  if (const auto found = m_Variables.find(operand); found != m_Variables.end()) {
    return found->second;
  }
  const std::string_view head = operand.substr(0, operand.find('/'));
  DOMNode* pNode = Follow(Base(head), operand.substr(head.size()));
  if (pNode != nullptr) return HandOut(pNode);
  ADD_FAILURE() << "nothing is at " << operand;
  return {};
}

// -- And back -----------------------------------------------------------------

std::string CScene::Describe(const COut& out, const CResult& result, Registry registry) const {
  const auto number = [&](int64_t value, int64_t junk) -> std::string {
    if (value == junk) return "left";
    return result.m_Status != 0 && value == 0 ? "" : std::to_string(value);
  };
  const std::string reset = result.m_Status != 0 ? "" : "null";
  switch (out.m_Kind) {
    case COut::Kind::kFlag:
      return number(out.m_Flag, COut::kJunkFlag);
    case COut::Kind::kNumber:
      return number(out.m_Number, COut::kJunkNumber);
    case COut::Kind::kAmount:
      return number(out.m_Amount, COut::kJunkNumber);
    case COut::Kind::kReal:
      if (out.m_Real == COut::kJunkNumber) return "left";
      return result.m_Status != 0 && out.m_Real == 0 ? "" : Written(out.m_Real);
    case COut::Kind::kText:
      if (out.m_Text.IsNull()) return reset;
      return out.m_Text.Str() == COut::kJunkText ? "left" : Quoted(out.m_Text.Str());
    case COut::Kind::kArray: {
      if (out.m_Array.IsNull()) return reset;
      const std::vector<TSXRefId> ids = out.m_Array.Get();
      if (ids.size() == 1 && ids[0] == COut::kJunkId) return "left";
      EXPECT_EQ(out.m_Array.BlockSize(), 8 + 8 * ids.size());
      return Listed(ids.size(), [&](size_t i) { return NameOf(CRef{Registry::kNode, ids[i]}); });
    }
    default:
      if (out.m_Id == COut::kJunkId) return "left";
      return result.m_Status != 0 && out.m_Id == 0 ? "" : NameOf(CRef{registry, out.m_Id});
  }
}

std::string CScene::NameOf(CRef ref) const {
  if (ref.m_Id == 0) return "none";
  if (ref.m_Of == Registry::kList) {
    auto* pList = g_NodeListSessMap.GetPtrBySess(ref.m_Id);
    if (pList == nullptr) return "gone";
    return Listed(pList->getLength(), [&](size_t i) { return NameOf(pList->item(i)); });
  }
  if (ref.m_Of == Registry::kMap) {
    auto* pMap = g_NamedNodeMapSessMap.GetPtrBySess(ref.m_Id);
    if (pMap == nullptr) return "gone";
    return Listed(pMap->getLength(), [&](size_t i) { return NameOf(pMap->item(i)); });
  }
  if (ref.m_Of == Registry::kImplementation) {
    return g_DOMImplSessMap.GetPtrBySess(ref.m_Id) != nullptr ? "implementation" : "gone";
  }
  if (ref.m_Id == m_Document) return "doc";
  if (ref.m_Id == m_Other) return "other";
  if (DocumentOf(ref.m_Id) != nullptr) return NameOfTop(*FindObject<DOMNode>(ref.m_Id));
  const DOMNode* pNode = FindObject<DOMNode>(ref.m_Id);
  return pNode != nullptr ? NameOf(pNode) : "gone";
}

std::string CScene::NameOf(const DOMNode* pNode) const {
  const DOMNode* pTop = nullptr;
  const std::string steps = StepsTo(pNode, pTop);
  if (pTop == DocumentOf(m_Document)) return steps.empty() ? "bare" : steps;
  if (pTop == DocumentOf(m_Other)) return "other" + (steps.empty() ? ":bare" : steps);
  return NameOfTop(*pTop) + steps;
}

std::string CScene::NameOfTop(const DOMNode& top) const {
  for (const auto& [name, ref] : m_Variables) {
    if (ref.m_Of != Registry::kNode) continue;
    if (FindObject<DOMNode>(ref.m_Id) == &top || DocumentOf(ref.m_Id) == &top) return name;
  }
  switch (top.getNodeType()) {
    case DOMNode::ENTITY_NODE:
    case DOMNode::NOTATION_NODE:
      return StepOf(top);
    default:
      return "~" + Dump(top);
  }
}

}  // namespace answers
