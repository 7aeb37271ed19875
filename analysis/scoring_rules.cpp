#include "analysis/scoring_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

namespace velantis {

namespace {

constexpr double kMetresPerKm = 1000.0;

bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

double Between(const TFlightPointCache& cache, TEarthModel model, int a, int b) {
  const TFlightPointRecord& p = cache.Record(static_cast<size_t>(a));
  const TFlightPointRecord& q = cache.Record(static_cast<size_t>(b));
  return EarthDistanceM(model, p.latDeg, p.lonDeg, q.latDeg, q.lonDeg);
}

bool ClosingAccepted(const TScoringRules& rules, double gapM, double perimeterM) {
  if (rules.maxGapShare > 0 && gapM > rules.maxGapShare * perimeterM) return false;
  if (rules.maxGapM > 0 && gapM > rules.maxGapM) return false;
  return true;
}

double ClosedShapeFactor(const TScoringRules& rules, const TOptimizationShape& shape, const std::vector<double>& legs,
                         double perimeterM) {
  if (shape.turnpoints >= 4) return rules.quadFactor;
  if (shape.faiRule && PassesFaiLegRule(legs[0], legs[1], legs[2], perimeterM)) return rules.faiFactor;
  return rules.triangleFactor;
}

}  // namespace

std::span<const TScoringRules* const> AllScoringRules() {
  static const std::array<const TScoringRules*, 3> all{&DhvOlcRules(), &GlidersOlcRules(), &FrenchCfdRules()};
  return all;
}

const TScoringRules* FindScoringRules(std::string_view name) {
  for (const TScoringRules* rules : AllScoringRules())
    if (SameName(rules->name, name) || SameName(rules->alias, name)) return rules;
  return nullptr;
}

TRuleScore ScoreWithRules(const TFlightPointCache& cache, const TOptimizationResult& result,
                          const TScoringRules& rules) {
  TRuleScore score;
  if (!result.Found()) return score;
  const TOptimizationShape& shape = ShapeForType(result.type);
  const std::span<const int> turnpoints = result.Turnpoints();

  std::vector<double> legs;
  for (size_t i = 1; i < turnpoints.size(); ++i) legs.push_back(Between(cache, rules.earth, turnpoints[i - 1], turnpoints[i]));
  if (shape.Closed()) legs.push_back(Between(cache, rules.earth, turnpoints.back(), turnpoints.front()));
  for (double leg : legs) score.distanceM += leg;
  if (result.start != kNoPoint && result.finish != kNoPoint)
    score.gapM = Between(cache, rules.earth, result.start, result.finish);

  if (!shape.Closed()) {
    score.factor = rules.freeFactor;
    score.score = score.distanceM / kMetresPerKm * score.factor;
    return score;
  }
  score.closed = score.gapM >= 0 && ClosingAccepted(rules, score.gapM, score.distanceM);
  if (!score.closed) return score;
  score.factor = ClosedShapeFactor(rules, shape, legs, score.distanceM);
  const double scoredM = rules.deductGap ? score.distanceM - score.gapM : score.distanceM;
  score.score = scoredM / kMetresPerKm * score.factor;
  return score;
}

}  // namespace velantis
