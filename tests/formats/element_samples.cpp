#include "tests/formats/element_samples.h"

#include <cmath>
#include <sstream>

#include "app/file_io.h"
#include "tests/support/testdata.h"

namespace velantis::test {

namespace {

double Uniform(std::mt19937_64& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

int Whole(std::mt19937_64& random, int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

// Whole seconds in 1970..2050, inside the two-digit-year window.
TDateTime SampleTime(std::mt19937_64& random) {
  return TDateTime::FromDays(std::round(Uniform(random, 25569, 54789) * kSecondsPerDay) / kSecondsPerDay);
}

std::string SampleText(std::mt19937_64& random, bool nonAscii) {
  static const char* const kWords[] = {"Coll", "de", "Pal", "font", "refugi", "x1", "cim"};
  static const char* const kAccented[] = {"Sant Joan d\xC3\xA8s", "Ma\xC3\xB1" "ana", "\xC3\xA0rea"};
  std::string text = kWords[Whole(random, 0, 6)];
  for (int i = Whole(random, 0, 3); i > 0; --i) text += std::string(" ") + kWords[Whole(random, 0, 6)];
  if (nonAscii) text += std::string(" ") + kAccented[Whole(random, 0, 2)];
  return text;
}

}  // namespace

TNativeOptions Utf8Options() {
  TNativeOptions options;
  options.codePage = "UTF-8";
  return options;
}

TBaliza SampleWaypoint(std::mt19937_64& random, const TBalizaDefaults& defaults, bool nonAscii) {
  TBaliza b(defaults);
  std::string name = std::string(nonAscii ? "Pic d'\xC3\x80" "neu " : "Pic ") + std::to_string(Whole(random, 10, 999));
  b.SetName(name);
  b.SetDescription(SampleText(random, nonAscii));
  b.SetPosition(Uniform(random, -80, 80), Uniform(random, -179, 179));
  b.SetAltitude(static_cast<float>(Whole(random, -400, 8000)) + 0.5f);
  b.SetTime(SampleTime(random));
  b.SetSymbol("Flag Blue");
  b.SetDisplayMode(Whole(random, 1, 7));
  b.SetDisplayScale(Whole(random, 1, 2000) * 0.5);
  b.SetLabelColour1(0x00FF00);
  b.SetLabelColour2(0x0000FF);
  b.SetDisplayFlag3(!defaults.displayFlag3);
  b.SetState(static_cast<uint8_t>(0x27 ^ 0x18));
  b.SetLink("photos/" + std::to_string(Whole(random, 1, 99)) + ".jpg");
  b.SetProximityRadius(Whole(random, 2, 900));
  b.SetSizeByte(static_cast<uint8_t>(Whole(random, 0, 254)));
  b.SetLabelFontStep(Whole(random, 1, 15));
  b.SetLabelPlacement(Whole(random, 1, 3));
  if (Whole(random, 0, 1)) b.SetLabel(TTextLabel{"label " + name, Whole(random, 0, 9), 1, 2, 3, 4, 0, {}});
  b.EditProperties().Set("owner", "club=" + std::to_string(Whole(random, 1, 9)) + " 100%");
  return b;
}

TWaypoints SampleWaypoints(std::mt19937_64& random, size_t count, const TBalizaDefaults& defaults) {
  TWaypoints list;
  list.SetDescription("sample list");
  list.EditProperties().Set("area", "Pyrenees");
  for (size_t i = 0; i < count; ++i) list.Add(SampleWaypoint(random, defaults, i % 3 == 0));
  return list;
}

TRuta SampleRoute(std::mt19937_64& random, size_t count, const TBalizaDefaults& defaults) {
  TRuta route;
  for (int k = 0; k < 3; ++k) route.SetDisplayAttribute(k, Whole(random, -5, 500));
  for (size_t i = 0; i < count; ++i) {
    std::vector<TShapePoint> shape;
    for (int k = Whole(random, 0, 3); k > 0; --k)
      shape.push_back({Uniform(random, -80, 80), Uniform(random, -179, 179), static_cast<double>(Whole(random, 0, 3000))});
    route.Add(SampleWaypoint(random, defaults, i % 2 == 0), std::move(shape));
  }
  return route;
}

TTrack SampleTrack(std::mt19937_64& random, size_t count) {
  TTrack track;
  track.SetName("Vall de N\xC3\xBAria");
  track.SetDescription("a day out");
  for (const char letter : std::string_view("PQIbdZRslijkgef"))
    track.SetText(letter, std::string("text ") + letter);
  track.SetText('M', "first line\r\nsecond line");
  track.SetColour({12, 200, 7});
  TTrackDrawing d;
  d.style = 2;
  d.width = 3.5;
  d.mode = 1;
  d.pattern = "dash dot";
  d.text = "drawn text";
  d.viewReals = {1.5, 2.25, 0.125, 100};
  d.viewIntegers = {1, -2, 3, 400};
  d.viewSmall = 3;
  track.SetDrawing(d);
  track.SetEValues({3, 7, SampleTime(random), SampleTime(random), 9});
  track.SetTimeOffset(true, 0.125);
  track.SetMarkedPairs({{1, 5}, {8, 13}});
  track.EditProperties().Set("activity", "hiking");
  TDateTime time = SampleTime(random);
  for (size_t i = 0; i < count; ++i) {
    TrkPnt p;
    p.lat = Uniform(random, -80, 80);
    p.lon = Uniform(random, -179, 179);
    p.time = i % 7 == 3 ? TDateTime() : time.PlusSeconds(static_cast<double>(i));
    p.altitude = static_cast<float>(Whole(random, -400, 8000)) + 0.25f;
    p.altitudeBarometric = static_cast<float>(Whole(random, -400, 8000)) + 0.75f;
    p.speedKmh = static_cast<float>(Whole(random, 0, 400)) * 0.5f;
    p.courseDeg = static_cast<float>(Whole(random, 0, 359));
    p.hdop = static_cast<float>(Whole(random, 5, 99)) * 0.125f;
    p.satellites = Whole(random, 0, 24);
    p.accuracyM = static_cast<float>(Whole(random, 1, 50));
    p.signedValue = static_cast<int8_t>(Whole(random, -128, 127));
    p.size = static_cast<uint8_t>(Whole(random, 0, 254));
    p.SetStartsSegment(i % 50 == 17);
    p.SetHeartRate(Whole(random, 40, 200));
    p.SetCadence(Whole(random, 0, 120));
    p.SetQuarterUnit(Whole(random, 0, 200) * 0.25);
    p.SetTemperatureK(273.15 + Whole(random, -20, 40));
    track.Anyade_Punt(p);
    if (i % 5 == 1) {
      TTextLabel label{"km " + std::to_string(i), static_cast<int>(i), 1, 2, 7, 0, 0.5, {}};
      if (i % 10 == 1) label.properties.Set("style", "bold");
      track.SetPointLabel(i, label);
    }
    if (i % 4 == 2) track.EditPointProperties(i).Set("note", "n" + std::to_string(i));
  }
  return track;
}

namespace {

void Put(std::ostream& out, const TPropertyList* properties) {
  for (size_t i = 0; properties && i < properties->Count(); ++i)
    out << '|' << properties->Item(i).first << '=' << properties->Item(i).second;
}

void Put(std::ostream& out, const TTextLabel* label) {
  if (label == nullptr) return;
  out << "|label " << label->text << ' ' << label->number << ' ' << label->small1 << ' ' << label->small2 << ' '
      << label->byteValue << ' ' << label->integer << ' ' << label->real;
  Put(out, &label->properties);
}

}  // namespace

std::string KeptFields(const TBaliza& b) {
  std::ostringstream out;
  out.precision(17);
  out << b.Name() << '|' << b.Description() << '|' << b.Altitude() << '|' << b.Time().Days() << '|' << +b.State()
      << '|' << +b.SizeByte() << '|' << +b.DisplayFlags() << '|' << b.LabelFontStep() << '|' << b.DisplayScaleRaw()
      << '|' << b.ProximityRadiusRaw() << '|' << b.LabelColour1Packed() << '|' << b.LabelColour2Packed() << '|'
      << b.Symbol() << '|' << b.Link();
  Put(out, b.Properties());
  Put(out, b.Label());
  return out.str();
}

std::string KeptFields(const TTrack& track, size_t i) {
  const TrkPnt& p = track.Point(i);
  std::ostringstream out;
  out.precision(9);
  out << p.altitude << '|' << p.altitudeBarometric << '|' << p.speedKmh << '|' << p.courseDeg << '|' << p.hdop << '|'
      << p.satellites << '|' << p.accuracyM << '|' << +p.flags << '|' << +p.signedValue << '|' << +p.size << '|'
      << +p.heartRateByte << '|' << +p.cadenceByte << '|' << +p.quarterUnitByte << '|' << +p.temperatureByte << '|'
      << (p.time.IsNull() ? -1 : std::llround(p.time.Days() * kSecondsPerDay));
  Put(out, track.PointProperties(i));
  Put(out, track.PointLabel(i));
  return out.str();
}

}  // namespace velantis::test
