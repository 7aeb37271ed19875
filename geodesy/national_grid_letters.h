// The lettered 100 km squares shared by the British National Grid and the
// Irish Grid references ("TQ 30470 80480", "O 15 34").
//
// Both grids name squares from one 5 x 5 matrix of the letters A to Z without
// I, A in the north-west corner and Z in the south-east, read row by row
// (Ordnance Survey, "A guide to coordinate systems in Great Britain", the
// National Grid reference system; Ordnance Survey Ireland / Ordnance Survey
// of Northern Ireland, "Making maps compatible with GPS", the Irish Grid). A
// reference gives the easting and then the northing inside the square with the
// same number of digits, 1 to 5, the metres truncated (not rounded) to the
// precision: a reference names the square that holds the point.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

inline constexpr double kGridSquareMetres = 100000;
inline constexpr int kGridReferenceMaxDigits = 5;

// The system's messages for grid references.
inline constexpr const char* kGridReferencePrecisionError =
    "Grid reference precision must be 1, 10, 100, 1000 or 10000 m";
inline constexpr const char* kGridReferenceOutsideError = "Point outside the lettered grid squares";
// Followed by the letters found.
inline constexpr const char* kGridReferenceSquareError = "Unknown 100 km grid square: ";
// Followed by the reference as given.
inline constexpr const char* kGridReferenceFormatError =
    "Grid reference needs its square letters, then 1 to 5 easting digits and as many northing digits: ";

// The letter at a cell of the matrix (column 0-4 from the west, row 0-4 from
// the south); '\0' outside it.
char GridSquareLetter(int column, int rowFromSouth);
// The cell of a letter (either case); false for I and anything not a letter.
bool GridSquareCell(char letter, int& column, int& rowFromSouth);

// A reference taken apart: its letters (upper case) and the south-west corner
// of the square it names, in metres from the corner of the 100 km square.
struct TGridReferenceParts {
  std::string letters;
  double easting = 0;
  double northing = 0;
  int precisionMetres = 1;
};

// Splits "TQ 30470 80480" (letters then digits; blanks between the parts are
// optional; the digits may be one group of even length or two groups of equal
// length; letters in either case) for a grid with letterCount letters.
bool SplitGridReference(std::string_view text, int letterCount, TGridReferenceParts& parts,
                        std::string& message);

// For a point at (easting, northing) metres from the grid's false origin,
// inside [0, eastLimit) x [0, northLimit): the 100 km square's column and row
// (counted from the false origin) and the digits "30470 80480" at the given
// precision. False with a message for another precision or a point outside.
bool GridReferenceDigits(double easting, double northing, double eastLimit, double northLimit,
                         int precisionMetres, int& squareColumn, int& squareRow, std::string& digits,
                         std::string& message);

}  // namespace velantis
