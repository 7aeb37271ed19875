// TArray: a list of script values (numbers, strings, references), indexed
// from 0; commands that return several values return one.
#pragma once

#include <vector>

#include "script/script_objects.h"
#include "script/var_velan_script.h"

namespace velantis {

class TArrayObject : public TScriptObject {
public:
  TArrayObject() : TScriptObject(TObjectKind::Array) {}
  std::vector<TVarVelanScript> values;
};

}  // namespace velantis
