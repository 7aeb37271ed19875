// The properties of objects, read with `x.Name` and written with
// `x.Name = value`. A name is turned into an id when the expression is
// resolved; "Rect" takes one of its parts after it (`x.Rect.lat1`), which
// resolves to the part's own id with kViaRect added.
//
// Who has what:
//   waypoint lists, routes, tracks: Name, Description, Rect (read only:
//     lat1/lon1 the north-west corner, lat2/lon2 the south-east one,
//     width/height in degrees; all 0 for an empty element)
//   waypoints: Name, Description, symbol, Coord (a live view: moving it
//     moves the waypoint; assigning a TCoord moves the waypoint there)
//   TCoord: lat, lon (degrees, WGS 84)
//   TRectProj: x1, y1, x2, y2 (metres on the working projection), lat1,
//     lon1, lat2, lon2 (degrees; need a projection)
#pragma once

#include <string>
#include <string_view>

#include "script/builtins.h"
#include "script/script_objects.h"

namespace velantis {

enum TPropertyId : int {
  kPropName, kPropDescription, kPropShortName, kPropSymbol, kPropVisible, kPropAssociated,
  kPropAllChilds, kPropLayer, kPropLayerId, kPropShapeType, kPropFillColor, kPropImageName,
  kPropBottomAltitude, kPropTopAltitude, kPropMaximunZoom, kPropMinimumZoom, kPropProjection,
  kPropCoord, kPropRect,
  // The parts of a rectangle and of a coordinate.
  kPropLat1, kPropLon1, kPropLat2, kPropLon2, kPropWidth, kPropHeight, kPropLat, kPropLon,
  kPropX1, kPropY1, kPropX2, kPropY2,
};
inline constexpr int kViaRect = 100;

inline constexpr const char* kNoProperty = "This object has no '%s' property";
inline constexpr const char* kUnknownProperty = "Unknown propery '%s'";
inline constexpr const char* kNoCoordinate = "This object has no coordinate property";
inline constexpr const char* kErrorInCoord = "Error in Coord property";
inline constexpr const char* kInvalidInCoord = "Invalid property in Coord";
inline constexpr const char* kCannotReadRect = "Cannot read Rect directly";
inline constexpr const char* kWrongRectProperty = "Wrong Rect property";
inline constexpr const char* kWrongRectProjProperty = "Wrong property in RectProy";
inline constexpr const char* kProjectionNotDefined = "Projection Not defined!";
inline constexpr const char* kErrorReadingProperty = "Error reading property.";
inline constexpr const char* kNumericOrString = "Numeric or string property required.";
inline constexpr const char* kErrorInBroadcast = "Error in TBroadcast";

// -1 for a name that is no property.
int FindProperty(std::string_view name);
// A part of "Rect" (lat1, lon1, lat2, lon2, width, height); -1 otherwise.
int FindRectPart(std::string_view name);

// Reads or assigns the property id (name: for the messages) of value, which
// may be any value: numbers and strings have no properties.
void ReadProperty(TBuiltinCall& call, const TVarVelanScript& value, int id, const std::string& name);
void AssignProperty(TBuiltinCall& call, const TVarVelanScript& value, int id, const std::string& name,
                    const TVarVelanScript& assigned);

}  // namespace velantis
