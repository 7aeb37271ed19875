// The registration table of the configuration settings. A key is declared
// here and nowhere else (TConfig only holds the member): section, key, type,
// default, member. Rows are built by one helper per type, so a member of the
// wrong C++ type for its setting type does not compile.
#include "app/config_registry.h"

#include <array>
#include <cctype>
#include <unordered_map>

#include "app/config.h"

namespace velantis {

namespace {

// The section table, in its order.
constexpr std::array<std::string_view, 36> kSections = {
    "General", "Play", "Balizas", "Mapa", "Colores", "Coordenadas",
    "Directorios", "RadiosVelan", "Campos", "TiempoReal", "Logbook", "Iconos",
    "Graficas", "Fotos", "Video", "Windows", "Units", "_Default",
    "Zonas", "Race", "Marcas", "FKeys", "Rutas", "Com",
    "Tracks", "Internet", "Vistas", "Bitmaps", "Database", "AutoOpen",
    "APRS", "Polilines", "Files", "DEM", "Navigation", "GPRS",
};

TConfigRegistration Integer(std::string_view section, std::string_view key, int TConfig::*member, int value,
                            int minimum = INT_MIN, int maximum = INT_MAX) {
  return {section, key, TConfigType::Integer, value, member, minimum, maximum};
}
TConfigRegistration Boolean(std::string_view section, std::string_view key, bool TConfig::*member, bool value) {
  return {section, key, TConfigType::Boolean, value, member};
}
TConfigRegistration Text(std::string_view section, std::string_view key, std::string TConfig::*member,
                         std::string value) {
  return {section, key, TConfigType::Text, std::move(value), member};
}
TConfigRegistration Real(std::string_view section, std::string_view key, float TConfig::*member, float value) {
  return {section, key, TConfigType::Real, value, member};
}
TConfigRegistration Colour(std::string_view section, std::string_view key, uint32_t TConfig::*member,
                           uint32_t value) {
  return {section, key, TConfigType::Colour, value, member};
}
TConfigRegistration Recent(std::string_view section, std::string_view key, TRecentList TConfig::*member) {
  return {section, key, TConfigType::RecentList, TRecentList{}, member};
}
[[maybe_unused]] TConfigRegistration Secret(std::string_view section, std::string_view key,
                                            std::string TConfig::*member) {
  return {section, key, TConfigType::Secret, std::string(), member};
}

constexpr uint32_t kColourBlackRgb = 0x000000;
constexpr uint32_t kColourWhiteRgb = 0xFFFFFF;

const std::vector<TConfigRegistration>& Table() {
  using C = TConfig;
  static const std::vector<TConfigRegistration> table = {
      // General
      Text("General", "Path_EXE", &C::Path_EXE, ""),
      Integer("General", "num_idioma", &C::num_idioma, 0),
      Text("General", "ActivatedLanguages", &C::ActivatedLanguages, "111111111111111111111"),
      Text("General", "ExecCommand_at_Start", &C::ExecCommand_at_Start, ""),
      // Play
      Real("Play", "Velocidad", &C::Velocidad, 10.0f),
      // Balizas: proximity alarms around waypoints; the radius is in metres.
      Integer("Balizas", "Proximity_Mode", &C::Proximity_Mode, 0),
      Real("Balizas", "Proximity_Radius", &C::Proximity_Radius, 50.0f),
      // Whether a new waypoint is drawn only at scales its threshold allows
      // (bit 3 of its display flags).
      Boolean("Balizas", "Wpt_Scale_Display", &C::Wpt_Scale_Display, false),
      // Colores: waypoint labels, text and background.
      Colour("Colores", "Default_Label_Color_Wpt", &C::Default_Label_Color_Wpt, kColourBlackRgb),
      Colour("Colores", "Default_Label_Back_Color_Wpt", &C::Default_Label_Back_Color_Wpt, kColourWhiteRgb),
      // Coordenadas: the chosen datum (an index into the datum list) and notation.
      Integer("Coordenadas", "Num_Datum", &C::Num_Datum, 0),
      Integer("Coordenadas", "Coordinate_Notation", &C::Coordinate_Notation, 0, 0, 3),
      Recent("Coordenadas", "Recent_Datums", &C::Recent_Datums),
      // Iconos
      Recent("Iconos", "Recent_Symbols", &C::Recent_Symbols),
      // Video
      Real("Video", "Calidad_video", &C::Calidad_video, 1.0f),
      // Com: the receiver link; the timeout is in milliseconds.
      Integer("Com", "Comm_NNEA_Timeout", &C::Comm_NNEA_Timeout, 2000),
      Integer("Com", "Last_Autodetect_Protocol", &C::Last_Autodetect_Protocol, 0),
      Integer("Com", "Num_Mensajes_NMEA_Error", &C::Num_Mensajes_NMEA_Error, 50),
      Integer("Com", "MINSatellitesPosition", &C::MINSatellitesPosition, 0),
      Boolean("Com", "Use_Checksum_NMEA", &C::Use_Checksum_NMEA, true),
      Integer("Com", "ChipGPS", &C::ChipGPS, 0),
      Text("Com", "Comanda_NMEA_MovingMap", &C::Comanda_NMEA_MovingMap, ""),
      // Tracks: 0 GPS, 1 barometric, 2 terrain model.
      Integer("Tracks", "Altitude_Source", &C::Altitude_Source, 0, 0, 2),
      // Internet
      Recent("Internet", "Recent_Url_Maps", &C::Recent_Url_Maps),
      // Files
      Text("Files", "File_Code_Page", &C::File_Code_Page, "Windows-1252"),
      Boolean("Files", "Force_Extension_Lines", &C::Force_Extension_Lines, false),
      // Navigation: the places searched for.
      Recent("Navigation", "Recent_Cities", &C::Recent_Cities),
  };
  return table;
}

std::string Lowered(std::string_view text) {
  std::string lowered(text);
  for (char& c : lowered) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lowered;
}

}  // namespace

std::span<const std::string_view> ConfigSections() { return kSections; }

std::span<const TConfigRegistration> ConfigRegistrations() { return Table(); }

const TConfigRegistration* FindConfigRegistration(std::string_view key) {
  static const std::unordered_map<std::string, const TConfigRegistration*> byKey = [] {
    std::unordered_map<std::string, const TConfigRegistration*> map;
    for (const TConfigRegistration& registration : Table()) map.emplace(Lowered(registration.key), &registration);
    return map;
  }();
  const auto found = byKey.find(Lowered(key));
  return found == byKey.end() ? nullptr : found->second;
}

}  // namespace velantis
