// The sentences of the GPS receiver, by hand.
#include <gtest/gtest.h>

#include "simulator/gps_sentences.h"

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

}  // namespace
}  // namespace tw::sim
