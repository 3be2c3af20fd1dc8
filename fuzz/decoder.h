// Turns bytes into calls: which function, with which ids, strings and numbers.
#pragma once

#include <algorithm>
#include <limits>
#include <memory>
#include <span>
#include <tuple>
#include <type_traits>
#include <vector>

#include "harness.h"

namespace fuzz {

enum class Registry : uint8_t { kNode, kList, kMap, kImplementation };
inline constexpr size_t kRegistries = 4;

// One bit a kind of node, as the DOM numbers them; a document object beside the
// bare document.
enum Kind : unsigned {
  kElement = 1u << 1,
  kAttribute = 1u << 2,
  kTextNode = 1u << 3,
  kCData = 1u << 4,
  kReference = 1u << 5,
  kEntity = 1u << 6,
  kInstruction = 1u << 7,
  kComment = 1u << 8,
  kBareDocument = 1u << 9,
  kType = 1u << 10,
  kFragment = 1u << 11,
  kNotation = 1u << 12,
  kDocument = 1u << 13,
  kAnyNode = 0x3ffe,
};
inline constexpr unsigned kCharacters = kTextNode | kCData | kComment;

// What the first string of a call is mostly taken from.
enum class Strings : uint8_t { kNames, kDocuments, kPaths };

// Which ids a call hands out; all but collections and implementations are nodes.
enum class Gives : uint8_t { kNode, kFreshNode, kDocument, kFreshDocument, kList, kMap, kImpl };

// Which node ids may end in a call that works. Nothing else ends any.
enum class Ends : uint8_t {
  kNone,
  kTextOfAttribute,  // below the first id, if that is an attribute
  kAttributes,       // attributes of the first id, and their text
  kAttribute,        // the second id, and its text
  kBelow,            // everything below the first id
  kRemoved,          // the second id and below, with its last hand-out
  kOneNode,          // as TSXNodeClose says
  kOneDocument,      // as TSXDocumentClose says
  kOldTree,          // the nodes of a document, but not the document
  kCleanup,          // the nodes of a document and the document
  kHandOut,          // one hand-out of the first id, which is no node
};

class CCall;

struct CRow {
  const char* m_pName;
  void (*m_Run)(CCall& call);
  TSXStatus m_Code;    // answers to a first id of no use; 0 where there is none
  unsigned m_Accepts;  // kinds of node of the first id; 0 for other registries
  Gives m_Gives = Gives::kNode;
  Ends m_Ends = Ends::kNone;
  Registry m_Of = Registry::kNode;
  Strings m_Strings = Strings::kNames;
};

const std::vector<CRow>& Rows();

// Whether a function changes nothing; a string at the end of its arguments is an out.
bool OnlyReads(const CRow& row);

// Where the decoder finds ids to choose from, and who looks at each call.
class CObserver {
 public:
  virtual ~CObserver() = default;
  virtual TSXRefId ChooseId(CBytes& bytes, const CCall& call) = 0;
  // False where the call must not be made; after true the call follows at once.
  virtual bool Before(const CCall& call) = 0;
};

// One call: its arguments, which it owns, and what came of it.
class CCall {
 public:
  CCall(const CRow& row, CBytes& bytes, CObserver& observer)
      : m_Row(row), m_Bytes(bytes), m_Observer(observer) {}
  ~CCall() { StandinPathDispose(m_Path); }
  CCall(const CCall&) = delete;
  CCall& operator=(const CCall&) = delete;

  // Makes the first ids these instead of decoded ones.
  void SetIds(std::span<const TSXRefId> ids) { m_Given = ids; }

  // Decodes the arguments in their order and calls.
  template <class Result, class... Args>
  void Run(Result (*pFunction)(Args...)) {
    const std::tuple<Args...> args{Take<Args>()...};
    if (!m_Observer.Before(*this)) return;
    m_WasMade = true;
    constexpr bool kEndsInString = std::is_same_v<LastOf<Args...>, HStr*>;
    m_HeldOut = HoldsOut<kEndsInString>();
    if constexpr (std::is_void_v<Result>) {
      std::apply(pFunction, args);
    } else {
      m_Status = std::apply(pFunction, args);
    }
    m_HoldsOut = HoldsOut<kEndsInString>();
    if (m_IdOut == kOldId) m_IdOut = 0;
  }

  const CRow& m_Row;
  bool m_WasMade = false;
  TSXStatus m_Status = 0;
  std::vector<TSXRefId> m_Ids;
  TSXRefId m_IdOut = 0;
  CIds m_Array;
  bool m_HeldOut = false;   // an out held something before the call; a string may have been null
  bool m_HoldsOut = false;  // and after it
  size_t m_Choices = 1;     // the most values that a byte could choose for an argument

 private:
  static constexpr TSXRefId kOldId = ~TSXRefId{0};
  static constexpr uint8_t kOldFlag = 77;
  static constexpr int32_t kOldNumber = 77;
  template <class... Args>
  using LastOf = std::tuple_element_t<sizeof...(Args), std::tuple<void, Args...>>;

  template <bool kEndsInString>
  bool HoldsOut() const {
    if (m_IdOut == kOldId || m_Flag == kOldFlag || m_Number == kOldNumber) return true;
    if (m_Amount == kOldNumber) return true;
    if (m_Real == kOldNumber) return true;
    if (m_Array.IsThere()) return true;
    return kEndsInString && OnlyReads(m_Row) && *m_Strings.back()->Out() != nullptr;
  }

  template <class T>
  T Take() {
    constexpr bool kIsOut = !std::is_const_v<std::remove_pointer_t<T>>;
    if constexpr (std::is_same_v<T, TSXRefId>) {
      return Id();
    } else if constexpr (std::is_same_v<T, TSXRefId*>) {
      m_IdOut = kOldId;
      return &m_IdOut;
    } else if constexpr (std::is_same_v<T, HStr*>) {
      return String();
    } else if constexpr (std::is_same_v<T, HostPath>) {
      return Path();
    } else if constexpr (std::is_same_v<T, GenericRefObjSessionArray*>) {
      m_Array.MakeEmpty();
      return m_Array.Out();
    } else if constexpr (std::is_same_v<T, double*>) {
      m_Real = kOldNumber;
      return &m_Real;
    } else if constexpr (std::is_same_v<T, int32_t>) {
      return Number();
    } else if constexpr (std::is_same_v<T, bool>) {
      return Choice(2) != 0;
    } else if constexpr (sizeof(std::remove_pointer_t<T>) == 1) {
      m_Flag = static_cast<uint8_t>(Choice(2));
      if constexpr (kIsOut) m_Flag = kOldFlag;
      return &m_Flag;
    } else if constexpr (sizeof(std::remove_pointer_t<T>) == sizeof m_Amount) {
      m_Amount = Number();
      if constexpr (kIsOut) m_Amount = kOldNumber;
      return &m_Amount;
    } else {
      static_assert(std::is_convertible_v<int32_t*, T>);
      m_Number = Number();
      if constexpr (kIsOut) m_Number = kOldNumber;
      return &m_Number;
    }
  }

  TSXRefId Id();
  HStr* String();
  HostPath Path();
  int32_t Number();
  // The next byte as one of so many choices.
  size_t Choice(size_t count) { return Among(count, m_Bytes.Byte()); }
  size_t Among(size_t count, uint8_t byte) {
    m_Choices = std::max(m_Choices, count);
    return byte % count;
  }

  CBytes& m_Bytes;
  CObserver& m_Observer;
  std::span<const TSXRefId> m_Given;
  uint8_t m_Flag = 0;
  int32_t m_Number = 0;
  int64_t m_Amount = 0;
  double m_Real = 0;
  HostPath m_Path = nullptr;
  std::vector<std::unique_ptr<CText>> m_Strings;
};

// The calls of one input, under a host that refuses memory and moves every block
// where told so.
void RunCalls(CBytes bytes, bool hostRefuses);

}  // namespace fuzz
