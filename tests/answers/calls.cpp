#include "answers/calls.h"

#include <algorithm>
#include <charconv>

namespace answers {

namespace {

template <auto kFunction>
void Run(CCall& call, int64_t refused) {
  call.Run(refused, kFunction);
}

// -- Functions whose arguments are no host's variables, in a form that has them --

void CleanUp(TSXRefId document) {
  unsigned char data[sizeof document];
  std::memcpy(data, &document, sizeof document);
  CleanupProcCXercesDOM(data);
}

void FillFromList(TSXRefId list, GenericRefObjSessionArray* pArray) {
  TSUNodeListToArray(pArray, g_NodeListSessMap.GetPtrBySess(list));
}

void FillFromMap(TSXRefId map, GenericRefObjSessionArray* pArray) {
  TSUNamedNodeMapToArray(pArray, g_NamedNodeMapSessMap.GetPtrBySess(map));
}

int32_t CopyString(HStr* pSource, HStr* pOut) { return domCopyHStr(*pSource, pOut); }

// The bytes with the NUL behind them.
void ToCString(HStr* pString, HStr* pOut) {
  const int32_t count = *pString != nullptr ? (**pString)->count : 0;
  const std::unique_ptr<char[]> bytes(HStrToCStr(pString));
  HostStringFromPtr(pOut, count + 1, bytes.get());
}

int32_t FromCString(HStr* pText, HStr* pOut) {
  const std::unique_ptr<char[]> bytes(*pText != nullptr ? HStrToCStr(pText) : nullptr);
  return CStrToHStr(bytes.get(), pOut);
}

int32_t Append(HStr* pText, HStr* pOut) {
  const std::unique_ptr<char[]> bytes(*pText != nullptr ? HStrToCStr(pText) : nullptr);
  return domHStrAppendCStr(pOut, reinterpret_cast<const unsigned char*>(bytes.get()));
}

// To a block of 64 bytes, whose size afterwards is told.
template <auto kConcatenate>
int32_t Concatenate(HStr* pText, HStr* pOut, int32_t* pSize) {
  HostSetHandleSize(*pOut, 64);
  const int32_t status = kConcatenate(*pOut, **pText);
  *pSize = static_cast<int32_t>(HostGetHandleSize(*pOut));
  return status;
}

// Of a new handle, then of the same one.
int32_t Resize(int32_t first, int32_t second, int32_t* pFirst, int32_t* pSecond) {
  HostHandle handle = nullptr;
  int32_t status = domSetHandleSizeOrNewHandle(&handle, first);
  *pFirst = static_cast<int32_t>(HostGetHandleSize(handle));
  if (status == 0) status = domSetHandleSizeOrNewHandle(&handle, second);
  *pSecond = static_cast<int32_t>(HostGetHandleSize(handle));
  HostDisposeHandle(handle);
  return status;
}

void EmptyArray(GenericRefObjSessionArray* pArray) { ClearSessionArray(pArray); }

int32_t DisposeOfArray(GenericRefObjSessionArray* pArray) { return ClearArray(pArray); }

// The names before the versions.
int32_t Versions(HStr* pNames) {
  HStrArray versions = nullptr;
  const int32_t status = nKelVersion_TESSEL_getVersionStringArray(&versions);
  std::string names;
  for (int32_t i = 0; versions != nullptr && i < (*versions)->count; ++i) {
    HStr& item = (*versions)->items[i];
    const std::string text((*item)->bytes, (*item)->bytes + (*item)->count);
    names += (i == 0 ? "" : ", ") + text.substr(0, text.find(' '));
    ClearString(&item);
  }
  ClearArray(&versions);
  HostStringFromPtr(pNames, static_cast<int32_t>(names.size()), names.data());
  return status;
}

constexpr CFunction kFunctions[] = {
#include "answers_calls.inc"  // every TSX, TSI and XPath function
    {"CleanupProcCXercesDOM", Run<CleanUp>},
    {"TSUNodeListToArray", Run<FillFromList>},
    {"TSUNamedNodeMapToArray", Run<FillFromMap>},
    {"domCopyHStr", Run<CopyString>},
    {"HStrToCStr", Run<ToCString>},
    {"CStrToHStr", Run<FromCString>},
    {"domHStrAppendCStr", Run<Append>},
    {"domHStrCat", Run<Concatenate<domHStrCat>>},
    {"domHStrCatEfficient", Run<Concatenate<domHStrCatEfficient>>},
    {"domSetHandleSizeOrNewHandle", Run<Resize>},
    {"ClearSessionArray", Run<EmptyArray>},
    {"ClearArray", Run<DisposeOfArray>},
    {"ClearString", Run<ClearString>},
    {"nKelVersion_TESSEL_getVersionStringArray", Run<Versions>},
};

}  // namespace

COut::COut(Kind kind) : m_Kind(kind) {
  if (kind != Kind::kArray) return;
  domSetHandleSizeOrNewHandle(&m_Array, 16);
  std::memset(**(&m_Array), 0xff, 16);
  (**(&m_Array))->count = 1;
}

bool IsText(std::string_view operand) {
  return operand == "null" || operand.starts_with('\'') || operand.starts_with('`');
}

bool IsNumber(std::string_view operand) {
  return operand.find_first_not_of("-0123456789") == std::string_view::npos;
}

std::string Unquoted(std::string_view operand) {
  return Unescaped(operand.substr(1, operand.size() - 2));
}

std::string Unescaped(std::string_view escaped) {
  std::string text;
  for (size_t i = 0; i < escaped.size(); ++i) {
    const char* pAfter = escaped.data() + i + 1;
    if (escaped[i] != '\\') {
      text += escaped[i];
    } else if (escaped[++i] == 'x') {
      unsigned byte = 0;
      std::from_chars(pAfter + 1, pAfter + 3, byte, 16);
      text += static_cast<char>(byte);
      i += 2;
    } else {
      text += *pAfter == 'n' ? '\n' : *pAfter == '0' ? '\0' : *pAfter;
    }
  }
  return text;
}

std::string_view CCall::Next() {
  if (Has()) return m_Operands[m_Next++];
  ADD_FAILURE() << "too few operands";
  return "0";
}

template <class Value>
Value CCall::Number() {
  const std::string_view text = Next();
  EXPECT_TRUE(IsNumber(text)) << text;
  Value number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}
template int32_t CCall::Number();
template int64_t CCall::Number();

TSXRefId CCall::Id() {
  if (!Has() || IsNumber(m_Operands[m_Next]) || IsText(m_Operands[m_Next])) return 99;
  return m_Names.IdOf(Next());
}

HStr* CCall::Text() {
  if (!Has() || !IsText(m_Operands[m_Next])) return &Out(COut::Kind::kText).m_Text;
  const std::string_view text = Next();
  return text == "null" ? &m_Texts.emplace_back() : &m_Texts.emplace_back(Unquoted(text));
}

HostPath CCall::Path() {
  const std::string_view text = Next();
  if (text == "none") return nullptr;
  m_Place = std::make_unique<support::CPlace>(text == "''" ? "" : m_Names.FileOf(Unquoted(text)));
  return m_Place->Get();
}

const CFunction* FindFunction(std::string_view name) {
  const auto* pFound = std::ranges::find(
      kFunctions, name, [](const CFunction& function) { return function.m_pName; });
  return pFound != std::end(kFunctions) ? pFound : nullptr;
}

Registry RegistryOf(std::string_view function) {
  static constexpr std::pair<std::string_view, Registry> kGivers[] = {
      {"TSXGetChildNodeList", Registry::kList},
      {"TSXGetElementsByTagNameList", Registry::kList},
      {"TSXGetElementsByTagNameNS", Registry::kList},
      {"TSXElementGetElementsByTagName", Registry::kList},
      {"TSXElementGetElementsByTagNameNS", Registry::kList},
      {"TSXGetAttributes", Registry::kMap},
      {"TSXGetEntities", Registry::kMap},
      {"TSXGetNotations", Registry::kMap},
      {"TSXGetImplementation", Registry::kImplementation},
  };
  for (const auto& [name, registry] : kGivers) {
    if (name == function) return registry;
  }
  return Registry::kNode;
}

}  // namespace answers
