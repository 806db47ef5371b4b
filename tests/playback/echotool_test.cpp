// echotool's work on files, as a user would have it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "base/bytes.h"
#include "platform/owned_file.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/playback/echotool_call.h"
#include "tests/playback/info_text.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/netcdf_output.h"

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
      {Task::png, "three_pings.png", std::string(2'000, '\xE5') + "DA1.5 m*\r\n", false, false,
       "three_pings.png has been replaced"},
      {Task::png, "three_pings.png", "DA1.5 m*\r\n", false, false,
       "is itself a recording; --force replaces it"},
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

// Its sum would be that of other bytes than those that were converted.
TEST_F(Work, NetcdfOfARecordingThatGrowsMeanwhileIsRefused) {
  const std::wstring path = Copy("three_pings.log").wstring();
  RecordingFault fault{};
  const auto recording = OpenRecording(path.c_str(), fault);
  for (const bool grows : {false, true}) {
    const OwnedFile file(CreateFileAnew((folder_ / "a.nc").wstring().c_str()));
    OutputFile output(file.Get());
    RecordingSurvey survey;
    survey.whole = false;
    ASSERT_TRUE(recording->Rewind());
    for (RecordedPing ping{}; recording->Next(ping);) survey.Add(ping);
    NetcdfWriter writer(output, {*recording, survey, "a", 0}, {path, file.Get(), interrupted_});
    std::string error;
    ASSERT_TRUE(recording->Rewind() && writer.Prepare(error) && writer.Begin());
    for (RecordedPing ping{}; recording->Next(ping);) ASSERT_TRUE(writer.Append(ping));
    if (grows) std::ofstream(fs::path(path), std::ios::app) << ReadWhole(kGolden / "three_pings.log");
    EXPECT_TRUE(writer.End());
    EXPECT_EQ(writer.Emptiness(), grows ? "has changed while it was read" : "");
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

}  // namespace
}  // namespace tw::echotool
