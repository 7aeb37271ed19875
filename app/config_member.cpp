// Conversions between a registration's member of TConfig and its stored text.
#include <type_traits>

#include "app/config.h"
#include "app/config_registry.h"

namespace velantis {

namespace {

bool ParseAs(const TConfigRegistration& registration, std::string_view text, int& value) {
  int parsed = 0;
  if (!ParseConfigInteger(text, parsed) || parsed < registration.minimum || parsed > registration.maximum)
    return false;
  value = parsed;
  return true;
}
bool ParseAs(const TConfigRegistration&, std::string_view text, bool& value) { return ParseConfigBoolean(text, value); }
bool ParseAs(const TConfigRegistration&, std::string_view text, float& value) { return ParseConfigReal(text, value); }
bool ParseAs(const TConfigRegistration&, std::string_view text, uint32_t& value) {
  return ParseConfigColour(text, value);
}
bool ParseAs(const TConfigRegistration&, std::string_view text, TRecentList& value) {
  return ParseConfigRecentList(text, value);
}
bool ParseAs(const TConfigRegistration& registration, std::string_view text, std::string& value) {
  if (registration.type == TConfigType::Secret) return ParseConfigSecret(text, value);
  value = std::string(text);
  return true;
}

std::string FormatAs(const TConfigRegistration&, int value) { return FormatConfigInteger(value); }
std::string FormatAs(const TConfigRegistration&, bool value) { return FormatConfigBoolean(value); }
std::string FormatAs(const TConfigRegistration&, float value) { return FormatConfigReal(value); }
std::string FormatAs(const TConfigRegistration&, uint32_t value) { return FormatConfigColour(value); }
std::string FormatAs(const TConfigRegistration&, const TRecentList& value) { return FormatConfigRecentList(value); }
std::string FormatAs(const TConfigRegistration& registration, const std::string& value) {
  return registration.type == TConfigType::Secret ? FormatConfigSecret(value) : value;
}

template <typename Member>
using TMemberValue = std::remove_reference_t<decltype(std::declval<TConfig&>().*std::declval<Member>())>;

}  // namespace

void ApplyConfigDefault(TConfig& config, const TConfigRegistration& registration) {
  std::visit(
      [&](auto member) { config.*member = std::get<TMemberValue<decltype(member)>>(registration.defaultValue); },
      registration.member);
}

std::string FormatConfigMember(const TConfig& config, const TConfigRegistration& registration) {
  return std::visit([&](auto member) { return FormatAs(registration, config.*member); }, registration.member);
}

bool ParseConfigMember(TConfig& config, const TConfigRegistration& registration, std::string_view text) {
  return std::visit(
      [&](auto member) {
        TMemberValue<decltype(member)> value{};
        if (!ParseAs(registration, text, value)) return false;
        config.*member = std::move(value);
        return true;
      },
      registration.member);
}

bool ConfigMemberEquals(const TConfig& config, const TConfigRegistration& registration, std::string_view text) {
  return std::visit(
      [&](auto member) {
        TMemberValue<decltype(member)> value{};
        return ParseAs(registration, text, value) && value == config.*member;
      },
      registration.member);
}

}  // namespace velantis
