#include "core/label_colour.h"

namespace velantis {
namespace {

// Level of a channel: v * maxLevel / 255 rounded. An expanded level reduces
// back to itself (the tests run every level), which is what makes a saved
// colour stable.
uint32_t Reduce(uint32_t v, uint32_t maxLevel) { return (v * maxLevel + 127) / 255; }

uint32_t Expand5(uint32_t level) { return (level << 3) | (level >> 2); }
uint32_t Expand6(uint32_t level) { return (level << 2) | (level >> 4); }

}  // namespace

TLabelColour PackLabelColour(uint32_t rgb) {
  const uint32_t r = (rgb >> 16) & 0xFF, g = (rgb >> 8) & 0xFF, b = rgb & 0xFF;
  return static_cast<TLabelColour>((Reduce(r, 31) << 11) | (Reduce(g, 63) << 5) | Reduce(b, 31));
}

uint32_t UnpackLabelColour(TLabelColour packed) {
  const uint32_t r = Expand5((packed >> 11) & 0x1F), g = Expand6((packed >> 5) & 0x3F), b = Expand5(packed & 0x1F);
  return (r << 16) | (g << 8) | b;
}

}  // namespace velantis
