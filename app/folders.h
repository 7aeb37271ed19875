// Where the program finds its data and the user's files.
//
// The data folder holds "datumsb.dat", "datumgrids" and the other built-in
// files (on Windows the program's folder); the user folder holds "gps.ini",
// "datumsbp.dat" and "velantis.log" (on Windows the user's data folder).
#pragma once

#include <string>

namespace velantis {

struct TFolders {
  std::string dataDir;
  std::string userDir;
  std::string configFile;  // "gps.ini" in the user folder unless named
};

// Fills what the caller left empty: the data folder with the installed one,
// else the build tree's; the user folder with $XDG_DATA_HOME/velantis (else
// ~/.local/share/velantis); the configuration file with userDir/gps.ini.
TFolders ResolveFolders(TFolders given);

}  // namespace velantis
