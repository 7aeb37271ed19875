// The application commands on files, checksums, programs and the terminal,
// as scripts call them: results, argument lists, and each failure text at
// the position of the call.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "script/application_commands.h"
#include "script/exec_program.h"
#include "tests/script/script_outcome.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// A path as a script string (no quotes or backslashes to escape here).
std::string Q(const fs::path& path) { return "\"" + path.generic_string() + "\""; }

TEST(FileCommands, Checksums) {
  const fs::path dir = test::ScratchDir("checksum-commands"), a = dir / "a", none = dir / "none";
  Write(a, "abc");
  const TScriptCase cases[] = {
      // The CRC-32 of "abc" from Python's zlib; the MD5 of the CRC'd file from md5sum.
      {"v = Velantis.AppendCRC32(" + Q(a) + ") + Velantis.CheckCRC32(" + Q(a) + ") + Velantis.CheckMd5(" + Q(a) + ");",
       "v=352441C210"},
      {"v = Velantis.AppendMd5(" + Q(a) + ") + Velantis.CheckMd5(" + Q(a) + ");", "v=6ddb98ee34ed4262e1c13b8335ac784f1"},
      {"v = Velantis.CheckCRC32(" + Q(none) + ");", "|CRC Error@4-11"},
      {"v = Velantis.CheckMd5(" + Q(none) + ");", "|Check Md5 Error@4-11"},
      {"v = Velantis.AppendCRC32(" + Q(none) + ");", "|CRC Writting error@4-11"},
      {"v = Velantis.AppendMd5(" + Q(none) + ");", "|Md5 Writting error@4-11"},
      {"v = Velantis.UncompressBZ2(" + Q(a) + ", " + Q(none) + ");", "|Uncompression error@4-11"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
  EXPECT_FALSE(fs::exists(none));
}

TEST(FileCommands, FilesAndFolders) {
  const fs::path dir = test::ScratchDir("file-commands");
  fs::create_directories(dir / "in/sub");
  fs::create_directories(dir / "empty");
  Write(dir / "in/b.txt", "0123456789");
  Write(dir / "in/a.TXT", "a");
  Write(dir / "in/c.wpt", "c");
  Write(dir / "in/sub/d.txt", "d");
  Write(dir / "wpts.txt", "Peak\t37.05\t-3.31\t3479\tsummit\nHut\t37.1\t-3.2\n");
  Write(dir / "bad.txt", "1\t2\n# fine\n\n91\t0\n");
  const std::string in = Q(dir / "in"), out = Q(dir / "out"), none = Q(dir / "none");
  const TScriptCase cases[] = {
      {"a = Velantis.DirScan(" + in + ", \"*.txt\"); v = a.Count() + a[0].FileNameEx() + a[1].FileNameEx();",
       "v=2a.TXTb.txt"},
      {"p = " + Q(dir / "out/sub/d.txt") + "; v = Velantis.XCopy(" + in + ", " + out + ") + p.GetFileSize();", "v=5"},
      {"p = " + Q(dir / "out/c.wpt") + "; v = Velantis.Copy(" + Q(dir / "in/b.txt") + ", p) + p.GetFileSize();", "v=11"},
      {"p = " + Q(dir / "out/c.wpt") + "; v = Velantis.Split(p, 4) + FileExists(p + \".004\");", "v=3"},
      {"v = Velantis.Delete(" + Q(dir / "out/c.wpt") + ") + FileExists(" + Q(dir / "out/c.wpt") + ");", "v=1"},
      {"t = Velantis.NewTempFileName(\".trk\"); v = FileExists(t) + t.FileNameEx().SubString(0, 9) + "
       "t.SubString(t.strlen() - 4, 4); Velantis.Delete(t);",
       "v=1velantis-.trk"},
      {"w = Velantis.ImportWptsTxt(" + Q(dir / "wpts.txt") + "); v = w.Count() + w.Name;", "v=2wpts"},
      {"t = Velantis.ImportTrackTxt(" + Q(dir / "bad.txt") + ");", "|Error in line 4@4-11"},
      {"t = Velantis.ImportTrackTxt(" + none + ");", "|Error opening " + (dir / "none").generic_string() + "@4-11"},
      {"Velantis.Convert(" + Q(dir / "in/b.txt") + ", " + Q(dir / "x.wpt") + ");", "|Unknown file format: txt@0-7"},
      {"a = Velantis.DirScan(" + none + ", \"*\");", "|Error reading folder@4-11"},
      {"Velantis.Copy(" + none + ", " + out + ");", "|Error copying file@0-7"},
      {"Velantis.XCopy(" + none + ", " + out + ");", "|Error copying files@0-7"},
      {"Velantis.Split(" + Q(dir / "in/b.txt") + ", 0);", "|Error splitting file@0-7"},
      {"Velantis.Delete(" + none + ");", "|Can't delete file@0-7"},
      {"Velantis.Delete(" + Q(dir / "empty") + ");", "|Can't delete file@0-7"},  // a folder is no file
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
  EXPECT_EQ(test::FileBytes(dir / "out/c.wpt.001") + test::FileBytes(dir / "out/c.wpt.002") + "|" +
                test::FileBytes(dir / "out/c.wpt.003"),
            "01234567|89");
}

// Without system access the commands that touch the system fail with their
// own message and leave the files alone.
TEST(FileCommands, NothingWithoutSystemAccess) {
  const fs::path dir = test::ScratchDir("no-access");
  Write(dir / "a", "abc");
  const std::string a = Q(dir / "a"), b = Q(dir / "b");
  const TScriptCase cases[] = {
      {"Velantis.CheckCRC32(" + a + ");", "CRC Error"},
      {"Velantis.AppendMd5(" + a + ");", "Md5 Writting error"},
      {"Velantis.UncompressBZ2(" + a + ", " + b + ");", "Uncompression error"},
      {"Velantis.Copy(" + a + ", " + b + ");", "Error copying file"},
      {"Velantis.Delete(" + a + ");", "Can't delete file"},
      {"Velantis.NewTempFileName(\".x\");", "Error creating temporary file"},
      {"Velantis.Exec(\"info x\");", "Error in Exec command"},
      {"Velantis.ImportWptsTxt(" + a + ");", "Error reading file"},
  };
  for (const TScriptCase& c : cases) {
    TVelanScriptBase script;
    script.SetLimits(TScriptLimits{.systemAccess = false});
    script.Load(c.script);
    std::string message = "no error";
    try {
      script.Ejecuta();
    } catch (const TScriptError& e) {
      message = e.what();
    }
    EXPECT_EQ(message, c.outcome) << c.script;
  }
  EXPECT_EQ(test::FileBytes(dir / "a"), "abc");
  EXPECT_FALSE(fs::exists(dir / "b"));
}

TEST(FileCommands, ExecAndQuit) {
  const std::vector<std::string> saved = ExecProgram();
  // A stand-in program: exits with the code its first word names, or 99
  // unless its second word arrived whole.
  SetExecProgram({"/bin/sh", "-c", "test \"$1\" = 'a b' || exit 99; exit \"$0\""});
  const TScriptCase cases[] = {
      {"v = Velantis.Exec(\"3 \\\"a b\\\"\");", "v=3"},
      {"v = Velantis.Exec(\" \");", "|Need parameters in Exec command.@4-11"},
      {"v = Velantis.Exec();", "|Too few parametes in call to 'Exec' @4-11"},
      {"Echo(\"a\"); Velantis.Quit(); Echo(\"b\");", "a"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
  SetExecProgram({"/nonexistent/velantis"});
  EXPECT_EQ(Outcome("Velantis.Exec(\"info\");"), "|Error in Exec command@0-7");
  SetExecProgram(saved);
  EXPECT_EQ(StartCommandScript("\"info a.trk\"") + StartCommandScript(" \t"), "Velantis.Exec(\"info a.trk\");\r\n");
}

// A terminal that answers from a list (a cancel past its end) and records
// what it was shown.
struct TFakeTerminal : TScriptTerminal {
  std::vector<std::string> answers;
  std::string shown;
  void Message(std::string_view text) override { shown += "M:" + std::string(text) + "|"; }
  void Warning(std::string_view text) override { shown += "W:" + std::string(text) + "|"; }
  bool Input(std::string_view prompt, std::string& answer) override {
    shown += "I:" + std::string(prompt) + "|";
    if (answers.empty()) return false;
    answer = answers.front();
    answers.erase(answers.begin());
    return true;
  }
};

TEST(FileCommands, TerminalCommands) {
  const struct {
    std::string script;
    std::vector<std::string> answers;
    std::string outcome, shown;
  } cases[] = {
      {"Velantis.MessageBox(\"Done\"); Velantis.Warning(\"Low\");", {}, "", "M:Done|W:Low|"},
      {"v = Velantis.InputUser(\"Name?\", \"peak\") + Velantis.InputUser(\"Alt\", \"0\");", {"Hut", ""}, "v=Hut0",
       "I:Name? [peak]: |I:Alt [0]: |"},
      {"v = 1; v = Velantis.InputUser(\"Q\", \"d\");", {}, "v=1|Script Stopped InputUser@11-18", "I:Q [d]: |"},
  };
  for (const auto& c : cases) {
    TFakeTerminal terminal;
    terminal.answers = c.answers;
    TLocalScriptHost host;
    host.SetTerminal(&terminal);
    EXPECT_EQ(Outcome(c.script, &host) + terminal.shown, c.outcome + c.shown) << c.script;
  }
  // No terminal: messages go to the log, a question cannot be answered.
  TLocalScriptHost host;
  EXPECT_EQ(Outcome("Velantis.MessageBox(\"m\"); Velantis.Warning(\"w\"); Velantis.InputUser(\"q\", \"\");", &host),
            "|Script Stopped InputUser@49-56");
  EXPECT_EQ(host.Lines(), (std::vector<std::string>{"m", "Warning: w"}));
}

// Every command of the table ends the script naming itself.
TEST(FileCommands, UnavailableCommandsNameThemselves) {
  ASSERT_GT(UnavailableCommands().size(), 40u);
  for (const TApplicationCommand& command : UnavailableCommands()) {
    std::string args;
    for (size_t i = 0; i < command.argCount; ++i) args += i ? ", 1" : "1";
    const std::string name(command.name);
    EXPECT_EQ(Outcome("v = 1; Velantis." + name + "(" + args + "); v = 2;"),
              "v=1|Command '" + name + "' not available in this build@7-14");
  }
}

}  // namespace
}  // namespace velantis
