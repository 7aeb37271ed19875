// The application commands' dispatch: names resolved once, argument counts,
// and the application's own failures reported with the command's name.
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "script/application_commands.h"
#include "script/script_host.h"
#include "tests/script/script_outcome.h"

namespace velantis {
namespace {

TEST(ScriptCommands, Dispatch) {
  const TScriptCase cases[] = {
      {"v = 1; Velantis.Nope(); v = 2;", "v=1|Unknown command 'Nope'@7-14"},
      {"Velantis.CloseAll(1);", "|Too few parametes in call to 'CloseAll' @0-7"},
      {"Velantis.CloseAll(); v = 3;", "v=3"},
      // Not resolved before it runs: the branch never taken never fails.
      {"if (0) { Velantis.Nope(); }; v = 4;", "v=4"},
      {"x = 1; x.CloseAll();", "|Unknown function 'CloseAll'@7-7"},
      {"v = ObjectAtPtr(1);", "|Error, wrong ptr at ObjectAtPtr@4-14"},
      {"v = ObjectAtPtr(\"1\");", "|Should be Numeric!@4-14"},
  };
  for (const TScriptCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << ::testing::PrintToString(c.script);
}

// A name in two themes would shadow the later one: every name once.
TEST(ScriptCommands, NamesAreUniqueAcrossThemes) {
  std::set<std::string_view> names;
  for (const auto& theme : {ElementCommands(), FileCommands(), ChecksumCommands(), ProcessCommands(),
                            TerminalCommands(), UnavailableCommands()})
    for (const TApplicationCommand& command : theme) {
      EXPECT_TRUE(names.insert(command.name).second) << command.name;
      EXPECT_EQ(ApplicationCommand(FindApplicationCommand(command.name)).function, command.function);
    }
}

class TFailingHost : public TLocalScriptHost {
public:
  std::vector<std::shared_ptr<TLoadedFile>>& Loaded() override { throw std::runtime_error("disk"); }
};

TEST(ScriptCommands, ApplicationFailureNamesTheCommand) {
  TFailingHost host;
  TVelanScriptBase script;
  script.SetHost(host);
  script.Load("a = 1;\n Velantis.CloseAll();");
  try {
    script.Ejecuta();
    FAIL() << "no error";
  } catch (const TScriptError& error) {
    EXPECT_STREQ(error.what(), "VelanScript: Exception in Velantis Engine, command=CloseAll");
    EXPECT_EQ(error.Start(), 8);
  }
}

}  // namespace
}  // namespace velantis
