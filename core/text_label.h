// The label (text object) an element, a waypoint or a track point may carry:
// a text drawn beside it on the map with a few small values for its drawing.
//
// Waypoint files give the text, a number, two bytes, a third byte and a
// second integer; track files give a number, the text, two small integers, a
// real, a byte and optional properties. One record holds the union, so that
// each file reads back to the same values; the data model gives the values
// no meaning beyond carrying them.
#pragma once

#include <cstdint>
#include <string>

#include "core/property_list.h"

namespace velantis {

struct TTextLabel {
  std::string text;
  int number = 0;         // waypoint: first integer; track point: label number
  int small1 = 0;         // waypoint: first byte; track point: first small integer
  int small2 = 0;         // waypoint: second byte; track point: second small integer
  int byteValue = 0;      // waypoint: third byte; track point: the closing byte
  int integer = 0;        // waypoint: the second integer
  double real = 0;        // track point: the real
  TPropertyList properties;  // track point: the label's properties, often empty

  friend bool operator==(const TTextLabel&, const TTextLabel&) = default;
};

}  // namespace velantis
