#include "app/state/file_naming.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/file.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

constexpr auto kStart = NamingMoment::start;
constexpr auto kSwitched = NamingMoment::recordSwitchedOn;
constexpr char kStamp[] = "20250314_093005_";

// 450 kHz in use, its channels measured at 447 and 204.999 kHz.
NamingFacts Facts(NamingMoment moment, int32_t family, bool dual, const char* word = "txt10") {
  return {.moment = moment,
          .family = DeviceFamily{family},
          .dual = dual,
          .modeWord = word,
          .sharesOneFile = false,
          .hasSamples = true,
          .frequencyInUse_hz = 450'000,
          .lowFrequency_hz = 200'000,
          .highFrequency_hz = 450'000,
          .measuredLow_hz = 204'999,
          .measuredHigh_hz = 447'000,
          .identity = "E3105",
          .identifierWord = 77,
          .segyCompanions = false,
          .localTime = {2025, 3, 14, 9, 30, 5, 0}};
}

TEST(FileNaming, RoundsToTenKilohertz) {
  const struct {
    int32_t hz, kHz;
  } rows[] = {{447'000, 450}, {200'000, 200}, {204'999, 200},          {205'000, 210},
              {0, 0},         {4'999, 0},     {2'147'483'647, 2147480}};
  for (const auto& row : rows) EXPECT_EQ(NameKHz(row.hz), row.kHz) << row.hz;
}

TEST(FileNaming, RecordFiles) {
  NamingFacts shared = Facts(kSwitched, 1, true, "dfx");
  shared.sharesOneFile = true;
  const struct {
    const char* what;
    NamingFacts facts;
    const char* a;  // behind the time, without ".log"
    const char* b;  // empty: no second file
  } rows[] = {
      {"a single run says Dual", Facts(kStart, 1, false, "txt12"), "Dual_450kHz_id_E3105_txt12", ""},
      {"a dual run has one file a channel", Facts(kStart, 1, true, "bin8"), "Dual_450kHz_id_E3105_bin8",
       "Dual_200kHz_id_E3105_bin8"},
      {"lines with both depths share a file", shared, "Dual_450kHz_200kHz_id_E3105_dfx", ""},
      {"family 2", Facts(kStart, 2, false, "bin10"), "Single_450kHz_id_77_bin10", ""},
      {"family 0", Facts(kSwitched, 0, false, "AltiTemp"), "Single_450kHz_id_77_AltiTemp", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const RecordFileNames names = NameRecordFiles(row.facts);
    EXPECT_EQ(names.a.record, kStamp + std::string(row.a) + ".log");
    EXPECT_EQ(std::string(names.b.record), *row.b == '\0' ? "" : kStamp + std::string(row.b) + ".log");
    EXPECT_STREQ(names.a.segy, "");
  }
}

TEST(FileNaming, ThirdFamilysFrequencyIsFixedAtStartOnly) {
  NamingFacts facts = Facts(kStart, 0, false);
  facts.measuredHigh_hz = 120'000;
  EXPECT_STREQ(NameRecordFiles(facts).a.record, "20250314_093005_Single_450kHz_id_77_txt10.log");
  facts.moment = kSwitched;
  EXPECT_STREQ(NameRecordFiles(facts).a.record, "20250314_093005_Single_120kHz_id_77_txt10.log");
}

TEST(FileNaming, ChannelOfASingleRun) {
  const struct {
    int32_t inUse_hz, atStart_hz, switchedOn_hz;
  } rows[] = {{450'000, 447'000, 447'000}, {200'000, 204'999, 204'999}, {300'000, 204'999, 447'000}};
  for (const auto& row : rows) {
    NamingFacts facts = Facts(kStart, 1, false);
    facts.frequencyInUse_hz = row.inUse_hz;
    EXPECT_EQ(NameRecordFiles(facts).a.channelFrequency_hz, row.atStart_hz) << row.inUse_hz;
    facts.moment = kSwitched;
    EXPECT_EQ(NameRecordFiles(facts).a.channelFrequency_hz, row.switchedOn_hz) << row.inUse_hz;
  }
}

TEST(FileNaming, HostileIdentityStaysInTheFolder) {
  NamingFacts facts = Facts(kStart, 1, false);
  facts.identity = "..\\../C:*?\"<>|\x01\xff~";
  EXPECT_STREQ(NameRecordFiles(facts).a.record, "20250314_093005_Dual_450kHz_id_.._.._C_________~_txt10.log");
  const std::string longest(95, 'x');
  facts.identity = longest;
  EXPECT_EQ(NameRecordFiles(facts).a.record, "20250314_093005_Dual_450kHz_id_" + longest + "_txt10.log");
}

TEST(FileNaming, TitleOfAPair) {
  char title[256];
  FormatRecordTitle(title, "a.log", "b.log");
  EXPECT_EQ(title, "Tidewriter Echosounder Control Software" + std::string(10, ' ') + "a.log / b.log");
  const std::string name(150, 'n');
  FormatRecordTitle(title, name.c_str(), name.c_str());
  EXPECT_EQ(std::string(title).size(), 255u);
}

TEST(FileNaming, ConversionsAreNamedAfterTheirInput) {
  const struct {
    const wchar_t* input;
    const wchar_t* segy;
    const wchar_t* text;
  } rows[] = {
      {L"C:\\data\\run.one.log", L"run.sgy", L"run_txt.log"},
      {L"/data.d/plain", L"plain.sgy", L"plain_txt.log"},
      {L"..hidden.log", L"hidden.sgy", L"hidden_txt.log"},
      {L"C:\\data\\", L".sgy", L"_txt.log"},
      {L"beyond_the_room.log", L"beyond_the_.sgy", L"beyond__txt.log"},
  };
  for (const auto& row : rows) {
    wchar_t name[16];
    NameConversion(name, row.input, Conversion::segy);
    EXPECT_STREQ(name, row.segy);
    NameConversion(name, row.input, Conversion::text);
    EXPECT_STREQ(name, row.text);
  }
}

TEST(FileNaming, JoinedPathsAreBounded) {
  wchar_t path[8];
  ASSERT_TRUE(JoinPath(path, L"abc", L"def"));
  EXPECT_EQ(std::wstring(path), std::wstring(L"abc") + kPathSeparator + L"def");
  EXPECT_FALSE(JoinPath(path, L"abcd", L"def"));
  EXPECT_STREQ(path, L"");
}

TEST(FileNaming, AFolderIsMadeForAFileIfItCanBe) {
  const test::TestFolder root;
  const std::filesystem::path folder = root.Path() / "records";
  const Handle file = CreateInFolder(folder.wstring().c_str(), L"a.log");
  ASSERT_NE(file, Handle::invalid);
  CloseFile(file);
  EXPECT_TRUE(std::filesystem::is_regular_file(folder / "a.log"));
  EXPECT_EQ(CreateInFolder((root.Path() / "no" / "parent").wstring().c_str(), L"a.log"), Handle::invalid);
}

}  // namespace
}  // namespace tw
