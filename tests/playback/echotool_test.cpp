// echotool's work on files, as a user would have it.
#include <gtest/gtest.h>

#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/playback/info_text.h"
#include "tools/echotool/options.h"
#include "tools/echotool/work.h"

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
    return WorkOn(file.string(), options, interrupted_, outputs_);
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
  Outputs outputs_;
};

TEST_F(Work, OutputsStandBesideTheirInputsUnderTheProgramsNames) {
  const fs::path recording = Copy("three_pings.log");
  EXPECT_TRUE(Do(Task::segy, recording).done);
  EXPECT_EQ(ReadWhole(folder_ / "three_pings.sgy"), ReadWhole(kGolden / "three_pings.sgy"));
  EXPECT_TRUE(Do(Task::text, recording).done);
  EXPECT_EQ(ReadWhole(folder_ / "three_pings_txt.log"), ReadWhole(kGolden / "three_pings_txt.log"));
  EXPECT_TRUE(Do(Task::csv, recording).done);
  EXPECT_EQ(ReadWhole(folder_ / "three_pings.csv"),
            "time_utc,ping,latitude_deg,longitude_deg,altitude_m,temperature_c,pitch_deg,roll_deg\r\n"
            "2024-02-29T23:59:58Z,7,42.97183463,7.16197244,4.250,11.50,1.25,-0.50\r\n"
            "2024-12-31T00:00:00Z,8,-28.64788976,-71.61972439,0.000,-1.75,,\r\n"
            "2023-03-01T01:02:03Z,9,,,199.875,0.00,0.00,0.00\r\n");
  EXPECT_TRUE(Do(Task::kml, recording).done);
  EXPECT_NE(ReadWhole(folder_ / "three_pings.kml")
                .find("<coordinates>\n7.16197244,42.97183463\n-71.61972439,-28.64788976\n</coordinates>"),
            std::string::npos);
  EXPECT_EQ(Files(), 5u) << "and nothing else";
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
      {"no position, no time", "Alt : 1.5\r\n", "\r\n,1,,,1.500,0.00,,\r\n",
       "</Style>\n</Document>\n</kml>\n"},
      {"one place", "Alt : 1.5\r\n" + inEurope, "\r\n,1,48.50000000,11.50000000,1.500,0.00,,\r\n",
       "<Point>\n<coordinates>\n11.50000000,48.50000000\n</coordinates>\n</Point>"},
      {"a place beyond the pole", "Alt : 1.5\r\n" + nowhere, "", "</Style>\n</Document>\n</kml>\n"},
  };
  for (const auto& row : rows) {
    WriteWhole(recording, InfoText(1, 1) + row.content);
    EXPECT_TRUE(Do(Task::csv, recording, folder_.string()).done);
    EXPECT_TRUE(ReadWhole(folder_ / "lines.csv").ends_with(row.row)) << row.what;
    EXPECT_TRUE(Do(Task::kml, recording).done);
    EXPECT_NE(ReadWhole(folder_ / "lines.kml").find(row.placemark), std::string::npos) << row.what;
    outputs_.clear();
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
              {block, Task::segy, true},
              {block, Task::info, true},
              {block, Task::csv, false}};
  for (const auto& row : rows) {
    WriteWhole(recording, row.content);
    const Result result = Do(row.task, recording);
    EXPECT_TRUE(result.done) << result.text;
    EXPECT_EQ(result.warning.ends_with("tells no sampling frequency, 25000 Hz is assumed"), row.warned);
    outputs_.clear();
  }
}

// The text of a binary recording holds the same pings.
TEST_F(Work, TextTellsTheSameAsTheBinaryItWasMadeOf) {
  const Result binary = Do(Task::info, kGolden / "three_pings.log");
  const Result text = Do(Task::info, kGolden / "three_pings_txt.log");
  ASSERT_TRUE(binary.done && text.done);
  EXPECT_NE(binary.text.find("output mode   100 or 101 Echo Bin\n"), std::string::npos) << binary.text;
  EXPECT_NE(text.text.find("output mode   4 Echo Txt 12bit\n"), std::string::npos) << text.text;
  const auto from = [](const std::string& report) { return report.substr(report.find("  pings")); };
  const auto upTo = [](const std::string& report) { return report.substr(0, report.find("  damaged")); };
  EXPECT_EQ(upTo(from(binary.text)), upTo(from(text.text)));
  EXPECT_NE(text.text.find("damaged       0 of 1268 bytes"), std::string::npos) << text.text;
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
  const size_t files = Files();
  const struct {
    Task task;
    fs::path file;
    std::string folder;
    const char* says;
  } rows[] = {
      {Task::segy, folder_ / "absent.log", "", "cannot be opened"},
      {Task::segy, other, "", "is no recording of a known kind"},
      {Task::text, text, "", "is text already"},
      {Task::segy, recording, (folder_ / "absent").string(), "cannot be made"},
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

TEST(Options, AreRead) {
  const struct {
    std::vector<std::string> words;
    const char* error;
  } rows[] = {
      {{"info", "a.log"}, ""},
      {{"segy", "--pad", "--inline", "a.log", "-o", "out", "b.log"}, ""},
      {{"csv", "--", "-strange.log"}, ""},
      {{"--help"}, ""},
      {{}, "no task given"},
      {{"info"}, "no recording given"},
      {{"draw", "a.log"}, "unknown task draw"},
      {{"segy", "a.log", "--fast"}, "unknown option --fast"},
      {{"segy", "a.log", "-o"}, "-o needs a folder"},
      {{"csv", "--pad", "a.log"}, "--pad and --inline belong to segy"},
      {{"info", "a.log", "-o", "out"}, "info writes no files"},
  };
  for (const auto& row : rows) {
    Options options;
    std::string error;
    EXPECT_EQ(ParseOptions(row.words, options, error), *row.error == '\0') << row.error;
    EXPECT_EQ(error, row.error);
  }
}

}  // namespace
}  // namespace tw::echotool
