// The projections of OziExplorer ".map" files in terms of the catalogue
// (geodesy/projection_catalogue.h): the names OziExplorer gives them, and the
// numbers of the "Projection Setup," line.
//
// The setup line holds, in order: latitude of origin, longitude of origin,
// scale factor, false easting, false northing, standard parallels 1 and 2,
// then height, sat and path, which the catalogue has no use for. OziExplorer
// shortens the line or leaves fields empty where a projection does not need
// them; a missing, empty or unreadable number keeps its default (0, and 1 for
// the scale factor). A kind that takes no parameters (geographic, UTM and the
// fixed national grids) keeps every default whatever the line says, so that
// the same map reads to the same projection from any file. The other kinds
// keep all seven numbers, not only those of their captions: several
// projections honour the origin and false values beyond their captions.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "maps/map_projection.h"

namespace velantis {

struct TOziProjectionName {
  std::string_view ozi;        // as OziExplorer writes it
  std::string_view catalogue;  // the catalogue kind's own name
};

// One row per projection both sides know; a catalogue name appears once, so
// that writing has a single name to choose.
std::span<const TOziProjectionName> OziProjectionNames();

// The catalogue name for an OziExplorer name (letter case and surrounding
// blanks ignored); nullptr when OziExplorer's projection has no counterpart.
const TOziProjectionName* FindOziProjection(std::string_view oziName);
// The row of a catalogue name (or of any other name of the same kind);
// nullptr when OziExplorer has no name for it.
const TOziProjectionName* FindOziProjectionOfCatalogue(std::string_view catalogueName);

// The projection of a map from the name of its "Map Projection," line and the
// text after "Projection Setup,"; false with "Projection not supported: " +
// name for a name the table lacks. Neither line carries a UTM zone: the
// map file reader takes it from the calibration points.
bool ReadOziProjection(std::string_view oziName, std::string_view setupFields,
                       TMapProjection& projection, std::string& error);

// The text to put after "Projection Setup,": the seven numbers in their
// shortest exact form, or empty fields for a kind that takes no parameters,
// then the three unused fields.
std::string OziProjectionSetupFields(const TMapProjection& projection);

}  // namespace velantis
