#include "geodesy/ntv2.h"

#include <cmath>
#include <cstring>
#include <fstream>

#include "app/binary_file.h"
#include "app/file_io.h"

namespace velantis {

namespace {

constexpr size_t kRecordSize = 16;
constexpr size_t kKeywordSize = 8;
// Guards the row and column counts against a corrupt header before they size
// anything; real grids stay far below.
constexpr double kMaxGridDimension = 1e6;

struct TRecord {
  std::string_view keyword;
  std::string_view value;

  int32_t Int() const {
    int32_t v;
    std::memcpy(&v, value.data(), sizeof v);
    return v;
  }
  double Real() const {
    double v;
    std::memcpy(&v, value.data(), sizeof v);
    return v;
  }
  std::string Text() const {
    const size_t first = value.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    const size_t last = value.find_last_not_of(' ');
    return std::string(value.substr(first, last - first + 1));
  }
};

bool ReadRecord(TBinaryReader& in, TRecord& record) {
  std::string_view bytes;
  if (!in.ReadBytes(kRecordSize, bytes)) return false;
  record.keyword = bytes.substr(0, kKeywordSize);
  record.value = bytes.substr(kKeywordSize);
  return true;
}

int GridDimension(double low, double high, double increment) {
  const double count = std::trunc((high - low) / increment + 1.1);
  if (!(count >= 1 && count <= kMaxGridDimension)) return 0;
  return static_cast<int>(count);
}

struct TOverview {
  int32_t numORec = 0, numSRec = 0, numFile = 0;
  std::string gsType, systemF, systemT;
};

// Reads the overview header from the start of the file bytes.
bool ReadOverview(TBinaryReader& in, const std::string& path, TOverview& overview,
                  std::string& error) {
  TRecord record;
  if (!ReadRecord(in, record) || record.keyword != "NUM_OREC") {
    error = "NTv2 header error in " + path + ": NUM_OREC expected";
    return false;
  }
  overview.numORec = record.Int();
  for (int32_t i = 1; i < overview.numORec; ++i) {
    if (!ReadRecord(in, record)) {
      error = "NTv2 header error in " + path + ": " + in.Error();
      return false;
    }
    if (record.keyword == "NUM_SREC") overview.numSRec = record.Int();
    else if (record.keyword == "NUM_FILE") overview.numFile = record.Int();
    else if (record.keyword == "GS_TYPE ") overview.gsType = record.Text();
    else if (record.keyword == "SYSTEM_F") overview.systemF = record.Text();
    else if (record.keyword == "SYSTEM_T") overview.systemT = record.Text();
  }
  if (overview.numFile < 1) {
    error = "NTv2 header error in " + path + ": NUM_FILE must be at least 1";
    return false;
  }
  return true;
}

// Only the overview is needed at start: the first record says how many
// records it has, and no more than those are read.
bool ReadOverviewBytes(const std::string& path, std::string& bytes, std::string& error) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    error = "Error opening " + path;
    return false;
  }
  bytes.resize(kRecordSize);
  file.read(bytes.data(), kRecordSize);
  bytes.resize(static_cast<size_t>(file.gcount()));
  if (bytes.size() < kRecordSize) return true;  // the reader reports the short file
  int32_t records;
  std::memcpy(&records, bytes.data() + kKeywordSize, sizeof records);
  file.seekg(0, std::ios::end);
  const auto size = static_cast<uint64_t>(file.tellg());
  const uint64_t wanted = records > 1 ? std::min<uint64_t>(uint64_t(records) * kRecordSize, size) : 0;
  if (wanted > kRecordSize) {
    bytes.resize(wanted);
    file.seekg(kRecordSize);
    file.read(bytes.data() + kRecordSize, static_cast<std::streamsize>(wanted - kRecordSize));
    bytes.resize(kRecordSize + static_cast<size_t>(file.gcount()));
  }
  return true;
}

bool ReadSubGrid(TBinaryReader& in, int32_t numSRec, TDatumSubRejilla& grid, std::string& error) {
  TRecord record;
  for (int32_t i = 0; i < numSRec; ++i) {
    if (!ReadRecord(in, record)) {
      error = in.Error();
      return false;
    }
    if (record.keyword == "SUB_NAME") grid.name = record.Text();
    else if (record.keyword == "S_LAT   ") grid.sLat = record.Real();
    else if (record.keyword == "N_LAT   ") grid.nLat = record.Real();
    else if (record.keyword == "E_LONG  ") grid.eLong = record.Real();
    else if (record.keyword == "W_LONG  ") grid.wLong = record.Real();
    else if (record.keyword == "LAT_INC ") grid.latInc = record.Real();
    else if (record.keyword == "LONG_INC") grid.longInc = record.Real();
    else if (record.keyword == "GS_COUNT") grid.nodeCount = record.Int();
  }
  if (grid.nodeCount < 1) {
    error = "GS_COUNT error in sub-grid " + grid.name;
    return false;
  }
  grid.rows = GridDimension(grid.sLat, grid.nLat, grid.latInc);
  grid.columns = GridDimension(grid.eLong, grid.wLong, grid.longInc);
  // Every node a cell can reach must be in the file.
  if (grid.rows == 0 || grid.columns == 0 ||
      static_cast<int64_t>(grid.rows) * grid.columns > grid.nodeCount) {
    error = "Size error in sub-grid " + grid.name;
    return false;
  }
  std::string_view bytes;
  if (!in.ReadBytes(static_cast<size_t>(grid.nodeCount) * kRecordSize, bytes)) {
    error = in.Error();
    return false;
  }
  grid.nodes.resize(static_cast<size_t>(grid.nodeCount) * 4);
  std::memcpy(grid.nodes.data(), bytes.data(), bytes.size());
  return true;
}

}  // namespace

bool TDatumSubRejilla::Interpolate(double x, double y, double& shiftX, double& shiftY) const {
  const double yr = (y - sLat) / latInc;
  const double xc = (x - eLong) / longInc;
  const int r0 = static_cast<int>(yr);
  const int r1 = r0 + 1;
  const int c0 = static_cast<int>(xc);
  const int c1 = static_cast<int>(xc + 1);
  if (r1 >= rows || c1 >= columns) return false;
  const auto node = [&](int r, int c) { return &nodes[(static_cast<size_t>(r) * columns + c) * 4]; };
  const float* n00 = node(r0, c0);
  const float* n01 = node(r0, c1);
  const float* n10 = node(r1, c0);
  const float* n11 = node(r1, c1);
  const double wc1 = xc - c0;  // weight of column c1
  const double wc0 = c1 - xc;  // weight of column c0
  const double wr1 = yr - r0;
  const double wr0 = r1 - yr;
  const double lon0 = n00[1] * wc0 + n01[1] * wc1;
  const double lon1 = n10[1] * wc0 + n11[1] * wc1;
  const double lat0 = n00[0] * wc0 + n01[0] * wc1;
  const double lat1 = n10[0] * wc0 + n11[0] * wc1;
  shiftX = lon0 * wr0 + lon1 * wr1;
  shiftY = lat0 * wr0 + lat1 * wr1;
  return true;
}

bool TDatumFileNTV2::Open(const std::string& path, std::string& error) {
  m_path = path;
  std::string bytes;
  if (!ReadOverviewBytes(path, bytes, error)) return false;
  TBinaryReader in(bytes);
  TOverview overview;
  if (!ReadOverview(in, path, overview, error)) return false;
  m_numORec = overview.numORec;
  m_numSRec = overview.numSRec;
  m_numFile = overview.numFile;
  m_gsType = overview.gsType;
  m_systemF = overview.systemF;
  m_systemT = overview.systemT;
  m_state = TState::HeaderRead;
  return true;
}

bool TDatumFileNTV2::LoadSubGrids() {
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(m_path, bytes, error)) return false;
  TBinaryReader in(bytes);
  TOverview overview;
  if (!ReadOverview(in, m_path, overview, error)) return false;
  // Grown one sub-grid at a time: NUM_FILE is only trusted as far as the
  // file holds sub-grids.
  std::vector<TDatumSubRejilla> grids;
  for (int32_t i = 0; i < overview.numFile; ++i) {
    TDatumSubRejilla grid;
    if (!ReadSubGrid(in, overview.numSRec, grid, error)) return false;
    grids.push_back(std::move(grid));
  }
  m_subGrids = std::move(grids);
  return true;
}

bool TDatumFileNTV2::EnsureLoaded() {
  const TState state = m_state.load(std::memory_order_acquire);
  if (state != TState::HeaderRead) return state == TState::SubGridsLoaded;
  std::lock_guard lock(m_loadMutex);
  if (m_state.load() == TState::HeaderRead) {
    m_state.store(LoadSubGrids() ? TState::SubGridsLoaded : TState::Unusable,
                  std::memory_order_release);
  }
  return m_state.load() == TState::SubGridsLoaded;
}

const std::vector<TDatumSubRejilla>& TDatumFileNTV2::SubGrids() {
  static const std::vector<TDatumSubRejilla> kNone;
  return EnsureLoaded() ? m_subGrids : kNone;
}

bool TDatumFileNTV2::Shift(double& longitude, double& latitude, bool inverse) {
  if (!EnsureLoaded()) return false;
  double x = -longitude * kNodeUnitFactor;
  double y = latitude * kNodeUnitFactor;
  for (const TDatumSubRejilla& grid : m_subGrids) {
    if (!grid.Contains(x, y)) continue;
    double shiftX, shiftY;
    if (!grid.Interpolate(x, y, shiftX, shiftY)) return false;
    if (inverse) {
      x -= shiftX;
      y -= shiftY;
    } else {
      x += shiftX;
      y += shiftY;
    }
    longitude = x / -kNodeUnitFactor;
    latitude = y / kNodeUnitFactor;
    return true;
  }
  return false;
}

}  // namespace velantis
