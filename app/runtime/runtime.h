// Start-up: what exists before any file is opened. The configuration store is
// read from "gps.ini", the log opened in the user folder and the datum list
// loaded from the data and user folders, its grids attached.
#pragma once

#include <string>

#include "app/config.h"
#include "app/folders.h"
#include "geodesy/lista_datums.h"

namespace velantis {

class TRuntime {
public:
  // False with the message when something the program cannot run without
  // (the built-in datums) did not load.
  bool Start(const TFolders& folders, std::string& error);

  TFolders folders;
  TConfig config;
  TListaDatums datums{config.Num_Datum};
};

}  // namespace velantis
