#include "script/object_methods.h"

#include <array>
#include <vector>

namespace velantis {

namespace {

using TTable = std::span<const TObjectBuiltin> (*)();

// In the order of TObjectKind.
constexpr TTable kKindTables[kObjectKindCount] = {
    WaypointListMethods, WaypointMethods, CoordMethods,     RouteMethods,
    TrackMethods,        ArrayMethods,    BroadcastMethods, RectProjMethods,
};

struct TMethodIndex {
  std::vector<std::string_view> names;                       // by id
  std::array<std::vector<const TObjectBuiltin*>, kObjectKindCount> byKind;  // [kind][id]
  std::vector<int> kindCount;                                // kinds that have the id
};

int IdOf(std::vector<std::string_view>& names, std::string_view name) {
  for (size_t i = 0; i < names.size(); ++i)
    if (names[i] == name) return static_cast<int>(i);
  names.push_back(name);
  return static_cast<int>(names.size() - 1);
}

const TMethodIndex& Index() {
  static const TMethodIndex index = [] {
    TMethodIndex built;
    for (const TTable table : kKindTables)
      for (const TObjectBuiltin& method : table()) IdOf(built.names, method.name);
    built.kindCount.assign(built.names.size(), 0);
    for (size_t kind = 0; kind < kObjectKindCount; ++kind) {
      built.byKind[kind].assign(built.names.size(), nullptr);
      for (const TObjectBuiltin& method : kKindTables[kind]()) {
        const int id = IdOf(built.names, method.name);
        built.byKind[kind][static_cast<size_t>(id)] = &method;
        ++built.kindCount[static_cast<size_t>(id)];
      }
    }
    return built;
  }();
  return index;
}

}  // namespace

int FindObjectMethodName(std::string_view name) {
  const TMethodIndex& index = Index();
  for (size_t i = 0; i < index.names.size(); ++i)
    if (index.names[i] == name) return static_cast<int>(i);
  return -1;
}

const TObjectBuiltin* ObjectMethod(TObjectKind kind, int id) {
  if (id < 0) return nullptr;
  return Index().byKind[static_cast<size_t>(kind)][static_cast<size_t>(id)];
}

bool IsRectProjOnlyMethod(int id) {
  if (id < 0) return false;
  const TMethodIndex& index = Index();
  return index.kindCount[static_cast<size_t>(id)] == 1 &&
         index.byKind[static_cast<size_t>(TObjectKind::RectProj)][static_cast<size_t>(id)] != nullptr;
}

}  // namespace velantis
