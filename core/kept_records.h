// Lines of the file a track was read from that the track has no field for.
//
// An exchange format may carry records the data model does not interpret (a
// flight log's header, task, events, security records). Its reader keeps
// them here, each with the index of the point it stood before, so that the
// format's writer can give them back in their place and a file read and
// written again keeps its bytes. The lines are the file's own bytes without
// their line end; format names the file format that kept them, and other
// writers ignore them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace velantis {

struct TKeptRecord {
  size_t beforePoint = 0;  // the count of points read before the line
  std::string line;
  friend bool operator==(const TKeptRecord&, const TKeptRecord&) = default;
};

struct TKeptRecords {
  std::string format;  // "" when the track did not come from such a file
  std::vector<TKeptRecord> lines;
  friend bool operator==(const TKeptRecords&, const TKeptRecords&) = default;
};

}  // namespace velantis
