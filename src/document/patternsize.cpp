#include "document/patternsize.h"

#include <algorithm>
#include <vector>

namespace {

class CMeter {
 public:
  explicit CMeter(std::u16string_view pattern) : m_Rest(pattern) {}

  CPatternSize Run() {
    while (!m_Rest.empty()) Take(Next());
    while (m_Open.size() > 1) Close();
    m_Size.m_Operations = m_Open.back().m_Before + m_Open.back().m_Last;
    return m_Size;
  }

 private:
  struct CGroup {
    uint64_t m_Before = 0;  // operations of all parts except the last
    uint64_t m_Last = 0;    // of the last, which a number that follows would multiply
  };

  char16_t Next() {
    const char16_t unit = m_Rest.front();
    m_Rest.remove_prefix(1);
    return unit;
  }
  void Skip(size_t count) { m_Rest.remove_prefix(std::min(count, m_Rest.size())); }

  void Take(char16_t unit) {
    switch (unit) {
      case u'(':
        m_Open.emplace_back();
        return Deepen(m_Open.size() - 1);
      case u')':
        return Close();
      case u'*':
      case u'?':
        return Repeat(1);
      case u'+':
        return Repeat(2);
      case u'{':
        return Repeat(Number());
      case u'[':
        PassClass();
        return Add(1);
      case u'\\':
        PassEscape();
        return Add(1);
      default:
        return Add(1);
    }
  }

  void Deepen(size_t depth) { m_Size.m_Depth = std::max(m_Size.m_Depth, depth); }

  static void Grow(uint64_t& size, uint64_t more) {
    size = std::min(size + more, CPatternSize::kUnbounded);
  }
  void Add(uint64_t operations) {
    CGroup& group = m_Open.back();
    Grow(group.m_Before, group.m_Last);
    group.m_Last = operations;
  }
  void Repeat(uint64_t times) {
    uint64_t& last = m_Open.back().m_Last;
    // No factor exceeds two to the power of 31 and one.
    last = std::min((last + 1) * times, CPatternSize::kUnbounded);
  }
  void Close() {
    if (m_Open.size() == 1) return;  // a fault that the parser finds
    CGroup group = m_Open.back();
    m_Open.pop_back();
    Grow(group.m_Before, group.m_Last);
    Add(group.m_Before + 1);
  }

  // The larger one of "n,m}", and one more for "n,}".
  uint64_t Number() {
    uint64_t most = 0;
    uint64_t number = 0;
    while (!m_Rest.empty()) {
      const char16_t unit = Next();
      if (unit >= u'0' && unit <= u'9') {
        number = std::min(number * 10 + (unit - u'0'), CPatternSize::kUnbounded);
      } else {
        most = std::max({most, number, uint64_t{1}});
        number = 0;
      }
      if (unit == u'}') break;
    }
    return std::min(most + 1, CPatternSize::kUnbounded);
  }

  void PassEscape() {
    if (m_Rest.empty()) return;
    const char16_t unit = Next();
    if (unit == u'p' || unit == u'P') Skip(std::min(m_Rest.find(u'}'), m_Rest.size()) + 1);
  }

  // A class may have another one taken off: "[a-z-[aeiou]]".
  void PassClass() {
    size_t depth = 1;
    for (char16_t last = 0; !m_Rest.empty() && depth > 0;) {
      Deepen(m_Open.size() - 1 + depth);
      const char16_t unit = Next();
      if (unit == u'\\') {
        PassEscape();
      } else if (unit == u'[' && last == u'-') {
        ++depth;
      } else if (unit == u']') {
        --depth;
      }
      last = unit;
    }
  }

  std::u16string_view m_Rest;
  std::vector<CGroup> m_Open{CGroup()};  // the pattern and its open groups
  CPatternSize m_Size;
};

}  // namespace

CPatternSize SizeOfPattern(std::u16string_view pattern) { return CMeter(pattern).Run(); }
