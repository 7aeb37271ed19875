#include "maps/map_projection.h"

#include <gtest/gtest.h>

namespace velantis {
namespace {

TEST(MapProjection, ValuesReadInEitherFormAndWriteInTheFullOne) {
  struct TCase {
    const char* value;
    const char* written;  // nullptr: refused
  };
  const TCase cases[] = {
      {"1,Lat/Long,", "1,Lat/Long,"},
      {"1,Lat/Long", "1,Lat/Long,"},
      {"0,UTM,", "0,UTM,"},
      {"0,UTM,31T,", "0,UTM,31T,"},
      {"0,UTM,05M,", "0,UTM,05M,"},
      {"-1,Transversal Mercator,39,0,0,7500000,1,", "-1,Transversal Mercator,39,0,0,7500000,1,"},
      {"-1,Transveral Mercator,39,0,0,7500000,1,", "-1,Transversal Mercator,39,0,0,7500000,1,"},
      {"-1,Transversal Mercator", "-1,Transversal Mercator,0,0,0,0,1,"},
      // The name form: a name of project.dat, or a catalogue name whose code
      // does not match.
      {"2,British National Grid", "-1,British National Grid,"},
      {"5,UTM,,", "0,UTM,"},
      // A zone without its band letter would not write back as it read; a
      // full form that does not read is not a name.
      {"0,UTM,31 ,X", nullptr},
      {"7,Transversal Mercator,39,0,0,7500000,1,", nullptr},
      {"Lat/Long", nullptr},
      {"", nullptr},
  };
  for (const TCase& c : cases) {
    TMapProjection projection;
    std::string error;
    const bool read = ParseMapProjection(c.value, projection, error);
    EXPECT_EQ(read, c.written != nullptr) << c.value;
    if (!read) {
      EXPECT_EQ(error, std::string("Unknown projection: ") + c.value);
      continue;
    }
    const std::string written = FormatMapProjection(projection);
    EXPECT_EQ(written, c.written) << c.value;
    TMapProjection again;
    ASSERT_TRUE(ParseMapProjection(written, again, error)) << written;
    EXPECT_EQ(again, projection) << written;
  }
}

}  // namespace
}  // namespace velantis
