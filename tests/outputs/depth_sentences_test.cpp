#include "outputs/depth_sentences.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "base/text_format.h"
#include "outputs/depth_message.h"
#include "outputs/fix_watch.h"
#include "outputs/send_rate.h"
#include "tests/outputs/output_ping.h"

namespace tw {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kHuge = std::numeric_limits<float>::max();

struct Sent {
  PingFacts ping = OutputPing();
  OutputOptions options;

  // The sentences without their CR LF.
  [[nodiscard]] std::string Text(uint32_t sentences, bool freshFix = true) {
    options.sentences = sentences;
    const DepthMessage message = BuildMessage(ping, options, freshFix);
    std::string text;
    for (size_t i = 0; i < message.count; ++i) {
      EXPECT_LE(message.Sentence(i).size(), 82u);
      EXPECT_TRUE(message.Sentence(i).ends_with("\r\n"));
      text += message.Sentence(i).substr(0, message.Sentence(i).size() - 2);
    }
    EXPECT_EQ(message.Size(), text.size() + 2 * message.count);
    return text;
  }
};

// Checksums and conversions come from another program.
TEST(Sentences, AreThoseOfTheStandardOrNone) {
  const struct {
    const char* what;
    uint32_t sentence;
    void (*change)(Sent& sent);
    const char* text;
  } rows[] = {
      {"depth", kDbt, [](Sent&) {}, "$SDDBT,41.34,f,12.60,M,6.89,F*36"},
      {"the least", kDbt, [](Sent& s) { s.ping.altitude_m = 0.0051f; }, "$SDDBT,0.02,f,0.01,M,0.00,F*35"},
      {"no bottom when printed", kDbt, [](Sent& s) { s.ping.altitude_m = 0.005f; }, ""},
      {"the most", kDbt, [](Sent& s) { s.ping.altitude_m = 12'000.0f; },
       "$SDDBT,39370.08,f,12000.00,M,6561.68,F*09"},
      {"from the water line", kDpt, [](Sent& s) { s.options.transducerOffset_m = 0.5f; },
       "$SDDPT,12.60,0.50,50.0*50"},
      {"no minus zero", kDpt, [](Sent& s) { s.options.transducerOffset_m = -0.004f; },
       "$SDDPT,12.60,0.00,50.0*55"},
      {"from the keel, no range", kDpt,
       [](Sent& s) { s.options.transducerOffset_m = -1.25f, s.ping.range_m = kNan; },
       "$SDDPT,12.60,-1.25,*65"},
      {"cold water", kMtw, [](Sent& s) { s.ping.temperature_c = -1.94f; }, "$SDMTW,-1.9,C*11"},
      {"no minus zero", kMtw, [](Sent& s) { s.ping.temperature_c = -0.01f; }, "$SDMTW,0.0,C*34"},
      {"attitude", kXdr, [](Sent&) {}, "$SDXDR,A,2.10,D,PTCH,A,-1.20,D,ROLL*66"},
      {"upside down", kXdr, [](Sent& s) { s.ping.pitch_deg = -0.001f, s.ping.roll_deg = 180.0f; },
       "$SDXDR,A,0.00,D,PTCH,A,180.00,D,ROLL*42"},
      {"differential", kGga, [](Sent&) {},
       "$GPGGA,235904.25,4807.0380,N,01131.0000,E,2,08,0.9,545.4,M,46.9,M,3.5,0120*42"},
      {"no correction", kGga, [](Sent& s) { s.ping.fix.quality = 1; },
       "$GPGGA,235904.25,4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,*6A"},
      {"talker GN", kGga,
       [](Sent& s) { s.ping.talkerGn = true, s.ping.fix.quality = 4, s.ping.fix.differentialAge_s = 0; },
       "$GNGGA,235904.25,4807.038000,N,01131.000000,E,4,08,0.9,545.4,M,46.9,M,,*71"},
      {"degrees are padded, minutes carry", kGga,
       [](Sent& s) {
         s.ping.fix.quality = 1, s.ping.fix.latitude = -559.99996, s.ping.fix.longitude = -3.25;
       },
       "$GPGGA,235904.25,0600.0000,S,00003.2500,W,1,08,0.9,545.4,M,46.9,M,,*65"},
      {"the longest has fewer decimals", kGga,
       [](Sent& s) {
         s.ping.talkerGn = true;
         s.ping.fix = {kHasGga,    s.ping.fix.utc, 5,     0,   0, 99.9, 0,  8959.9999,
                       17959.9999, -9999.0,        0,     0,   0, 0,    24, 0,
                       {},         -999.0,         999.9, 4095};
       },
       "$GNGGA,235904.25,9000.00,N,18000.00,E,5,24,99.9,-9999.0,M,-999.0,M,999.9,4095*68"},
      {"moving", kRmc, [](Sent&) {},
       "$GPRMC,235904.25,A,4807.0380,N,01131.0000,E,22.4,84.4,170625,3.1,W,A*22"},
      {"figures that cannot be", kRmc,
       [](Sent& s) {
         s.ping.fix.quality = 1, s.ping.fix.speed_kmh = kNan, s.ping.fix.direction_deg = 359.96;
         s.ping.fix.declination_deg = 1e300, s.ping.fix.modeCode = 4;
       },
       "$GPRMC,235904.25,A,4807.0380,N,01131.0000,E,,0.0,170625,,,A*7B"},
      {"no quality", kGga | kRmc, [](Sent& s) { s.ping.fix.quality = 0; }, ""},
      {"an unknown quality", kGga | kRmc, [](Sent& s) { s.ping.fix.quality = 99; }, ""},
      {"a quality that no GGA told", kGga | kRmc, [](Sent& s) { s.ping.fix.presence = kHasRmc; }, ""},
      {"no RMC came", kRmc, [](Sent& s) { s.ping.fix.presence = kHasGga; }, ""},
      {"61 minutes", kGga | kRmc, [](Sent& s) { s.ping.fix.latitude = 4861.0; }, ""},
      {"beyond the pole", kGga | kRmc, [](Sent& s) { s.ping.fix.latitude = 9000.1; }, ""},
      {"nowhere", kGga | kRmc, [](Sent& s) { s.ping.fix.longitude = kNan; }, ""},
      {"milliseconds", kGga | kRmc, [](Sent& s) { s.ping.fix.utc.hundredth = 250; }, ""},
      {"no date", kRmc, [](Sent& s) { s.ping.fix.utc.month = 12; }, ""},
  };
  for (const auto& row : rows) {
    Sent sent;
    row.change(sent);
    EXPECT_EQ(sent.Text(row.sentence), row.text) << row.what;
  }
}

TEST(Sentences, ComeInTheOrderOfTheStandardWithoutWhatThePingHasNot) {
  constexpr char kAttitude[] = "$SDXDR,A,2.10,D,PTCH,A,-1.20,D,ROLL*66";
  const std::string depth = "$SDDBT,41.34,f,12.60,M,6.89,F*36$SDDPT,12.60,0.00,50.0*55";
  EXPECT_EQ(Sent().Text(kAllSentences, false), depth + "$SDMTW,18.2,C*0F" + kAttitude);
  const std::string all = Sent().Text(kAllSentences);
  EXPECT_LT(all.find("GPGGA"), all.find("GPRMC"));
  EXPECT_LT(all.find("GPRMC"), all.find("SDDBT"));
  for (const float none : {kNan, kInf, -kInf, kHuge, -kHuge, 450.0f}) {
    Sent sent;
    sent.ping.temperature_c = sent.ping.roll_deg = none;
    EXPECT_EQ(sent.Text(kAllSentences, false), depth);
    if (none == 450.0f) continue;
    sent.ping.altitude_m = none;
    EXPECT_EQ(sent.Text(kAllSentences), "");
  }
}

TEST(SendRate, ThinsEvenlyAndLetsThroughWhatComesAtJustThisRate) {
  for (const int32_t rate : {1, 3, 10, 50}) {
    SendRate fast(rate);
    SendRate exact(rate);
    int32_t sent = 0;
    const auto start = static_cast<uint32_t>(-5'000);  // the clock wraps meanwhile
    for (uint32_t at = 0; at < 10'000; at += 7) sent += fast.Takes(start + at) ? 1 : 0;
    EXPECT_NEAR(sent, 10 * rate, 1) << rate;
    const auto period_ms = 1'000.0 / rate;
    for (int i = 1; i <= 10 * rate; ++i) {
      EXPECT_TRUE(exact.Takes(start + static_cast<uint32_t>(period_ms * (i % 2 == 0 ? i : i + 0.4)))) << i;
    }
  }
}

TEST(FixWatch, AFixThatIsNotKeptUpIsSoonNone) {
  FixWatch watch;
  const struct {
    uint32_t clock_ms, updates;
    bool fresh;
  } rows[] = {{0, 7, false},     {100, 7, false},  {200, 8, true},    {5'200, 8, true},
              {5'201, 8, false}, {9'000, 9, true}, {20'000, 9, false}};
  for (const auto& row : rows) {
    PingFacts ping{};
    ping.clock_ms = row.clock_ms;
    ping.fixUpdates = row.updates;
    EXPECT_EQ(watch.IsFresh(ping), row.fresh) << row.clock_ms;
  }
}

TEST(OutputOptions, WhatMayNotBeUsedStartsAnew) {
  EXPECT_TRUE(IsBounded({}));
  void (*const changes[])(OutputOptions&) = {
      [](OutputOptions& o) { o.sentences = 64; },
      [](OutputOptions& o) { o.pingsPerSecond = 0; },
      [](OutputOptions& o) { o.transducerOffset_m = kNan; },
      [](OutputOptions& o) { o.speed = 0; },
      [](OutputOptions& o) { o.udpPort = 65'536; },
      [](OutputOptions& o) { o.tcpPort = 0; },
      [](OutputOptions& o) { std::fill(std::begin(o.line), std::end(o.line), L'x'); },
      [](OutputOptions& o) { CopyWide(o.udpAddress, L"boat.local"); },
      [](OutputOptions& o) { std::fill(std::begin(o.tcpAddress), std::end(o.tcpAddress), L'1'); },
  };
  for (const auto& change : changes) {
    OutputOptions options;
    options.udp = true;
    change(options);
    EXPECT_FALSE(IsBounded(options)) << &change - changes;
    EXPECT_TRUE(IsBounded(Bound(options)) && Bound(options).udp) << &change - changes;
  }
  uint32_t ip = 7;
  for (const wchar_t* const text :
       {L"", L"1.2.3", L"1.2.3.256", L"1.2.3.4.", L"1..3.4", L"0001.2.3.4", L" 1.2.3.4"}) {
    EXPECT_FALSE(ParseAddress(text, ip));
  }
  EXPECT_EQ(ip, 7u);
  EXPECT_TRUE(ParseAddress(L"192.168.1.255", ip));
  EXPECT_EQ(ip, 0xC0A8'01FFu);
}

}  // namespace
}  // namespace tw
