// TRectProj: a rectangle in metres on the working projection (the one
// SetProjection sets), x1/y1 one corner and x2/y2 the opposite one, and a
// progress count that Start and Step drive (the script's loop over the
// rectangle's tiles reports through it).
//
// Methods: Width() and Height() (metres, |x2 - x1| and |y2 - y1|),
// Increase(m) (every side moved m metres outwards), SetValues(x1, y1, x2,
// y2), Start(total) (the progress count starts over with total steps) and
// Step() (one step; 1, or 0 once the user has cancelled).
// Properties: x1, y1, x2, y2 and, through the working projection, lat1,
// lon1, lat2, lon2 (degrees on the projection's datum; "Projection Not
// defined!" without one); any other is "Wrong property in RectProy".
#pragma once

#include "script/builtins.h"
#include "script/script_objects.h"

namespace velantis {

class TRectProjObject : public TScriptObject {
public:
  TRectProjObject() : TScriptObject(TObjectKind::RectProj) {}
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

void ReadRectProj(TBuiltinCall& call, TRectProjObject& rect, int id);
void AssignRectProj(TBuiltinCall& call, TRectProjObject& rect, int id, const TVarVelanScript& value);

}  // namespace velantis
