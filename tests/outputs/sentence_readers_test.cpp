// What goes out, read by others: gpsdecode (Debian's gpsd-clients) and pynmea2 (python3-nmea2).
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "outputs/depth_message.h"
#include "tests/outputs/output_ping.h"

namespace tw {
namespace {

// What a program prints of some seconds of pings.
std::string ReadBy(const char* program) {
  constexpr char kPrinted[] = "sentence_readers_test.txt";
  FILE* const reader = popen((std::string(program) + " >" + kPrinted).c_str(), "w");
  OutputOptions options;
  options.sentences = kAllSentences;
  options.transducerOffset_m = -0.75f;
  PingFacts ping = OutputPing();
  for (ping.fix.utc.second = 0; ping.fix.utc.second < 4; ++ping.fix.utc.second) {
    const DepthMessage message = BuildMessage(ping, options, true);
    EXPECT_EQ(fwrite(message.text.data(), 1, message.Size(), reader), message.Size());
  }
  EXPECT_EQ(pclose(reader), 0);
  FILE* const printed = fopen(kPrinted, "r");
  std::string text;
  for (int c = 0; (c = fgetc(printed)) != EOF;) text += static_cast<char>(c);
  fclose(printed);
  EXPECT_EQ(remove(kPrinted), 0);
  return text;
}

TEST(SentencesReadByOthers, HavePlaceTimeAndDepthForBoth) {
  const std::string reports = ReadBy("gpsdecode");
  for (const char* const value : {"\"time\":\"2025-06-17T23:59:03.250Z\"", "\"lat\":48.117300000",
                                  "\"lon\":11.516666667", "\"altMSL\":545.4000", "\"depth\":12.600"}) {
    EXPECT_NE(reports.find(value), std::string::npos) << value << "\n" << reports;
  }
  EXPECT_EQ(ReadBy(R"(/usr/bin/python3 -B -c '
import sys, pynmea2
m = [pynmea2.parse(line, check=True) for line in sys.stdin.read().split()]
gga, rmc, dbt, dpt, mtw, xdr = m[-6:]
print("%.6f %.6f" % (gga.latitude, gga.longitude), gga.gps_qual, rmc.datetime, rmc.is_valid)
print(dbt.depth_meters, dbt.depth_feet, dbt.depth_fathoms, dpt.depth, dpt.offset, dpt.range)
print(mtw.temperature, mtw.units, [xdr.get_transducer(i).id + xdr.get_transducer(i).value for i in (0, 1)])
')"),
            "48.117300 11.516667 2 2025-06-17 23:59:03.250000 True\n"
            "12.60 41.34 6.89 12.60 -0.75 50.0\n"
            "18.2 C ['PTCH2.10', 'ROLL-1.20']\n");
}

}  // namespace
}  // namespace tw
