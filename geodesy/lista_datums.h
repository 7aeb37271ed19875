// The list of datums: the built-in ones of "datumsb.dat" from the program
// folder, then the user's own of "datumsbp.dat" from the user folder, with the
// NTv2 grids of "datumgrids" attached at start. Index 0 is always WGS 84 and
// every stored shift is relative to it; an index of -1 means the datum chosen
// in the configuration.
//
// The list is built once at start; user datums may be added and saved back.
// Lookups and shifts are safe from several threads once loading is done.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "geodesy/datum.h"
#include "geodesy/lon_lat.h"

namespace velantis {

struct TDatumChooser {
  std::vector<std::string> lines;
  int selected = -1;  // index into lines, -1 when nothing is selected
};

inline constexpr const char* kBuiltInDatumFile = "datumsb.dat";
inline constexpr const char* kUserDatumFile = "datumsbp.dat";
inline constexpr const char* kDatumGridFolder = "datumgrids";
inline constexpr const char* kDatumChooserSeparator = "-----------";

class TListaDatums {
public:
  // configuredDatum is the configuration's chosen datum index; the list reads
  // it for -1 and resets it to 0 when it names no datum.
  explicit TListaDatums(int& configuredDatum) : m_configured(&configuredDatum) {}

  // Reads the built-in file from programDir (failing with "Error reading file
  // DATUMSB.DAT " + the reader's message), appends the user's file from userDir
  // when there is one, then attaches the grids of programDir/datumgrids.
  bool Load(const std::string& programDir, const std::string& userDir, std::string& error);
  // Appends the records of a datum file; false with the reader's message.
  bool AppendFile(const std::string& path, std::string& error);
  void Add(TDatum datum);
  // Writes the datums first..last (by default the user's) to the user file.
  bool SaveUserDatums(std::string& error) const;
  bool SaveUserDatums(int first, int last, std::string& error) const;

  int Count() const { return static_cast<int>(m_datums.size()); }
  int BuiltInCount() const { return m_builtInCount; }
  bool Exists(int index) const;
  // The datum at index (-1: the configured one); nullptr when there is none.
  const TDatum* Get(int index) const;
  int ConfiguredIndex() const;

  // The index of the datum with that name, alias or short name, else -1.
  int Find(std::string_view name) const;
  // The same for names written in projection files ("GCS_", "Datum_", "D_").
  int FindProjectionName(std::string_view name) const;

  // Shifts position from one datum to another in place; on failure it is
  // left unchanged and message says why.
  bool Transforma_Grados_Datum(TLonLat& position, int from, int to, std::string& message);

  // Lists "datumgrids/*.gsb" of folder in name order and attaches each grid
  // that can serve its source datum, logging warnings 44001 and 44002 for the
  // others.
  void AttachGrids(const std::string& folder);

  // The chooser's lines: the recent names that still resolve (the current
  // choice selected), a separator when there were any, then every datum.
  TDatumChooser FillChooser(const std::vector<std::string>& recent, int current) const;

private:
  int FindNormalised(const std::string& text) const;
  int Resolve(int index) const { return index == -1 ? ConfiguredIndex() : index; }

  std::vector<TDatum> m_datums;
  int m_builtInCount = 0;
  std::string m_userFile;
  int* m_configured;
};

}  // namespace velantis
