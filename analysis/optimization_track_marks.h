// The optimisation kept in the track itself, so that a saved track file
// carries its own result.
//
// The track's property object gets "Optimization" (the shape's name: free,
// triangle, fai, quad), "Optimization Rules" (the rule set), "Optimization
// Distance" (metres, 3 decimals) and "Optimization Score" (points, 3
// decimals); each chosen track point gets the property "Optimization" with
// its route name ("Start", "Point 1" ... "Finish"; "Point 3/Finish" when the
// finish is the last turnpoint). Properties are what the
// native track file already writes for the track and for single points, so
// no new line kind is needed, and other programs ignore what they do not
// know. A new result replaces the marks of an earlier one.
#pragma once

#include <string_view>

#include "analysis/track_optimization.h"

namespace velantis {

inline constexpr std::string_view kOptimizationProperty = "Optimization";
inline constexpr std::string_view kOptimizationRulesProperty = "Optimization Rules";
inline constexpr std::string_view kOptimizationDistanceProperty = "Optimization Distance";
inline constexpr std::string_view kOptimizationScoreProperty = "Optimization Score";

void StoreOptimizationInTrack(const TTrackOptimization& optimization, TTrack& track);

}  // namespace velantis
