// The events: functions of fixed names that the application calls in a
// loaded script when something happens.
//   OnCreateView2D(path)  a 2D view image was written to path
//   OnCreateGraph(path)   a graph image was written to path
//   OnConfigComm()        the user asked to configure the communication
//                         (through the ConfigComm command)
// A script error inside the first two ends the event with "Error in event
// OnCreateView2D" (or OnCreateGraph) at the error's place; a failure of the
// application below them with "VelanScript: Exception in Velantis Engine, "
// and the event's name. Errors inside OnConfigComm are the command's own.
#pragma once

#include <vector>

#include "script/var_velan_script.h"

namespace velantis {

class TVelanScriptBase;

enum class TScriptEvent { CreateView2D, CreateGraph, ConfigComm };

// Runs the script's function for the event with args; false when the
// script declares none. Throws TScriptError.
bool RunEvent(TVelanScriptBase& script, TScriptEvent event, std::vector<TVarVelanScript>& args,
              TVarVelanScript& result);

}  // namespace velantis
