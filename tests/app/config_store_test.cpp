// The configuration store: its keys and defaults, loading (from "gps.ini",
// the registry key or a secondary reader), byte-identical saves, and access
// by key name.
#include "app/config.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/config_registry.h"
#include "app/file_io.h"
#include "app/log.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::FileBytes;
using test::ScratchDir;

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::string error;
  ASSERT_TRUE(WriteFileAtomic(path.string(), bytes, error)) << error;
}

std::string Get(const TConfig& config, const std::string& key) {
  std::string value, error;
  EXPECT_TRUE(config.GetByName(key, value, error)) << key << ": " << error;
  return value;
}

TEST(ConfigStoreTest, EveryKeyHasItsDefaultAndOneSection) {
  const std::map<std::string, std::string> defaults = {
      {"Path_EXE", ""}, {"num_idioma", "0"}, {"ActivatedLanguages", "111111111111111111111"},
      {"ExecCommand_at_Start", ""}, {"Comm_NNEA_Timeout", "2000"}, {"Last_Autodetect_Protocol", "0"},
      {"Num_Mensajes_NMEA_Error", "50"}, {"MINSatellitesPosition", "0"}, {"Use_Checksum_NMEA", "1"},
      {"ChipGPS", "0"}, {"Comanda_NMEA_MovingMap", ""}, {"Recent_Datums", ""}, {"Recent_Symbols", ""},
      {"Recent_Cities", ""}, {"Recent_Url_Maps", ""}, {"Velocidad", "10"}, {"Calidad_video", "1"},
      {"Num_Datum", "0"}, {"Coordinate_Notation", "0"}, {"Altitude_Source", "0"}, {"Proximity_Mode", "0"},
      {"Proximity_Radius", "50"}, {"Wpt_Scale_Display", "0"}, {"Default_Label_Color_Wpt", "0"},
      {"Default_Label_Back_Color_Wpt", "16777215"}, {"File_Code_Page", "Windows-1252"},
      {"Force_Extension_Lines", "0"},
  };
  const TConfig config;
  for (const auto& [key, value] : defaults) EXPECT_EQ(Get(config, key), value) << key;
  EXPECT_EQ(ConfigRegistrations().size(), defaults.size());

  const auto sections = ConfigSections();
  EXPECT_EQ(sections.size(), 36u);
  EXPECT_EQ(std::set<std::string_view>(sections.begin(), sections.end()).size(), sections.size());
  for (const TConfigRegistration& registration : ConfigRegistrations()) {
    SCOPED_TRACE(std::string(registration.key));
    EXPECT_NE(std::find(sections.begin(), sections.end(), registration.section), sections.end());
    // Found in any letter case, and as itself: a key registered twice is found as its first row.
    std::string lowered(registration.key);
    for (char& c : lowered) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(FindConfigRegistration(lowered), &registration);
    EXPECT_TRUE(ConfigMemberEquals(config, registration, FormatConfigMember(config, registration)));
  }
}

// Keys present convert (any letter case, blanks trimmed); a text that does
// not convert keeps the default and logs one warning naming the key.
TEST(ConfigStoreTest, LoadConvertsPresentKeysAndWarnsOfTheRest) {
  const auto dir = ScratchDir("config-load");
  const auto path = dir / "gps.ini";
  WriteBytes(path,
             "[General]\r\nnum_idioma=3\r\n[Play]\r\nVelocidad=10,5\r\n"
             "[Com]\r\nUSE_CHECKSUM_NMEA=0\r\nComanda_NMEA_MovingMap=\r\nChipGPS = 4 \r\nComm_NNEA_Timeout=fast\r\n"
             "[Coordenadas]\r\nRecent_Datums=WGS 84|European 1950\r\nCoordinate_Notation=4\r\n"
             "[Colores]\r\nDefault_Label_Color_Wpt=255\r\nDefault_Label_Back_Color_Wpt=#FFF\r\n"
             "[Tracks]\r\nAltitude_Source=-1\r\n[Files]\r\nForce_Extension_Lines=yes\r\n");
  TLog::Instance().ClearEntries();
  TConfig config;
  config.Comanda_NMEA_MovingMap = "RMC";  // must be replaced by the stored empty text
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error)) << error;
  const std::pair<const char*, const char*> keys[] = {
      {"num_idioma", "3"}, {"Use_Checksum_NMEA", "0"}, {"Comanda_NMEA_MovingMap", ""}, {"ChipGPS", "4"},
      {"Recent_Datums", "WGS 84|European 1950"}, {"Default_Label_Color_Wpt", "255"},
      {"Num_Mensajes_NMEA_Error", "50"},  // not in the file
      {"Comm_NNEA_Timeout", "2000"}, {"Velocidad", "10"}, {"Default_Label_Back_Color_Wpt", "16777215"},
      {"Coordinate_Notation", "0"}, {"Altitude_Source", "0"}};
  for (const auto& [key, value] : keys) EXPECT_EQ(Get(config, key), value) << key;
  std::string warnings;
  for (const TLogEntry& entry : TLog::Instance().Entries()) warnings += FormatLogEntry(entry) + "\n";
  EXPECT_EQ(warnings,
            "Warning: Config key Velocidad in [Play]: \"10,5\" is not a real, the default is kept\n"
            "Warning: Config key Default_Label_Back_Color_Wpt in [Colores]: \"#FFF\" is not a colour, the default is kept\n"
            "Warning: Config key Coordinate_Notation in [Coordenadas]: \"4\" is not an integer, the default is kept\n"
            "Warning: Config key Comm_NNEA_Timeout in [Com]: \"fast\" is not an integer, the default is kept\n"
            "Warning: Config key Altitude_Source in [Tracks]: \"-1\" is not an integer, the default is kept\n"
            "Warning: Config key Force_Extension_Lines in [Files]: \"yes\" is not a boolean, the default is kept\n");
  // A missing file gives the defaults, nothing of the file read before; one
  // that cannot be read fails.
  ASSERT_TRUE(config.Load((dir / "absent.ini").string(), error));
  EXPECT_EQ(config.num_idioma, 0);
  std::filesystem::create_directory(dir / "folder.ini");
  EXPECT_FALSE(config.Load((dir / "folder.ini").string(), error));
  EXPECT_FALSE(error.empty());
}

const char* const kFullFile =
    "; written by hand\r\n[General]\r\nPath_EXE=/opt/velantis/velantis\r\nnum_idioma = 2\r\n"
    "ActivatedLanguages=111111111111111111110\r\nExecCommand_at_Start=\r\nUnknownGeneral=keep me\r\n\r\n"
    "[Play]\r\nVelocidad=10.000000\r\n"
    "[Balizas]\r\nProximity_Mode=1\r\nProximity_Radius=75.5\r\nWpt_Scale_Display=0\r\n"
    "[Colores]\r\nDefault_Label_Color_Wpt=255\r\nDefault_Label_Back_Color_Wpt=16777215\r\n"
    "[Coordenadas]\r\nNum_Datum=12\r\nCoordinate_Notation=2\r\nRecent_Datums=WGS 84|European 1950\r\n"
    "[Iconos]\r\nRecent_Symbols=Flag|Summit\r\n[Video]\r\nCalidad_video=0.75\r\n"
    "[Com]\r\n; the timeout is in ms\r\n"
    "Comm_NNEA_Timeout=3000\r\nLast_Autodetect_Protocol=1\r\nNum_Mensajes_NMEA_Error=20\r\n"
    "MINSatellitesPosition=4\r\nUse_Checksum_NMEA=1\r\nChipGPS=4\r\nComanda_NMEA_MovingMap=RMC\r\n"
    "[Tracks]\r\nAltitude_Source=1\r\n[Internet]\r\nRecent_Url_Maps=http://a/?x=1%7C2\r\n"
    "[Files]\r\nFile_Code_Page=UTF-8\r\nForce_Extension_Lines=1\r\n"
    "[Navigation]\r\nRecent_Cities=Lleida|Huesca\r\n[SomebodyElse]\r\nx=1\r\n";

TEST(ConfigStoreTest, LoadAndSaveKeepTheFileByteForByte) {
  const auto path = ScratchDir("config-identity") / "gps.ini";
  WriteBytes(path, kFullFile);
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error)) << error;
  EXPECT_EQ(config.Recent_Url_Maps, (std::vector<std::string>{"http://a/?x=1|2"}));
  ASSERT_TRUE(config.Save(error)) << error;
  EXPECT_EQ(FileBytes(path), kFullFile);
  // A changed member changes its own line and nothing else.
  config.Comm_NNEA_Timeout = 2500;
  config.Recent_Cities.insert(config.Recent_Cities.begin(), "Jaca");
  ASSERT_TRUE(config.Save(error)) << error;
  std::string expected = kFullFile;
  expected.replace(expected.find("Comm_NNEA_Timeout=3000"), 22, "Comm_NNEA_Timeout=2500");
  expected.replace(expected.find("Recent_Cities=Lleida"), 20, "Recent_Cities=Jaca|Lleida");
  EXPECT_EQ(FileBytes(path), expected);
}

TEST(ConfigStoreTest, SaveAddsMissingKeysAndEveryTypeRoundTrips) {
  const auto dir = ScratchDir("config-roundtrip");
  const auto path = dir / "gps.ini";
  WriteBytes(path, "; mine\r\n[Com]\r\nMyOwnKey=42\r\n\r\n[Elsewhere]\r\ny=2\r\n");
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(path.string(), error));
  config.Path_EXE = "C:\\Program Files\\Velantis\\velantis.exe";
  config.num_idioma = -3;
  config.Velocidad = 1.0f / 3.0f;
  config.Use_Checksum_NMEA = false;
  config.Default_Label_Color_Wpt = 0xFF00000Fu;
  config.Recent_Url_Maps = {"http://t/{z}/{x}/{y}.png?a=b|c", "100%"};
  ASSERT_TRUE(config.Save(error)) << error;
  const std::string saved = FileBytes(path);
  EXPECT_EQ(saved.rfind("; mine\r\n[Com]\r\nMyOwnKey=42\r\nComm_NNEA_Timeout=2000\r\n", 0), 0u) << saved;
  EXPECT_NE(saved.find("\r\n\r\n[Elsewhere]\r\ny=2\r\n\r\n[General]\r\n"), std::string::npos) << saved;
  EXPECT_EQ(std::count(saved.begin(), saved.end(), '\n'), std::count(saved.begin(), saved.end(), '\r'));
  TConfig again;
  ASSERT_TRUE(again.Load(path.string(), error));
  for (const TConfigRegistration& registration : ConfigRegistrations())
    EXPECT_EQ(Get(again, std::string(registration.key)), Get(config, std::string(registration.key)))
        << registration.key;
  ASSERT_TRUE(again.Save(error));
  EXPECT_EQ(FileBytes(path), saved) << "saving what was just loaded changes nothing";

  // A text with a line break is not saved; a save that cannot make its
  // temporary file leaves the old file.
  again.ExecCommand_at_Start = "one\r\ntwo";
  EXPECT_FALSE(again.Save(error));
  EXPECT_EQ(error, "Error In Config: ExecCommand_at_Start");
  again.ExecCommand_at_Start.clear();
  again.Comm_NNEA_Timeout = 10;
  std::filesystem::create_directory(dir / "gps.ini.tmp");
  EXPECT_FALSE(again.Save(error));
  EXPECT_EQ(error, "Error creating " + path.string() + ".tmp");
  EXPECT_EQ(FileBytes(path), saved);
}

// A reader that serves a fixed map.
struct TMapReader : TConfigReader {
  std::map<std::pair<std::string, std::string>, std::string> values;
  bool Read(const std::string& section, const std::string& key, std::string& text) override {
    const auto found = values.find({section, key});
    if (found != values.end()) text = found->second;
    return found != values.end();
  }
};

TEST(ConfigStoreTest, RegistryModeAndTheSecondaryReader) {
  const auto dir = ScratchDir("config-registry");
  const std::string gpsIni = (dir / "gps.ini").string(), registry = (dir / "registry.ini").string();
  WriteBytes(gpsIni, "[Com]\r\nComm_NNEA_Timeout=3000\r\nChipGPS=2\r\n[General]\r\nPath_EXE=/from/gps.ini\r\n");
  WriteBytes(registry, "[SOFTWARE\\Velantis\\General]\r\nPath_EXE=/opt/velantis/bin/velantis\r\n"
                       "[SOFTWARE\\Velantis\\Com]\r\nComm_NNEA_Timeout=1500\r\n"
                       "[Com]\r\nChipGPS=9\r\n");  // not under the registry root: not the key
  // It serves the first and the last registered key, and two between.
  TMapReader reader;
  reader.values = {{{"General", "Path_EXE"}, "/from/reader"},
                   {{"Com", "ChipGPS"}, "7"},
                   {{"Play", "Velocidad"}, "3.5"},
                   {{"Navigation", "Recent_Cities"}, "Jaca"}};
  TConfig config;
  config.AttachSecondaryReader(&reader);
  std::string error;
  ASSERT_TRUE(config.Load(gpsIni, error));
  EXPECT_EQ(config.ChipGPS, 7);
  EXPECT_EQ(config.Velocidad, 3.5f);
  EXPECT_EQ(config.Path_EXE, "/from/reader");
  EXPECT_EQ(config.Recent_Cities, (std::vector<std::string>{"Jaca"}));
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000) << "gps.ini is not consulted";

  // The registry key wins over the secondary reader, and is read again on
  // each load.
  config.SetMode(TConfigMode::Registry);
  config.SetRegistryPath(registry);
  ASSERT_TRUE(config.Load(gpsIni, error));
  EXPECT_EQ(config.Path_EXE, "/opt/velantis/bin/velantis");
  EXPECT_EQ(config.Comm_NNEA_Timeout, 1500);
  EXPECT_EQ(config.ChipGPS, 0) << "absent from the registry, whatever gps.ini or the reader says";
  WriteBytes(registry, "[SOFTWARE\\Velantis\\Com]\r\nComm_NNEA_Timeout=1700\r\n");
  config.LoadValues();
  EXPECT_EQ(config.Comm_NNEA_Timeout, 1700);
  config.SetRegistryPath((dir / "absent.ini").string());
  config.LoadValues();
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);
  EXPECT_EQ(config.Path_EXE, "");

  config.SetMode(TConfigMode::KeyFile);
  config.AttachSecondaryReader(nullptr);
  ASSERT_TRUE(config.Load(gpsIni, error));
  EXPECT_EQ(config.Comm_NNEA_Timeout, 3000);
  EXPECT_EQ(config.ChipGPS, 2);
}

TEST(ConfigStoreTest, SetGetAndWriteByName) {
  const struct {
    const char* key;
    const char* text;
    bool accepted;
    const char* readBack;
  } cases[] = {
      {"comm_nnea_timeout", "99", true, "99"},  // key names ignore letter case
      {"Comm_NNEA_Timeout", "soon", false, "2000"},
      {"Use_Checksum_NMEA", "7", true, "1"},
      {"Coordinate_Notation", "3", true, "3"},
      {"Recent_Symbols", "Flag|Summit", true, "Flag|Summit"},
      {"ExecCommand_at_Start", "Open a.wpt\r\nQuit", false, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.key) + " = " + c.text);
    TConfig config;
    std::string error;
    EXPECT_EQ(config.SetByName(c.key, c.text, error), c.accepted);
    EXPECT_EQ(error, c.accepted ? "" : "Error In Config");
    EXPECT_EQ(Get(config, c.key), c.readBack);
  }
  TConfig config;
  std::string value = "untouched", error;
  EXPECT_FALSE(config.GetByName("Comm_NMEA_Timeout", value, error));  // the key is spelled NNEA
  EXPECT_EQ(error, "Wrong Config Property");
  EXPECT_EQ(value, "untouched");
  error.clear();
  EXPECT_FALSE(config.SetByName("NoSuchKey", "1", error));
  EXPECT_EQ(error, "Wrong Config Property");

  // WriteValue stores the text and sets the member; a refused text changes neither.
  ASSERT_TRUE(config.WriteValue("com", "Use_Checksum_NMEA", "5", error));
  EXPECT_EQ(config.KeyFile().Find("Com", "Use_Checksum_NMEA"), "1");
  ASSERT_TRUE(config.WriteValue("Com", "Comm_NNEA_Timeout", "2200", error));
  ASSERT_TRUE(config.WriteValue("Extra", "Anything", "free text", error));
  EXPECT_FALSE(config.WriteValue("Com", "Comm_NNEA_Timeout", "x", error));
  EXPECT_EQ(error, "Error In Config");
  EXPECT_TRUE(config.WriteValue("Elsewhere", "Comm_NNEA_Timeout", "x", error)) << "another section's free text";
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2200);
  EXPECT_EQ(config.KeyFile().Find("Com", "Comm_NNEA_Timeout"), "2200");
  EXPECT_EQ(config.KeyFile().Find("Extra", "Anything"), "free text");
}

}  // namespace
}  // namespace velantis
