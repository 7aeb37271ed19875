#include "tests/support/gie_vectors.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/proj_sweep.h"

namespace velantis::test {

namespace {

// gie's tolerance when an operation sets none: 0.5 mm.
constexpr double kGieDefaultToleranceMetres = 0.0005;
// The Paris meridian as the EPSG dataset gives it (EPSG 8903: 2.5969213 gon),
// written here apart from the projection's own constant so that a wrong one
// there does not cancel out.
constexpr double kEpsgParisGrads = 2.5969213;
constexpr double kDegreesPerGrad = 0.9;

std::string Describe(const char* format, double a, double b, double c = 0, double d = 0) {
  char text[256];
  std::snprintf(text, sizeof text, format, a, b, c, d);
  return text;
}

struct TCommand {
  std::string keyword;
  std::string args;
  int line = 0;
};

std::string Collapse(const std::string& text) {
  std::istringstream words(text);
  std::string word;
  std::string result;
  while (words >> word) {
    if (word == "\\") continue;
    if (!result.empty()) result += ' ';
    result += word;
  }
  return result;
}

// The commands between <gie...> and </gie...>, continuation lines (indented)
// joined to their command, comments and separator lines dropped.
bool ReadCommands(const std::filesystem::path& path, std::vector<TCommand>& commands) {
  std::ifstream file(path);
  if (!file) return false;
  std::string line;
  bool inside = false;
  for (int number = 1; std::getline(file, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.rfind("<gie", 0) == 0) {
      inside = true;
      continue;
    }
    if (line.rfind("</gie", 0) == 0) inside = false;
    if (!inside) continue;
    if (const size_t hash = line.find('#'); hash != std::string::npos) line.erase(hash);
    const std::string collapsed = Collapse(line);
    if (collapsed.empty() || collapsed.find_first_not_of('-') == std::string::npos) continue;
    if (std::isspace(static_cast<unsigned char>(line[0])) && !commands.empty()) {
      commands.back().args = Collapse(commands.back().args + ' ' + collapsed);
      continue;
    }
    const size_t blank = collapsed.find(' ');
    commands.push_back({collapsed.substr(0, blank),
                        blank == std::string::npos ? "" : collapsed.substr(blank + 1), number});
  }
  return true;
}

// "0.1 mm", "50 nm", "1cm", "3e8" (metres when no unit is written).
double ToleranceMetres(const std::string& args) {
  size_t used = 0;
  const double value = std::stod(args, &used);
  const std::string unit = Collapse(args.substr(used));
  if (unit == "mm") return value * 1e-3;
  if (unit == "cm") return value * 1e-2;
  if (unit == "um") return value * 1e-6;
  if (unit == "nm") return value * 1e-9;
  if (unit == "km") return value * 1e3;
  return value;
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
  bool found = false;
  bool selected = false;
  bool inverse = false;
  double tolerance = kGieDefaultToleranceMetres;
  double acceptX = 0, acceptY = 0;
  bool haveAccept = false;
  std::string message;
  const auto fail = [&](const TCommand& command, const std::string& what) {
    report.failures.push_back(path.filename().string() + ":" + std::to_string(command.line) + ": " +
                              what);
  };
  for (const TCommand& command : commands) {
    if (command.keyword == "operation") {
      selected = command.args == operation.operation;
      found = found || selected;
      inverse = operation.isInverse;
      tolerance = kGieDefaultToleranceMetres;
      haveAccept = false;
      continue;
    }
    if (!selected) continue;
    if (command.keyword == "direction") {
      inverse = (command.args == "inverse") != operation.isInverse;
    } else if (command.keyword == "tolerance") {
      tolerance = ToleranceMetres(command.args);
    } else if (command.keyword == "accept") {
      haveAccept = TwoNumbers(command.args, acceptX, acceptY);
      if (!haveAccept) fail(command, "unreadable accept");
    } else if (command.keyword == "expect" && command.args.rfind("failure", 0) == 0) {
      ++report.cases;
      // Without an accept the operation itself is refused: any point fails.
      TPlanePoint plane;
      TLonLat geo;
      const bool refused =
          !haveAccept ? !projection.Forward({0, 0}, plane, message)
          : inverse
              ? !projection.Inverse({acceptX, acceptY}, geo, message)
              : !projection.Forward(ToDegrees(acceptX, acceptY, operation.angles), plane, message);
      if (!refused) fail(command, "expected a failure");
    } else if (command.keyword == "expect") {
      double wantX = 0, wantY = 0;
      if (!haveAccept || !TwoNumbers(command.args, wantX, wantY)) {
        fail(command, "unreadable expect");
        continue;
      }
      ++report.cases;
      if (inverse) {
        TLonLat geo;
        if (!projection.Inverse({acceptX, acceptY}, geo, message)) {
          fail(command, "inverse refused: " + message);
          continue;
        }
        const double off =
            GroundMetres(geo, ToDegrees(wantX, wantY, operation.angles), semiMajorAxis);
        if (!(off <= tolerance)) {
          fail(command, Describe("inverse %.10f %.10f is %.6f m off (tolerance %g m)", geo.lon,
                                 geo.lat, off, tolerance));
        }
      } else {
        TPlanePoint plane;
        if (!projection.Forward(ToDegrees(acceptX, acceptY, operation.angles), plane, message)) {
          fail(command, "forward refused: " + message);
          continue;
        }
        const double off = std::hypot(plane.x - wantX, plane.y - wantY);
        if (!(off <= tolerance)) {
          fail(command, Describe("forward %.6f %.6f is %.6f m off (tolerance %g m)", plane.x,
                                 plane.y, off, tolerance));
        }
      }
    } else if (command.keyword == "roundtrip") {
      if (!haveAccept) continue;
      ++report.cases;
      const int passes = std::stoi(command.args);
      if (inverse) {
        fail(command, "round trips from plane points are not supported");
        continue;
      }
      const TLonLat start = ToDegrees(acceptX, acceptY, operation.angles);
      TLonLat geo = start;
      TPlanePoint plane;
      bool ok = true;
      for (int i = 0; i < passes && ok; ++i) {
        ok = projection.Forward(geo, plane, message) && projection.Inverse(plane, geo, message);
      }
      const double drift = GroundMetres(geo, start, semiMajorAxis);
      if (!ok || !(drift <= tolerance)) {
        fail(command, Describe("round trip drifted %.9f m", drift, 0) + (ok ? "" : " " + message));
      }
    }
  }
  if (!found) error = "no operation '" + operation.operation + "' in " + path.string();
  return found;
}

void ExpectGieCases(const std::filesystem::path& path, const TGieOperation& operation,
                    const TProjection& projection, double semiMajorAxis, int cases) {
  TGieReport report;
  std::string error;
  ASSERT_TRUE(RunGieOperation(path, operation, projection, semiMajorAxis, report, error)) << error;
  EXPECT_EQ(report.cases, cases);
  for (const std::string& failure : report.failures) ADD_FAILURE() << failure;
}

bool ReadGieBlocks(const std::filesystem::path& file, const std::vector<std::string>& geographicCodes,
                   std::vector<TGieBlock>& blocks, std::string& error) {
  std::vector<TCommand> commands;
  if (!ReadCommands(file, commands)) {
    error = "cannot open " + file.string();
    return false;
  }
  double tolerance = 0;
  TGiePair pending;
  bool havePending = false;
  for (const TCommand& command : commands) {
    if (command.keyword == "operation") {
      TGieBlock block;
      block.operation = command.args;
      const size_t second = block.operation.find("+step", block.operation.find("+step") + 1);
      const std::string first = block.operation.substr(0, second);
      for (const auto& code : geographicCodes)
        if (first.find(code) != std::string::npos) block.fromGeographic = true;
      blocks.push_back(block);
    } else if (command.keyword == "tolerance") {
      tolerance = ToleranceMetres(command.args);
    } else if (command.keyword == "accept") {
      havePending = TwoNumbers(command.args, pending.accept[0], pending.accept[1]);
    } else if (command.keyword == "expect" && havePending && !blocks.empty()) {
      if (TwoNumbers(command.args, pending.expect[0], pending.expect[1])) {
        pending.toleranceM = tolerance;
        pending.line = command.line;
        blocks.back().pairs.push_back(pending);
      }
      havePending = false;
    }
  }
  if (blocks.empty()) {
    error = "no operation in " + file.string();
    return false;
  }
  return true;
}

}  // namespace velantis::test
