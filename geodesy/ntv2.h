// NTv2 grid-shift files ("datumgrids/*.gsb"): a sequence of 16-byte records,
// an 8-byte space-padded keyword and an 8-byte value, little-endian.
//
// Opening reads only the overview header; the sub-grids are read on the first
// shift. Any failure to read them marks the file unusable for the rest of the
// run: it is never retried, and every later shift through it fails so that the
// caller falls back to the three-parameter shift.
//
// Shifts are bilinear interpolations of the float32 nodes in arc-seconds; the
// first sub-grid in file order that holds the point is used (a child grid is
// never preferred over its parent). A point on a sub-grid's northern or
// western edge is inside it but has no node beyond, so it fails.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace velantis {

struct TDatumSubRejilla {
  std::string name;
  double eLong = 0, sLat = 0, nLat = 0, wLong = 0;  // arc-seconds, longitudes positive west
  double latInc = 0, longInc = 0;                   // arc-seconds
  int32_t nodeCount = 0;
  int rows = 0, columns = 0;
  std::vector<float> nodes;  // 4 floats a node: lat shift, lon shift, two accuracies

  // Interpolated (longitude, latitude) shift in arc-seconds at (x, y) in
  // arc-seconds (x positive west); false when the point has no node cell.
  bool Interpolate(double x, double y, double& shiftX, double& shiftY) const;
  bool Contains(double x, double y) const {
    return eLong <= x && x <= wLong && sLat <= y && y <= nLat;
  }
};

class TDatumFileNTV2 {
public:
  // Reads the overview header of the file; false with the reader's message.
  bool Open(const std::string& path, std::string& error);

  // Shifts (longitude, latitude) in degrees from the source to the target
  // datum (forward) or back (inverse: the shift interpolated at the given
  // point is subtracted, one step, no iteration). False when the file is
  // unusable or the point is outside every sub-grid; the point is then as given.
  bool Shift(double& longitude, double& latitude, bool inverse);

  const std::string& SourceDatum() const { return m_systemF; }
  const std::string& TargetDatum() const { return m_systemT; }
  const std::string& Path() const { return m_path; }
  const std::string& GridType() const { return m_gsType; }
  bool Unusable() const { return m_state.load() == TState::Unusable; }
  // The sub-grids, loading them first; empty when the file is unusable.
  const std::vector<TDatumSubRejilla>& SubGrids();

  // Whatever GS_TYPE says, nodes are taken to be in arc-seconds.
  static constexpr double kNodeUnitFactor = 3600;

private:
  enum class TState { HeaderRead, SubGridsLoaded, Unusable };

  bool EnsureLoaded();
  bool LoadSubGrids();

  std::string m_path;
  std::string m_systemF, m_systemT, m_gsType;
  int32_t m_numORec = 0, m_numSRec = 0, m_numFile = 0;
  std::vector<TDatumSubRejilla> m_subGrids;
  std::atomic<TState> m_state{TState::HeaderRead};
  std::mutex m_loadMutex;
};

}  // namespace velantis
