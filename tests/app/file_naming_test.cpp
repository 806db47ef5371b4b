#include "app/file_naming.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <filesystem>
#include <string>

#include "platform/file.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

constexpr CalendarTime kMorning{2025, 3, 14, 9, 30, 5, 0};

NamingFacts FirstFamily(NamingMoment moment, bool dual, int32_t mode) {
  return {.moment = moment,
          .family = 1,
          .dual = dual,
          .outputMode = mode,
          .frequencyInUse_hz = 450'000,
          .lowFrequency_hz = 200'000,
          .highFrequency_hz = 450'000,
          .measuredLow_hz = 204'999,
          .measuredHigh_hz = 447'000,
          .identity = "E3105",
          .identifierWord = 77,
          .segyCompanions = false,
          .localTime = kMorning};
}

NamingFacts OtherFamily(NamingMoment moment, int32_t family, int32_t mode) {
  NamingFacts facts = FirstFamily(moment, false, mode);
  facts.family = family;
  return facts;
}

TEST(FileNaming, RoundsToTenKilohertz) {
  struct {
    int32_t hz;
    int32_t kHz;
  } const rows[] = {{447'000, 450}, {200'000, 200}, {204'999, 200},          {205'000, 210},
                    {0, 0},         {4'999, 0},     {2'147'483'647, 2147480}};
  for (const auto& row : rows) EXPECT_EQ(NameKHz(row.hz), row.kHz) << row.hz;
}

TEST(FileNaming, ModeNamesOfEachFamilyAndMoment) {
  struct {
    int32_t mode;
    const char* firstStart;
    const char* firstSwitched;
    const char* secondStart;
    const char* thirdStart;
    const char* otherSwitched;
  } const rows[] = {
      {0, "nmea", "nmea", "nmea", "nmea", "nmea"},
      {1, "simple", "simple", "simple", "simple", "simple"},
      {2, "txt10", "txt10", "Echosounder", "Echosounder", "Echosounder"},
      {3, "nmea", "nmea", "nmea", "nmea", "nmea"},
      {4, "txt12", "txt12", "EchoSounder(200)", "EchoSounder(200)", "EchoSounder(200)"},
      {5, "deso_M", "nmea", "EchoSounder(500)", "EchoSounder(500)", "EchoSounder(500)"},
      {6, "deso_M", "deso_M", "EchoSounder(1000)", "EchoSounder(1000)", "EchoSounder(1000)"},
      {7, "Dual", "dual", "PSA-916", "PSA-916", "PSA-916"},
      {8, "DFX", "dfx", "AltiTemp", "AltiTemp", "AltiTemp"},
      {9, "OLD", "old", "DFX", "DFX", "DFX"},
      {10, "nmea", "nmea", "OLD", "OLD", "OLD"},
      {100, "bin12", "bin12", "bin10", "nmea", "bin10"},
      {101, "bin8", "bin8", "bin8", "nmea", "bin8"},
      {102, "nmea", "nmea", "nmea", "nmea", "nmea"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.mode);
    EXPECT_STREQ(ModeName(NamingMoment::start, 1, row.mode), row.firstStart);
    EXPECT_STREQ(ModeName(NamingMoment::recordSwitchedOn, 1, row.mode), row.firstSwitched);
    EXPECT_STREQ(ModeName(NamingMoment::start, 2, row.mode), row.secondStart);
    EXPECT_STREQ(ModeName(NamingMoment::start, 0, row.mode), row.thirdStart);
    EXPECT_STREQ(ModeName(NamingMoment::recordSwitchedOn, 2, row.mode), row.otherSwitched);
    EXPECT_STREQ(ModeName(NamingMoment::recordSwitchedOn, 0, row.mode), row.otherSwitched);
  }
}

TEST(FileNaming, RecordFileNames) {
  constexpr auto kStart = NamingMoment::start;
  constexpr auto kSwitched = NamingMoment::recordSwitchedOn;
  struct {
    const char* what;
    NamingFacts facts;
    const char* a;
    const char* b;
  } const rows[] = {
      {"a single run says Dual", FirstFamily(kStart, false, 4),
       "20250314_093005_Dual_450kHz_id_E3105_txt12.log", ""},
      {"a dual run has one file a channel", FirstFamily(kStart, true, 101),
       "20250314_093005_Dual_450kHz_id_E3105_bin8.log", "20250314_093005_Dual_200kHz_id_E3105_bin8.log"},
      {"lines with both depths share a file", FirstFamily(kStart, true, 7),
       "20250314_093005_Dual_450kHz_200kHz_id_E3105_Dual.log", ""},
      {"the same, switched on", FirstFamily(kSwitched, true, 7),
       "20250314_093005_Dual_450kHz_200kHz_id_E3105_dual.log", ""},
      {"DESO in a dual run", FirstFamily(kStart, true, 6),
       "20250314_093005_Dual_450kHz_200kHz_id_E3105_deso_M.log", ""},
      {"DFX in a dual run", FirstFamily(kSwitched, true, 8),
       "20250314_093005_Dual_450kHz_200kHz_id_E3105_dfx.log", ""},
      {"mode 5 shares a file only when switched on", FirstFamily(kSwitched, true, 5),
       "20250314_093005_Dual_450kHz_200kHz_id_E3105_nmea.log", ""},
      {"a pair in mode 9", FirstFamily(kSwitched, true, 9), "20250314_093005_Dual_450kHz_id_E3105_old.log",
       "20250314_093005_Dual_200kHz_id_E3105_old.log"},
      {"family 2", OtherFamily(kStart, 2, 100), "20250314_093005_Single_450kHz_id_77_bin10.log", ""},
      {"family 0", OtherFamily(kStart, 0, 6), "20250314_093005_Single_450kHz_id_77_EchoSounder(1000).log",
       ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const RecordFileNames names = NameRecordFiles(row.facts);
    EXPECT_STREQ(names.a.record, row.a);
    EXPECT_STREQ(names.b.record, row.b);
    EXPECT_STREQ(names.a.segy, "");
  }
}

TEST(FileNaming, ThirdFamilysFrequencyIsFixedAtStartOnly) {
  NamingFacts facts = OtherFamily(NamingMoment::start, 0, 2);
  facts.measuredHigh_hz = 120'000;
  EXPECT_STREQ(NameRecordFiles(facts).a.record, "20250314_093005_Single_450kHz_id_77_Echosounder.log");
  facts.moment = NamingMoment::recordSwitchedOn;
  EXPECT_STREQ(NameRecordFiles(facts).a.record, "20250314_093005_Single_120kHz_id_77_Echosounder.log");
}

TEST(FileNaming, ChannelOfASingleRun) {
  struct {
    const char* what;
    NamingMoment moment;
    int32_t inUse_hz;
    int32_t channel_hz;
  } const rows[] = {
      {"high in use", NamingMoment::start, 450'000, 447'000},
      {"low in use", NamingMoment::start, 200'000, 204'999},
      {"neither, at Start", NamingMoment::start, 300'000, 204'999},
      {"high in use, switched on", NamingMoment::recordSwitchedOn, 450'000, 447'000},
      {"low in use, switched on", NamingMoment::recordSwitchedOn, 200'000, 204'999},
      {"neither, switched on", NamingMoment::recordSwitchedOn, 300'000, 447'000},
  };
  for (const auto& row : rows) {
    NamingFacts facts = FirstFamily(row.moment, false, 2);
    facts.frequencyInUse_hz = row.inUse_hz;
    EXPECT_EQ(NameRecordFiles(facts).a.channelFrequency_hz, row.channel_hz) << row.what;
  }
}

TEST(FileNaming, SegyCompanionsOfEchoModesOnly) {
  NamingFacts facts = FirstFamily(NamingMoment::start, true, 100);
  facts.segyCompanions = true;
  const RecordFileNames pair = NameRecordFiles(facts);
  EXPECT_STREQ(pair.a.segy, "20250314_093005_Dual_450kHz_id_E3105_bin12.sgy");
  EXPECT_STREQ(pair.b.segy, "20250314_093005_Dual_200kHz_id_E3105_bin12.sgy");
  facts.outputMode = 9;
  EXPECT_STREQ(NameRecordFiles(facts).a.segy, "");
}

TEST(FileNaming, HostileIdentityStaysInTheFolder) {
  NamingFacts facts = FirstFamily(NamingMoment::start, false, 2);
  facts.identity = "..\\../C:*?\"<>|\x01\xff~";
  EXPECT_STREQ(NameRecordFiles(facts).a.record, "20250314_093005_Dual_450kHz_id_.._.._C_________~_txt10.log");
  const std::string longest(95, 'x');
  facts.identity = longest;
  EXPECT_EQ(std::string(NameRecordFiles(facts).a.record),
            "20250314_093005_Dual_450kHz_id_" + longest + "_txt10.log");
}

TEST(FileNaming, Titles) {
  char title[256];
  FormatRecordTitle(title, "a.log", "");
  EXPECT_EQ(title, "Tidewriter Echosounder Control Software" + std::string(50, ' ') + "a.log");
  FormatRecordTitle(title, "a.log", "b.log");
  EXPECT_EQ(title, "Tidewriter Echosounder Control Software" + std::string(10, ' ') + "a.log / b.log");
  const std::string name(150, 'n');
  FormatRecordTitle(title, name.c_str(), name.c_str());
  EXPECT_EQ(std::string(title).size(), 255u);
}

TEST(FileNaming, ConversionsAreNamedAfterTheirInput) {
  struct {
    const wchar_t* input;
    const wchar_t* segy;
    const wchar_t* text;
  } const rows[] = {
      {L"C:\\data\\run.one.log", L"run.sgy", L"run_txt.log"},
      {L"/data.d/plain", L"plain.sgy", L"plain_txt.log"},
      {L"..hidden.log", L"hidden.sgy", L"hidden_txt.log"},
      {L"C:\\data\\", L".sgy", L"_txt.log"},
  };
  for (const auto& row : rows) {
    wchar_t name[64];
    NameConversion(name, row.input, Conversion::segy);
    EXPECT_STREQ(name, row.segy);
    NameConversion(name, row.input, Conversion::text);
    EXPECT_STREQ(name, row.text);
  }
  wchar_t small[12];
  NameConversion(small, L"abcdefghijkl.log", Conversion::text);
  EXPECT_STREQ(small, L"abc_txt.log");
}

TEST(FileNaming, JoinedPathsAreBounded) {
  wchar_t path[8];
  ASSERT_TRUE(JoinPath(path, L"abc", L"def"));
  EXPECT_EQ(std::wstring(path), std::wstring(L"abc") + kPathSeparator + L"def");
  EXPECT_FALSE(JoinPath(path, L"abcd", L"def"));
  EXPECT_STREQ(path, L"");
}

class FolderOfATest : public testing::Test {
 protected:
  const test::TestFolder folder_;
  const std::filesystem::path& root_ = folder_.Path();
};

TEST_F(FolderOfATest, AnAbsentFolderIsCreated) {
  const std::filesystem::path folder = root_ / "records";
  const Handle file = CreateInFolder(folder.wstring().c_str(), L"a.log");
  ASSERT_NE(file, Handle::invalid);
  CloseFile(file);
  EXPECT_TRUE(std::filesystem::is_regular_file(folder / "a.log"));
}

TEST_F(FolderOfATest, ASecondFileOfThatNameTruncatesTheFirst) {
  const std::wstring folder = root_.wstring();
  const Handle first = CreateInFolder(folder.c_str(), L"a.log");
  uint32_t written = 0;
  ASSERT_TRUE(WriteFileBytes(first, "old", 3, written));
  CloseFile(first);
  CloseFile(CreateInFolder(folder.c_str(), L"a.log"));
  EXPECT_EQ(std::filesystem::file_size(root_ / "a.log"), 0u);
}

TEST_F(FolderOfATest, AFolderThatCannotBeMadeGivesNoFile) {
  EXPECT_EQ(CreateInFolder((root_ / "no" / "parent").wstring().c_str(), L"a.log"), Handle::invalid);
}

}  // namespace
}  // namespace tw
