// echotool's work on files, as a user would have it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/bytes.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/playback/echotool_call.h"
#include "tests/playback/info_text.h"
#include "tools/echotool/cdf.h"
#include "tools/echotool/console.h"
#include "tools/echotool/echogram_columns.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/options.h"
#include "tools/echotool/ping_clock.h"
#include "tools/echotool/report_series.h"
#include "tools/echotool/sha256.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/tide.h"

namespace tw::echotool {
namespace {

namespace fs = std::filesystem;
using test::InfoText;
using test::ReadWhole;
using test::WriteWhole;

const fs::path kGolden = TW_TEST_DATA;

class Work : public testing::Test {
 protected:
  Result Do(Task task, const fs::path& file, const std::string& folder = "") {
    Options options;
    options.task = task;
    options.folder = folder;
    options.force = force_;
    options.noClobber = noClobber_;
    return WorkOn(file.string(), options, interrupted_, batch_);
  }
  fs::path Copy(const char* name) {
    fs::copy_file(kGolden / name, folder_ / name);
    return folder_ / name;
  }
  [[nodiscard]] size_t Files() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  const test::TestFolder testFolder_;
  const fs::path folder_ = testFolder_.Path();
  std::atomic<bool> interrupted_ = false;
  bool force_ = false;
  bool noClobber_ = false;
  Batch batch_;
};

TEST_F(Work, OutputsStandBesideTheirInputsUnderTheProgramsNames) {
  const fs::path recording = Copy("three_pings.log");
  EXPECT_TRUE(Do(Task::segy, recording).done);
  EXPECT_EQ(ReadWhole(folder_ / "three_pings.sgy"), ReadWhole(kGolden / "three_pings.sgy"));
  EXPECT_TRUE(Do(Task::text, recording).done);
  EXPECT_EQ(ReadWhole(folder_ / "three_pings_txt.log"), ReadWhole(kGolden / "three_pings_txt.log"));
  EXPECT_TRUE(Do(Task::csv, recording).done);
  EXPECT_EQ(ReadWhole(folder_ / "three_pings.csv"),
            "time_utc,ping,latitude_deg,longitude_deg,altitude_m,temperature_c,pitch_deg,roll_deg,"
            "channel,frequency_hz,altitude_low_m,time_ms_utc\r\n"
            "2024-02-29T23:59:58Z,7,42.97183463,7.16197244,4.250,11.50,1.25,-0.50,1,450000,,\r\n"
            "2024-12-31T00:00:00Z,8,-28.64788976,-71.61972439,0.000,-1.75,,,1,200000,,\r\n"
            "2023-03-01T01:02:03Z,9,,,199.875,0.00,0.00,0.00,1,450000,,\r\n");
  EXPECT_TRUE(Do(Task::kml, recording).done);
  EXPECT_NE(ReadWhole(folder_ / "three_pings.kml")
                .find("<coordinates>\n7.16197244,42.97183463\n-71.61972439,-28.64788976\n</coordinates>"),
            std::string::npos);
  EXPECT_EQ(Files(), 5u) << "and nothing else";
}

TEST_F(Work, NamesAreCutAtTheirLastPoint) {
  for (const char* const name : {"L01.1.log", "L01.2.log", "L01", ".log"}) {
    fs::copy_file(kGolden / "three_pings.log", folder_ / name);
    EXPECT_TRUE(Do(Task::kml, folder_ / name).done);
  }
  for (const char* const name : {"L01.1.kml", "L01.2.kml", "L01.kml", ".log.kml"})
    EXPECT_TRUE(fs::exists(folder_ / name)) << name;
}

TEST_F(Work, RowsTellTheirChannelAndMilliseconds) {
  std::string low = InfoText(1, 7);
  low.replace(low.find("450000"), 6, "200000");
  const std::string rmc = "$GPRMC,123519.25,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*43\r\n";
  const std::string text = "#DeviceID 1\r\n#TimeWork 1700000000.007\r\n##DataStart\r\n1\r\n\r\n\r\n";
  const struct {
    std::string content;
    const char* rows;  // their ends
  } rows[] = {
      {InfoText(1, 6) + low + "DA1.5 m*\r\n" + rmc + "DB2.5 m*\r\n",
       ",1.500,0.00,,,1,450000,,1994-03-23T12:35:19.250Z\r\n1994-03-23T12:35:19Z,2,,,2.500,0.00,,,2,200000,,"
       "\r\n"},
      {InfoText(1, 7) + low + "Dual : 1, 1.500, 2.500, 11.25\r\n", ",1.500,11.25,,,1,450000,2.500,\r\n"},
      {InfoText(1, 4) + text, "2023-11-14T22:13:20Z,0,,,0.000,0.00,,,1,450000,,2023-11-14T22:13:20.007Z\r\n"},
  };
  for (const auto& row : rows) {
    WriteWhole(folder_ / "a.log", row.content);
    batch_.outputs.clear();
    EXPECT_TRUE(Do(Task::csv, folder_ / "a.log").done);
    EXPECT_TRUE(ReadWhole(folder_ / "a.csv").ends_with(row.rows)) << ReadWhole(folder_ / "a.csv");
  }
}

TEST_F(Work, WhatIsNoPingIsToldOrRefused) {
  const std::string golden = ReadWhole(kGolden / "three_pings.log");
  const std::string line = "DA1.5 m*\r\n";
  const std::string noise(1'000, '~');
  std::string unsampled = golden;
  std::string longPing = golden.substr(0, golden.find("TR57") + 88);
  for (size_t at = golden.find("TR57"); at != std::string::npos; at = golden.find("TR57", at + 4))
    StoreLe(reinterpret_cast<uint8_t*>(&unsampled[at + 24]), uint32_t{0});
  StoreLe(reinterpret_cast<uint8_t*>(&longPing[longPing.size() - 88 + 32]), uint32_t{40'000});
  const struct {
    Task task;
    std::string content;
    const char* says;  // or notes
  } rows[] = {
      {Task::csv, line + line, "is no recording: 2 pings in 20 bytes"},
      {Task::info, noise + line + line + line + noise + noise, "is no recording: 3 pings in 3030 bytes"},
      {Task::csv, line + line + line, ""},
      {Task::csv, InfoText(1, 6) + line + noise + noise, ": damaged: 2000 of 2072 bytes skipped (96.5 %)"},
      {Task::segy, golden + noise, ": damaged: 1000 of 1290 bytes skipped (77.5 %)"},
      {Task::segy, unsampled, "no ping tells its sampling frequency"},
      {Task::segy, longPing + std::string(80'000, 'x'), ": 1 traces cut at 32767 samples"},
  };
  for (const auto& row : rows) {
    WriteWhole(folder_ / "a.log", row.content);
    const Result result = Do(row.task, folder_ / "a.log");
    EXPECT_EQ(result.done, *row.says == ':' || *row.says == '\0') << row.says;
    const std::string said = result.done ? (result.notes.empty() ? "" : result.notes[0]) : result.text;
    EXPECT_TRUE(*row.says == '\0' ? said.empty() : said.find(row.says) != std::string::npos) << said;
    EXPECT_EQ(Files(), result.done ? 2u : 1u) << row.says;
    fs::remove(folder_ / "a.csv");
    fs::remove(folder_ / "a.sgy");
  }
}

// An older output is replaced, and that is told; a recording only by all that it holds.
TEST_F(Work, WhatStandsInThePlaceOfAnOutput) {
  const fs::path recording = Copy("three_pings.log");
  const std::string text = ReadWhole(kGolden / "three_pings_txt.log");
  const struct {
    Task task;
    const char* name;
    std::string content;
    bool force;
    bool noClobber;
    const char* says;
  } rows[] = {
      {Task::kml, "three_pings.kml", "older", false, false, "three_pings.kml has been replaced"},
      {Task::png, "three_pings.png", "a picture with DA1.5 m*\r\n", false, false,
       "three_pings.png has been replaced"},
      {Task::text, "three_pings_txt.log", text, false, false, "three_pings_txt.log has been replaced"},
      {Task::text, "three_pings_txt.log", text + text, false, false,
       "is itself a recording; --force replaces it"},
      {Task::text, "three_pings_txt.log", text + text, true, false, "three_pings_txt.log has been replaced"},
      {Task::csv, "three_pings.csv", text, false, false, "is itself a recording; --force replaces it"},
      {Task::kml, "three_pings.kml", "older", false, true, "is there already"},
  };
  for (const auto& row : rows) {
    batch_.outputs.clear();
    WriteWhole(folder_ / row.name, row.content);
    force_ = row.force;
    noClobber_ = row.noClobber;
    const Result result = Do(row.task, recording);
    const std::string said = result.done && !result.notes.empty() ? result.notes[0] : result.text;
    EXPECT_TRUE(said.ends_with(row.says)) << said;
    EXPECT_EQ(ReadWhole(folder_ / row.name) == row.content, !result.done || row.content == text) << row.says;
  }
}

TEST_F(Work, WhatARecordingDoesNotTellIsLeftOut) {
  const fs::path recording = folder_ / "lines.log";
  const std::string inEurope = "$GPGGA,123519.00,4830.0000,N,01130.0000,E,1,08,0.9,545.4,M,46.9,M,,*67\r\n";
  const std::string nowhere = "$GPGGA,123519.00,9830.0000,N,01130.0000,E,1,08,0.9,545.4,M,46.9,M,,*6A\r\n";
  const struct {
    const char* what;
    std::string content;
    const char* row;  // of the table, the last
    const char* placemark;
  } rows[] = {
      {"no position, no time", "Alt : 1.5\r\n", "\r\n,1,,,1.500,0.00,,,1,450000,,\r\n",
       "</Style>\n</Document>\n</kml>\n"},
      {"one place", "Alt : 1.5\r\n" + inEurope, "\r\n,1,48.50000000,11.50000000,1.500,0.00,,,1,450000,,\r\n",
       "<Point>\n<coordinates>\n11.50000000,48.50000000\n</coordinates>\n</Point>"},
      {"a place beyond the pole", "Alt : 1.5\r\n" + nowhere, "", "</Style>\n</Document>\n</kml>\n"},
  };
  for (const auto& row : rows) {
    WriteWhole(recording, InfoText(1, 1) + row.content);
    EXPECT_TRUE(Do(Task::csv, recording, folder_.string()).done);
    EXPECT_TRUE(ReadWhole(folder_ / "lines.csv").ends_with(row.row)) << row.what;
    EXPECT_TRUE(Do(Task::kml, recording).done);
    EXPECT_NE(ReadWhole(folder_ / "lines.kml").find(row.placemark), std::string::npos) << row.what;
    batch_.outputs.clear();
  }
}

TEST_F(Work, AnAssumedSamplingFrequencyIsWarnedOf) {
  const std::string block =
      "#DeviceID 42\r\n#NSamples 1\r\n#Resolution,mm 30.0\r\n##DataStart\r\n7\r\n\r\n\r\n";
  const fs::path recording = folder_ / "text.log";
  const struct {
    std::string content;
    Task task;
    bool warned;
  } rows[] = {{InfoText(2, 2) + block, Task::segy, false},
              {block + block + block, Task::segy, true},
              {block + block + block, Task::info, true},
              {block + block + block, Task::csv, false}};
  for (const auto& row : rows) {
    WriteWhole(recording, row.content);
    const Result result = Do(row.task, recording);
    EXPECT_TRUE(result.done) << result.text;
    const std::string note = result.notes.empty() ? "" : result.notes[0];
    EXPECT_EQ(note.ends_with("warning: tells no sampling frequency, 25000 Hz is assumed"), row.warned)
        << note;
    batch_.outputs.clear();
  }
}

// The text of a binary recording holds the same pings.
TEST_F(Work, TextTellsTheSameAsTheBinaryItWasMadeOf) {
  const Result binary = Do(Task::info, kGolden / "three_pings.log");
  const Result text = Do(Task::info, kGolden / "three_pings_txt.log");
  ASSERT_TRUE(binary.done && text.done);
  EXPECT_NE(binary.text.find("output mode   100 or 101 Echo Bin\n"), std::string::npos) << binary.text;
  EXPECT_NE(text.text.find("output mode   4 Echo Txt 12bit\n"), std::string::npos) << text.text;
  EXPECT_NE(binary.text.find("\n  file size     290 bytes\n  frequency     200000 to 450000 Hz\n"),
            std::string::npos);
  const auto from = [](const std::string& report) { return report.substr(report.find("  pings")); };
  const auto upTo = [](const std::string& report) { return report.substr(0, report.find("  damaged")); };
  EXPECT_EQ(upTo(from(binary.text)), upTo(from(text.text)));
  EXPECT_NE(text.text.find("damaged       0 of 1268 bytes"), std::string::npos) << text.text;
}

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

// Names may hold what has a meaning in HTML, JSON and tables; the index is one more output.
TEST_F(Work, ReportsAndTotals) {
  const fs::path recording = folder_ / "=a<b>&\"c\".log";
  fs::copy_file(kGolden / "three_pings.log", recording);
  WriteWhole(folder_ / "events.csv",
             "2024-02-29T23:59:58.000Z,mark,\"7, ping 7, 4.250 m, no position, <wreck>\"\n");
  Options options;
  options.task = Task::report;
  EXPECT_TRUE(Do(Task::report, recording).done);
  EXPECT_TRUE(EndBatch(options, batch_).done);
  const std::string page = ReadWhole(folder_ / "=a<b>&\"c\".html");
  EXPECT_NE(page.find("<h1>=a&lt;b&gt;&amp;&quot;c&quot;.log</h1>"), std::string::npos);
  EXPECT_NE(page.find("src=\"data:image/png;base64,iVBORw0KGgo"), std::string::npos);
  EXPECT_NE(page.find("&lt;wreck&gt;"), std::string::npos);
  EXPECT_EQ(page.find("<script"), std::string::npos);
  EXPECT_EQ(page.find("nan"), std::string::npos);
  EXPECT_NE(ReadWhole(folder_ / "index.html").find("<a href=\"%3Da%3Cb%3E%26%22c%22.html\">=a&lt;b&gt;"),
            std::string::npos);
  batch_ = {};
  options.task = Task::info;
  options.form = InfoForm::json;
  EXPECT_TRUE(WorkOn(recording.string(), options, interrupted_, batch_).done);
  const std::string document = EndBatch(options, batch_).text;
  EXPECT_NE(document.find("=a<b>&\\\"c\\\".log\",\n      \"size_bytes\": 290,"), std::string::npos)
      << document;
  EXPECT_NE(document.find("\"totals\": {\n    \"recordings\": 1,"), std::string::npos) << document;
  EXPECT_EQ(CsvCell("=1+\"2\",3"), "\"'=1+\"\"2\"\",3\"");
  batch_ = {};
  options.form = InfoForm::csv;
  EXPECT_TRUE(WorkOn("./" + fs::relative(recording).string(), options, interrupted_, batch_).done);
  const std::string table = EndBatch(options, batch_).text;
  const size_t row = table.find("\r\n") + 2;
  EXPECT_EQ(std::count(table.begin(), table.begin() + static_cast<std::ptrdiff_t>(row), ','),
            std::count(table.begin() + static_cast<std::ptrdiff_t>(row), table.end(), ','));
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

TEST_F(Work, WhatCannotBeDoneLeavesNothing) {
  const fs::path recording = Copy("three_pings.log");
  const fs::path text = Copy("three_pings_txt.log");
  const fs::path other = folder_ / "other.log";
  WriteWhole(other, "no recording");
  const fs::path named = folder_ / "a.csv";
  fs::copy_file(recording, named);
  const fs::path twin = folder_ / "three_pings.bin";
  fs::copy_file(recording, twin);
  ASSERT_TRUE(Do(Task::kml, recording).done);
  const fs::path pipe = folder_ / "pipe.log";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  fs::create_symlink("nowhere", folder_ / "pipe.csv");
  fs::copy_file(recording, folder_ / "pipe");
  fs::create_directory(folder_ / "other.kml");
  batch_.inputs = {(fs::canonical(folder_) / "three_pings_txt.log").wstring()};
  std::replace(batch_.inputs[0].begin(), batch_.inputs[0].end(), L'/', L'\\');
  const size_t files = Files();
  const struct {
    Task task;
    fs::path file;
    std::string folder;
    const char* says;
  } rows[] = {
      {Task::segy, folder_ / "absent.log", "", "cannot be opened: No such file or directory"},
      {Task::info, folder_, "", "is a folder"},
      {Task::info, pipe, "", "is no file that can be read twice"},
      {Task::segy, other, "", "is no recording of a known kind"},
      {Task::text, text, "", "is text already"},
      {Task::segy, recording, (folder_ / "absent").string(), "cannot be made: No such file or directory"},
      {Task::csv, folder_ / "pipe", "", "pipe.csv is no file"},
      {Task::text, recording, "", "three_pings_txt.log, which is to be read"},
      {Task::csv, named, (folder_ / ".").string(), "the output would replace it"},
      {Task::kml, twin, (folder_ / ".").string(), "has just been made of another recording"},
  };
  for (const auto& row : rows) {
    const Result result = Do(row.task, row.file, row.folder);
    EXPECT_FALSE(result.done) << row.says;
    EXPECT_NE(result.text.find(row.says), std::string::npos) << result.text;
    EXPECT_EQ(Files(), files) << row.says;
  }
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
