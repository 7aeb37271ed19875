// The application objects a script holds: waypoint lists, waypoints,
// coordinates, routes, tracks, arrays, broadcasts and projected rectangles.
//
// A script value refers to an object by its reference number, an index into
// the script's table of objects plus one (0 is never a reference). The
// table keeps every object alive until the script is destroyed (a closed
// element too, detached from the application); an object shared with the
// host (a loaded file) stays the host's too. ObjectAtPtr turns a number
// back into the reference.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

namespace velantis {

enum class TObjectKind : uint8_t { Waypoints, Waypoint, Coord, Route, Track, Array, Broadcast, RectProj };
inline constexpr size_t kObjectKindCount = 8;

inline constexpr const char* kShouldBeObject = "Should be an Object!";
inline constexpr const char* kWrongPtr = "Error, wrong ptr at ObjectAtPtr";

class TScriptObject {
public:
  explicit TScriptObject(TObjectKind kind) : m_kind(kind) {}
  virtual ~TScriptObject() = default;
  TScriptObject(const TScriptObject&) = delete;
  TScriptObject& operator=(const TScriptObject&) = delete;
  TObjectKind Kind() const { return m_kind; }

private:
  TObjectKind m_kind;
};

class TScriptObjects {
public:
  // The new object's reference number.
  uint32_t Add(std::shared_ptr<TScriptObject> object) {
    m_objects.push_back(std::move(object));
    return static_cast<uint32_t>(m_objects.size());
  }
  // nullptr for a number that is no live reference.
  TScriptObject* At(double reference) const {
    if (!(reference >= 1 && reference <= static_cast<double>(m_objects.size()))) return nullptr;
    const auto index = static_cast<size_t>(reference) - 1;
    if (static_cast<double>(index + 1) != reference) return nullptr;
    return m_objects[index].get();
  }
  std::shared_ptr<TScriptObject> Shared(uint32_t reference) const {
    return At(reference) ? m_objects[reference - 1] : nullptr;
  }
  // The one reference to a view of a part of an element (a waypoint of a
  // list, its coordinate), made by make on first use: a loop reading w[i]
  // does not grow the table. The view keeps its element, so the element's
  // address names it for as long as the entry lives.
  template <typename TMake>
  uint32_t View(const void* element, size_t index, TObjectKind kind, TMake make) {
    const auto [found, added] = m_views.try_emplace({element, index, kind}, 0);
    if (added) found->second = Add(make());
    return found->second;
  }
  void Clear() {
    m_objects.clear();
    m_views.clear();
  }

private:
  std::vector<std::shared_ptr<TScriptObject>> m_objects;
  std::map<std::tuple<const void*, size_t, TObjectKind>, uint32_t> m_views;
};

}  // namespace velantis
