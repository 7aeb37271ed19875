// The configuration store: every user setting of the application as a public
// member named after its key, backed by the key file "gps.ini" (in the user
// folder unless the command line names another).
//
// Each key is registered once (config_registry.cpp) with its section, type and
// default; a default-constructed TConfig holds every default. Load reads every
// registered key: a key that is absent takes its default, a stored text that
// does not convert to the key's type keeps the default and logs a warning
// naming the key. Save writes every member back into the key file it was
// loaded from, keeping the user's other keys, comments and order, in one
// atomic write. See config_value.h for the stored text of each type.
//
// Two backends read the stored texts: the key file (the default mode) and the
// machine-wide registry key "SOFTWARE\Velantis" (registry mode). In key-file
// mode an attached secondary reader, when there is one, serves every read
// instead of the key file. Writes always go to the key file.
//
// Not thread-safe: the main thread owns the store; other threads read members
// that do not change while they run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/config_reader.h"
#include "app/key_file.h"
#include "app/registry.h"

namespace velantis {

enum class TConfigMode { KeyFile, Registry };

inline constexpr std::string_view kConfigFileName = "gps.ini";

// Messages of access by key name (the script object Config).
inline constexpr std::string_view kConfigErrorUnknownKey = "Wrong Config Property";
inline constexpr std::string_view kConfigErrorValue = "Error In Config";

class TConfig {
public:
  // Every member at its registered default (the {} below only keep a member
  // that someone forgets to register from being indeterminate).
  TConfig();

  // General
  std::string Path_EXE{};
  int num_idioma{};
  std::string ActivatedLanguages{};  // one "0"/"1" flag per language, 21 characters
  std::string ExecCommand_at_Start{};
  // Play
  float Velocidad{};
  // Balizas
  int Proximity_Mode{};
  float Proximity_Radius{};  // metres
  bool Wpt_Scale_Display{};   // new waypoints: the display-scale threshold applies
  // Colores: 0x00RRGGBB
  uint32_t Default_Label_Color_Wpt{};
  uint32_t Default_Label_Back_Color_Wpt{};
  // Coordenadas
  int Num_Datum{};            // index into the datum list
  int Coordinate_Notation{};  // 0 to 3
  std::vector<std::string> Recent_Datums{};
  // Iconos
  std::vector<std::string> Recent_Symbols{};
  // Video
  float Calidad_video{};
  // Com
  int Comm_NNEA_Timeout{};  // milliseconds
  int Last_Autodetect_Protocol{};
  int Num_Mensajes_NMEA_Error{};
  int MINSatellitesPosition{};
  bool Use_Checksum_NMEA{};
  int ChipGPS{};
  std::string Comanda_NMEA_MovingMap{};
  // Tracks
  int Altitude_Source{};  // 0 GPS, 1 barometric, 2 terrain model
  // Internet
  std::vector<std::string> Recent_Url_Maps{};
  // Files
  std::string File_Code_Page{};
  bool Force_Extension_Lines{};
  // Navigation
  std::vector<std::string> Recent_Cities{};

  void SetMode(TConfigMode mode) { m_mode = mode; }
  TConfigMode Mode() const { return m_mode; }
  // The POSIX file standing for the registry (default /etc/velantis/registry.ini).
  void SetRegistryPath(std::string path) { m_registry.SetPath(std::move(path)); }
  // Not owned; nullptr detaches.
  void AttachSecondaryReader(TConfigReader* reader) { m_secondary = reader; }

  // Reads the key file at path (a missing file is an empty one) and then every
  // registered key. Fails only when an existing file cannot be read; the
  // members then hold their defaults.
  bool Load(const std::string& path, std::string& error);
  // Sets every member from the current backend (defaults for absent keys).
  void LoadValues();
  void ResetToDefaults();

  // Writes every member into the key file and saves it, to the loaded path or to path.
  bool Save(std::string& error);
  bool Save(const std::string& path, std::string& error);

  // Read one value through the current backend: the stored text and whether
  // the key was present.
  bool ReadValue(const std::string& section, const std::string& key, std::string& text);
  // Write one value into the key file (saved with the next Save); a registered
  // key's member takes the value too. Fails with "Error In Config" when the
  // text does not convert to the key's type or cannot be stored.
  bool WriteValue(const std::string& section, const std::string& key, const std::string& text,
                  std::string& error);

  // Access by key name, letter case ignored: the member's value as text
  // (secrets in clear), or the member set from text.
  bool GetByName(const std::string& key, std::string& value, std::string& error) const;
  bool SetByName(const std::string& key, const std::string& text, std::string& error);

  const TKeyFile& KeyFile() const { return m_keyFile; }
  const std::string& Path() const { return m_path; }

private:
  TConfigMode m_mode = TConfigMode::KeyFile;
  TKeyFile m_keyFile;
  std::string m_path;
  TRegistryReader m_registry;
  TConfigReader* m_secondary = nullptr;
};

}  // namespace velantis
