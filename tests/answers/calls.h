// The exported functions as the rows call them.
#pragma once

#include <deque>
#include <memory>
#include <tuple>
#include <type_traits>

#include "support/path.h"

namespace answers {

enum class Registry { kNode, kList, kMap, kImplementation };

struct CRef {
  Registry m_Of = Registry::kNode;
  TSXRefId m_Id = 0;
};

// An out of a call, which holds junk before it.
struct COut {
  enum class Kind { kId, kFlag, kNumber, kAmount, kReal, kText, kArray };
  static constexpr TSXRefId kJunkId = ~TSXRefId{0};
  static constexpr uint8_t kJunkFlag = 77;
  static constexpr int32_t kJunkNumber = 0x5a5a5a5a;
  static constexpr std::string_view kJunkText = "junk";

  explicit COut(Kind kind);

  Kind m_Kind;
  TSXRefId m_Id = kJunkId;
  uint8_t m_Flag = kJunkFlag;
  int32_t m_Number = kJunkNumber;
  int64_t m_Amount = kJunkNumber;
  double m_Real = kJunkNumber;
  support::CText m_Text{kJunkText};
  support::CIds m_Array;
};

// What the operands of a row stand for.
class CNames {
 public:
  virtual ~CNames() = default;
  virtual TSXRefId IdOf(std::string_view operand) = 0;
  virtual std::string FileOf(std::string_view name) = 0;
};

// Without its quotes, and with what \n, \0, \\ and \xHH stand for.
std::string Unquoted(std::string_view operand);
std::string Unescaped(std::string_view text);
bool IsText(std::string_view operand);
bool IsNumber(std::string_view operand);

// One call. The row gives what goes in, in order. An id that it does not give is the
// argument that no function reads; a string that it does not give is an out.
class CCall {
 public:
  CCall(std::vector<std::string_view> operands, CNames& names)
      : m_Operands(std::move(operands)), m_Names(names) {}

  // The host refuses the n-th allocation of the call, none for 0; of -n, the later ones, too.
  template <class Result, class... Args>
  void Run(int64_t refused, Result (*pFunction)(Args...)) {
    const std::tuple<Args...> args{Take<Args>()...};
    if (m_Next != m_Operands.size()) ADD_FAILURE() << "too many operands";
    m_IdsBefore = support::LiveIds();
    refused < 0 ? StandinFailAllocationsFrom(-refused) : StandinFailAllocation(refused);
    StandinTraceStart();
    if constexpr (std::is_void_v<Result>) {
      std::apply(pFunction, args);
    } else {
      m_Status = std::apply(pFunction, args);
    }
    StandinTraceStop();
    StandinFailAllocation(0);
  }

  TSXStatus m_Status = 0;
  size_t m_IdsBefore = 0;  // how many named an object
  std::deque<COut> m_Outs;

 private:
  bool Has() const { return m_Next < m_Operands.size(); }
  std::string_view Next();
  template <class Value = int32_t>
  Value Number();
  TSXRefId Id();
  HStr* Text();
  HostPath Path();
  COut& Out(COut::Kind kind) { return m_Outs.emplace_back(kind); }

  template <class T>
  T Take() {
    if constexpr (std::is_same_v<T, TSXRefId>) {
      return Id();
    } else if constexpr (std::is_same_v<T, HStr*>) {
      return Text();
    } else if constexpr (std::is_same_v<T, HostPath>) {
      return Path();
    } else if constexpr (std::is_same_v<T, int32_t>) {
      return Number();
    } else if constexpr (std::is_same_v<T, bool>) {
      return Number() != 0;
    } else if constexpr (std::is_same_v<T, const uint8_t*>) {
      m_FlagIn = static_cast<uint8_t>(Number());
      return &m_FlagIn;
    } else if constexpr (std::is_same_v<T, const int32_t*>) {
      m_NumberIn = Number();
      return &m_NumberIn;
    } else if constexpr (std::is_same_v<T, const int64_t*>) {
      m_AmountIn = Number<int64_t>();
      return &m_AmountIn;
    } else if constexpr (std::is_same_v<T, TSXRefId*>) {
      return &Out(COut::Kind::kId).m_Id;
    } else if constexpr (std::is_same_v<T, uint8_t*>) {
      return &Out(COut::Kind::kFlag).m_Flag;
    } else if constexpr (std::is_same_v<T, int32_t*>) {
      return &Out(COut::Kind::kNumber).m_Number;
    } else if constexpr (std::is_same_v<T, int64_t*>) {
      return &Out(COut::Kind::kAmount).m_Amount;
    } else if constexpr (std::is_same_v<T, double*>) {
      return &Out(COut::Kind::kReal).m_Real;
    } else {
      static_assert(std::is_same_v<T, GenericRefObjSessionArray*>);
      return &Out(COut::Kind::kArray).m_Array;
    }
  }

  std::vector<std::string_view> m_Operands;
  CNames& m_Names;
  size_t m_Next = 0;
  uint8_t m_FlagIn = 0;
  int32_t m_NumberIn = 0;
  int64_t m_AmountIn = 0;
  std::deque<support::CText> m_Texts;
  std::unique_ptr<support::CPlace> m_Place;
};

struct CFunction {
  const char* m_pName;
  void (*m_Run)(CCall& call, int64_t refused);
};

// Null for a name that is no function's.
const CFunction* FindFunction(std::string_view name);

// The registry that a function's id comes from.
Registry RegistryOf(std::string_view function);

}  // namespace answers
