// The configuration store's backends (key file, registry, secondary reader)
// and its access by key name.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/config.h"
#include "app/config_registry.h"
#include "tests/app/test_files.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::ScratchDir;
using test::WriteBytes;

// A reader that serves a fixed map and records what it was asked.
class TFakeReader : public TConfigReader {
public:
  explicit TFakeReader(std::map<std::pair<std::string, std::string>, std::string> values)
      : m_values(std::move(values)) {}
  bool Read(const std::string& section, const std::string& key, std::string& text) override {
    asked.emplace_back(section, key);
    const auto found = m_values.find({section, key});
    if (found == m_values.end()) return false;
    text = found->second;
    return true;
  }
  std::vector<std::pair<std::string, std::string>> asked;

private:
  std::map<std::pair<std::string, std::string>, std::string> m_values;
};

class ConfigAccessTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_dir = ScratchDir(::testing::UnitTest::GetInstance()->current_test_info()->name());
    m_gpsIni = (m_dir / "gps.ini").string();
    m_registryIni = (m_dir / "registry.ini").string();
    WriteBytes(m_gpsIni, "[Com]\r\nComm_NNEA_Timeout=3000\r\nChipGPS=2\r\n[General]\r\nPath_EXE=/from/gps.ini\r\n");
  }
  std::filesystem::path m_dir;
  std::string m_gpsIni;
  std::string m_registryIni;
};

TEST_F(ConfigAccessTest, RegistryModeReadsTheMachineWideKey) {
  WriteBytes(m_registryIni,
             "[SOFTWARE\\Velantis\\General]\r\nPath_EXE=/opt/velantis/bin/velantis\r\n"
             "[SOFTWARE\\Velantis\\Com]\r\nComm_NNEA_Timeout=1500\r\n"
             "[Com]\r\nChipGPS=9\r\n");  // not under the registry root: not the key
  TConfig config;
  config.SetMode(TConfigMode::Registry);
  config.SetRegistryPath(m_registryIni);
  std::string error;
  ASSERT_TRUE(config.Load(m_gpsIni, error));
  EXPECT_EQ(config.Path_EXE, "/opt/velantis/bin/velantis");
  EXPECT_EQ(config.Comm_NNEA_Timeout, 1500);
  EXPECT_EQ(config.ChipGPS, 0);  // absent from the registry, whatever gps.ini says

  std::string text;
  EXPECT_TRUE(config.ReadValue("General", "Path_EXE", text));
  EXPECT_EQ(text, "/opt/velantis/bin/velantis");
  EXPECT_FALSE(config.ReadValue("Com", "ChipGPS", text));
}

TEST_F(ConfigAccessTest, RegistryThatCannotBeOpenedHasNoKeys) {
  TConfig config;
  config.SetMode(TConfigMode::Registry);
  config.SetRegistryPath((m_dir / "absent.ini").string());
  std::string error;
  ASSERT_TRUE(config.Load(m_gpsIni, error));
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);
  EXPECT_EQ(config.Path_EXE, "");
}

TEST_F(ConfigAccessTest, RegistryChangesAreSeenOnTheNextLoad) {
  WriteBytes(m_registryIni, "[SOFTWARE\\Velantis\\Com]\r\nComm_NNEA_Timeout=1500\r\n");
  TConfig config;
  config.SetMode(TConfigMode::Registry);
  config.SetRegistryPath(m_registryIni);
  config.LoadValues();
  EXPECT_EQ(config.Comm_NNEA_Timeout, 1500);
  WriteBytes(m_registryIni, "[SOFTWARE\\Velantis\\Com]\r\nComm_NNEA_Timeout=1700\r\n");
  config.LoadValues();
  EXPECT_EQ(config.Comm_NNEA_Timeout, 1700);
}

TEST_F(ConfigAccessTest, SecondaryReaderServesEveryReadInKeyFileMode) {
  TFakeReader reader({{{"Com", "ChipGPS"}, "7"}, {{"Play", "Velocidad"}, "3.5"}});
  TConfig config;
  config.AttachSecondaryReader(&reader);
  std::string error;
  ASSERT_TRUE(config.Load(m_gpsIni, error));
  EXPECT_EQ(config.ChipGPS, 7);
  EXPECT_EQ(config.Velocidad, 3.5f);
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2000);  // gps.ini's 3000 is not consulted
  EXPECT_EQ(config.Path_EXE, "");
  EXPECT_EQ(reader.asked.size(), ConfigRegistrations().size());
  EXPECT_EQ(reader.asked.front(), std::make_pair(std::string("General"), std::string("Path_EXE")));

  config.AttachSecondaryReader(nullptr);
  config.LoadValues();
  EXPECT_EQ(config.Comm_NNEA_Timeout, 3000);
  EXPECT_EQ(config.ChipGPS, 2);
}

TEST_F(ConfigAccessTest, SecondaryReaderIsNotUsedInRegistryMode) {
  WriteBytes(m_registryIni, "[SOFTWARE\\Velantis\\Com]\r\nChipGPS=5\r\n");
  TFakeReader reader({{{"Com", "ChipGPS"}, "7"}});
  TConfig config;
  config.AttachSecondaryReader(&reader);
  config.SetMode(TConfigMode::Registry);
  config.SetRegistryPath(m_registryIni);
  std::string error;
  ASSERT_TRUE(config.Load(m_gpsIni, error));
  EXPECT_EQ(config.ChipGPS, 5);
  EXPECT_TRUE(reader.asked.empty());
}

struct TByNameCase {
  const char* key;
  const char* text;
  bool accepted;
  const char* readBack;  // what GetByName gives afterwards
};

TEST_F(ConfigAccessTest, SetByNameAndGetByName) {
  const std::vector<TByNameCase> cases = {
      {"Comm_NNEA_Timeout", "1234", true, "1234"},
      {"comm_nnea_timeout", "99", true, "99"},  // key names ignore letter case
      {"Comm_NNEA_Timeout", "soon", false, "2000"},
      {"Use_Checksum_NMEA", "0", true, "0"},
      {"Use_Checksum_NMEA", "7", true, "1"},
      {"Use_Checksum_NMEA", "no", false, "1"},
      {"Velocidad", "12.5", true, "12.5"},
      {"Velocidad", "fast", false, "10"},
      {"Default_Label_Color_Wpt", "65280", true, "65280"},
      {"Default_Label_Color_Wpt", "green", false, "0"},
      {"Coordinate_Notation", "3", true, "3"},
      {"Coordinate_Notation", "4", false, "0"},
      {"Recent_Symbols", "Flag|Summit", true, "Flag|Summit"},
      {"File_Code_Page", "UTF-8", true, "UTF-8"},
      {"ExecCommand_at_Start", "Open a.wpt\r\nQuit", false, ""},
  };
  for (const TByNameCase& c : cases) {
    SCOPED_TRACE(std::string(c.key) + " = " + c.text);
    TConfig config;
    std::string error;
    EXPECT_EQ(config.SetByName(c.key, c.text, error), c.accepted);
    EXPECT_EQ(error, c.accepted ? "" : "Error In Config");
    std::string value;
    ASSERT_TRUE(config.GetByName(c.key, value, error));
    EXPECT_EQ(value, c.readBack);
  }
}

TEST_F(ConfigAccessTest, UnknownKeyIsAWrongConfigProperty) {
  TConfig config;
  std::string value = "untouched";
  std::string error;
  EXPECT_FALSE(config.GetByName("Comm_NMEA_Timeout", value, error));  // the key is spelled NNEA
  EXPECT_EQ(error, "Wrong Config Property");
  EXPECT_EQ(value, "untouched");
  error.clear();
  EXPECT_FALSE(config.SetByName("NoSuchKey", "1", error));
  EXPECT_EQ(error, "Wrong Config Property");
}

TEST_F(ConfigAccessTest, WriteValueStoresTheTextAndTheMember) {
  TConfig config;
  std::string error;
  ASSERT_TRUE(config.Load(m_gpsIni, error));
  ASSERT_TRUE(config.WriteValue("com", "Use_Checksum_NMEA", "5", error));
  EXPECT_TRUE(config.Use_Checksum_NMEA);
  EXPECT_EQ(config.KeyFile().Find("Com", "Use_Checksum_NMEA"), "1");
  ASSERT_TRUE(config.WriteValue("Com", "Comm_NNEA_Timeout", "2200", error));
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2200);
  ASSERT_TRUE(config.WriteValue("Extra", "Anything", "free text", error));
  EXPECT_EQ(config.KeyFile().Find("Extra", "Anything"), "free text");

  EXPECT_FALSE(config.WriteValue("Com", "Comm_NNEA_Timeout", "x", error));
  EXPECT_EQ(error, "Error In Config");
  EXPECT_EQ(config.Comm_NNEA_Timeout, 2200);
  EXPECT_EQ(config.KeyFile().Find("Com", "Comm_NNEA_Timeout"), "2200");

  ASSERT_TRUE(config.Save(error)) << error;
  TConfig again;
  ASSERT_TRUE(again.Load(m_gpsIni, error));
  EXPECT_EQ(again.Comm_NNEA_Timeout, 2200);
  std::string text;
  EXPECT_TRUE(again.ReadValue("Extra", "Anything", text));
  EXPECT_EQ(text, "free text");
}

}  // namespace
}  // namespace velantis
