// The commands whose subsystem this build does not have: map rendering and
// vector maps, elevation models, internet services, routing and handheld
// sync. Each takes the argument count below (so a call is checked like any
// other) and then ends the script with "Command 'Name' not available in
// this build"; none of them pretends to work.
#include <array>
#include <utility>

#include "script/application_commands.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

struct TUnavailable {
  std::string_view name;
  size_t argCount;
};

constexpr TUnavailable kUnavailable[] = {
    // map rendering, the 2D view and vector maps
    {"OpenMapsRectProj", 1}, {"UnifyMaps", 2}, {"Compress4to1", 2}, {"NewVectorMap", 1}, {"CreateNewVMAP", 1},
    {"ZoomTo", 3}, {"ZoomPercent", 1}, {"ZoomMPix", 1}, {"Repaint2D", 0}, {"Selected", 0},
    {"SetAsPrimaryMap", 1}, {"SendToBack", 1}, {"BringToFront", 1}, {"ExportGraph", 1}, {"Export2DView", 1},
    {"Export2DViewEx", 3}, {"PropertyName", 1}, {"StartRectSelector", 0}, {"EndRectSelector", 0},
    {"ImportMap", 1}, {"CompileSymbolsZip", 2}, {"CreateCodepageConverter", 2}, {"QuadTreeStr_to_Rect", 1},
    {"CoordM_to_QuadTreeStr", 2}, {"CreateSpecificCXML", 2}, {"Idioma", 0},
    // elevation models
    {"UnifyDems", 2}, {"LandAltitude", 2},
    // internet services
    {"CloseWeb", 0}, {"StartBroadcast", 1}, {"DownloadMap", 3}, {"DownloadMapEx", 4}, {"DownloadData", 2},
    {"DownloadTrack", 2}, {"OpenTrackserver", 1}, {"OpenShellWeb", 1}, {"OpenWebPage", 1},
    {"OpenWebPageExternaly", 1}, {"GetLogin", 0}, {"GetHost", 0}, {"InternetWebTxRx", 2}, {"DownloadFile", 2},
    // routing
    {"CreateRouteRouting", 2}, {"VerifyRouteRouting", 1},
    // handheld sync
    {"DownloadTrackGPS", 0}, {"SendTrackGPS", 1}, {"IsPocketPCPresent", 0}, {"CopyToPocketPC", 2},
};

constexpr size_t kUnavailableCount = std::size(kUnavailable);

// One function per command, so that the message names it.
template <size_t I>
void Unavailable(TBuiltinCall& call) {
  throw TScriptError("Command '" + std::string(kUnavailable[I].name) + "' not available in this build", call.at);
}

template <size_t... I>
constexpr std::array<TApplicationCommand, kUnavailableCount> MakeTable(std::index_sequence<I...>) {
  return {TApplicationCommand{kUnavailable[I].name, kUnavailable[I].argCount, Unavailable<I>}...};
}

constexpr auto kUnavailableCommands = MakeTable(std::make_index_sequence<kUnavailableCount>{});

}  // namespace

std::span<const TApplicationCommand> UnavailableCommands() { return kUnavailableCommands; }

}  // namespace velantis
