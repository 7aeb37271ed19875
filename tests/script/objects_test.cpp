// Objects in scripts: new, properties, the object methods and the global
// objects, as script text -> outcome; and real programs on files.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include "formats/file_dispatch.h"
#include "script/script_events.h"
#include "script/script_host.h"
#include "tests/script/script_outcome.h"
#include "tests/support/proj_reference.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

// A list of two waypoints, A (40.5, -3.5) and B (41, -3), in w.
const std::string kList =
    "w = new(\"TWaypoints\"); a = w.CreateWpt(\"A\", 40.5, -3.5); b = w.CreateWpt(\"B\", 41, -3);\n";

std::string OnList(const std::string& script) { return Outcome(kList + script); }

TEST(ScriptObjects, NewAndProperties) {
  const TScriptCase cases[] = {
      {"x = new(\"TFoo\");", "|Unknown type for new 'TFoo'@4-6"},
      {"x = new(1);", "|Should be String!@4-6"},
      {"x = new(\"TBroadcast\"); v = x.Name;", "|Error in TBroadcast@27-27"},
      {"x = new(\"TArray\"); v = x.Name;", "|This object has no 'Name' property@23-23"},
      {"x = new(\"TWaypoints\"); v = x.Nombre;", "|Unknown propery 'Nombre'@27-27"},
      {"x = new(\"TWaypoints\"); v = x.Rect;", "|Cannot read Rect directly@27-27"},
      {"x = new(\"TWaypoints\"); v = x.Rect.top;", "|Wrong Rect property@27-27"},
      {"x = new(\"TWaypoints\"); v = x.Coord;", "|This object has no coordinate property@27-27"},
      {"x = new(\"TWaypoints\"); x.Name = x;", "|Numeric or string property required.@23-23"},
      {"x = new(\"TCoord\"); v = x.Name;", "|Invalid property in Coord@23-23"},
      {"x = new(\"TCoord\"); x.lat = \"n\";", "|Error in Coord property@19-19"},
      {"x = new(\"TCoord\"); x.lat = 12; x.lon -= 2; v = x.lat * 100 + x.lon;", "v=1198"},
      {"x = 5; v = x.Name;", "|This object has no 'Name' property@11-11"},
      {"v = \"s\".Name;", "|This object has no 'Name' property@4-6"},
      {"x = 5; x.Name = 1;", "|This object has no 'Name' property@7-7"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

TEST(ScriptObjects, WaypointLists) {
  const TScriptCase cases[] = {
      {"w.Name = \"L\"; w.Description = \"d\"; v = w.Name + w.Description + w.Count();", "v=Ld2"},
      {"v = a.Name + w[1].Name + w.Elem(0).Name;", "v=ABA"},
      {"v = w.Elem(2);", "|Interger out of range@91-91"},
      {"v = w[-1];", "|Interger out of range@92-95"},
      {"v = w.Contains(\"B\") * 10 + w.Contains(\"b\");", "v=10"},
      {"w[0].Name = \"Z\"; w.Sort(); v = w[0].Name + w[1].Name;", "v=BZ"},
      {"v = w.Rect.lat1 + \" \" + w.Rect.lon1 + \" \" + w.Rect.lat2 + \" \" + w.Rect.lon2 + \" \" + "
       "w.Rect.width * 10 + \" \" + w.Rect.height * 10;",
       "v=41 -3.5 40.5 -3 5 5"},
      {"c = b.Coord; c.lat = 10; v = b.Coord.lat + b.Coord.lon;", "v=7"},
      {"k = new(\"TCoord\"); k.lat = 1; k.lon = 2; a.Coord = k; v = a.Coord.lat * 10 + a.Coord.lon;", "v=12"},
      {"a.Coord = 5;", "|Error in Coord property@87-87"},
      {"a.symbol = \"Flag\"; a.Name += \"1\"; v = a.symbol + a.Name;", "v=FlagA1"},
      {"a.Rect.lat1 = 1;", "|This object has no 'Rect' property@87-87"},
      {"w.Clear(); v = w.Count() + a.Name;", "|Error reading property.@114-114"},
      {"v = w.GetPropertyStr(\"k\");", "|Error in GetPropertyStr@91-91"},
      {"w.Reproject(\"UTM\");", "|Reproject no implementado!!!@87-87"},
      {"w.Close();", "|Closing Object@87-87"},
      {"w.Save();", "|The element has no file yet: save it with SaveAs@87-87"},
      {"w.CreateWpt(\"C\", 1);", "|Too few parametes in call to 'CreateWpt' @87-87"},
      {"w.Width();", "|Object should be TRectProj@87-87"},
      {"w.Nope();", "|Unknown function 'Nope'@87-87"},
      {"v = a.Count();", "|Unknown function 'Count'@91-91"},
      {"h = \"\" + w; v = ObjectAtPtr(h.atoi()).Count();", "v=2"},
      // Waypoints and their coordinates are one reference each, however often read.
      {"for (i = 0; i < 50; i++) { n = w[0].Coord.lat + w.Elem(1).Coord.lon; }; x = new(\"TArray\"); v = \"\" + x;",
       "v=6"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(OnList(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

TEST(ScriptObjects, ArraysTracksAndRectangles) {
  const TScriptCase cases[] = {
      {"x = new(\"TArray\"); x.Add(\"b\"); x.Add(3); x.Add(1); x.Sort(); "
       "v = x[0] + x[1] + x[2] + x.Count() + x.Contains(3) + x.Contains(\"3\");",
       "v=4b310"},
      {"x = new(\"TArray\"); x.Add(1); x.Clear(); v = x.Count();", "v=0"},
      {"x = new(\"TArray\"); v = x[0];", "|Interger out of range@24-26"},
      {"x = new(\"TRectProj\"); x.SetValues(10, 20, -30, 50); x.Increase(5); "
       "v = x.Width() + \",\" + x.Height() + \",\" + x.x1 + \",\" + x.y1 + \",\" + x.x2 + \",\" + x.y2;",
       "v=50,40,15,15,-35,55"},
      {"x = new(\"TRectProj\"); v = x.lat1;", "|Projection Not defined!@26-26"},
      {"x = new(\"TRectProj\"); v = x.Name;", "|Wrong property in RectProy@26-26"},
      {"x = new(\"TRectProj\"); x.Start(2); v = x.Step() + x.Step();", "v=2"},
      {"x = new(\"TRectProj\"); x.y2 = \"n\";", "|Numeric or string property required.@22-22"},
      {"x = new(\"TRectProj\"); x.Count();", "|Unknown function 'Count'@22-22"},
      {"x = 3; x.Increase(1);", "|Object should be TRectProj@7-7"},
      {"v = \"s\".Width();", "|Unknown function 'Width'@4-6"},
      {"SetProjection(\"UTM 31T\", \"Clarke\");", "|Unknown datum: Clarke@0-12"},
      {"SetProjection(\"Nowhere\", \"WGS 84\");", "|Projection not supported: Nowhere@0-12"},
      {"t = Velantis.CreateTrack(\"T\"); t.CreateNewTrackPoint(1, 2, 300); t.CreateNewTrackPoint(3, 4, -9999); "
       "t.Recalculate(); v = t.Name + t.Count() + t[1].lat + t.Elem(0).lon + t.Rect.lat1;",
       "v=T2323"},
      {"t = Velantis.CreateTrack(\"T\"); t.CreateWpt(\"a\", 1, 2);", "|Unknown function 'CreateWpt'@31-31"},
      {"t = Velantis.CreateTrack(\"T\"); t.Reproject(\"UTM\");", "|Reproject no implementado!!!@31-31"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

TEST(ScriptObjects, RectangleThroughTheWorkingProjection) {
  test::TProjReference utm("+proj=utm +zone=31 +datum=WGS84");
  ASSERT_TRUE(utm.Valid());
  TVelanScriptBase script;
  script.Load(
      "SetProjection(\"UTM 31T\", \"WGS 84\"); r = new(\"TRectProj\"); r.lat1 = 42.5; r.lon1 = 1.5;"
      "r.lat2 = 42.75; r.lon2 = 2; x1 = r.x1; y1 = r.y1; x2 = r.x2; y2 = r.y2; lat = r.lat1;");
  script.Ejecuta();
  double x = 0, y = 0;
  ASSERT_TRUE(utm.Forward(1.5, 42.5, x, y));
  EXPECT_NEAR(script.GetVariable("x1")->number, x, 0.001);
  EXPECT_NEAR(script.GetVariable("y1")->number, y, 0.001);
  ASSERT_TRUE(utm.Forward(2, 42.75, x, y));
  EXPECT_NEAR(script.GetVariable("x2")->number, x, 0.001);
  EXPECT_NEAR(script.GetVariable("y2")->number, y, 0.001);
  EXPECT_NEAR(script.GetVariable("lat")->number, 42.5, 1e-9);
}

TEST(ScriptObjects, MonitorAndMovingMap) {
  TLocalScriptHost host;
  host.SetMovingMap({true, 41.25, 2.5});
  TVelanScriptBase script;
  script.SetHost(host);
  script.Load(
      "Monitor.Log(\"one\"); Monitor.Start(4); Monitor.Step(); s = Monitor.Step();"
      "on = Velantis.IsMovingMapOn(); c = Velantis.MovingMapCoord(); lat = c.lat; lon = c.lon;");
  script.Ejecuta();
  EXPECT_EQ(host.Lines(), std::vector<std::string>{"one"});
  EXPECT_EQ(host.Progress().Total(), 4);
  EXPECT_EQ(host.Progress().Steps(), 2);
  EXPECT_EQ(script.GetVariable("s")->number, 1);
  EXPECT_EQ(script.GetVariable("on")->number, 1);
  EXPECT_EQ(script.GetVariable("lat")->number, 41.25);
  EXPECT_EQ(script.GetVariable("lon")->number, 2.5);
  host.Progress().Cancel();
  script.Load("s = Monitor.Step(); Monitor.End(); Monitor.Nope();");
  EXPECT_THROW(script.Ejecuta(), TScriptError);
  EXPECT_EQ(script.GetVariable("s")->number, 0);
  EXPECT_EQ(host.Progress().Total(), 0);
  EXPECT_EQ(Outcome("Monitor.Log();"), "|Too few parametes in call to 'Log' @0-6");
  EXPECT_EQ(Outcome("Monitor.Nope();"), "|Unknown function 'Nope'@0-6");
}

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(ScriptObjects, ConfigByKeyWrittenBack) {
  const auto folder = test::ScratchDir("script_config");
  const auto ini = folder / "gps.ini";
  std::ofstream(ini) << "; mine\n[Balizas]\nProximity_Radius=50\n";
  TLocalScriptHost host;
  std::string error;
  ASSERT_TRUE(host.Config().Load(ini.string(), error)) << error;
  const TScriptCase cases[] = {
      {"v = Config.Proximity_Radius;", "v=50"},
      {"Config.Proximity_Radius = 250; v = Config.proximity_radius;", "v=250"},
      {"Config.ExecCommand_at_Start = \"Echo\"; v = Config.ExecCommand_at_Start;", "v=Echo"},
      {"Config.Wpt_Scale_Display = 7; v = Config.Wpt_Scale_Display;", "v=1"},
      {"Config.Proximity_Radius += 1; v = Config.Proximity_Radius;", "v=251"},
      {"v = Config.Nope;", "|Wrong Config Property@4-9"},
      {"Config.Nope = 1;", "|Wrong Config Property@0-5"},
      {"Config.Proximity_Radius = \"far\";", "|Error In Config@0-5"},
  };
  for (const TScriptCase& c : cases) {
    TVelanScriptBase script;
    script.SetHost(host);
    std::string outcome;
    try {
      script.Load(c.script);
      script.Ejecuta();
    } catch (const TScriptError& e) {
      outcome = "|" + std::string(e.what()) + "@" + std::to_string(e.Start()) + "-" + std::to_string(e.End());
    }
    if (const TVarVelanScript* v = script.GetVariable("v")) outcome = "v=" + v->AsText() + outcome;
    EXPECT_EQ(outcome, c.outcome) << c.script;
  }
  const std::string written = ReadText(ini);
  EXPECT_NE(written.find("; mine"), std::string::npos) << written;
  EXPECT_NE(written.find("Proximity_Radius=251"), std::string::npos) << written;
  EXPECT_NE(written.find("ExecCommand_at_Start=Echo"), std::string::npos) << written;
}

TEST(ScriptObjects, Events) {
  TVelanScriptBase script;
  script.Load(
      "n = 0;\n"
      "function OnCreateView2D(path) { Echo(path); return 7; };\n"
      "function OnCreateGraph(path) { x = nothing; };\n");
  script.Ejecuta();
  std::vector<TVarVelanScript> args{TVarVelanScript(std::string("v.png"))};
  TVarVelanScript result;
  EXPECT_TRUE(RunEvent(script, TScriptEvent::CreateView2D, args, result));
  EXPECT_EQ(script.Output(), "v.png");
  EXPECT_EQ(result.number, 7);
  try {
    RunEvent(script, TScriptEvent::CreateGraph, args, result);
    ADD_FAILURE() << "no error";
  } catch (const TScriptError& error) {
    EXPECT_STREQ(error.what(), "Error in event OnCreateGraph");
    EXPECT_EQ(error.Start(), 99);  // at "nothing"
  }
  std::vector<TVarVelanScript> none;
  EXPECT_FALSE(RunEvent(script, TScriptEvent::ConfigComm, none, result));
  EXPECT_THROW(RunEvent(script, TScriptEvent::CreateView2D, none, result), TScriptError);
  EXPECT_EQ(Outcome("Velantis.ConfigComm();"), "|OnConfigComm not defined!@0-7");
  EXPECT_EQ(Outcome("Velantis.ConfigComm(); v = 2;\nfunction OnConfigComm() { Echo(\"c\"); };"), "cv=2");
}

// A native file opened, its waypoints renamed, moved and added to, saved,
// and read back with the file reader.
TEST(ScriptObjects, EditsANativeWaypointFile) {
  const auto folder = test::ScratchDir("script_waypoints");
  const auto path = folder / "vallferrera.wpt";
  std::filesystem::copy_file(test::SourceDir() / "data/examples/vallferrera.wpt", path);
  TVelanScriptBase script;
  script.Load(
      "w = Velantis.OpenWPT(\"" + path.string() + "\");\n"
      "n = w.Count();\n"
      "w[0].Name = \"Estats\";\n"
      "w[1].Coord.SetCoord_UTM(\"31T\", 370000, 4715000);\n"
      "p = w.CreateWpt(\"Campsite\", 42.6, 1.4);\n"
      "p.Description = \"tents\";\n"
      "w.Save();\n");
  script.Ejecuta();
  const double count = script.GetVariable("n")->number;
  TWaypoints read;
  std::string error;
  ASSERT_TRUE(OpenWaypoints(path.string(), {}, read, error)) << error;
  ASSERT_EQ(read.Count(), count + 1);
  EXPECT_EQ(read.Baliza(0).Name(), "Estats");
  test::TProjReference utm("+proj=utm +zone=31 +datum=WGS84");
  double x = 0, y = 0;
  ASSERT_TRUE(utm.Forward(read.Baliza(1).Longitude(), read.Baliza(1).Latitude(), x, y));
  EXPECT_NEAR(x, 370000, 0.2);  // six decimals of a degree in the file
  EXPECT_NEAR(y, 4715000, 0.2);
  const TBaliza& added = read.Baliza(read.Count() - 1);
  EXPECT_EQ(added.Name(), "Campsite");
  EXPECT_EQ(added.Description(), "tents");
  EXPECT_NEAR(added.Latitude(), 42.6, 1e-6);
  EXPECT_NEAR(added.Longitude(), 1.4, 1e-6);
}

// Open, Read, SaveAs, Load, Untouch, Close and CloseAll on files.
TEST(ScriptObjects, ElementCommandsOnFiles) {
  const auto folder = test::ScratchDir("script_elements");
  const std::string source = (test::SourceDir() / "data/examples/vallferrera.wpt").string();
  const std::string copy = (folder / "copy.wpt").string();
  const std::string track = (test::SourceDir() / "data/examples/vallferrera.trk").string();
  TLocalScriptHost host;
  TVelanScriptBase script;
  script.SetHost(host);
  script.Load(
      "w = Velantis.Open(\"" + source + "\"); w.Description = \"changed\"; w.SaveAs(\"" + copy + "\");\n"
      "r = Velantis.Read(\"" + copy + "\"); same = r.Description == \"changed\" && r.Count() == w.Count();\n"
      "t = Velantis.Open(\"" + track + "\"); points = t.Count();\n"
      "w.Clear(); w.Load(\"" + copy + "\"); back = w.Count(); w.Untouch();\n"
      "opened = 2; t.Close();\n");
  script.Ejecuta();
  EXPECT_EQ(script.GetVariable("same")->number, 1);
  EXPECT_GT(script.GetVariable("points")->number, 0);
  EXPECT_GT(script.GetVariable("back")->number, 0);
  ASSERT_EQ(host.Loaded().size(), 1u);  // the track closed, the Read list never held
  EXPECT_FALSE(host.Loaded()[0]->element.waypoints.Modified());
  EXPECT_EQ(host.Loaded()[0]->path, copy);
  script.Load("Velantis.CloseAll();");
  script.Ejecuta();
  EXPECT_TRUE(host.Loaded().empty());
  const TScriptCase failures[] = {
      {"x = Velantis.Read(\"/nonexistent/a.wpt\");", "|Error reading file@4-11"},
      {"x = Velantis.OpenWPT(\"" + track + "\");", "|Unknown file format: trk@4-11"},
      {"x = Velantis.Open(\"/nonexistent/a.abc\");", "|Unknown file format: abc@4-11"},
      {"x = Velantis.Read(\"" + track + "\"); x.Load(\"" + source + "\");",
       "|Error reading file@" + std::to_string(23 + track.size()) + "-" + std::to_string(23 + track.size())},
  };
  for (const TScriptCase& c : failures) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

TEST(ScriptObjects, ReferencesAndTheirLimits) {
  const TScriptCase cases[] = {
      {"x = new(\"TArray\"); v = ObjectAtPtr(1.5);", "|Error, wrong ptr at ObjectAtPtr@23-33"},
      {"x = new(\"TArray\"); v = ObjectAtPtr(0);", "|Error, wrong ptr at ObjectAtPtr@23-33"},
      {"x = new(\"TArray\"); y = new(\"TCoord\"); v = ObjectAtPtr(2).lat + \"\" + x;", "v=01"},
      {"x = new(\"TArray\"); v = x * 2;", "|Should be Numeric@25-25"},
      {"c = new(\"TCoord\"); c.SetCoord_UTM(\"x1\", 1, 2);",
       "|Error in the UTM zome. It must be a value between 1 and 60@19-19"},
      {"c = new(\"TCoord\"); c.SetCoord_UTM(\"31T\", 500000, 99999999);", "|utm.y superior a 9886785@19-19"},
      {"w = Velantis.CreateWpts(\"N\"); w.CreateWpt(\"P\", 1, 2); w.Close(); v = w.Name + w.Count();", "v=N1"},
      {"w = Velantis.CreateWpts(\"N\"); w.Close(); w.Close();", "|Closing Object@41-41"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

// Configuration keys of every kind come back as the kind they are.
TEST(ScriptObjects, ConfigValuesByType) {
  TLocalScriptHost host;
  host.Config().Default_Label_Color_Wpt = 0x102030;
  host.Config().Wpt_Scale_Display = true;
  TVelanScriptBase script;
  script.SetHost(host);
  script.Load("c = Config.Default_Label_Color_Wpt; b = Config.Wpt_Scale_Display; Config.Wpt_Scale_Display = 0;"
              "t = Config.ExecCommand_at_Start + \"|\";");
  script.Ejecuta();
  EXPECT_EQ(script.GetVariable("c")->number, 0x102030);
  EXPECT_EQ(script.GetVariable("b")->number, 1);
  EXPECT_FALSE(host.Config().Wpt_Scale_Display);
  EXPECT_EQ(script.GetVariable("t")->text, "|");
}

class TLogFailsHost : public TLocalScriptHost {
public:
  void Log(std::string_view) override { throw std::runtime_error("log"); }
};

TEST(ScriptObjects, EventFailuresOfTheApplication) {
  TLogFailsHost host;
  TVelanScriptBase script;
  script.SetHost(host);
  script.Load("function OnCreateView2D(p) { Monitor.Log(p); };\nfunction OnCreateGraph(p) { Exit(); Echo(p); };");
  script.Ejecuta();
  std::vector<TVarVelanScript> args{TVarVelanScript(std::string("g.png"))};
  TVarVelanScript result;
  try {
    RunEvent(script, TScriptEvent::CreateView2D, args, result);
    ADD_FAILURE() << "no error";
  } catch (const TScriptError& error) {
    EXPECT_STREQ(error.what(), "VelanScript: Exception in Velantis Engine, OnCreateView2D");
  }
  EXPECT_TRUE(RunEvent(script, TScriptEvent::CreateGraph, args, result));
  EXPECT_EQ(script.Output(), "");
}

// A route written by the file layer, then opened and edited by a script.
TEST(ScriptObjects, RoutesFromFiles) {
  const auto folder = test::ScratchDir("script_routes");
  const std::string path = (folder / "r.rte").string();
  TRuta route;
  route.SetName("Ridge");
  for (const auto& [name, lat, lon] : {std::tuple{"Start1", 42.5, 1.25}, std::tuple{"Finish", 42.75, 1.5}}) {
    TBaliza baliza;
    baliza.SetName(name);
    baliza.SetPosition(lat, lon);
    route.Add(baliza);
  }
  std::string error;
  ASSERT_TRUE(SaveRoute(path, route, {}, "", error)) << error;
  TLocalScriptHost host;
  TVelanScriptBase script;
  script.SetHost(host);
  script.Load("r = Velantis.Open(\"" + path + "\"); n = r.Count(); first = r[0].Name; last = r.Elem(1).Name;"
              "north = r.Rect.lat1; west = r.Rect.lon1; r[1].Name = \"Summit\"; r.Save(); r.Clear();"
              "left = r.Count();");
  script.Ejecuta();
  EXPECT_EQ(script.GetVariable("n")->number, 2);
  EXPECT_EQ(script.GetVariable("first")->text, "Start1");
  EXPECT_EQ(script.GetVariable("last")->text, "Finish");
  EXPECT_EQ(script.GetVariable("north")->number, 42.75);
  EXPECT_EQ(script.GetVariable("west")->number, 1.25);
  EXPECT_EQ(script.GetVariable("left")->number, 0);
  TRuta read;
  ASSERT_TRUE(OpenRoute(path, {}, read, error)) << error;
  ASSERT_EQ(read.Count(), 2u);
  EXPECT_EQ(read.Point(1).baliza.Name(), "Summit");
}

// The fuzz target's sandbox: no file is read or written.
TEST(ScriptObjects, NoFilesWithoutSystemAccess) {
  const auto folder = test::ScratchDir("script_sandbox");
  const std::string source = (test::SourceDir() / "data/examples/vallferrera.wpt").string();
  const std::string target = (folder / "x.wpt").string();
  const std::string statements[] = {
      "w.SaveAs(\"" + target + "\");",
      "w.Load(\"" + source + "\");",
      "x = Velantis.Open(\"" + source + "\");",
      "x = Velantis.OpenWPT(\"" + source + "\");",
      "x = Velantis.Read(\"" + source + "\");",
  };
  for (const std::string& statement : statements) {
    TVelanScriptBase script;
    TScriptLimits limits;
    limits.systemAccess = false;
    script.SetLimits(limits);
    script.Load("w = new(\"TWaypoints\"); w.CreateWpt(\"a\", 1, 2); " + statement + " v = 1;");
    EXPECT_THROW(script.Ejecuta(), TScriptError) << statement;
    EXPECT_EQ(script.GetVariable("v"), nullptr) << statement;
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

}  // namespace
}  // namespace velantis
