#include "playback/detection.h"

#include <gtest/gtest.h>

#include <string>

#include "acquisition/altimeter_lines.h"
#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/nmea_depth.h"
#include "tests/playback/info_text.h"

namespace tw {
namespace {

std::optional<Detected> Detect(std::string_view start) {
  return DetectRecording({reinterpret_cast<const uint8_t*>(start.data()), start.size()});
}

TEST(Detection, InfoLineDecides) {
  // The table of modes tells what is recorded in each; one that the family does not have is taken for NMEA.
  const struct {
    int family;
    int mode;
    const StreamForm& form;
    int32_t toldMode;
  } rows[] = {{1, 1, kReportingStream, 1},  {1, 4, kFirstTextStream, 4},
              {1, 101, kFrameStream, 102},  {1, 102, kFrameStream, 102},
              {1, 5, kFirstNmeaStream, 3},  {1, -2147483647, kFirstNmeaStream, 3},
              {2, 3, kSecondNmeaStream, 3}, {2, 6, kSecondTextStream, 6},
              {0, 2, kSecondTextStream, 2}, {0, 101, kFrameStream, 102}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << "family " << row.family << ", mode " << row.mode);
    // What follows the line would tell something else.
    const auto told = Detect(test::InfoText(row.family, row.mode, "1490.5") + "Alt : 1.0\r\nTR57");
    ASSERT_TRUE(told);
    EXPECT_EQ(told->form, &row.form);
    EXPECT_EQ(told->family, DeviceFamily{row.family});
    EXPECT_EQ(told->outputMode, row.toldMode);
    EXPECT_EQ(told->channels, 1);
    ASSERT_TRUE(told->info);
    EXPECT_FLOAT_EQ(told->info->soundSpeed_mps, 1490.5f);
  }
  EXPECT_EQ(Detect(test::InfoText(1, 6) + test::InfoText(1, 6))->channels, 2) << "two lines, two channels";
}

TEST(Detection, MarksOfOlderRecordings) {
  const struct {
    const char* what;
    std::string start;
    const StreamForm& form;
    int32_t family;
    int32_t mode;
  } rows[] = {
      {"frames", "TR57", kFrameStream, 1, 102},
      {"frames behind zeros", std::string(100, '\0') + "TR57", kFrameStream, 1, 102},
      {"frames of one channel", "xxDUALxx", kDualFrameStream, 1, 102},
      {"device blocks", "TIDEWRITEC" + std::string(4, '\0'), kBlockStream, 1, 102},
      {"device text", "\r\n#DeviceID KT\r\n", kFirstTextStream, 1, 4},
      {"DESO", "DA0012.34 m*\r\n", kDesoStream, 1, 6},
      {"first NMEA", "$SDDBT,1,f,2,M,3,F*00\r\n", kFirstNmeaStream, 1, 3},
      {"first NMEA, date", "$SDZDA,120000.00,01,02,2026*00\r\n", kFirstNmeaStream, 1, 3},
      {"second NMEA", "$GPDBT,1,f*00\r\n", kSecondNmeaStream, 2, 3},
      {"second NMEA, date", "$PGZDA,120000*00\r\n", kSecondNmeaStream, 2, 3},
      {"simple", "Alt : 12.3\r\n", kReportingStream, 1, 1},
      {"dual", "Dual : 1, 2.0, 3.0, 4.0\r\n", kDualStream, 1, 7},
      {"DESO without its blank", "DA12*", kDesoStream, 1, 6},
      {"DESO, low channel alone", "DB12*", kDesoStream, 1, 6},
      {"older text, mode 6", "#---Parameters---\r\n#OutputMode    6\r\n", kSecondTextStream, 2, 6},
      {"older NMEA", "#---Parameters---\r\n#OutputMode    3\r\n", kSecondNmeaStream, 2, 3},
      {"kept: the mark of mode 1 also matches 10", "Parameters #OutputMode    10\r\n", kReportingStream, 2,
       1},
      {"older ones are in order", "Parameters #OutputMode    1 #OutputMode    4", kSecondTextStream, 2, 4},
      {"frames before text", "#DeviceID TR57", kFrameStream, 1, 102},
  };
  for (const auto& row : rows) {
    const auto told = Detect(row.start);
    ASSERT_TRUE(told) << row.what;
    EXPECT_EQ(told->form, &row.form) << row.what;
    EXPECT_EQ(told->family, DeviceFamily{row.family}) << row.what;
    EXPECT_EQ(told->outputMode, row.mode) << row.what;
    EXPECT_FALSE(told->info) << row.what;
  }
}

TEST(Detection, NothingThatIsKnown) {
  const std::string zeros(5'000, '\0');
  const std::string rows[] = {
      "",
      "x",
      zeros,
      "Parameters and no mode",
      "xTIDEWRITEC",                     // not at the very start
      std::string(2'046, 'x') + "TR57",  // beyond the first bytes
      "TR5" + zeros.substr(0, 1) + "7",
  };
  for (const std::string& start : rows) EXPECT_FALSE(Detect(start)) << start.substr(0, 20);
}

}  // namespace
}  // namespace tw
