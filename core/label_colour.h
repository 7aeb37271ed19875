// The 16-bit label colours of waypoints: RGB 5-6-5.
//
// Outside the waypoint a colour is a 24-bit number 0x00RRGGBB (the
// configuration's colours and the numbers files carry). Storing one reduces
// it to 5-6-5 by rounding each channel to the nearest level; reading one
// expands the levels back to 8 bits by repeating the top bits (31 -> 255,
// 63 -> 255, 0 -> 0). Writers print the expansion, so a colour that has been
// through one save reads back as exactly the number written, and every later
// save writes the same number again. Black and white, the configured
// defaults as shipped, are exact; a configured default off the palette is
// compared with a waypoint's colour in the 16-bit form, so a waypoint left at
// the default still counts as default after a save and a reload.
#pragma once

#include <cstdint>

namespace velantis {

using TLabelColour = uint16_t;

// 0x00RRGGBB (higher bits ignored) to the nearest 5-6-5 colour.
TLabelColour PackLabelColour(uint32_t rgb);
// 5-6-5 to 0x00RRGGBB.
uint32_t UnpackLabelColour(TLabelColour packed);

}  // namespace velantis
