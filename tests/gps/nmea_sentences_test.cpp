#include <array>

#include "tests/gps/parser_fixture.h"

namespace tw {
namespace {

constexpr char kGga[] = "GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";

class NmeaSentences : public ParserTest {
 protected:
  void ExpectGga(std::array<double, 9> expected) const {
    EXPECT_EQ((std::array{fix_.latitude, fix_.longitude, double(fix_.quality), double(fix_.satellitesInUse),
                          fix_.hdop, fix_.elevation_m, fix_.geoidHeight_m, fix_.differentialAge_s,
                          double(fix_.differentialStation)}),
              expected);
  }
  // Years since 1900, months from 0, and the digits behind the seconds as they stand.
  void ExpectTime(std::array<int32_t, 7> expected) const {
    const auto& [year, month, day, hour, minute, second, hundredth] = fix_.utc;
    EXPECT_EQ((std::array{year, month, day, hour, minute, second, hundredth}), expected);
  }
};

TEST_F(NmeaSentences, GgaFillsPositionAndQuality) {
  EXPECT_EQ(Take("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n"), 1);
  ExpectTime({0, 0, 0, 12, 35, 19, 0});
  ExpectGga({4807.038, 1131.0, 1, 8, 0.9, 545.4, 46.9, 0, 0});
  EXPECT_EQ(fix_.presence, kHasGga);
  EXPECT_EQ(Take(Sentence("GPGGA,123520,3351.1234,S,05812.4321,W,2,08,0.9,-5.4,M,-46.9,M,3.5,0120")), 1);
  ExpectGga({-3351.1234, -5812.4321, 2, 8, 0.9, -5.4, -46.9, 3.5, 120});
}

TEST_F(NmeaSentences, RmcFillsSpeedAndDate) {
  EXPECT_EQ(Take("$GPRMC,225446.5,A,3351.1234,S,05812.4321,W,5.5,270.0,191194,020.3,E,D*02\r\n"), 1);
  ExpectTime({94, 10, 19, 22, 54, 46, 5});
  EXPECT_EQ((std::array{fix_.latitude, fix_.longitude, fix_.direction_deg, fix_.declination_deg}),
            (std::array{-3351.1234, -5812.4321, 270.0, 20.3}));
  EXPECT_NEAR(fix_.speed_kmh, 10.186, 1e-9);
  EXPECT_EQ(fix_.modeCode, 1);
  EXPECT_EQ(fix_.presence, kHasRmc);
  EXPECT_EQ(Take(Sentence("GPRMC,225447,A,3351.1234,S,05812.4321,W,5.5,270.0,191194,003.1,W")), 1);
  EXPECT_EQ(fix_.declination_deg, -3.1);
}

TEST_F(NmeaSentences, DilutionSatellitesAndCourse) {
  EXPECT_EQ(Take("$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n"
                 "$GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75\r\n"
                 "$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*48\r\n"),
            3);
  EXPECT_EQ(fix_.fixType, 3);
  EXPECT_EQ((std::array{fix_.pdop, fix_.hdop, fix_.vdop}), (std::array{2.5, 1.3, 2.1}));
  EXPECT_EQ(fix_.satellitesInView, 8);
  const auto& [id, elevation_deg, azimuth_deg, signal_db] = fix_.satellites[2];
  EXPECT_EQ((std::array{id, elevation_deg, azimuth_deg, signal_db}), (std::array{12, 7, 344, 39}));
  EXPECT_EQ((std::array{fix_.direction_deg, fix_.speed_kmh}), (std::array{54.7, 10.2}));
}

TEST_F(NmeaSentences, NewerReceiversSendMoreFieldsAndTheOtherTalker) {
  EXPECT_EQ(Take("$GNRMC,083559.00,A,4717.11437,N,00833.91522,E,0.004,77.52,091202,,,A,V*33\r\n"
                 "$GNGGA,092725.00,4717.11399,N,00833.91590,E,1,08,1.01,499.6,M,48.0,M,,*45\r\n"
                 "$GPGSA,A,3,23,29,07,08,09,18,26,28,,,,,1.94,1.18,1.54,1*10\r\n"
                 "$GPVTG,77.52,T,,M,0.004,N,0.008,K,A*06\r\n"),
            4);
  ExpectTime({102, 11, 9, 9, 27, 25, 0});
  EXPECT_EQ(fix_.modeCode, 0);
  EXPECT_EQ((std::array{fix_.latitude, fix_.longitude, fix_.vdop, fix_.speed_kmh}),
            (std::array{4717.11399, 833.9159, 1.54, 0.008}));
  // Ten satellites: the third sentence holds two, and a signal number behind them.
  EXPECT_EQ(Take("$GPGSV,3,3,10,26,82,187,47,28,43,056,46,1*6A\r\n"), 1);
  EXPECT_EQ(fix_.satellites[9].id, 28);
  EXPECT_EQ(fix_.satellites[10].id, 0);
}

TEST_F(NmeaSentences, AReceiverThatHasJustBeenSwitchedOn) {
  fix_.quality = 1;
  EXPECT_EQ(Take("$GPRMC,,V,,,,,,,,,,N*53\r\n$GPGGA,,,,,,0,00,99.99,,,,,,*48\r\n$GPVTG,,,,,,,,,N*30\r\n"), 0);
  EXPECT_EQ(errors_,
            (std::vector<std::string>{"Parse of time error (format error)!", "GPRMC time parse error!",
                                      "Parse of time error (format error)!", "GPGGA time parse error!",
                                      "GPVTG parse error (format error)!"}));
  EXPECT_EQ(Take("$GPGSA,A,1,,,,,,,,,,,,,99.99,99.99,99.99*30\r\n$GPGSV,1,1,00*79\r\n"), 2);
  EXPECT_EQ(fix_.fixType, 1);
  EXPECT_EQ(fix_.satellitesInView, 0);
  EXPECT_EQ(fix_.quality, 1);
}

TEST_F(NmeaSentences, AReceiverThatKnowsTheTimeOnly) {
  fix_.latitude = 4807.038;
  fix_.quality = 1;
  EXPECT_EQ(Take("$GPRMC,230000.00,V,,,,,,,230394,,,N*73\r\n"
                 "$GPGGA,230000.00,,,,,0,00,99.99,,M,,M,,*67\r\n"),
            2);
  EXPECT_EQ(fix_.utc.day, 23);
  EXPECT_EQ(fix_.utc.hour, 23);
  EXPECT_EQ(fix_.quality, 0);
  EXPECT_EQ(fix_.latitude, 0);
  EXPECT_EQ(fix_.modeCode, 4);
}

TEST_F(NmeaSentences, DatesOfBothCenturiesAndNone) {
  const struct {
    const char* date;
    int32_t year, month, day;
  } rows[] = {
      {"010190", 90, 0, 1},  {"311299", 99, 11, 31}, {"010189", 189, 0, 1},
      {"010100", 100, 0, 1}, {"", 125, 6, 4},  // what it was
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.date);
    fix_.utc = {.year = 125, .month = 6, .day = 4, .hour = 0, .minute = 0, .second = 0, .hundredth = 0};
    EXPECT_EQ(Take(Sentence("GPRMC,112233,A,0,N,0,E,0,0," + std::string(row.date) + ",0,E")), 1);
    ExpectTime({row.year, row.month, row.day, 11, 22, 33, 0});
  }
}

TEST_F(NmeaSentences, ModeLetters) {
  const std::pair<const char*, int32_t> rows[] = {{"A", 0}, {"D", 1}, {"E", 2}, {"M", 3},
                                                  {"N", 4}, {"R", 4}, {"", 4}};
  for (const auto& [letter, code] : rows) {
    EXPECT_EQ(Take(Sentence("GNRMC,000000,A,9000,N,18000,W,0,0,010120,0,E," + std::string(letter))), 1);
    EXPECT_EQ(fix_.modeCode, code) << letter;
  }
}

TEST_F(NmeaSentences, TimeFields) {
  using Errors = std::vector<std::string>;
  const auto take = [this](const char* time) {
    errors_.clear();
    fix_.utc.hundredth = -1;
    return Take(Sentence(std::string(kGga).replace(6, 6, time)));
  };
  for (const auto& [time, hundredth] :
       {std::pair{"123519", 0}, {"123519.5", 5}, {"123519.25", 25}, {"123519.125", 125}, {"235960", 0}}) {
    EXPECT_EQ(take(time), 1) << time;
    EXPECT_EQ(fix_.utc.hundredth, hundredth) << time;
    EXPECT_EQ(errors_, Errors{}) << time;
  }
  for (const char* time : {"", "1235", "12351", "1235190", "123519.1234"}) {
    EXPECT_EQ(take(time), 0) << time;
    EXPECT_EQ(fix_.utc.hundredth, -1) << time;
    EXPECT_EQ(errors_, (Errors{"Parse of time error (format error)!", "GPGGA time parse error!"})) << time;
  }
  for (const char* time :
       {"1235x9", "123519:5", "123519.x", "240000", "236000", "235961", "-10000", "123519.-5"}) {
    EXPECT_EQ(take(time), 0) << time;
    EXPECT_EQ(fix_.utc.hundredth, -1) << time;
    EXPECT_EQ(errors_, Errors{"GPGGA time parse error!"}) << time;
  }
}

// Each of these has a right checksum, changes nothing and says why.
TEST_F(NmeaSentences, RefusedOnes) {
  const std::pair<const char*, const char*> rows[] = {
      {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,", "GPGGA parse error!"},  // 13 fields
      {"GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M", "GNGGA parse error!"},
      {"GPGGA,123519,9000.1,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,4807.038,N,18000.1,E,1,08,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,-4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,4807.038,N,01131.000,E,-1,08,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,4807.038,N,01131.000,E,1,100,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,4807.038,N,01131.000,E,1,08,1e30,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,nan,M,46.9,M,,", "GPGGA parse error!"},
      {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,10000", "GPGGA parse error!"},
      {"GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3", "GPGSA parse error!"},
      {"GPGSA,A,4,04,05,,09,12,,,24,,,,,2.5,1.3,2.1", "GPGSA parse error!"},
      {"GPGSV,2,1", "GPGSV parse error!"},
      {"GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228", "GPGSV parse error!"},
      {"GPGSV,2,0,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45", "GPGSV parse error!"},
      {"GPGSV,2,3,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45", "GPGSV parse error!"},
      {"GPGSV,99,99,99,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45", "GPGSV parse error!"},
      {"GPGSV,1,1,-1", "GPGSV parse error!"},
      {"GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1", "GPRMC parse error!"},
      {"GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,231394,003.1,W", "GPRMC parse error!"},
      {"GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230094,003.1,W", "GPRMC parse error!"},
      {"GPGGA,123519,1e38,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
      {"GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,320394,003.1,W", "GPRMC parse error!"},
      {"GNRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,2303,003.1,W", "GNRMC parse error!"},
      {"GNRMC,1235,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W", "GNRMC time parse error!"},
      {"GPVTG,054.7,T,034.4,M,005.5,N,010.2", "GPVTG parse error!"},
      {"GPVTG,054.7,T,034.4,M,005.5,K,010.2,N", "GPVTG parse error (format error)!"},
      {"GPGLL,4916.45,N,12311.12,W,225444,A,", "GPGLL parse error!"},
      {"GPGLL,4916.45,N,12311.12,W,225444,A,A", "GPGLL parse error!"},
      {"GNGLL,4717.11364,N,00833.91565,E,092321.00,A,A", "GNGLL parse error!"},
      {"GPGGAX,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", "GPGGA parse error!"},
  };
  for (const auto& [body, error] : rows) {
    errors_.clear();
    EXPECT_EQ(Take(Sentence(body)), 0) << body;
    ASSERT_FALSE(errors_.empty()) << body;
    EXPECT_EQ(errors_.back(), error) << body;
    EXPECT_EQ(fix_.presence, 0u) << body;
  }
}

TEST_F(NmeaSentences, OtherSentencesAreSkippedInSilence) {
  for (const char* body : {"GNGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1", "GLGSV,1,1,00", "GPZDA,1,2,3", "GP",
                           "", "gpgga,123519"})
    EXPECT_EQ(Take(Sentence(body)), 0) << body;
  EXPECT_TRUE(errors_.empty());
  EXPECT_EQ(fix_.presence, 0u);
}

TEST_F(NmeaSentences, OnlyGnrmcSetsTheTalkerFlag) {
  const std::pair<const char*, bool> rows[] = {
      {"GNGGA,000000,0,N,0,E,1,0,0,0,M,0,M,,", false},
      {"GNRMC,000000,A,0,N,0,E,0,0,010120,0,E", true},
      {"GNGLL,0,N,0,E,000000,A,A", true},  // never reaches the fix
      {"GPRMC,000000,A,0,N,0,E,0,0,010120", true},
      {"GNGGA,000000,0,N,0,E,1,0,0,0,M,0,M,,", false},
      {"GNRMC,000000,A,0,N,0,E,0,0,010120,0,E", true},
      {"GPGSV,1,1,00", false},
  };
  for (const auto& [body, flag] : rows) {
    Take(Sentence(body));
    EXPECT_EQ(parser_.talkerGn, flag) << body;
  }
}

}  // namespace
}  // namespace tw
