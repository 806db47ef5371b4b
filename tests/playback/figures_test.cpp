// What echotool goes by: its command line, its figures of a recording, its clock, tides, sums and layouts.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/echotool/cdf.h"
#include "tools/echotool/console.h"
#include "tools/echotool/echogram_columns.h"
#include "tools/echotool/options.h"
#include "tools/echotool/ping_clock.h"
#include "tools/echotool/recording_figures.h"
#include "tools/echotool/report_series.h"
#include "tools/echotool/sha256.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/tide.h"

namespace tw::echotool {
namespace {

namespace fs = std::filesystem;

const fs::path kGolden = TW_TEST_DATA;

// What one ping adds to the figures, given the one before.
TEST(Figures, AreThoseOfTheSteps) {
  constexpr double kRadians = 3.14159265358979323846 / 180;
  static constexpr uint16_t kSamples[1] = {};
  const struct {
    const char* what;
    double longitude_deg;  // of three pings at the equator, from 179.9999 on
    int64_t times_ms[3];
    uint32_t numbers[3];
    double distance_m;
    uint64_t jumps, gaps, setBack, missing, restarts;
    bool echoes = true;
  } rows[] = {
      {"over 180 degrees", -179.9999, {1'000, 3'000, 5'000}, {1, 2, 3}, 22.2, 0, 0, 0, 0, 0},
      {"a gap and missing numbers", 179.9998, {1'000, 3'000, 5'001}, {1, 3, 6}, 11.1, 0, 1, 0, 3, 0},
      {"every second number, as of a dual run", 179.9998, {1, 2, 3}, {1, 3, 5}, 11.1, 0, 0, 0, 0, 0},
      {"numbers that the reader counts", 179.9998, {1, 2, 3}, {1, 3, 6}, 11.1, 0, 0, 0, 0, 0, false},
      {"a clock set back, numbers anew", 179.9998, {9'000, 5'000, 5'100}, {7, 1, 2}, 11.1, 0, 0, 1, 0, 1},
      {"a jump to the other side", 0.0, {1'000, 1'100, 1'200}, {1, 2, 3}, 0.0, 1, 0, 0, 0, 0},
      {"no times", 179.9998, {0, 0, 0}, {1, 2, 3}, 11.1, 0, 0, 0, 0, 0},
  };
  for (const auto& row : rows) {
    RecordingFigures figures;
    ThinTrack track;
    for (size_t i = 0; i < 3; ++i) {
      RecordedPing ping{};
      ping.hasPosition = ping.hasMilliseconds = true;
      ping.hasTime = row.times_ms[i] != 0;
      ping.time_ms = row.times_ms[i];
      ping.header.ping = row.numbers[i];
      if (row.echoes) ping.samples = kSamples;
      ping.longitude_rad = (i == 0 ? 179.9999 : row.longitude_deg) * kRadians;
      figures.Add(ping);
      track.Add(ping);
    }
    EXPECT_NEAR(figures.distance_m, row.distance_m, 0.1) << row.what;
    EXPECT_EQ(figures.jumps, row.jumps) << row.what;
    EXPECT_EQ(figures.gaps, row.gaps) << row.what;
    EXPECT_EQ(figures.setBack, row.setBack) << row.what;
    EXPECT_EQ(figures.missing, row.missing) << row.what;
    EXPECT_EQ(figures.restarts, row.restarts) << row.what;
    ASSERT_EQ(track.Points().size(), 2u) << row.what;
    EXPECT_EQ(track.Points()[1].begins, row.jumps != 0) << row.what;
    EXPECT_LT(std::abs(track.Points()[1].longitude_deg - 179.9999), 180.0001) << row.what;
  }
}

// A column of a chart is a ping of each channel, whatever is missing.
TEST(Figures, ChannelsThatTakeTurnsShareTheirColumns) {
  SeriesColumns columns;
  for (const int32_t channel : {0, 1, 0, 1, 1, 0, 1}) {
    RecordedPing ping{};
    ping.channel = channel;
    ping.header.altitude_m = 5.0f;
    columns.Add(ping);
  }
  std::string shown;
  for (const SeriesColumn& column : columns.Columns())
    shown += std::string(column.Of(Series::depth).any ? "h" : "-") +
             (column.Of(Series::depthLow).any ? "l " : "- ");
  EXPECT_EQ(shown, "hl hl hl -l ");
}

// A single-precision number, as binary recordings tell it, has no 180 degrees: the nearest lies above.
TEST(Figures, APingOnTheDateLineHasAPosition) {
  constexpr float kPi = 3.14159274f;
  for (const float longitude_rad : {kPi, -kPi}) {
    RecordedPing ping{};
    ping.hasPosition = true;
    ping.longitude_rad = static_cast<double>(longitude_rad);
    RecordingFigures figures;
    figures.Add(ping);
    EXPECT_EQ(figures.positions, 1u);
    EXPECT_EQ(figures.longitude_deg.low, longitude_rad > 0 ? 180.0 : -180.0);
  }
}

// 10,000 pings of 100 samples at 75 kHz are 2,500 columns of four, 1 m deep; one strong echo stays to be
// seen.
TEST(Echogram, AColumnIsTheStrongestOfItsPings) {
  EchogramColumns columns(4'000, 200, 1'500.0f);
  std::vector<uint16_t> samples(100, 0);
  RecordedPing ping{};
  ping.header.samplingFrequency_hz = 75'000;
  ping.factor = 4;
  for (int i = 0; i < 10'000; ++i) {
    samples[55] = i == 5'000 ? 1'000 : 0;
    ping.samples = samples;
    columns.Add(ping);
  }
  columns.End();
  EXPECT_EQ(columns.PingsOfColumn(), 4u);
  EXPECT_EQ(columns.Columns(), 2'500u);
  EXPECT_DOUBLE_EQ(columns.To_m(), 1.0);
  size_t y = 0;
  EXPECT_TRUE(columns.Draw(2'500, 100, [&](std::span<const uint8_t> row) {
    for (size_t x = 0; x < row.size(); ++x) {
      const bool strong = x == 1'250 && y == 55;
      EXPECT_EQ(row[x], strong ? 4'000 / 16 : 0) << x << ' ' << y;
    }
    ++y;
    return true;
  }));
  EXPECT_EQ(y, 100u);
}

// 16 pings at one place, of which 5 had stood there for more than 10 s, then a boat under way.
TEST(SummaryOfPositions, PingsAtAPositionThatStandsStillAreCounted) {
  RecordingFault fault{};
  const auto recording = OpenRecording((kGolden / "three_pings.log").wstring().c_str(), fault);
  ASSERT_NE(recording, nullptr);
  RecordedPing ping{};
  ping.hasPosition = ping.hasTime = true;
  ping.latitude_rad = 0.6;
  Summary standing;
  for (int second = 0; second < 30; ++second) {
    ping.time_ms = second * 1'000;
    if (second > 15) ping.latitude_rad += 1e-7;
    standing.Add(ping);
  }
  EXPECT_NE(standing.Text(*recording).find("5 pings with one that stood still for more than 10 s"),
            std::string::npos);
  Summary moving;
  for (int second = 0; second < 30; ++second) {
    ping.time_ms = second * 1'000;
    ping.latitude_rad = 0.6 + 1e-7 * (second / 10);
    moving.Add(ping);
  }
  EXPECT_EQ(moving.Text(*recording).find("stood still"), std::string::npos);
}

// The longest of a variable's parts and the number of records have 32 bits, and a single one has no padding.
TEST(Cdf, WhatTheFormatCanTell) {
  const CdfVariable number{"number", CdfType::float64, {0}, {}};
  const CdfVariable echo{"echo", CdfType::int32, {0, 1}, {}};
  const CdfVariable shorts{"shorts", CdfType::int16, {0, 1}, {}};
  const struct {
    uint64_t records;
    uint64_t length;
    std::vector<CdfVariable> variables;
    uint64_t recordSize;  // 0: refused
  } rows[] = {
      {1, 3, {number, shorts}, 16},
      {1, 3, {shorts}, 6},
      {2'147'483'647, 3, {shorts}, 6},
      {2'147'483'648, 3, {shorts}, 0},
      {1, 1'073'741'823, {echo}, 4'294'967'292},
      {1, 1'073'741'824, {echo}, 0},
      {1, 2'147'483'649, {shorts}, 0},
  };
  for (const auto& row : rows) {
    CdfLayout layout;
    std::string error;
    const CdfContents contents{row.records, {{"ping", 0}, {"sample", row.length}}, {}, row.variables};
    EXPECT_EQ(LayOutCdf(contents, layout, error), row.recordSize != 0) << row.length;
    EXPECT_EQ(error.empty() ? layout.recordSize : 0, row.recordSize) << row.length;
  }
}

// With the processor's instructions and without, in pieces; the first two sums are those of the standard.
TEST(Sum, OfAnyLength) {
  const struct {
    std::string text;
    const char* sum;
  } rows[] = {
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
  };
  for (const auto& row : rows) {
    for (const bool plain : {false, true}) {
      Sha256 sha(plain);
      const auto* const bytes = reinterpret_cast<const uint8_t*>(row.text.data());
      for (size_t at = 0, piece = 0; at < row.text.size(); at += piece, ++piece) {
        piece = std::min(piece, row.text.size() - at);
        sha.Add({bytes + at, piece});
      }
      EXPECT_EQ(sha.Hex(), row.sum) << row.text.size() << (plain ? " plainly" : "");
    }
  }
}

TEST(Tides, AreOnTheLineBetweenTwoHeights) {
  const std::string header = "UTC;m\r\n# of the gauge\r\n\r\n";
  const std::string two = "2026-05-01T09:30:00Z;1.5\r\n2026-05-01 09:40\t-0.5 \r\n";
  const struct {
    std::string text;
    const char* error;
    int64_t time_s;
    std::optional<double> height_m;
  } rows[] = {
      {header + two, "", 1'777'627'800, 1.5},
      {two, "", 1'777'627'950, 1.0},
      {two, "", 1'777'628'400, -0.5},
      {two, "", 1'777'627'799, std::nullopt},
      {two, "", 1'777'628'401, std::nullopt},
      {header, "holds no height", 0, std::nullopt},
      {two + two, "line 3 is not later than the line before", 0, std::nullopt},
      {two + "2026-05-01 09:50 nan", "line 3 is no UTC with a height in metres", 0, std::nullopt},
      {two + "2026-05-01 09:50 101", "line 3 is no UTC with a height in metres", 0, std::nullopt},
      {two + "2026-13-01 09:50 1", "line 3 is no UTC with a height in metres", 0, std::nullopt},
      {two + "2026-05-01 09:5", "line 3 is no UTC with a height in metres", 0, std::nullopt},
  };
  for (const auto& row : rows) {
    Tide tide;
    std::string error;
    EXPECT_EQ(tide.Parse(row.text, error), *row.error == '\0') << row.text;
    EXPECT_EQ(error, row.error);
    if (*row.error == '\0') {
      EXPECT_EQ(tide.At(row.time_s * 1000), row.height_m) << row.time_s;
    }
  }
}

TEST(Bar, NamesAreCutAtCharacters) {
  EXPECT_EQ(FitColumns("abc", 2), "ab");
  EXPECT_EQ(FitColumns("\xC3\xA4\xC3\xB6", 1), "\xC3\xA4");
  EXPECT_EQ(FitColumns("\xEC\xB8\xA1\xEC\x8B\xAC", 3), "\xEC\xB8\xA1") << "two columns each";
  EXPECT_EQ(FitColumns("a\x1B[2J\n", 9), "a?[2J?");
}

TEST(Options, AreRead) {
  const struct {
    std::vector<std::string> words;
    const char* error;
  } rows[] = {
      {{"info", "a.log"}, ""},
      {{"segy", "--pad", "--inline", "a.log", "-o", "out", "b.log"}, ""},
      {{"csv", "--", "-strange.log"}, ""},
      {{"--help"}, ""},
      {{"--version"}, ""},
      {{"csv", "-o", "", "a.log"}, "-o needs a folder"},
      {{"csv", "-"}, "standard input cannot be read, a recording is a file (./- if one is named so)"},
      {{"csv", "--force", "--no-clobber", "a.log"}, "--force and --no-clobber exclude each other"},
      {{}, "no task given"},
      {{"info"}, "no recording given"},
      {{"draw", "a.log"}, "unknown task draw"},
      {{"segy", "a.log", "--fast"}, "unknown option --fast"},
      {{"segy", "a.log", "-o"}, "-o needs a folder"},
      {{"csv", "--pad", "a.log"}, "--pad and --inline belong to segy"},
      {{"info", "a.log", "-o", "out"}, "info writes no files"},
      {{"xyz", "--columns", "time,depth", "--draught", "-0.5", "--every", "10", "--median", "5", "a.log"},
       ""},
      {{"csv", "--every", "10", "a.log"},
       "--columns, --draught, --tide, --sound-speed, --every and --median belong to xyz"},
      {{"xyz", "a.log", "--median", "4"}, "--median needs an odd number from 1 to 999"},
      {{"xyz", "a.log", "--draught", "nan"}, "--draught needs metres from -100 to 100"},
      {{"xyz", "a.log", "--sound-speed", "1500m"}, "--sound-speed needs metres a second from 1000 to 2000"},
      {{"xyz", "a.log", "--every"}, "--every needs a number from 1 to 1000000"},
      {{"info", "--json", "a.log"}, ""},
      {{"csv", "--csv", "a.log"}, "--json and --csv belong to info"},
      {{"png", "--width", "800", "--height", "300", "--depth", "0-25.5", "--channel", "2", "a.log"}, ""},
      {{"png", "--width", "0", "a.log"}, "--width needs a number of columns up to 8000"},
      {{"png", "--depth", "5-nan", "a.log"}, "--depth needs two depths in metres, as 0-25.5"},
      {{"png", "--depth", "9-8", "a.log"}, "--depth needs two depths in metres, as 0-25.5"},
      {{"png", "a.log", "--channel"}, "--channel needs 1 or 2"},
      {{"png", "--width", "8000", "--height", "4000", "a.log"}, "width times height is more than 4 million"},
      {{"report", "--height", "300", "a.log"}, "--width, --height, --depth and --channel belong to png"},
      {{"cut", "a.log", "--from", "2024-02-29T23:59:59.5Z", "--area", "-5.5,-35,-5.5,40"}, ""},
      {{"cut", "a.log"}, "--from, --to, --pings and --area belong to cut, which needs one of them"},
      {{"csv", "a.log", "--to", "5"},
       "--from, --to, --pings and --area belong to cut, which needs one of them"},
      {{"cut", "a.log", "--to", "2023-02-29T00:00:00"},
       "--to needs a time, as 2025-03-14T09:30:00 in UTC, or seconds from the start"},
      {{"cut", "a.log", "--from", "nan"},
       "--from needs a time, as 2025-03-14T09:30:00 in UTC, or seconds from the start"},
      {{"cut", "a.log", "--pings", "9-8"}, "--pings needs the first and the last number, as 100-250"},
      {{"cut", "a.log", "--area", "1,2,3,91"},
       "--area needs west, south, east and north in degrees, as -5.5,35,3,40.25"},
      {{"check", "a.log", "-o", "out"}, "check writes no files"},
      {{"join", "a.log"}, "join needs two recordings or more"},
      {{"join", "-r", "folder"}, ""},
      {{"netcdf", "-r", "-j", "64", "--quiet", "--dry-run", "folder"}, ""},
      {{"csv", "a.log", "-j", "65"}, "-j needs a number from 1 to 64"},
      {{"csv", "a.log", "-j"}, "-j needs a number from 1 to 64"},
      {{"info", "--dry-run", "a.log"}, "--dry-run belongs to tasks that write files"},
  };
  for (const auto& row : rows) {
    Options options;
    std::string error;
    EXPECT_EQ(ParseOptions(row.words, options, error), *row.error == '\0') << row.error;
    EXPECT_EQ(error, row.error);
  }
}

// The computer's seconds and the device's milliseconds, ping by ping; -1: none.
TEST(PingClock, GoesByTheComputerInStepsOfTheDevice) {
  const struct {
    const char* what;
    std::vector<std::array<int64_t, 3>> pings;  // computer in s, device in ms, told in ms
  } rows[] = {
      {"no clock", {{0, -1, -1}, {0, 0, -1}}},
      {"the computer's alone", {{100, -1, 100'000}, {101, -1, 101'000}}},
      {"the device's alone", {{0, 7, 7}, {0, 90'500, 90'500}}},
      {"both are right", {{100, 100'250, 100'250}, {101, 101'750, 101'750}, {102, -1, 102'000}}},
      {"a second ahead, now less, now more",
       {{100, 100'990, 100'990}, {100, 101'100, 101'100}, {101, 101'980, 101'980}, {101, 102'050, 102'050}}},
      {"never set", {{100, 5'300, 100'000}, {101, 6'400, 101'100}, {102, 7'200, 101'900}}},
      {"set back by an hour", {{8'000, 8'000'500, 8'000'500}, {4'400, 8'001'000, 4'400'000}}},
      {"the device starts anew", {{100, 100'500, 100'500}, {103, 20, 103'000}, {104, 1'020, 104'000}}},
  };
  for (const auto& row : rows) {
    PingClock clock;
    for (const auto& [computer_s, device_ms, told_ms] : row.pings) {
      RecordedPing ping{};
      ping.header.timeOfWork_s = static_cast<uint32_t>(computer_s);
      ping.hasMilliseconds = device_ms >= 0;
      ping.time_ms = device_ms;
      EXPECT_EQ(clock.TimeOf(ping).value_or(-1), told_ms) << row.what;
    }
  }
}

}  // namespace
}  // namespace tw::echotool
