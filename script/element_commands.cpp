// The application commands on the elements the application holds.
//
//   Open(path)         opens a waypoint, route or track file into the
//                      application and returns the element
//   OpenWPT(path)      the same for a waypoint file only
//   Read(path)         reads a file into an element the script holds and the
//                      application does not show ("Error reading file")
//   CloseAll()         closes every element of the application
//   CreateWpts(name)   a new, empty waypoint list in the application
//   CreateTrack(name)  a new, empty track in the application
//   ConfigComm()       runs the script's OnConfigComm()
//   IsMovingMapOn()    1 while the moving map follows a live position, else 0
//   MovingMapCoord()   a TCoord with the moving map's last position
#include "script/application_commands.h"
#include "script/element_methods.h"
#include "script/script_error.h"
#include "script/script_events.h"
#include "script/script_host.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

[[noreturn]] void Fail(const TBuiltinCall& call, const std::string& message) { throw TScriptError(message, call.at); }

TVarVelanScript Hold(TBuiltinCall& call, std::shared_ptr<TLoadedFile> file) {
  const TObjectKind kind = ObjectKindOf(file->element.kind);
  return call.script.Reference(std::make_shared<TElementObject>(kind, std::move(file)));
}

std::shared_ptr<TLoadedFile> ReadOrFail(TBuiltinCall& call, const std::string& path, const char* message) {
  auto file = std::make_shared<TLoadedFile>();
  std::string error = "Error reading file";
  if (!call.script.Limits().systemAccess || !ReadElementFile(call.script.Host(), path, *file, error))
    Fail(call, message ? message : error);
  return file;
}

void Open(TBuiltinCall& call) {
  auto file = ReadOrFail(call, call.Text(0), nullptr);
  call.script.Host().Loaded().push_back(file);
  call.result = Hold(call, std::move(file));
}

void OpenWPT(TBuiltinCall& call) {
  const std::string& path = call.Text(0);
  if (KindOfFile(path) != TElementKind::Waypoints) Fail(call, std::string(kUnknownFileFormat) + FileExtension(path));
  Open(call);
}

void Read(TBuiltinCall& call) { call.result = Hold(call, ReadOrFail(call, call.Text(0), kErrorReadingFile)); }

void CloseAll(TBuiltinCall& call) { call.script.Host().Loaded().clear(); }

void Create(TBuiltinCall& call, TElementKind kind) {
  auto file = std::make_shared<TLoadedFile>();
  file->element.kind = kind;
  TElementoGPS& element = kind == TElementKind::Track ? static_cast<TElementoGPS&>(file->element.track)
                                                      : file->element.waypoints;
  element.SetName(call.Text(0));
  call.script.Host().Loaded().push_back(file);
  call.result = Hold(call, std::move(file));
}

void CreateWpts(TBuiltinCall& call) { Create(call, TElementKind::Waypoints); }
void CreateTrack(TBuiltinCall& call) { Create(call, TElementKind::Track); }

void ConfigComm(TBuiltinCall& call) {
  std::vector<TVarVelanScript> none;
  if (!RunEvent(call.script, TScriptEvent::ConfigComm, none, call.result)) Fail(call, "OnConfigComm not defined!");
}

void IsMovingMapOn(TBuiltinCall& call) { call.result.SetNumber(call.script.Host().MovingMap().on ? 1 : 0); }

void MovingMapCoord(TBuiltinCall& call) {
  const TMovingMapState state = call.script.Host().MovingMap();
  call.result = call.script.Reference(std::make_shared<TCoordObject>(state.lat, state.lon));
}

constexpr TApplicationCommand kElementCommands[] = {
    {"Open", 1, Open},
    {"OpenWPT", 1, OpenWPT},
    {"Read", 1, Read},
    {"CloseAll", 0, CloseAll},
    {"CreateWpts", 1, CreateWpts},
    {"CreateTrack", 1, CreateTrack},
    {"ConfigComm", 0, ConfigComm},
    {"IsMovingMapOn", 0, IsMovingMapOn},
    {"MovingMapCoord", 0, MovingMapCoord},
};

}  // namespace

std::span<const TApplicationCommand> ElementCommands() { return kElementCommands; }

}  // namespace velantis
