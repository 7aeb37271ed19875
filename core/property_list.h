// The property object of an element or a point: its free list of named
// properties, in the order they were first set. Names are compared exactly
// (case counts) and are unique in a list; values are texts. The text form a
// file gives the block belongs to the file formats.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace velantis {

class TPropertyList {
public:
  // Sets name to value, adding the property at the end when it is new.
  void Set(const std::string& name, const std::string& value);
  // The value, or nullptr when the list has no such property.
  const std::string* Find(const std::string& name) const;
  bool Remove(const std::string& name);
  void Clear() { m_items.clear(); }

  bool Empty() const { return m_items.empty(); }
  size_t Count() const { return m_items.size(); }
  const std::pair<std::string, std::string>& Item(size_t index) const { return m_items[index]; }

  friend bool operator==(const TPropertyList&, const TPropertyList&) = default;

private:
  std::vector<std::pair<std::string, std::string>> m_items;
};

}  // namespace velantis
