#include "geodesy/datum_file.h"

#include "app/binary_file.h"
#include "app/code_page.h"
#include "app/file_io.h"

namespace velantis {

namespace {

bool ReadText(TBinaryReader& in, int32_t version, std::string& text) {
  if (!in.ReadString(text)) return false;
  if (version < kDatumFileVersion) text = Cp1252ToUtf8(text);
  return true;
}

bool ReadRecord(TBinaryReader& in, int32_t version, TDatum& datum) {
  ReadText(in, version, datum.name);
  in.ReadInt32(datum.ellipsoidCode);
  in.ReadDouble(datum.invFlattening);
  in.ReadDouble(datum.a);
  in.ReadDouble(datum.dX);
  in.ReadDouble(datum.dY);
  in.ReadDouble(datum.dZ);
  ReadText(in, version, datum.aliasText);
  if (version >= 2) ReadText(in, version, datum.shortName);
  return !in.Failed();
}

}  // namespace

bool ReadDatumFile(std::string_view bytes, std::vector<TDatum>& datums, std::string& error) {
  TBinaryReader in(bytes);
  int32_t version = 0;
  int32_t count = 0;
  if (!in.ReadInt32(version)) {
    error = in.Error();
    return false;
  }
  if (version > kDatumFileVersion) {
    error = "Version error in datumsb.dat";
    return false;
  }
  if (!in.ReadInt32(count)) {
    error = in.Error();
    return false;
  }
  if (count < 0 || count > kMaxDatumRecords) {
    error = "n error in datumsb.dat";
    return false;
  }
  for (int32_t i = 0; i < count; ++i) {
    TDatum datum;
    if (!ReadRecord(in, version, datum)) {
      error = in.Error();
      return false;
    }
    if (!datum.ComputeDerived()) {
      error = "inv_v error in datumsb.dat";
      return false;
    }
    datums.push_back(std::move(datum));
  }
  return true;
}

bool LoadDatumFile(const std::string& path, std::vector<TDatum>& datums, std::string& error) {
  std::string bytes;
  if (!ReadWholeFile(path, bytes, error)) return false;
  return ReadDatumFile(bytes, datums, error);
}

std::string WriteDatumFile(const std::vector<TDatum>& datums) {
  TBinaryWriter out;
  out.WriteInt32(kDatumFileVersion);
  out.WriteInt32(static_cast<int32_t>(datums.size()));
  for (const TDatum& datum : datums) {
    out.WriteString(datum.name);
    out.WriteInt32(datum.ellipsoidCode);
    out.WriteDouble(datum.invFlattening);
    out.WriteDouble(datum.a);
    out.WriteDouble(datum.dX);
    out.WriteDouble(datum.dY);
    out.WriteDouble(datum.dZ);
    out.WriteString(datum.aliasText);
    out.WriteString(datum.shortName);
  }
  return out.Bytes();
}

}  // namespace velantis
