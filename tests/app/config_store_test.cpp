#include "app/config.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/config_registry.h"
#include "app/log.h"
#include "tests/app/test_files.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::ReadBytes;
using test::ScratchDir;
using test::WriteBytes;

std::string Get(const TConfig& config, const std::string& key) {
  std::string value;
  std::string error;
  EXPECT_TRUE(config.GetByName(key, value, error)) << key << ": " << error;
  return value;
}

std::vector<std::string> WarningsNaming(const std::string& key) {
  std::vector<std::string> found;
  for (const TLogEntry& entry : TLog::Instance().Entries())
    if (entry.kind == TLogKind::Warning && entry.text.find(key) != std::string::npos)
      found.push_back(FormatLogEntry(entry));
  return found;
}

TEST(ConfigStoreTest, DefaultsOfTheKeysOtherPartsRead) {
  const std::map<std::string, std::string> defaults = {
      {"Path_EXE", ""},
      {"num_idioma", "0"},
      {"ActivatedLanguages", "111111111111111111111"},
      {"ExecCommand_at_Start", ""},
      {"Comm_NNEA_Timeout", "2000"},
      {"Last_Autodetect_Protocol", "0"},
      {"Num_Mensajes_NMEA_Error", "50"},
      {"MINSatellitesPosition", "0"},
      {"Use_Checksum_NMEA", "1"},
      {"ChipGPS", "0"},
      {"Comanda_NMEA_MovingMap", ""},
      {"Recent_Datums", ""},
      {"Recent_Symbols", ""},
      {"Recent_Cities", ""},
      {"Recent_Url_Maps", ""},
      {"Velocidad", "10"},
      {"Calidad_video", "1"},
      {"Num_Datum", "0"},
      {"Coordinate_Notation", "0"},
      {"Altitude_Source", "0"},
      {"Proximity_Mode", "0"},
      {"Proximity_Radius", "50"},
      {"Wpt_Scale_Display", "0"},
      {"Default_Label_Color_Wpt", "0"},
      {"Default_Label_Back_Color_Wpt", "16777215"},
      {"File_Code_Page", "Windows-1252"},
      {"Force_Extension_Lines", "0"},
  };
  const TConfig config;
  for (const auto& [key, value] : defaults) EXPECT_EQ(Get(config, key), value) << key;
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);
  EXPECT_TRUE(config.Use_Checksum_NMEA);
  EXPECT_EQ(config.Velocidad, 10.0f);
  EXPECT_EQ(config.Default_Label_Back_Color_Wpt, 0xFFFFFFu);
  // Every registered key is one the system names; none is missing from the list above.
  EXPECT_EQ(ConfigRegistrations().size(), defaults.size());
}

TEST(ConfigStoreTest, RegistrationTableIsConsistent) {
  const auto sections = ConfigSections();
  EXPECT_EQ(sections.size(), 36u);
  EXPECT_EQ(std::set<std::string_view>(sections.begin(), sections.end()).size(), sections.size());
  std::set<std::string> keys;
  const TConfig defaults;
  for (const TConfigRegistration& registration : ConfigRegistrations()) {
    SCOPED_TRACE(std::string(registration.key));
    EXPECT_NE(std::find(sections.begin(), sections.end(), registration.section), sections.end());
    std::string lowered(registration.key);
    for (char& c : lowered) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_TRUE(keys.insert(lowered).second) << "registered twice";
    // The stored form of every default reads back as the default.
    EXPECT_TRUE(ConfigMemberEquals(defaults, registration, FormatConfigMember(defaults, registration)));
  }
}

TEST(ConfigStoreTest, LoadConvertsPresentKeysAndDefaultsTheRest) {
  const auto dir = ScratchDir("config-load");
  const auto path = dir / "gps.ini";
  WriteBytes(path,
             "[General]\r\nnum_idioma=3\r\nActivatedLanguages=0123456789abcdefghijklmnopqrstuvwxy\r\n"
             "[Play]\r\nVelocidad=2.5\r\n"
             "[Com]\r\nUSE_CHECKSUM_NMEA=0\r\nComanda_NMEA_MovingMap=\r\nChipGPS = 4 \r\n"
             "[Coordenadas]\r\nRecent_Datums=WGS 84|European 1950\r\n"
             "[Colores]\r\nDefault_Label_Color_Wpt=255\r\n");
  TConfig config;
  config.Comanda_NMEA_MovingMap = "RMC";  // must be replaced by the stored empty text
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error)) << error;
  EXPECT_EQ(config.num_idioma, 3);
  EXPECT_EQ(config.ActivatedLanguages, "0123456789abcdefghijklmnopqrstuvwxy");
  EXPECT_EQ(config.Velocidad, 2.5f);
  EXPECT_FALSE(config.Use_Checksum_NMEA);
  EXPECT_EQ(config.Comanda_NMEA_MovingMap, "");
  EXPECT_EQ(config.ChipGPS, 4);
  EXPECT_EQ(config.Recent_Datums, (std::vector<std::string>{"WGS 84", "European 1950"}));
  EXPECT_EQ(config.Default_Label_Color_Wpt, 255u);
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);  // not in the file
  EXPECT_EQ(config.Num_Mensajes_NMEA_Error, 50);
}

TEST(ConfigStoreTest, MissingFileGivesTheDefaults) {
  const auto dir = ScratchDir("config-missing");
  TConfig config;
  config.Comm_NNEA_Timeout = 1;
  std::string error;
  ASSERT_TRUE(config.Load((dir / "gps.ini").string(), error));
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);
}

TEST(ConfigStoreTest, UnreadableFileFails) {
  const auto dir = ScratchDir("config-unreadable");
  std::filesystem::create_directory(dir / "gps.ini");
  TConfig config;
  std::string error;
  EXPECT_FALSE(config.Load((dir / "gps.ini").string(), error));
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);
}

TEST(ConfigStoreTest, TextThatDoesNotConvertKeepsTheDefaultAndWarns) {
  const auto dir = ScratchDir("config-bad");
  const auto path = dir / "gps.ini";
  struct TCase {
    const char* section;
    const char* key;
    const char* text;
    const char* defaultText;
  };
  const std::vector<TCase> cases = {
      {"Com", "Comm_NNEA_Timeout", "fast", "2000"},   {"Com", "Use_Checksum_NMEA", "yes", "1"},
      {"Play", "Velocidad", "10,5", "10"},            {"Colores", "Default_Label_Back_Color_Wpt", "#FFF", "16777215"},
      {"Coordenadas", "Coordinate_Notation", "4", "0"}, {"Tracks", "Altitude_Source", "-1", "0"},
  };
  std::map<std::string, std::string> sections;  // one section of each name: the first would hide a second
  for (const TCase& c : cases) sections[c.section] += std::string(c.key) + "=" + c.text + "\r\n";
  std::string text;
  for (const auto& [section, lines] : sections) text += "[" + section + "]\r\n" + lines;
  WriteBytes(path, text);
  TLog::Instance().ClearEntries();
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error));
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.key);
    EXPECT_EQ(Get(config, c.key), c.defaultText);
    const auto warnings = WarningsNaming(c.key);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].rfind("Warning: ", 0), 0u) << warnings[0];
  }
}

const char* const kFullFile =
    "; written by hand\r\n"
    "[General]\r\n"
    "Path_EXE=/opt/velantis/velantis\r\n"
    "num_idioma = 2\r\n"
    "ActivatedLanguages=111111111111111111110\r\n"
    "ExecCommand_at_Start=\r\n"
    "UnknownGeneral=keep me\r\n"
    "\r\n"
    "[Play]\r\n"
    "Velocidad=10.000000\r\n"
    "[Balizas]\r\nProximity_Mode=1\r\nProximity_Radius=75.5\r\nWpt_Scale_Display=0\r\n"
    "[Colores]\r\nDefault_Label_Color_Wpt=255\r\nDefault_Label_Back_Color_Wpt=16777215\r\n"
    "[Coordenadas]\r\nNum_Datum=12\r\nCoordinate_Notation=2\r\nRecent_Datums=WGS 84|European 1950\r\n"
    "[Iconos]\r\nRecent_Symbols=Flag|Summit\r\n"
    "[Video]\r\nCalidad_video=0.75\r\n"
    "[Com]\r\n"
    "; the timeout is in ms\r\n"
    "Comm_NNEA_Timeout=3000\r\nLast_Autodetect_Protocol=1\r\nNum_Mensajes_NMEA_Error=20\r\n"
    "MINSatellitesPosition=4\r\nUse_Checksum_NMEA=1\r\nChipGPS=4\r\nComanda_NMEA_MovingMap=RMC\r\n"
    "[Tracks]\r\nAltitude_Source=1\r\n"
    "[Internet]\r\nRecent_Url_Maps=http://a/?x=1%7C2\r\n"
    "[Files]\r\nFile_Code_Page=UTF-8\r\nForce_Extension_Lines=1\r\n"
    "[Navigation]\r\nRecent_Cities=Lleida|Huesca\r\n"
    "[SomebodyElse]\r\nx=1\r\n";

TEST(ConfigStoreTest, LoadAndSaveKeepTheFileByteForByte) {
  const auto dir = ScratchDir("config-identity");
  const auto path = dir / "gps.ini";
  WriteBytes(path, kFullFile);
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error)) << error;
  EXPECT_EQ(config.Velocidad, 10.0f);
  EXPECT_EQ(config.Recent_Url_Maps, (std::vector<std::string>{"http://a/?x=1|2"}));
  ASSERT_TRUE(config.Save(error)) << error;
  EXPECT_EQ(ReadBytes(path), kFullFile);

  // A changed member changes its own line and nothing else.
  config.Comm_NNEA_Timeout = 2500;
  config.Recent_Cities.insert(config.Recent_Cities.begin(), "Jaca");
  ASSERT_TRUE(config.Save(error)) << error;
  std::string expected = kFullFile;
  expected.replace(expected.find("Comm_NNEA_Timeout=3000"), 22, "Comm_NNEA_Timeout=2500");
  expected.replace(expected.find("Recent_Cities=Lleida"), 20, "Recent_Cities=Jaca|Lleida");
  EXPECT_EQ(ReadBytes(path), expected);
}

TEST(ConfigStoreTest, SaveAddsMissingKeysAndEveryTypeRoundTrips) {
  const auto dir = ScratchDir("config-roundtrip");
  const auto path = dir / "gps.ini";
  const std::string userText = "; mine\r\n[Com]\r\nMyOwnKey=42\r\n\r\n[Elsewhere]\r\ny=2\r\n";
  WriteBytes(path, userText);
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error));
  config.Path_EXE = "C:\\Program Files\\Velantis\\velantis.exe";
  config.num_idioma = -3;
  config.Velocidad = 1.0f / 3.0f;
  config.Use_Checksum_NMEA = false;
  config.Default_Label_Color_Wpt = 0xFF00000Fu;
  config.Recent_Url_Maps = {"http://t/{z}/{x}/{y}.png?a=b|c", "100%"};
  config.Recent_Datums = {"WGS 84"};
  ASSERT_TRUE(config.Save(error)) << error;

  const std::string saved = ReadBytes(path);
  EXPECT_EQ(saved.rfind("; mine\r\n[Com]\r\nMyOwnKey=42\r\nComm_NNEA_Timeout=2000\r\n", 0), 0u) << saved;
  EXPECT_NE(saved.find("\r\n\r\n[Elsewhere]\r\ny=2\r\n\r\n[General]\r\n"), std::string::npos) << saved;
  EXPECT_EQ(std::count(saved.begin(), saved.end(), '\n'), std::count(saved.begin(), saved.end(), '\r'));

  TConfig again;
  ASSERT_TRUE(again.Load(path.string(), error));
  for (const TConfigRegistration& registration : ConfigRegistrations())
    EXPECT_EQ(Get(again, std::string(registration.key)), Get(config, std::string(registration.key)))
        << registration.key;
  EXPECT_EQ(again.Velocidad, 1.0f / 3.0f);
  // Saving what was just loaded changes nothing.
  ASSERT_TRUE(again.Save(error));
  EXPECT_EQ(ReadBytes(path), saved);
}

TEST(ConfigStoreTest, FailedSaveLeavesTheOldFile) {
  const auto dir = ScratchDir("config-atomic");
  const auto path = dir / "gps.ini";
  WriteBytes(path, "[Com]\r\nComm_NNEA_Timeout=3000\r\n");
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error));
  config.Comm_NNEA_Timeout = 10;
  std::filesystem::create_directory(dir / "gps.ini.tmp");  // the temporary file cannot be made
  EXPECT_FALSE(config.Save(error));
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(ReadBytes(path), "[Com]\r\nComm_NNEA_Timeout=3000\r\n");
}

TEST(ConfigStoreTest, TextWithALineBreakIsNotSaved) {
  const auto dir = ScratchDir("config-linebreak");
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load((dir / "gps.ini").string(), error));
  config.ExecCommand_at_Start = "one\r\ntwo";
  EXPECT_FALSE(config.Save(error));
  EXPECT_EQ(error, "Error In Config: ExecCommand_at_Start");
  EXPECT_FALSE(std::filesystem::exists(dir / "gps.ini"));
}

}  // namespace
}  // namespace velantis
