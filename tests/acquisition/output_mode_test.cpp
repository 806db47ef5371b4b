#include "acquisition/output_mode.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tw {
namespace {

// A family's table as the manual of the devices prints it: the selector's names in its order, the words of
// file names at Start and when switched on, what a recording is, and what its dual run does.
struct Told {
  OutputMode code;
  const wchar_t* name;
  std::string words;
  std::string recording;
  bool samples = false;
  bool attitude = false;
  bool oneFile = false;
};

const std::vector<Told> kFamily1 = {
    {1, L"Simple Altimeter", "simple simple", "simple altimeter lines"},
    {3, L"Altimeter NMEA", "nmea nmea", "NMEA epochs, first family", false, true},
    {2, L"Echo Txt 10bit", "txt10 txt10", "echo text, first family", true, true},
    {4, L"Echo Txt 12bit", "txt12 txt12", "echo text, first family", true, true},
    {100, L"Echo Bin 12bit", "bin12 bin12", "binary echo frames", true, true},
    {101, L"Echo Bin 8bit/compand", "bin8 bin8", "binary echo frames", true, true},
    {6, L"DESO-25(M)", "deso_M deso_M", "DESO-25 lines", false, false, true},
    {7, L"Altimeter Dual", "Dual dual", "dual altimeter lines", false, false, true},
    {8, L"Sonarmite DFX", "DFX dfx", "Sonarmite DFX lines", false, false, true},
    {9, L"Sonarmite OLD", "OLD old", "Sonarmite OLD lines", false, true}};

const std::vector<Told> kFamily2 = {
    {1, L"Altimeter Simple", "simple simple", "simple altimeter lines"},
    {2, L"Echo txt", "Echosounder Echosounder", "echo text, second family", true, true},
    {3, L"Altimeter NMEA", "nmea nmea", "NMEA epochs, second family", false, true},
    {4, L"Echo txt Fixed 200 Samples", "EchoSounder(200) EchoSounder(200)", "echo text, second family", true,
     true},
    {5, L"Echo txt Fixed 500 Samples", "EchoSounder(500) EchoSounder(500)", "echo text, second family", true,
     true},
    {6, L"Echo txt Fixed 1000 Samples", "EchoSounder(1000) EchoSounder(1000)", "echo text, second family",
     true, true},
    {7, L"PSA-916", "PSA-916 PSA-916", "PSA-916 lines"},
    {8, L"AltiPlusTemp.", "AltiTemp AltiTemp", "altitude and temperature lines"},
    {9, L"Sonarmite DFX", "DFX DFX", "Sonarmite DFX lines", false, false, true},
    {10, L"Sonarmite OLD", "OLD OLD", "Sonarmite OLD lines", false, true},
    {100, L"Echo Bin 10bit", "bin10 bin10", "binary echo frames", true, true},
    {101, L"Echo Bin 8bit/compand", "bin8 bin8", "binary echo frames", true, true}};

std::vector<Told> Family0() {
  std::vector<Told> rows = kFamily2;
  rows[1].name = L"Echo Txt";
  for (Told& row : rows) {
    if (row.code < 100) continue;
    row.name = L"";
    row.words = row.code == 100 ? "nmea bin10" : "nmea bin8";
  }
  return rows;
}

TEST(OutputMode, EachFamilyHasItsTable) {
  const struct {
    DeviceFamily family;
    std::vector<Told> told;
    std::vector<std::wstring> unknown;
  } families[] = {{DeviceFamily::first, kFamily1, {L"", L"Echo Txt", L"Altimeter Dual ", L"altimeter dual"}},
                  {DeviceFamily::second, kFamily2, {L"Echo Txt"}},
                  {DeviceFamily::third, Family0(), {L"", L"Echo txt", L"Echo Bin 10bit"}}};
  for (const auto& [family, told, unknown] : families) {
    ASSERT_EQ(AcceptedModes(family).size(), told.size());
    EXPECT_EQ(OfferedModes(family).size(), told.size() - (family == DeviceFamily::third ? 2 : 0));
    OutputMode mode = -7;
    for (const std::wstring& name : unknown) EXPECT_FALSE(ModeOfName(family, name, mode)) << name.c_str();
    EXPECT_EQ(mode, -7);
    for (size_t i = 0; i < told.size(); ++i) {
      const Told& each = told[i];
      SCOPED_TRACE(testing::Message() << "family " << static_cast<int>(family) << ", mode " << each.code);
      const OutputModeRow& row = AcceptedModes(family)[i];
      EXPECT_EQ(row.code, each.code);
      EXPECT_EQ(NameOfMode(family, each.code), each.name);
      const bool offered = *each.name != 0;
      EXPECT_EQ(ModeOfName(family, each.name, mode), offered);
      EXPECT_TRUE(!offered || mode == each.code);
      EXPECT_EQ(row.wordAtStart + std::string(" ") + row.wordSwitchedOn, each.words);
      EXPECT_EQ(row.recorded.name, each.recording);
      EXPECT_EQ(row.sent.HasSamples(), each.samples);
      EXPECT_EQ(row.sent.dualAttitude, each.attitude);
      EXPECT_EQ(row.sent.SharesFile(), each.oneFile);
      EXPECT_EQ(&row.reporting != &row.sent, family == DeviceFamily::first && each.code == 1);
    }
  }
}

TEST(OutputMode, ACodeThatTheFamilyDoesNotHaveIsNmea) {
  for (const auto family : {DeviceFamily::first, DeviceFamily::second, DeviceFamily::third}) {
    size_t accepted = 0;
    for (OutputMode mode = -1; mode <= 103; ++mode) {
      accepted += FindMode(family, mode) != nullptr;
      EXPECT_EQ(AcceptedMode(family, mode).code, FindMode(family, mode) == nullptr ? 3 : mode);
    }
    EXPECT_EQ(accepted, AcceptedModes(family).size());
    for (const OutputMode mode : {100, 101, 102}) EXPECT_EQ(PlayedMode(family, mode).Played(), 102);
    EXPECT_EQ(PlayedMode(family, 103).Played(), 3);
  }
}

}  // namespace
}  // namespace tw
