// The projection lists of the data folder: "project.dat", the ECW maps'
// "projections/ecw/ecw_project.dat", and "default.prj", the projection a new
// map starts with.
//
// Layout of project.dat and ecw_project.dat: definitions in the definition
// form (geodesy/projection_file.h), one block each, blocks separated by a
// line of three or more "-" and nothing else; lines whose first non-blank
// character is "#" are comments, wherever they stand; blank lines are skipped.
//
//   # British National Grid: EPSG:27700
//   VERSION=1
//   PROJECTION=Transversal Mercator
//   NAME=British National Grid
//   ...
//   ---
//   VERSION=1
//   ...
//
// A projection is looked up by its NAME or any entry of its OTHER_NAMES,
// without regard to ASCII letter case or surrounding blanks; the first block
// in file order that matches wins, and only that block is read, so its own
// read error ("TDatosProyeccion Err 2", ...) is what a lookup reports.
//
// "default.prj" is one definition file; the user's folder's own copy wins over
// the data folder's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "geodesy/datos_proyeccion.h"
#include "geodesy/lista_datums.h"

namespace velantis {

inline constexpr const char* kProjectDatFile = "project.dat";
inline constexpr const char* kEcwProjectDatFile = "projections/ecw/ecw_project.dat";
inline constexpr const char* kDefaultProjectionFile = "default.prj";

inline constexpr std::string_view kProjectDatMissing = "File project.dat not found";
inline constexpr std::string_view kProjectDatNoProjection =
    "Projection not found in the project.dat file";
inline constexpr std::string_view kEcwProjectDatNoProjection =
    "Projection not found in the ECW project.dat file";

// Looks name up in a project.dat text. found says whether a block matched;
// the result is false when none did or the matching block does not read.
bool FindInProjectDat(std::string_view text, std::string_view name, const TListaDatums* datums,
                      TDatosProyeccion& definition, bool& found, std::string& error);

// Every definition of a project.dat text, in order; the first block that does
// not read fails the whole call with "Definition at line N: " + its error.
bool ReadProjectDat(std::string_view text, const TListaDatums* datums,
                    std::vector<TDatosProyeccion>& definitions, std::string& error);

// dataDir/project.dat: "File project.dat not found" when the file is missing,
// "Projection not found in the project.dat file" when no block matches.
bool LookupProjectDat(const std::string& dataDir, std::string_view name, const TListaDatums* datums,
                      TDatosProyeccion& definition, std::string& error);

// dataDir/projections/ecw/ecw_project.dat: the same, with "Projection not
// found in the ECW project.dat file" when no block matches.
bool LookupEcwProjectDat(const std::string& dataDir, std::string_view name,
                         const TListaDatums* datums, TDatosProyeccion& definition,
                         std::string& error);

// userDir/default.prj when it exists, else dataDir/default.prj.
bool ReadDefaultProjection(const std::string& userDir, const std::string& dataDir,
                           const TListaDatums* datums, TDatosProyeccion& definition,
                           std::string& error);

}  // namespace velantis
