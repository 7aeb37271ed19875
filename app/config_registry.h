// The registrations of the configuration settings: for each key its section,
// its type, its default and the member of TConfig that carries it. The table
// in config_registry.cpp is the one place a key is declared; loading, saving
// and access by name all walk it.
#pragma once

#include <climits>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "app/config_value.h"

namespace velantis {

class TConfig;

using TRecentList = std::vector<std::string>;

// The member a setting lives in; its C++ type follows from the setting's type
// (text and secret both use std::string).
using TConfigMember = std::variant<int TConfig::*, bool TConfig::*, std::string TConfig::*, float TConfig::*,
                                   uint32_t TConfig::*, TRecentList TConfig::*>;
using TConfigDefault = std::variant<int, bool, std::string, float, uint32_t, TRecentList>;

struct TConfigRegistration {
  std::string_view section;
  std::string_view key;
  TConfigType type;
  TConfigDefault defaultValue;
  TConfigMember member;
  // Integers only: a stored value outside [minimum, maximum] does not convert.
  int minimum = INT_MIN;
  int maximum = INT_MAX;
};

// The section names in the order of the system's section table.
std::span<const std::string_view> ConfigSections();

std::span<const TConfigRegistration> ConfigRegistrations();

// The registration of a key, compared without regard to letter case; nullptr
// when the key is not registered.
const TConfigRegistration* FindConfigRegistration(std::string_view key);

// The conversions between a registration's member and its stored text.
void ApplyConfigDefault(TConfig& config, const TConfigRegistration& registration);
std::string FormatConfigMember(const TConfig& config, const TConfigRegistration& registration);
// Converts text into the member; false (member untouched) when it does not convert.
bool ParseConfigMember(TConfig& config, const TConfigRegistration& registration, std::string_view text);
// True when text converts to exactly the member's current value.
bool ConfigMemberEquals(const TConfig& config, const TConfigRegistration& registration, std::string_view text);

}  // namespace velantis
