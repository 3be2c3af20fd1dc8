#include "answers/script.h"

#include <tessel/status.h>
#include <tessel/status_list.h>

#include <algorithm>

#include "document/find.h"

using xercesc::DOMNode;

namespace answers {

namespace {

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Splits outside of quotes and brackets.
std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  size_t start = 0;
  int depth = 0;
  char quote = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '`') {
      quote = c;
    } else if (c == '(' || c == ')') {
      depth += c == '(' ? 1 : -1;
    } else if (c == separator && depth == 0) {
      parts.push_back(Trimmed(text.substr(start, i - start)));
      start = i + 1;
    }
  }
  if (const auto last = Trimmed(text.substr(start)); !last.empty()) parts.push_back(last);
  return parts;
}

std::string StatusName(TSXStatus status) {
  static constexpr std::pair<TSXStatus, const char*> kNames[] = {
#define ROW(number, name, functions, meaning, advice) {number, #name},
      TSX_STATUS_LIST(ROW)
#undef ROW
  };
  for (const auto& [number, pName] : kNames) {
    if (number == status) return pName;
  }
  return std::to_string(status);
}

int64_t Refusals() {
  StandinLedger ledger;
  StandinReadLedger(&ledger);
  return ledger.refusals;
}

// How often the last call took the mutexes of a name.
std::string TakenLocks(const std::string& name) {
  StandinMutexEvent events[64];
  const size_t count = std::min(StandinReadTrace(events, 64), std::size(events));
  return std::to_string(std::count_if(events, events + count, [&](const StandinMutexEvent& event) {
    return event.action == StandinMutexAcquired && event.name == name;
  }));
}

}  // namespace

CScene::CScene(std::string_view xml, bool namespaces) {
  const uint8_t on = namespaces ? 1 : 0;
  std::string errors;
  TSXDocumentOpen(0, &m_Document);
  TSXSetDoNamespaces(m_Document, 0, &on);
  TSXSetLoadExternalDTD(m_Document, 0, &support::kOff);
  EXPECT_EQ(support::Load(m_Document, Unescaped(xml), &errors), 0) << xml << '\n' << errors;
  TSXSetLoadExternalDTD(m_Document, 0, &support::kOn);
}

CScene::~CScene() {
  const auto isOpen = [](TSXRefId id) { return g_NodeSessMap.GetPtrBySess(id) != nullptr; };
  for (const auto& [registry, id] : m_Issued) {
    if (registry == Registry::kList) TSXNodeListClose(id);
    if (registry == Registry::kMap) TSXNamedNodeMapClose(id);
    if (registry == Registry::kImplementation) TSXImplementationClose(id);
  }
  m_Issued.insert(m_Issued.begin(), {{Registry::kNode, m_Document}, {Registry::kNode, m_Other}});
  for (const auto& [registry, id] : m_Issued) {
    for (int turn = 0; turn < 20 && registry == Registry::kNode && isOpen(id); ++turn) {
      TSXDocumentClose(id);
    }
  }
  std::error_code ignored;
  std::filesystem::remove_all(m_Folder.Name(), ignored);
}

std::string CScene::Run(std::string_view statements, int64_t refused) {
  std::string all;
  const auto parts = Split(statements, ';');
  for (size_t i = 0; i < parts.size(); ++i) {
    const bool isLast = i + 1 == parts.size();
    if (isLast && refused != 0) m_Refused = refused;
    m_Last = Statement(parts[i]);
    if (m_Last.m_Answer.empty() || (m_Last.m_Answer == "ok" && !isLast)) continue;
    all += (all.empty() ? "" : "; ") + m_Last.m_Answer;
  }
  return all;
}

std::string CScene::Tree() const {
  const auto* pDoc = DocumentOf(m_Document);
  if (pDoc == nullptr) return "closed";
  return pDoc->hasChildNodes() ? Dump(*pDoc) : "empty";
}

std::string CScene::FileOf(std::string_view name) {
  if (name.starts_with('/')) return std::string(name);
  std::filesystem::create_directory(m_Folder.Name());
  return m_Folder.Name() + "/" + std::string(name);
}

// A name, "=" and where it comes from; a call; or an operand, which is named.
CScene::CResult CScene::Statement(std::string_view statement) {
  const size_t end = statement.find_first_of("(=/'");
  if (end != std::string_view::npos && statement[end] == '=') {
    const std::string_view name = Trimmed(statement.substr(0, end));
    CResult result = Statement(Trimmed(statement.substr(end + 1)));
    m_Variables.insert_or_assign(std::string(name), result.m_First);
    if (result.m_Status == 0) result.m_Answer.clear();
    return result;
  }
  const std::string_view name = statement.substr(0, end);
  if (end != std::string_view::npos && statement[end] == '(' && name != "entity" &&
      name != "notation") {
    return Call(name, Split(statement.substr(end + 1, statement.size() - end - 2), ','));
  }
  const CRef ref = Resolve(statement);
  return {0, NameOf(ref), ref, {}, false};
}

CScene::CResult CScene::Call(std::string_view name, const std::vector<std::string_view>& operands) {
  const CFunction* pFunction = FindFunction(name);
  if (pFunction == nullptr) return {0, Help(name, operands), {}, {}, false};
  CCall call(operands, *this);
  const int64_t refusals = Refusals();
  pFunction->m_Run(call, std::exchange(m_Refused, 0));
  const Registry registry = RegistryOf(name);
  CResult result;
  result.m_Status = call.m_Status;
  result.m_IsRefused = Refusals() != refusals;
  for (const COut& out : call.m_Outs) {
    if (out.m_Kind != COut::Kind::kId || out.m_Id == COut::kJunkId) continue;
    m_Issued.push_back({registry, out.m_Id});
    if (result.m_First.m_Id == 0) result.m_First = m_Issued.back();
  }
  if (result.m_Status != 0) result.m_Answer = StatusName(result.m_Status);
  for (const COut& out : call.m_Outs) {
    if (result.m_IsRefused && out.m_Kind == COut::Kind::kArray && out.m_Array.IsNull()) {
      EXPECT_EQ(support::LiveIds(), call.m_IdsBefore) << "ids that nobody can give back";
    }
    const std::string text = result.m_Outs.emplace_back(Describe(out, result, registry));
    result.m_Answer += (result.m_Answer.empty() || text.empty() ? "" : " ") + text;
  }
  if (result.m_Answer.empty()) result.m_Answer = "ok";
  return result;
}

std::string CScene::Help(std::string_view name, const std::vector<std::string_view>& operands) {
  if (name == "locks") return TakenLocks(Unquoted(operands[0]));
  if (name == "tree") return Dump(*FindObject<DOMNode>(Resolve(operands[0]).m_Id));
  if (name == "refuse") {
    m_Refused = operands[0][0] - '0';
    return "ok";
  }
  const std::string file = FileOf(Unquoted(operands[0]));
  if (name == "write") {
    std::ofstream(file, std::ios::binary) << Unquoted(operands[1]);
    return "ok";
  }
  if (name != "read") ADD_FAILURE() << "nobody knows " << name;
  std::ifstream in(file, std::ios::binary);
  return Quoted(std::string{std::istreambuf_iterator<char>(in), {}});
}

}  // namespace answers
