#include "io/prefixes.h"

#include <algorithm>

const CPrefixes::CBinding* CPrefixes::Find(std::u16string_view prefix, std::size_t mark) const {
  for (std::size_t i = m_Bindings.size(); i > mark; --i) {
    if (m_Bindings[i - 1].m_Prefix == prefix) return &m_Bindings[i - 1];
  }
  return nullptr;
}

bool CPrefixes::IsBound(std::u16string_view prefix, std::u16string_view uri) const {
  const CBinding* pBinding = Find(prefix);
  return pBinding != nullptr ? pBinding->m_Uri == uri : prefix.empty() && uri.empty();
}

std::u16string_view CPrefixes::PrefixOf(std::u16string_view uri) const {
  const auto found = std::find_if(m_Bindings.rbegin(), m_Bindings.rend(), [&](const auto& binding) {
    return binding.m_Uri == uri && !binding.m_Prefix.empty() && IsBound(binding.m_Prefix, uri);
  });
  return found != m_Bindings.rend() ? found->m_Prefix : std::u16string_view();
}

std::u16string_view CPrefixes::NewPrefix() {
  std::u16string name;
  for (std::size_t number = 1; name.empty() || Find(name) != nullptr; ++number) {
    const std::string digits = std::to_string(number);
    name = u"NS";
    name.append(digits.begin(), digits.end());
  }
  return *m_Made.emplace_back(std::make_unique<std::u16string>(std::move(name)));
}
