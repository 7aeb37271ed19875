// One entry of the script's variable table. Slots never move once made, so
// a resolved expression holds its variables' slots by address.
#pragma once

#include <string>

#include "script/var_velan_script.h"

namespace velantis {

struct TScriptSlot {
  std::string name;
  bool assigned = false;
  TVarVelanScript value;
};

}  // namespace velantis
