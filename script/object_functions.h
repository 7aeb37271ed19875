// The free functions on objects (new_object.cpp), for the free-function table.
#pragma once

#include "script/builtins.h"

namespace velantis {

void NewObject(TBuiltinCall& call);      // new(type)
void SetProjection(TBuiltinCall& call);  // SetProjection(definition, datum)

}  // namespace velantis
