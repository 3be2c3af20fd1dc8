// Memory that a text is written to.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

// Grows in place where the heap can, so that a large text is not copied on the way.
// Throws std::bad_alloc where the heap is exhausted.
class CByteBuffer {
 public:
  // Room for `count` bytes behind the text; SetEnd says how many were used.
  char* Room(std::size_t count) {
    if (count > m_Capacity - m_Size) Grow(count);
    return m_pBytes.get() + m_Size;
  }
  void SetEnd(const char* pEnd) { m_Size = static_cast<std::size_t>(pEnd - m_pBytes.get()); }

  void Append(std::string_view bytes) {
    std::memcpy(Room(bytes.size()), bytes.data(), bytes.size());
    m_Size += bytes.size();
  }
  void Append(char byte) { Fill(1, byte); }
  void Fill(std::size_t count, char byte) {
    std::memset(Room(count), byte, count);
    m_Size += count;
  }
  // Appends a part of the text itself.
  void Repeat(std::size_t offset, std::size_t count) {
    char* pTo = Room(count);
    std::memcpy(pTo, m_pBytes.get() + offset, count);
    m_Size += count;
  }

  std::size_t Size() const { return m_Size; }
  std::string_view View() const { return {m_pBytes.get(), m_Size}; }

 private:
  struct CFree {
    void operator()(char* pBytes) const { std::free(pBytes); }
  };

  void Grow(std::size_t count);

  std::unique_ptr<char[], CFree> m_pBytes;
  std::size_t m_Size = 0;
  std::size_t m_Capacity = 0;
};
