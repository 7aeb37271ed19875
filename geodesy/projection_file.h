// Projection definition files: the text form of a TDatosProyeccion.
//
// Lines of key "=" value, ending in CR LF (LF or CR alone are read too);
// blank lines are skipped, keys compare without regard to letter case, and
// keys and values lose their surrounding blanks and tabs. A value may hold
// "=" (the line is split at the first one).
//
// The definition form:
//   VERSION          must be 1, else "TDatosProyeccion Err 3"
//   PROJECTION NAME  texts
//   LON_ORIGIN LAT_ORIGIN LAT1 LAT2
//                    degrees in any coordinate notation ("2º20'14.025\"E",
//                    "52GRN", "-3.5W") or, when that does not read, a plain
//                    decimal number ("-3.5", "1e-05")
//   FN FE SCALE_FACTOR  plain decimal numbers
//   OTHER_NAMES VERIF_POINT  texts; each repeated line is appended with ";"
//   PREFERED_DATUM   a datum name, resolved by TListaDatums::FindProjectionName
//                    (the lookup meant for names written in projection files:
//                    it also takes "GCS_WGS_1984"-style names and is the plain
//                    lookup for every other name); -1 when unknown
//   UNIT             "FEET" (any letter case) makes the unit feet; any other
//                    value leaves it as it is
// Refusals: no line at all, or a zero byte (not a text file):
// "TDatosProyeccion Err 1"; a line without "=" or with an empty key, or a
// number that cannot be read: "TDatosProyeccion Err 2"; VERSION other than 1:
// "TDatosProyeccion Err 3"; an unknown key: "TDatosProyeccion Err 4". No key
// is required: fieldsPresent tells the caller which ones came.
//
// The older transverse-Mercator form takes only VERSION, PROJECTION, NAME,
// LON_ORIGIN, LAT_ORIGIN, SCALE_FACTOR, FN, FE, PREFERED_DATUM and
// OTHER_NAMES, with plain decimal numbers; PROJECTION must be "Transversal
// Mercator" or "Transveral Mercator" (files were written with both; the record
// gets the first). Refusals: "Error in " + the line (no "=", unknown key,
// unreadable number, a zero byte), "Error in 'VERSION'", "Error in
// 'PROJECTION'", and
// "Error, some fields missing" when any key but PREFERED_DATUM and OTHER_NAMES
// is absent at the end. A file is read in the form its caller expects.
//
// The writer prints the definition form: VERSION=1, then every field whose
// bit is set, OTHER_NAMES and VERIF_POINT when not empty, PREFERED_DATUM by
// name, UNIT=FEET for feet; numbers in the shortest decimal form that reads
// back to the same double. A written file reads back to the same record (with
// the VERSION bit set), as long as no text value begins or ends with a blank.
// On any failure the record passed in is left as it was.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/datos_proyeccion.h"
#include "geodesy/lista_datums.h"

namespace velantis {

inline constexpr std::string_view kProjectionErrLines = "TDatosProyeccion Err 1";
inline constexpr std::string_view kProjectionErrLine = "TDatosProyeccion Err 2";
inline constexpr std::string_view kProjectionErrVersion = "TDatosProyeccion Err 3";
inline constexpr std::string_view kProjectionErrKey = "TDatosProyeccion Err 4";

inline constexpr std::string_view kTransverseMercatorName = "Transversal Mercator";
inline constexpr std::string_view kTransverseMercatorOldSpelling = "Transveral Mercator";

// datums may be null: PREFERED_DATUM then stays -1.
bool ReadProjectionText(std::string_view text, const TListaDatums* datums,
                        TDatosProyeccion& definition, std::string& error);
// A file that cannot be opened fails with "Error opening " + path.
bool ReadProjectionFile(const std::string& path, const TListaDatums* datums,
                        TDatosProyeccion& definition, std::string& error);

bool ReadTransverseMercatorText(std::string_view text, const TListaDatums* datums,
                                TDatosProyeccion& definition, std::string& error);
bool ReadTransverseMercatorFile(const std::string& path, const TListaDatums* datums,
                                TDatosProyeccion& definition, std::string& error);

// Fails for a text value holding a line break or a zero byte, and for a
// preferred datum that datums (null: none) does not hold.
bool ProjectionText(const TDatosProyeccion& definition, const TListaDatums* datums,
                    std::string& text, std::string& error);
// Saves through a temporary file renamed over the old one.
bool WriteProjectionFile(const std::string& path, const TDatosProyeccion& definition,
                         const TListaDatums* datums, std::string& error);

}  // namespace velantis
