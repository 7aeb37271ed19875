#include "core/property_list.h"

#include <algorithm>

namespace velantis {

void TPropertyList::Set(const std::string& name, const std::string& value) {
  auto it = std::find_if(m_items.begin(), m_items.end(), [&](const auto& item) { return item.first == name; });
  if (it != m_items.end())
    it->second = value;
  else
    m_items.emplace_back(name, value);
}

const std::string* TPropertyList::Find(const std::string& name) const {
  auto it = std::find_if(m_items.begin(), m_items.end(), [&](const auto& item) { return item.first == name; });
  return it == m_items.end() ? nullptr : &it->second;
}

bool TPropertyList::Remove(const std::string& name) {
  auto it = std::find_if(m_items.begin(), m_items.end(), [&](const auto& item) { return item.first == name; });
  if (it == m_items.end()) return false;
  m_items.erase(it);
  return true;
}

}  // namespace velantis
