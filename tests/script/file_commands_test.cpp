// The application commands on files, checksums, programs and the terminal,
// as scripts call them: results, the argument lists, and each failure text
// with the position of the call.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "script/application_commands.h"
#include "script/exec_program.h"
#include "script/script_host.h"
#include "tests/script/script_outcome.h"
#include "tests/script/tool_output.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// Paths go into script text with forward slashes and no quotes to escape.
std::string Quoted(const fs::path& path) { return "\"" + path.generic_string() + "\""; }

TEST(FileCommands, ChecksumsAndBzip2) {
  const fs::path dir = test::ScratchDir("checksum-commands");
  const fs::path a = dir / "a", b = dir / "b", none = dir / "none";
  Write(a, "abc");
  Write(b, "abc");
  const std::string md5 = test::ToolOutput("md5sum " + a.string()).substr(0, 32);
  if (md5.empty()) GTEST_SKIP() << "no md5sum";
  const TScriptCase cases[] = {
      {"v = Velantis.AppendMd5(" + Quoted(a) + ") + Velantis.CheckMd5(" + Quoted(a) + ");", "v=" + md5 + "1"},
      {"v = Velantis.AppendCRC32(" + Quoted(b) + ") + Velantis.CheckCRC32(" + Quoted(b) + ") + Velantis.CheckMd5(" +
           Quoted(b) + ");",
       "v=352441C210"},
      {"v = Velantis.CheckCRC32(" + Quoted(none) + ");", "|CRC Error@4-11"},
      {"v = Velantis.CheckMd5(" + Quoted(none) + ");", "|Check Md5 Error@4-11"},
      {"v = Velantis.AppendCRC32(" + Quoted(none) + ");", "|CRC Writting error@4-11"},
      {"v = Velantis.AppendMd5(" + Quoted(none) + ");", "|Md5 Writting error@4-11"},
      {"v = Velantis.UncompressBZ2(" + Quoted(a) + ", " + Quoted(none) + ");", "|Uncompression error@4-11"},
      {"v = Velantis.CheckMd5(1);", "|Should be String!@4-11"},
      {"v = Velantis.CheckMd5();", "|Too few parametes in call to 'CheckMd5' @4-11"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
  EXPECT_FALSE(fs::exists(none));
}

TEST(FileCommands, FilesAndFolders) {
  const fs::path dir = test::ScratchDir("file-commands");
  fs::create_directories(dir / "in/sub");
  Write(dir / "in/b.txt", "0123456789");
  Write(dir / "in/a.TXT", "a");
  Write(dir / "in/c.wpt", "c");
  Write(dir / "in/sub/d.txt", "d");
  Write(dir / "wpts.txt", "Peak\t37.05\t-3.31\t3479\tsummit\nHut\t37.1\t-3.2\n");
  Write(dir / "bad.txt", "1\t2\n# fine\n\n91\t0\n");
  const std::string in = Quoted(dir / "in"), out = Quoted(dir / "out");
  const TScriptCase cases[] = {
      {"a = Velantis.DirScan(" + in + ", \"*.txt\"); v = a.Count() + a[0].FileNameEx() + a[1].FileNameEx();",
       "v=2a.TXTb.txt"},
      {"a = Velantis.DirScan(" + in + ", \"*.gpx\"); v = a.Count();", "v=0"},
      {"p = " + Quoted(dir / "out/sub/d.txt") + "; v = Velantis.XCopy(" + in + ", " + out + ") + p.GetFileSize();",
       "v=5"},
      {"p = " + Quoted(dir / "out/c.wpt") + "; v = Velantis.Copy(" + Quoted(dir / "in/b.txt") + ", p) + p.GetFileSize();",
       "v=11"},
      {"p = " + Quoted(dir / "out/c.wpt.003") + "; v = Velantis.Split(" + Quoted(dir / "out/c.wpt") +
           ", 4) + p.GetFileSize();",
       "v=5"},
      {"v = Velantis.Delete(" + Quoted(dir / "out/c.wpt") + ") + FileExists(" + Quoted(dir / "out/c.wpt") + ");",
       "v=1"},
      {"t = Velantis.NewTempFileName(\".trk\"); v = FileExists(t) + t.SubString(t.strlen() - 4, 4); "
       "Velantis.Delete(t);",
       "v=1.trk"},
      {"w = Velantis.ImportWptsTxt(" + Quoted(dir / "wpts.txt") + "); v = w.Count() + w.Name;", "v=2wpts"},
      {"t = Velantis.ImportTrackTxt(" + Quoted(dir / "bad.txt") + ");", "|Error in line 4@4-11"},
      {"t = Velantis.ImportTrackTxt(" + Quoted(dir / "none.txt") + ");",
       "|Error opening " + (dir / "none.txt").generic_string() + "@4-11"},
      {"Velantis.Convert(" + Quoted(dir / "in/b.txt") + ", " + Quoted(dir / "x.wpt") + ");",
       "|Unknown file format: txt@0-7"},
      {"a = Velantis.DirScan(" + Quoted(dir / "none") + ", \"*\");", "|Error reading folder@4-11"},
      {"Velantis.Copy(" + Quoted(dir / "none") + ", " + out + ");", "|Error copying file@0-7"},
      {"Velantis.XCopy(" + Quoted(dir / "none") + ", " + out + ");", "|Error copying files@0-7"},
      {"Velantis.Split(" + Quoted(dir / "in/b.txt") + ", 0);", "|Error splitting file@0-7"},
      {"Velantis.Split(" + Quoted(dir / "none") + ", 10);", "|Error splitting file@0-7"},
      {"Velantis.Delete(" + Quoted(dir / "none") + ");", "|Can't delete file@0-7"},
      {"Velantis.Delete(" + in + ");", "|Can't delete file@0-7"},
      {"Velantis.Split(" + in + ", \"4\");", "|Should be Numeric!@0-7"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

// Without system access every command that touches the system fails with
// its own message and leaves the files alone.
TEST(FileCommands, NothingWithoutSystemAccess) {
  const fs::path dir = test::ScratchDir("no-access");
  Write(dir / "a", "abc");
  const std::string a = Quoted(dir / "a"), b = Quoted(dir / "b");
  const std::pair<std::string, std::string> cases[] = {
      {"Velantis.CheckCRC32(" + a + ");", "CRC Error"},
      {"Velantis.AppendMd5(" + a + ");", "Md5 Writting error"},
      {"Velantis.UncompressBZ2(" + a + ", " + b + ");", "Uncompression error"},
      {"Velantis.Copy(" + a + ", " + b + ");", "Error copying file"},
      {"Velantis.Delete(" + a + ");", "Can't delete file"},
      {"Velantis.NewTempFileName(\".x\");", "Error creating temporary file"},
      {"Velantis.Exec(\"info x\");", "Error in Exec command"},
      {"Velantis.ImportWptsTxt(" + a + ");", "Error reading file"},
  };
  for (const auto& [text, message] : cases) {
    TVelanScriptBase script;
    script.SetLimits(TScriptLimits{.systemAccess = false});
    script.Load(text);
    try {
      script.Ejecuta();
      ADD_FAILURE() << "no error: " << text;
    } catch (const TScriptError& e) {
      EXPECT_EQ(e.what(), message) << text;
    }
  }
  EXPECT_EQ(test::FileBytes(dir / "a"), "abc");
  EXPECT_FALSE(fs::exists(dir / "b"));
}

TEST(FileCommands, ExecRunsTheProgramsCommandLine) {
  const std::vector<std::string> saved = ExecProgram();
  // A stand-in program that exits with the code its first word names and
  // fails unless its second word arrived whole.
  SetExecProgram({"/bin/sh", "-c", "test \"$1\" = 'a b' || exit 99; exit \"$0\""});
  const TScriptCase cases[] = {
      {"v = Velantis.Exec(\"3 \\\"a b\\\"\");", "v=3"},
      {"v = Velantis.Exec(\"0 'a b'\");", "v=99"},
      {"v = Velantis.Exec(\" \");", "|Need parameters in Exec command.@4-11"},
      {"v = Velantis.Exec();", "|Too few parametes in call to 'Exec' @4-11"},
      {"Echo(\"a\"); Velantis.Quit(); Echo(\"b\");", "a"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
  SetExecProgram({"/nonexistent/velantis"});
  EXPECT_EQ(Outcome("Velantis.Exec(\"info\");"), "|Error in Exec command@0-7");
  SetExecProgram(saved);
  EXPECT_EQ(StartCommandScript("\"info a.trk\""), "Velantis.Exec(\"info a.trk\");\r\n");
  EXPECT_EQ(StartCommandScript(" \t"), "");
}

// A terminal that answers from a list and records what it was shown.
class TFakeTerminal : public TScriptTerminal {
public:
  std::vector<std::string> answers;  // "" past the end: a cancel
  std::string shown;
  void Message(std::string_view text) override { shown += "M:" + std::string(text) + "|"; }
  void Warning(std::string_view text) override { shown += "W:" + std::string(text) + "|"; }
  bool Input(std::string_view prompt, std::string& answer) override {
    shown += "I:" + std::string(prompt) + "|";
    if (next >= answers.size()) return false;
    answer = answers[next++];
    return true;
  }
  size_t next = 0;
};

TEST(FileCommands, TerminalCommands) {
  struct TCase {
    std::string script;
    std::vector<std::string> answers;
    std::string outcome, shown;
  } const cases[] = {
      {"Velantis.MessageBox(\"Done\"); Velantis.Warning(\"Low\");", {}, "", "M:Done|W:Low|"},
      {"v = Velantis.InputUser(\"Name?\", \"peak\") + Velantis.InputUser(\"Alt\", \"0\");",
       {"Hut", ""}, "v=Hut0", "I:Name? [peak]: |I:Alt [0]: |"},
      {"v = 1; v = Velantis.InputUser(\"Q\", \"d\");", {}, "v=1|Script Stopped InputUser@11-18", "I:Q [d]: |"},
      {"Velantis.MessageBox(2);", {}, "|Should be String!@0-7", ""},
  };
  for (const TCase& c : cases) {
    TFakeTerminal terminal;
    terminal.answers = c.answers;
    TLocalScriptHost host;
    host.SetTerminal(&terminal);
    EXPECT_EQ(Outcome(c.script, &host), c.outcome) << c.script;
    EXPECT_EQ(terminal.shown, c.shown) << c.script;
  }
  // No terminal: messages go to the log, a question cannot be answered.
  TLocalScriptHost host;
  EXPECT_EQ(Outcome("Velantis.MessageBox(\"m\"); Velantis.Warning(\"w\"); Velantis.InputUser(\"q\", \"\");", &host),
            "|Script Stopped InputUser@49-56");
  EXPECT_EQ(host.Lines(), (std::vector<std::string>{"m", "Warning: w"}));
}

// Every command of the table ends the script with its own name.
TEST(FileCommands, UnavailableCommandsNameThemselves) {
  ASSERT_GT(UnavailableCommands().size(), 40u);
  for (const TApplicationCommand& command : UnavailableCommands()) {
    std::string args;
    for (size_t i = 0; i < command.argCount; ++i) args += i ? ", 1" : "1";
    const std::string name(command.name);
    EXPECT_EQ(Outcome("v = 1; Velantis." + name + "(" + args + "); v = 2;"),
              "v=1|Command '" + name + "' not available in this build@7-14");
  }
  EXPECT_EQ(Outcome("Velantis.ZoomTo(1);"), "|Too few parametes in call to 'ZoomTo' @0-7");
}

}  // namespace
}  // namespace velantis
