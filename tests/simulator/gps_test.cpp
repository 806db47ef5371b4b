// The GPS receiver: sentences by hand, checksums, the course over ground, pace.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "simulator/gps_sentences.h"
#include "simulator/virtual_gps.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

GpsMoment Moment() {
  return {.utc = {2026, 11, 16, 12, 34, 56, 780},
          .latitude_deg = -12.5,
          .longitude_deg = 7.999999,
          .course_deg = 84.4,
          .speed_kn = 10.0,
          .fix = true,
          .differential = true,
          .emptyFields = false,
          .laterFields = false};
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t begin = 0;
  for (size_t end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    lines.push_back(text.substr(begin, end - begin));
  }
  return lines;
}

bool ChecksumHolds(const std::string& line) {
  const size_t star = line.find('*');
  if (!line.starts_with('$') || star + 3 != line.size()) return false;
  int sum = 0;
  for (size_t i = 1; i < star; ++i) sum ^= line[i];
  return sum == std::stoi(line.substr(star + 1), nullptr, 16);
}

TEST(GpsSentences, ByHand) {
  GpsMoment moment = Moment();
  EXPECT_EQ(GgaSentence("GP", moment),
            "$GPGGA,123456.78,1230.0000,S,00759.9999,E,2,12,0.9,4.2,M,28.6,M,1.0,0120*5D\r\n");
  EXPECT_EQ(GsaSentence("GP", moment), "$GPGSA,A,3,02,05,07,12,13,15,18,20,21,25,29,30,1.6,0.9,1.3*3C\r\n");
  EXPECT_EQ(GsvSentence(2, moment),
            "$GPGSV,3,2,12,13,39,229,41,15,23,158,37,18,17,064,35,20,66,141,47*7C\r\n");
  EXPECT_EQ(RmcSentence("GN", moment),
            "$GNRMC,123456.78,A,1230.0000,S,00759.9999,E,10.0,84.4,161126,7.9,W,D*26\r\n");
  EXPECT_EQ(VtgSentence("GP", moment), "$GPVTG,84.4,T,92.3,M,10.0,N,18.5,K*43\r\n");
  EXPECT_EQ(GllSentence("GP", moment), "$GPGLL,1230.0000,S,00759.9999,E,123456.78,A,D*72\r\n");
  moment.latitude_deg = 12.9999999999;
  EXPECT_NE(GgaSentence("GP", moment).find(",1300.0000,N,"), std::string::npos)
      << "minutes never reach sixty";
}

TEST(GpsSentences, HabitsOfReceivers) {
  GpsMoment moment = Moment();
  moment.fix = false;
  EXPECT_EQ(GgaSentence("GP", moment), "$GPGGA,123456.78,,,,,0,00,99.9,,M,,M,,*57\r\n");
  EXPECT_EQ(RmcSentence("GP", moment), "$GPRMC,123456.78,V,,,,,,,161126,7.9,W,N*01\r\n");
  EXPECT_EQ(GsaSentence("GP", moment), "$GPGSA,A,1,,,,,,,,,,,,,99.9,99.9,99.9*09\r\n");
  moment = Moment();
  moment.differential = false;
  moment.emptyFields = true;
  moment.laterFields = true;
  EXPECT_EQ(GgaSentence("GP", moment),
            "$GPGGA,123456.78,1230.0000,S,00759.9999,E,1,08,0.9,4.2,M,,M,,*6B\r\n");
  EXPECT_EQ(RmcSentence("GP", moment),
            "$GPRMC,123456.78,A,1230.0000,S,00759.9999,E,10.0,84.4,161126,,,A,V*30\r\n");
  EXPECT_EQ(VtgSentence("GP", moment), "$GPVTG,84.4,T,,M,10.0,N,18.5,K,A*38\r\n");
}

TEST(VirtualGps, EverySentenceHasItsChecksumAndIsCounted) {
  for (const bool odd : {false, true}) {
    VirtualGps gps({.baud = 115'200,
                    .epochsPerSecond = 10,
                    .fixFrom_us = odd ? 3'000'000 : 0,
                    .differential = !odd,
                    .emptyFields = odd,
                    .laterFields = odd});
    const auto lines = Lines(FarEnd(gps).ReadUntil(10'095'000));
    const GpsCounts& counts = gps.Counts();
    EXPECT_EQ(lines.size(), counts.gga + counts.gsa + counts.gsv + counts.rmc + counts.vtg + counts.gll);
    EXPECT_EQ(counts.gga, 101u);
    EXPECT_EQ(counts.gsv, 9u);
    EXPECT_EQ(counts.leftOut, 0u);
    for (const auto& line : lines) {
      EXPECT_TRUE(ChecksumHolds(line)) << line;
      EXPECT_LE(line.size() + 2, 82u) << "the standard's longest sentence";
    }
  }
}

TEST(VirtualGps, EpochOfACombinedReceiver) {
  VirtualGps gps({.talker = GpsTalker::gn});
  const auto lines = Lines(FarEnd(gps).ReadUntil(1'200'000));
  EXPECT_TRUE(lines[0].starts_with("$GNGGA,221320.00,3506.0000,N,12903.0000,E,2,")) << lines[0];
  std::string heads;
  for (const auto& line : lines) heads += line.substr(1, 5) + " ";
  EXPECT_EQ(heads, "GNGGA GNGSA GPGSV GPGSV GPGSV GNRMC GNVTG GNGLL ");
}

TEST(VirtualGps, SailsItsCourseInEveryQuadrant) {
  const struct {
    double latitude, longitude, course, north_miles, east_miles;
  } rows[] = {
      {35.1, 129.05, 0.0, 10.0, 0.0},       {35.1, -70.0, 90.0, 0.0, 10.0},
      {-33.9, 18.4, 225.0, -7.071, -7.071}, {-54.8, -68.3, 330.0, 8.660, -5.0},
      {0.02, 0.03, 225.0, -7.071, -7.071},  {10.0, 179.99, 90.0, 0.0, 10.0},
  };
  for (const auto& row : rows) {
    VirtualGps gps({.latitude_deg = row.latitude,
                    .longitude_deg = row.longitude,
                    .course_deg = row.course,
                    .speed_kn = 20.0});
    (void)FarEnd(gps).ReadUntil(1'800'900'000);
    const SentEpoch& last = gps.Epochs().Entries().back();
    EXPECT_EQ(last.utc_centi, 170'000'180'000) << "half an hour after 22:13:20";
    const double north = (last.latitude_deg - row.latitude) * 60.0;
    const double turned = std::remainder(last.longitude_deg - row.longitude, 360.0);
    const double east = turned * 60.0 * std::cos(row.latitude * 3.14159265 / 180.0);
    EXPECT_LE(std::abs(last.longitude_deg), 180.0);
    EXPECT_NEAR(north, row.north_miles, 0.001) << row.course;
    EXPECT_NEAR(east, row.east_miles, 0.02) << row.course;
  }
}

TEST(VirtualGps, NeverFasterThanItsLine) {
  VirtualGps gps({.baud = 4'800, .epochsPerSecond = 10});
  const std::string text = FarEnd(gps).ReadUntil(10'000'000);
  EXPECT_LE(text.size(), 4'800u);
  EXPECT_GT(text.size(), 4'300u);
  EXPECT_GT(gps.Counts().leftOut, 60u) << "ten epochs a second do not fit";
  for (const auto& line : Lines(text)) EXPECT_TRUE(ChecksumHolds(line)) << line;
}

TEST(VirtualGps, OnceASecondFitsTheSlowestLine) {
  VirtualGps gps({});
  (void)FarEnd(gps).ReadUntil(60'000'000);
  EXPECT_EQ(gps.Counts().gga, 61u);
  EXPECT_EQ(gps.Counts().leftOut, 0u);
}

TEST(VirtualGps, HangUpCutsTheStreamAtItsMoment) {
  VirtualGps gps({.faults = {.instrument = {.hangUpAt_us = 500'000}}});
  const std::string text = FarEnd(gps).ReadUntil(20'000'000);
  EXPECT_NEAR(static_cast<double>(text.size()), 240.0, 1.0) << "half a second of the line";
}

TEST(VirtualGps, EachHowManiethChecksumIsWrong) {
  VirtualGps gps({.faults = {.badChecksumEvery = 3}});
  const auto lines = Lines(FarEnd(gps).ReadUntil(3'000'000));
  ASSERT_EQ(lines.size(), 16u);
  for (size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(ChecksumHolds(lines[i]), i % 3 != 2) << lines[i];
}

}  // namespace
}  // namespace tw::sim
