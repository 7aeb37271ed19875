// The methods that waypoint lists, routes and tracks share, for their
// tables, and what they need from the application.
//
//   Save()          writes the element back to the file it came from
//   SaveAs(path)    writes it to path by its extension (through a temporary
//                   file renamed over the old one); the element's file is
//                   path from then on
//   Untouch()       marks the element as saved
//   Load(path)      replaces the contents with the file's ("Error reading
//                   file" when it holds another kind of element)
//   Count()         number of waypoints, route points or track points
//   Clear()         removes them all
//   Close()         takes the element out of the application ("Closing
//                   Object" when it is not there); the script's reference
//                   stays usable
//   GetPropertyStr(key)  the value of the element's property of that key
//                   ("Error in GetPropertyStr" when it has none)
//   Reproject(projection)  not available: "Reproject no implementado!!!"
#pragma once

#include <string>

#include "formats/native_file.h"
#include "script/builtins.h"
#include "script/element_objects.h"

namespace velantis {

inline constexpr const char* kErrorReadingFile = "Error reading file";
inline constexpr const char* kIntegerOutOfRange = "Interger out of range";

// The reader and writer options from the application's configuration.
TNativeOptions NativeOptions(TScriptHost& host);

// Reads path into file; false with the reader's message.
bool ReadElementFile(TScriptHost& host, const std::string& path, TLoadedFile& file, std::string& error);

// The index argument i of Elem: "Interger out of range" unless 0 <= i < count.
size_t IndexArgument(const TBuiltinCall& call, size_t i, size_t count);

// A new element object the application does not hold.
TVarVelanScript NewElement(TVelanScriptBase& script, TElementKind kind);

void ElementSave(TBuiltinCall& call, TScriptObject& self);
void ElementSaveAs(TBuiltinCall& call, TScriptObject& self);
void ElementUntouch(TBuiltinCall& call, TScriptObject& self);
void ElementLoad(TBuiltinCall& call, TScriptObject& self);
void ElementCount(TBuiltinCall& call, TScriptObject& self);
void ElementClear(TBuiltinCall& call, TScriptObject& self);
void ElementClose(TBuiltinCall& call, TScriptObject& self);
void GetPropertyStr(TBuiltinCall& call, TScriptObject& self);
void Reproject(TBuiltinCall& call, TScriptObject& self);

}  // namespace velantis
