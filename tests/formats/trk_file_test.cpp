// The native track file: its header and point lines, the altitude rule that
// differs from waypoints, round trips with every field, and appending in
// place.
#include "formats/trk_file.h"

#include <gtest/gtest.h>

#include <tuple>

#include "app/file_io.h"
#include "tests/formats/element_samples.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

const auto Utf8 = test::Utf8Options;

std::string Written(TTrack& track, const TNativeOptions& options) {
  return test::WrittenBytes(track, options, "track.trk", WriteTrkFile);
}

TEST(TrkFile, WritesTheDocumentedLines) {
  TTrack track;
  track.SetName("Ruta");
  TTrackDrawing drawing;
  drawing.style = 1;
  drawing.width = 2;
  drawing.pattern = "a b";
  drawing.text = "t";
  track.SetDrawing(drawing);
  track.SetMarkedPairs({{1, 2}});
  TrkPnt p;
  p.lat = 41.5;
  p.lon = 2.25;
  p.time = TDateTime::FromCalendar(2024, 6, 5, 13, 7, 0);
  p.altitude = -1000;
  p.SetHeartRate(120);
  track.Anyade_Punt(p);
  p.altitude = -1000.5f;
  p.time = TDateTime();
  p.size = 4;
  p.SetStartsSegment(true);
  p.SetTemperatureK(273.15);
  track.Anyade_Punt(p);
  const std::string bytes = Written(track, Utf8());
  EXPECT_EQ(bytes,
            "B  UTF-8\r\nG  WGS 84\r\nU  0\r\nN  Ruta\r\n"
            "C  255 0 0 1 2.000000 0 \"a*b\" t\r\n"
            "V  0.000000 0.000000 0 0 0 0 0.000000 0.000000 0\r\n"
            "E 0|0|27-MAR-62 00:00:00|27-MAR-62 00:00:00|0|2\r\n"
            "i 20240605130700\r\n"
            "c 1:2 \r\n"
            "z  0000000002,+041.500000,+0002.250000,+041.500000,+0002.250000\r\n"
            "m  2024-06-05 13:07:00|2024-06-05 13:07:00\r\n"
            "T  41.500000\xC2\xBAN 2.250000\xC2\xBA" "E 05-JUN-24 13:07:00 N -1000.000000 0.000000 0.000000 "
            "0.000000 0 0.000000 -1.000000 0 -9999.000000 -1 120 -1 -1.000000\r\n"
            "T  41.500000\xC2\xBAN 2.250000\xC2\xBA" "E 27-MAR-62 00:00:00 s -9999 0.000000 0.000000 "
            "0.000000 0 0.000000 273.150000 0 -9999.000000 8 120 -1 -1.000000\r\n");
  EXPECT_EQ(static_cast<size_t>(track.ZLinePosition()), bytes.find("0000000002"));
}

// The track's own fields but its time offset, which is compared in days.
auto Header(const TTrack& t) {
  std::string texts;
  for (const char letter : kTrackTextLetters) texts += t.Text(letter) + '\n';
  return std::tuple(t.Name(), t.Description(), texts, t.Colour(), t.Drawing(), t.EValues(), t.HasTimeOffset(),
                    t.MarkedPairs(), *t.Properties());
}

TEST(TrkFile, RoundTripsEveryField) {
  int configured = 0;
  TListaDatums datums(configured);
  if (!test::LoadBuiltInDatums(datums)) GTEST_SKIP() << "the build's data folder has no datum list";
  std::mt19937_64 random(17);
  for (int notation = 0; notation < 4; ++notation) {
    for (const int datum : {0, datums.Find("Pulkovo 1942")}) {
      ASSERT_GE(datum, 0);
      TNativeOptions options;
      options.datums = &datums;
      options.datum = datum;
      options.notation = notation;
      TTrack track = test::SampleTrack(random, 120);
      const std::string first = Written(track, options);
      TTrack back;
      std::string error;
      ASSERT_TRUE(ReadTrk(first, options, back, error)) << error;
      EXPECT_EQ(static_cast<size_t>(back.ZLinePosition()), first.find("z  ") + 3);
      ASSERT_NE(back.Properties(), nullptr);
      EXPECT_TRUE(Header(back) == Header(track));
      EXPECT_DOUBLE_EQ(back.TimeOffsetDays(), track.TimeOffsetDays());
      ASSERT_EQ(back.Count(), track.Count());
      const double tolerance = 0.1 / 3600 / 2 + 1e-12;
      for (size_t i = 0; i < track.Count(); ++i) {
        const TrkPnt& a = track.Point(i);
        const TrkPnt& b = back.Point(i);
        EXPECT_NEAR(b.lat, a.lat, tolerance);
        EXPECT_NEAR(b.lon, a.lon, tolerance);
        if (!a.time.IsNull()) {
          EXPECT_NEAR(a.time.SecondsTo(b.time), 0, 1e-4) << i;
        }
        EXPECT_EQ(test::KeptFields(back, i), test::KeptFields(track, i)) << i;
      }
      EXPECT_FALSE(back.Modified());
      EXPECT_EQ(Written(back, options), first) << "notation " << notation << " datum " << datum;
    }
  }
}

TEST(TrkFile, FilesReadPieceByPieceLikeTheirBytes) {
  // Several pieces of the file reader's buffer, labels and properties across
  // their joins, and a last line without its line end.
  std::mt19937_64 random(31);
  TTrack track = test::SampleTrack(random, 20000);
  TNativeOptions options = Utf8();
  std::string bytes = Written(track, options);
  ASSERT_GT(bytes.size(), 3u << 20) << "the reader takes files in pieces of 1 MiB";
  bytes.resize(bytes.size() - 2);
  const auto path = test::ScratchDir("trk-pieces") / "pieces.trk";
  std::string error;
  ASSERT_TRUE(WriteFileAtomic(path.string(), bytes, error));
  TTrack fromBytes, fromFile;
  ASSERT_TRUE(ReadTrk(bytes, options, fromBytes, error)) << error;
  TProgress progress;
  options.progress = &progress;
  ASSERT_TRUE(ReadTrkFile(path.string(), options, fromFile, error)) << error;
  EXPECT_EQ(progress.Total(), static_cast<int64_t>(track.Count())) << "one step per point, as the writer counts";
  EXPECT_EQ(progress.Steps(), static_cast<int64_t>(track.Count()));
  EXPECT_EQ(fromFile.ZLinePosition(), fromBytes.ZLinePosition());
  ASSERT_EQ(fromFile.Count(), track.Count());
  EXPECT_EQ(fromFile.PointLabelCount(), fromBytes.PointLabelCount());
  EXPECT_EQ(fromFile.PointPropertiesCount(), fromBytes.PointPropertiesCount());
  EXPECT_EQ(Written(fromFile, Utf8()), Written(fromBytes, Utf8()));
}

TEST(TrkFile, AppendsInPlace) {
  const auto dir = test::ScratchDir("trk-append");
  const std::string path = (dir / "TrackMovingMap-20240605.trk").string();
  TNativeOptions options = Utf8();
  options.notation = 1;
  std::mt19937_64 random(23);
  TTrack full = test::SampleTrack(random, 30);
  TTrack live = full;
  live.Vacia();
  std::string error;
  ASSERT_TRUE(WriteTrkFile(path, live, options, error)) << error;
  for (size_t i = 0; i < full.Count(); i += 7) {
    const size_t first = live.Count();
    for (size_t k = i; k < std::min(i + 7, full.Count()); ++k) {
      live.Anyade_Punt(full.Point(k));
      if (full.PointLabel(k)) live.SetPointLabel(k, *full.PointLabel(k));
      if (full.PointProperties(k)) live.EditPointProperties(k) = *full.PointProperties(k);
    }
    ASSERT_TRUE(AppendTrkPoints(path, live, first, options, error)) << error;
  }
  // The file now reads as the whole track, and differs from a fresh save of
  // it only in the point count of the "E" line, which appends leave alone.
  std::string appended = test::FileBytes(path);
  TTrack back;
  ASSERT_TRUE(ReadTrk(appended, options, back, error)) << error;
  EXPECT_EQ(back.Count(), full.Count());
  const std::string fresh = Written(live, options);
  const size_t e = appended.find("\r\nE ");
  appended.replace(appended.find("|0\r\n", e), 4, "|" + std::to_string(full.Count()) + "\r\n");
  EXPECT_EQ(appended, fresh);

  TTrack unsaved;
  EXPECT_FALSE(AppendTrkPoints(path, unsaved, 0, options, error));
  std::string damaged = test::FileBytes(path);
  damaged.replace(static_cast<size_t>(back.ZLinePosition()), 3, "xyz");
  ASSERT_TRUE(WriteFileAtomic(path, damaged, error));
  EXPECT_FALSE(AppendTrkPoints(path, back, back.Count(), options, error));
  EXPECT_EQ(error, "The track file has changed since it was written: " + path);
}

}  // namespace
}  // namespace velantis
