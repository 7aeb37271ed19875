#include "tests/support/gie_vectors.h"

#include <cctype>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "geodesy/projection_catalogue.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis::test {

namespace {

// gie's tolerance when an operation sets none: 0.5 mm.
constexpr double kGieDefaultToleranceMetres = 0.0005;
// The Paris meridian as the EPSG dataset gives it (EPSG 8903: 2.5969213 gon),
// written here apart from the projection's own constant so that a wrong one
// there does not cancel out.
constexpr double kEpsgParisGrads = 2.5969213;
constexpr double kDegreesPerGrad = 0.9;

struct TCommand {
  std::string keyword;
  std::string args;
  int line = 0;
};

std::string Collapse(const std::string& text) {
  std::istringstream words(text);
  std::string word, result;
  while (words >> word) {
    if (word != "\\") result += (result.empty() ? "" : " ") + word;
  }
  return result;
}

// The commands between <gie...> and </gie...>, continuation lines (indented)
// joined to their command, comments and separator lines dropped.
bool ReadCommands(const std::filesystem::path& path, std::vector<TCommand>& commands) {
  std::ifstream file(path);
  std::string line;
  bool inside = false;
  for (int number = 1; std::getline(file, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.rfind("<gie", 0) == 0 || line.rfind("</gie", 0) == 0) {
      inside = line[1] != '/';
      continue;
    }
    if (const size_t hash = line.find('#'); hash != std::string::npos) line.erase(hash);
    const std::string collapsed = Collapse(line);
    if (!inside || collapsed.find_first_not_of('-') == std::string::npos) continue;
    if (std::isspace(static_cast<unsigned char>(line[0])) && !commands.empty()) {
      commands.back().args = Collapse(commands.back().args + ' ' + collapsed);
      continue;
    }
    const size_t blank = collapsed.find(' ');
    commands.push_back({collapsed.substr(0, blank),
                        blank == std::string::npos ? "" : collapsed.substr(blank + 1), number});
  }
  return static_cast<bool>(file.eof()) && !commands.empty();
}

// "0.1 mm", "50 nm", "1cm", "3e8" (metres when no unit is written).
double ToleranceMetres(const std::string& args) {
  static const std::map<std::string, double> kUnits = {
      {"mm", 1e-3}, {"cm", 1e-2}, {"um", 1e-6}, {"nm", 1e-9}, {"km", 1e3}};
  size_t used = 0;
  const double value = std::stod(args, &used);
  const auto unit = kUnits.find(Collapse(args.substr(used)));
  return unit == kUnits.end() ? value : value * unit->second;
}

bool TwoNumbers(const std::string& args, double& first, double& second) {
  std::istringstream numbers(args);
  return static_cast<bool>(numbers >> first >> second);
}

TLonLat ToDegrees(double lon, double lat, TGieAngles angles) {
  if (angles == TGieAngles::Degrees) return {lon, lat};
  return {(lon + kEpsgParisGrads) * kDegreesPerGrad, lat * kDegreesPerGrad};
}

}  // namespace

bool RunGieOperation(const std::filesystem::path& path, const TGieOperation& operation,
                     const TProjection& projection, double semiMajorAxis, TGieReport& report,
                     std::string& error) {
  std::vector<TCommand> commands;
  if (!ReadCommands(path, commands)) {
    error = "cannot read " + path.string();
    return false;
  }
  bool found = false, selected = false, inverse = false, haveAccept = false;
  double tolerance = kGieDefaultToleranceMetres, acceptX = 0, acceptY = 0;
  std::string message;
  const auto outside = [&](double lon) {
    return operation.withinDegrees > 0 && std::fabs(lon - operation.meridian) > operation.withinDegrees;
  };
  for (const TCommand& command : commands) {
    const auto fail = [&](const std::string& what) {
      report.failures.push_back(path.filename().string() + ":" + std::to_string(command.line) + ": " + what);
    };
    const TLonLat acceptGeo = ToDegrees(acceptX, acceptY, operation.angles);
    TPlanePoint plane;
    TLonLat geo;
    if (command.keyword == "operation") {
      selected = command.args == operation.operation;
      found = found || selected;
      inverse = operation.isInverse;
      tolerance = kGieDefaultToleranceMetres;
      haveAccept = false;
    } else if (!selected) {
      continue;
    } else if (command.keyword == "direction") {
      inverse = (command.args == "inverse") != operation.isInverse;
    } else if (command.keyword == "tolerance") {
      tolerance = ToleranceMetres(command.args);
    } else if (command.keyword == "accept") {
      haveAccept = TwoNumbers(command.args, acceptX, acceptY);
    } else if (command.keyword == "expect" && command.args.rfind("failure", 0) == 0) {
      ++report.cases;
      // Without an accept the operation itself is refused: any point fails.
      const bool refused = !haveAccept             ? !projection.Forward({0, 0}, plane, message)
                           : inverse ? !projection.Inverse({acceptX, acceptY}, geo, message)
                                     : !projection.Forward(acceptGeo, plane, message);
      if (!refused) fail("expected a failure");
    } else if (command.keyword == "expect") {
      double wantX = 0, wantY = 0;
      if (!haveAccept || !TwoNumbers(command.args, wantX, wantY)) {
        fail("unreadable accept or expect");
        continue;
      }
      if (outside(inverse ? wantX : acceptGeo.lon)) continue;
      ++report.cases;
      if (inverse ? !projection.Inverse({acceptX, acceptY}, geo, message)
                         : !projection.Forward(acceptGeo, plane, message)) {
        fail("refused: " + message);
      } else if (const double off = inverse ? GroundMetres(geo, ToDegrees(wantX, wantY, operation.angles),
                                                           semiMajorAxis)
                                            : std::hypot(plane.x - wantX, plane.y - wantY);
                 !(off <= tolerance)) {
        fail((inverse ? "inverse " : "forward ") + std::to_string(off) + " m off, tolerance " +
             std::to_string(tolerance));
      }
    } else if (command.keyword == "roundtrip" && haveAccept && operation.withinDegrees == 0) {
      ++report.cases;
      geo = acceptGeo;
      bool ok = !inverse;  // round trips start from geographic points here
      for (int i = 0; i < std::stoi(command.args) && ok; ++i)
        ok = projection.Forward(geo, plane, message) && projection.Inverse(plane, geo, message);
      const double drift = GroundMetres(geo, acceptGeo, semiMajorAxis);
      if (!ok || !(drift <= tolerance)) fail("round trip drifted " + std::to_string(drift) + " m " + message);
    }
  }
  if (!found) error = "no operation '" + operation.operation + "' in " + path.string();
  return found;
}

void ExpectGieRows(std::span<const TGieRow> rows) {
  for (const TGieRow& row : rows) {
    SCOPED_TRACE(std::string(row.kind) + " " + row.file + " " + row.operation.operation);
    VELANTIS_TESTDATA_OR_SKIP(path, row.file);
    std::string error;
    const auto projection = CreateProjection(row.kind, MakeEllipsoid(row.a, row.rf), row.params, error);
    ASSERT_NE(projection, nullptr) << error;
    TGieReport report;
    ASSERT_TRUE(RunGieOperation(path, row.operation, *projection, row.a, report, error)) << error;
    EXPECT_EQ(report.cases, row.cases);
    for (const std::string& failure : report.failures) ADD_FAILURE() << failure;
  }
}

}  // namespace velantis::test
