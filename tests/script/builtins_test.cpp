// The free functions and string methods through scripts: results, argument
// checks and conversions.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/script/script_outcome.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

TEST(ScriptBuiltins, FreeFunctions) {
  const TScriptCase cases[] = {
      {"v = max(2, 7) * 10 + min(2, 7);", "v=72"},
      {"v = max(7, 2) * 10 + min(7, 2);", "v=72"},
      {"v = RoundInt(-2.5) * 10 + RoundInt(2.5);", "v=-27"},
      {"v = RoundInt(2.4) * 10 + RoundInt(-2.4);", "v=18"},
      {"v = CreateRandom(3, 3);", "v=3"},
      {"s = 0; for (i = 0; i < 200; i++) { r = CreateRandom(5, 6); if (r == 6) s++; "
       "if (r < 5 || r > 6) s = -1000; }; v = s > 0 && s < 200;",
       "v=1"},
      {"v = GetVersion();", "v=1"},
      {"RequiredVersion(0.01); v = 1;", "v=1"},
      {"RequiredVersion(0.02);", "|This VelanScript is designed for a newer version or Velantis@0-14"},
      {"v = GetYear() > 2020;", "v=1"},
      {"Echo(\"a\"); Sleep(1); Exit(); Echo(\"b\");", "a"},
      {"Echo(5);", "|Should be String!@0-3"},
      {"v = RoundInt(\"a\");", "|Should be Numeric!@4-11"},
      {"Echo();", "|Too few parametes in call to 'Echo' @0-3"},
      {"v = max(1, 2, 3);", "|Too few parametes in call to 'max' @4-6"},
      {"v = nope();", "|Unknown function 'nope'@4-7"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

TEST(ScriptBuiltins, StringMethods) {
  const TScriptCase cases[] = {
      {"s = \"Hola\"; s.A_Mayusculas(); v = s + s.strlen();", "v=HOLA4"},
      {"s = \"AbC\"; v = s.A_Minusculas() + s;", "v=abcabc"},
      {"v = \"\xC0\xE1rbol \xD1" "and\xFA\".quitar_acentos();", "v=Aarbol Nandu"},
      {"v = \"\xE1\xD7\".A_Mayusculas() + \"\xC1\xF7\".A_Minusculas();", "v=\xC1\xD7\xE1\xF7"},
      {"v = \"hello world\".SubString(6, 3) + \"hello\".SubString(3, 10);", "v=worlo"},
      {"v = \"abcabc\".strstr(\"ca\") * 10 + \"abc\".strstr(\"x\");", "v=19"},
      {"s = \"a-b-c\"; s.Replace(\"-\", \"+=\"); v = s;", "v=a+=b+=c"},
      {"v = \" -42x\".atoi() + \"7\".atoi() + \"x\".atoi();", "v=-35"},
      {"p = \"/d/n.tar.gz\"; v = p.FileNameEx() + \"|\" + p.FileNameNoEx() + \"|\" + "
       "p.FileNameChangeExt(\".x\");",
       "v=n.tar.gz|n.tar|/d/n.tar.x"},
      {"v = \"d.d\\\\file\".FileNameNoEx() + \"|\" + \"file\".FileNameChangeExt(\".x\") + \"|\" + "
       "\"d/.rc\".FileNameNoEx();",
       "v=file|file.x|"},
      {"v = \"abc\".strlen(1);", "|Too few parametes in call to 'strlen' @4-8"},
      {"x = 5; v = x.strlen();", "|Object should be a string@11-11"},
      {"v = \"a\".foo();", "|Unknown function 'foo'@4-6"},
      {"v = \"a\".Replace(1, \"b\");", "|Should be String!@4-6"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

TEST(ScriptBuiltins, Files) {
  const auto dir = test::ScratchDir("script-files");
  std::ofstream(dir / "a.txt") << "12345";
  const std::string d = dir.string() + "/";
  const TScriptCase cases[] = {
      {"v = FileExists(\"" + d + "a.txt\") * 10 + FileExists(\"" + d + "b.txt\");", "v=10"},
      {"v = DirectoryExists(\"" + d + "\") * 10 + DirectoryExists(\"" + d + "a.txt\");", "v=10"},
      {"FileRename(\"" + d + "a.txt\", \"" + d + "b.txt\"); v = \"" + d + "b.txt\".GetFileSize();",
       "v=5"},
      {"v = \"" + d + "a.txt\".GetFileSize();", "v=-1"},
      {"FileRename(\"" + d + "a.txt\", \"" + d + "c.txt\");", "|Error renaming file@0-9"},
      {"CreateDirectory(\"" + d + "sub\"); v = DirectoryExists(\"" + d + "sub\");", "v=1"},
      {"CreateDirectory(\"" + d + "sub\");", "|Error creating folder@0-14"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

}  // namespace
}  // namespace velantis
