// Starting another program and waiting for it, for the Exec command.
//
// The program inherits the standard streams, so what it prints goes where
// the script's host prints. On POSIX it is started with posix_spawn (no
// shell: the words are passed as they are); under Win32 with CreateProcess
// on a command line quoted so that the C runtime splits it back into the
// same words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velantis {

// The program's exit code (a POSIX program killed by signal s gives 128 + s),
// or -1 with error filled when it cannot be started. words[0] is the
// program's path.
int RunProgram(const std::vector<std::string>& words, std::string& error);

// A command line cut into words: blanks and tabs separate them, double
// quotes group blanks into a word and are dropped ("a \"b c\"" gives a and
// "b c"); a backslash keeps the next character as it is, so \" is a quote
// inside a word.
std::vector<std::string> SplitCommandLine(std::string_view line);

}  // namespace velantis
