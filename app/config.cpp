#include "app/config.h"

#include <cctype>

#include "app/config_registry.h"
#include "app/log.h"

namespace velantis {

namespace {

std::string_view TypeName(TConfigType type) {
  switch (type) {
    case TConfigType::Integer: return "an integer";
    case TConfigType::Boolean: return "a boolean";
    case TConfigType::Text: return "a text";
    case TConfigType::Real: return "a real";
    case TConfigType::Colour: return "a colour";
    case TConfigType::RecentList: return "a recent list";
    case TConfigType::Secret: return "a stored secret";
  }
  return "a value";
}

bool HasLineBreak(std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; }

bool SameSection(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

}  // namespace

TConfig::TConfig() { ResetToDefaults(); }

void TConfig::ResetToDefaults() {
  for (const TConfigRegistration& registration : ConfigRegistrations()) ApplyConfigDefault(*this, registration);
}

bool TConfig::Load(const std::string& path, std::string& error) {
  m_path = path;
  m_keyFile = TKeyFile();
  if (!m_keyFile.Load(path, error)) {
    m_keyFile = TKeyFile();
    ResetToDefaults();
    return false;
  }
  LoadValues();
  return true;
}

void TConfig::LoadValues() {
  if (m_mode == TConfigMode::Registry) m_registry.Reload();
  for (const TConfigRegistration& registration : ConfigRegistrations()) {
    ApplyConfigDefault(*this, registration);
    std::string text;
    if (!ReadValue(std::string(registration.section), std::string(registration.key), text)) continue;
    if (!ParseConfigMember(*this, registration, text))
      TLog::Instance().Write(TLogKind::Warning, "Config key " + std::string(registration.key) + " in [" +
                                                    std::string(registration.section) + "]: \"" + text +
                                                    "\" is not " + std::string(TypeName(registration.type)) +
                                                    ", the default is kept");
  }
}

bool TConfig::ReadValue(const std::string& section, const std::string& key, std::string& text) {
  if (m_mode == TConfigMode::Registry) return m_registry.Read(section, key, text);
  if (m_secondary) return m_secondary->Read(section, key, text);
  return ReadKeyFileSetting(m_keyFile, section, key, text);
}

bool TConfig::Save(std::string& error) { return Save(m_path, error); }

bool TConfig::Save(const std::string& path, std::string& error) {
  if (path.empty()) {
    error = "No configuration file to save";
    return false;
  }
  for (const TConfigRegistration& registration : ConfigRegistrations()) {
    // A stored text that already reads as the member's value stays as the
    // user wrote it ("10.0" is not rewritten as "10").
    const auto stored = m_keyFile.Find(registration.section, registration.key);
    if (stored && ConfigMemberEquals(*this, registration, *stored)) continue;
    if (!m_keyFile.WriteProfileString(registration.section, registration.key,
                                      FormatConfigMember(*this, registration))) {
      error = std::string(kConfigErrorValue) + ": " + std::string(registration.key);
      return false;
    }
  }
  if (!m_keyFile.Save(path, error)) return false;
  m_path = path;
  return true;
}

bool TConfig::WriteValue(const std::string& section, const std::string& key, const std::string& text,
                         std::string& error) {
  const TConfigRegistration* registration = FindConfigRegistration(key);
  if (registration && !SameSection(registration->section, section)) registration = nullptr;
  if (!registration) {
    if (m_keyFile.WriteProfileString(section, key, text)) return true;
    error = kConfigErrorValue;
    return false;
  }
  if (HasLineBreak(text) || !ParseConfigMember(*this, *registration, text)) {
    error = kConfigErrorValue;
    return false;
  }
  // The canonical form of what the member now holds ("5" for a boolean is stored as "1").
  m_keyFile.WriteProfileString(registration->section, registration->key, FormatConfigMember(*this, *registration));
  return true;
}

bool TConfig::GetByName(const std::string& key, std::string& value, std::string& error) const {
  const TConfigRegistration* registration = FindConfigRegistration(key);
  if (!registration) {
    error = kConfigErrorUnknownKey;
    return false;
  }
  if (registration->type == TConfigType::Secret)
    value = this->*std::get<std::string TConfig::*>(registration->member);
  else
    value = FormatConfigMember(*this, *registration);
  return true;
}

bool TConfig::SetByName(const std::string& key, const std::string& text, std::string& error) {
  const TConfigRegistration* registration = FindConfigRegistration(key);
  if (!registration) {
    error = kConfigErrorUnknownKey;
    return false;
  }
  if (registration->type == TConfigType::Secret) {
    this->*std::get<std::string TConfig::*>(registration->member) = text;
    return true;
  }
  // A line break would end the line of the key file: such a text cannot be stored.
  if (HasLineBreak(text) || !ParseConfigMember(*this, *registration, text)) {
    error = kConfigErrorValue;
    return false;
  }
  return true;
}

}  // namespace velantis
