// The free functions: calls without a receiver.
//
// Choices left open:
// - the version number is major x 100 + minor (0.1 is 1), so
//   RequiredVersion(0.01) passes and RequiredVersion(0.02) fails;
// - CreateRandom(a, b) with b below a gives a;
// - without system access (TScriptLimits) the file functions see an empty,
//   read-only file system and Sleep returns at once.
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <random>
#include <thread>

#include "script/builtins.h"
#include "script/object_functions.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

namespace fs = std::filesystem;

constexpr int kVersionNumber = VELANTIS_VERSION_MAJOR * 100 + VELANTIS_VERSION_MINOR;
constexpr double kVersionRounding = 0.0001;  // 1.05 x 100 must read 105, not 104.99...

bool SystemAccess(const TBuiltinCall& call) { return call.script.Limits().systemAccess; }

void RequiredVersion(TBuiltinCall& call) {
  if (ToInt64((call.Number(0) + kVersionRounding) * 100) > kVersionNumber)
    throw TScriptError("This VelanScript is designed for a newer version or Velantis", call.at);
}

void GetVersion(TBuiltinCall& call) { call.result.SetNumber(kVersionNumber); }

void GetYear(TBuiltinCall& call) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  call.result.SetNumber(local.tm_year + 1900);
}

void CreateRandom(TBuiltinCall& call) {
  static std::mt19937_64 generator{std::random_device{}()};
  const long long low = ToInt64(call.Number(0)), high = ToInt64(call.Number(1));
  if (high <= low) return call.result.SetNumber(static_cast<double>(low));
  std::uniform_int_distribution<long long> draw(low, high);
  call.result.SetNumber(static_cast<double>(draw(generator)));
}

void Sleep(TBuiltinCall& call) {
  const double ms = call.Number(0);
  if (SystemAccess(call) && ms > 0)
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(ms));
}

void Exit(TBuiltinCall&) { throw TExitVelanScript{}; }

void Echo(TBuiltinCall& call) { call.script.Echo(call.Text(0)); }

void FileExists(TBuiltinCall& call) {
  std::error_code error;
  const bool found = SystemAccess(call) && fs::is_regular_file(call.Text(0), error);
  call.result.SetNumber(found ? 1 : 0);
}

void DirectoryExists(TBuiltinCall& call) {
  std::error_code error;
  const bool found = SystemAccess(call) && fs::is_directory(call.Text(0), error);
  call.result.SetNumber(found ? 1 : 0);
}

void FileRename(TBuiltinCall& call) {
  std::error_code error;
  const std::string& from = call.Text(0);
  const std::string& to = call.Text(1);
  if (!SystemAccess(call)) throw TScriptError("Error renaming file", call.at);
  fs::rename(from, to, error);
  if (error) throw TScriptError("Error renaming file", call.at);
}

void CreateDirectory(TBuiltinCall& call) {
  std::error_code error;
  const std::string& path = call.Text(0);
  if (!SystemAccess(call) || !fs::create_directory(path, error))
    throw TScriptError("Error creating folder", call.at);
}

// Halves round away from zero: RoundInt(-2.5) is -3.
void RoundInt(TBuiltinCall& call) {
  const double x = call.Number(0);
  call.result.SetNumber(std::trunc(x >= 0 ? x + 0.5 : x - 0.5));
}

// The reference whose number this is: a reference kept as a number
// (("" + obj).atoi()) becomes an object again.
void ObjectAtPtr(TBuiltinCall& call) {
  const double number = call.Number(0);
  if (!call.script.Objects().At(number)) throw TScriptError(kWrongPtr, call.at);
  call.result.SetObject(static_cast<uint32_t>(number));
}

void Max(TBuiltinCall& call) { call.result.SetNumber(std::fmax(call.Number(0), call.Number(1))); }
void Min(TBuiltinCall& call) { call.result.SetNumber(std::fmin(call.Number(0), call.Number(1))); }

constexpr TFreeBuiltin kFreeFunctions[] = {
    {"RequiredVersion", 1, RequiredVersion}, {"GetVersion", 0, GetVersion},
    {"GetYear", 0, GetYear},                 {"CreateRandom", 2, CreateRandom},
    {"Sleep", 1, Sleep},                     {"Exit", 0, Exit},
    {"Echo", 1, Echo},                       {"FileExists", 1, FileExists},
    {"FileRename", 2, FileRename},           {"CreateDirectory", 1, CreateDirectory},
    {"DirectoryExists", 1, DirectoryExists}, {"RoundInt", 1, RoundInt},
    {"max", 2, Max},                         {"min", 2, Min},
    {"ObjectAtPtr", 1, ObjectAtPtr},         {"new", 1, NewObject},
    {"SetProjection", 2, SetProjection},
};

}  // namespace

int FindFreeBuiltin(std::string_view name) { return IndexOfName(kFreeFunctions, name); }

const TFreeBuiltin& FreeBuiltin(int index) { return kFreeFunctions[index]; }

}  // namespace velantis
