#include "script/element_methods.h"

#include <algorithm>
#include <cmath>

#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

TElementObject& Element(TScriptObject& self) { return static_cast<TElementObject&>(self); }

[[noreturn]] void Fail(const TBuiltinCall& call, const std::string& message) { throw TScriptError(message, call.at); }

void SaveTo(TBuiltinCall& call, TElementObject& object, const std::string& path) {
  std::string error = "Error saving " + path;
  if (!call.script.Limits().systemAccess ||
      !SaveElementFile(path, object.file->element, NativeOptions(call.script.Host()), error)) Fail(call, error);
}

}  // namespace

TNativeOptions NativeOptions(TScriptHost& host) {
  return TNativeOptions::FromConfig(host.Config(), host.Datums());
}

bool ReadElementFile(TScriptHost& host, const std::string& path, TLoadedFile& file, std::string& error) {
  if (!OpenElementFile(path, NativeOptions(host), file.element, error)) return false;
  file.path = path;
  return true;
}

size_t IndexArgument(const TBuiltinCall& call, size_t i, size_t count) {
  const double index = call.Number(i);
  if (!(index >= 0 && index < static_cast<double>(count))) Fail(call, kIntegerOutOfRange);
  return static_cast<size_t>(index);
}

TVarVelanScript NewElement(TVelanScriptBase& script, TElementKind kind) {
  auto file = std::make_shared<TLoadedFile>();
  file->element.kind = kind;
  return script.Reference(std::make_shared<TElementObject>(ObjectKindOf(kind), std::move(file)));
}

void ElementSave(TBuiltinCall& call, TScriptObject& self) {
  TElementObject& object = Element(self);
  if (object.file->path.empty()) Fail(call, "The element has no file yet: save it with SaveAs");
  SaveTo(call, object, object.file->path);
}

void ElementSaveAs(TBuiltinCall& call, TScriptObject& self) {
  TElementObject& object = Element(self);
  const std::string& path = call.Text(0);
  if (path != object.file->path) PrepareSaveAs(object.file->element);
  SaveTo(call, object, path);
  object.file->path = path;
}

void ElementUntouch(TBuiltinCall&, TScriptObject& self) { Element(self).Element().MarkAsSaved(); }

void ElementLoad(TBuiltinCall& call, TScriptObject& self) {
  TElementObject& object = Element(self);
  TLoadedFile read;
  std::string error;
  if (!call.script.Limits().systemAccess || !ReadElementFile(call.script.Host(), call.Text(0), read, error) ||
      ObjectKindOf(read.element.kind) != object.Kind())
    Fail(call, kErrorReadingFile);
  *object.file = std::move(read);
}

void ElementCount(TBuiltinCall& call, TScriptObject& self) {
  call.result.SetNumber(static_cast<double>(Element(self).Element().PointCount()));
}

void ElementClear(TBuiltinCall&, TScriptObject& self) {
  TElementFile& element = Element(self).file->element;
  switch (self.Kind()) {
    case TObjectKind::Route: return element.route.Clear();
    case TObjectKind::Track: return element.track.Vacia();
    default: return element.waypoints.Clear();
  }
}

void ElementClose(TBuiltinCall& call, TScriptObject& self) {
  auto& loaded = call.script.Host().Loaded();
  const auto found = std::find(loaded.begin(), loaded.end(), Element(self).file);
  if (found == loaded.end()) Fail(call, "Closing Object");
  loaded.erase(found);
}

void GetPropertyStr(TBuiltinCall& call, TScriptObject& self) {
  const std::string& key = call.Text(0);
  const TPropertyList* properties = nullptr;
  if (self.Kind() == TObjectKind::Waypoint) {
    const TBaliza* baliza = static_cast<TWaypointObject&>(self).Get();
    properties = baliza ? baliza->Properties() : nullptr;
  } else {
    properties = Element(self).Element().Properties();
  }
  const std::string* value = properties ? properties->Find(key) : nullptr;
  if (!value) Fail(call, "Error in GetPropertyStr");
  call.result.SetString(*value);
}

void Reproject(TBuiltinCall& call, TScriptObject&) { Fail(call, "Reproject no implementado!!!"); }

}  // namespace velantis
