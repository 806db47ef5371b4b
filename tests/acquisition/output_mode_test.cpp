#include "acquisition/output_mode.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace tw {
namespace {

using Rows = std::vector<std::pair<OutputMode, std::wstring>>;

// The lists as the manual of the devices prints them.
const Rows kNamesOfFamily2 = {{1, L"Altimeter Simple"},
                              {2, L"Echo txt"},
                              {3, L"Altimeter NMEA"},
                              {4, L"Echo txt Fixed 200 Samples"},
                              {5, L"Echo txt Fixed 500 Samples"},
                              {6, L"Echo txt Fixed 1000 Samples"},
                              {7, L"PSA-916"},
                              {8, L"AltiPlusTemp."},
                              {9, L"Sonarmite DFX"},
                              {10, L"Sonarmite OLD"},
                              {100, L"Echo Bin 10bit"},
                              {101, L"Echo Bin 8bit/compand"}};
const Rows kNamesOfFamily1 = {{1, L"Simple Altimeter"}, {3, L"Altimeter NMEA"},
                              {2, L"Echo Txt 10bit"},   {4, L"Echo Txt 12bit"},
                              {100, L"Echo Bin 12bit"}, {101, L"Echo Bin 8bit/compand"},
                              {6, L"DESO-25(M)"},       {7, L"Altimeter Dual"},
                              {8, L"Sonarmite DFX"},    {9, L"Sonarmite OLD"}};

Rows NamesOfFamily0() {
  Rows rows(kNamesOfFamily2.begin(), kNamesOfFamily2.begin() + 10);
  rows[1].second = L"Echo Txt";
  return rows;
}

Rows Offered(int32_t family) {
  Rows rows;
  for (const OutputModeName& row : OfferedModes(family)) rows.emplace_back(row.code, row.name);
  return rows;
}

TEST(OutputMode, SelectorsOfferTheFamilysListInItsOrder) {
  EXPECT_EQ(Offered(2), kNamesOfFamily2);
  EXPECT_EQ(Offered(0), NamesOfFamily0());
  EXPECT_EQ(Offered(1), kNamesOfFamily1);
}

TEST(OutputMode, NamesAreFoundExactly) {
  const struct {
    int32_t family;
    const wchar_t* name;
    OutputMode mode;  // 0: none
  } cases[] = {
      {2, L"Echo txt", 2},
      {0, L"Echo Txt", 2},
      {1, L"Echo Txt 10bit", 2},
      {2, L"Echo Txt", 0},
      {0, L"Echo txt", 0},
      {1, L"Echo Txt", 0},
      {0, L"Echo Bin 10bit", 0},
      {2, L"Echo Bin 10bit", 100},
      {1, L"Echo Bin 12bit", 100},
      {1, L"Altimeter Dual ", 0},
      {1, L"", 0},
  };
  for (const auto& each : cases) {
    OutputMode mode = -7;
    EXPECT_EQ(ModeOfName(each.family, each.name, mode), each.mode != 0) << each.family;
    EXPECT_EQ(mode, each.mode != 0 ? each.mode : -7);
  }
}

TEST(OutputMode, AModeThatTheFamilyDoesNotKnowBecomesNmea) {
  const struct {
    int32_t family;
    std::vector<OutputMode> accepted;
  } cases[] = {{1, {1, 2, 3, 4, 6, 7, 8, 9, 100, 101}},
               {2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 100, 101}},
               {0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 100, 101}}};
  for (const auto& each : cases) {
    std::vector<OutputMode> accepted;
    for (OutputMode mode = -1; mode <= 103; ++mode) {
      if (AcceptedMode(each.family, mode) == mode) {
        accepted.push_back(mode);
      } else {
        EXPECT_EQ(AcceptedMode(each.family, mode), 3);
      }
    }
    EXPECT_EQ(accepted, each.accepted) << "family " << each.family;
  }
}

TEST(OutputMode, EchoSamplesByFamily) {
  std::vector<OutputMode> first;
  std::vector<OutputMode> second;
  for (OutputMode mode = 0; mode <= 101; ++mode) {
    if (CarriesEchoSamples(1, mode)) first.push_back(mode);
    if (CarriesEchoSamples(2, mode)) second.push_back(mode);
    EXPECT_EQ(CarriesEchoSamples(0, mode), CarriesEchoSamples(2, mode));
  }
  EXPECT_EQ(first, (std::vector<OutputMode>{2, 4, 100, 101}));
  EXPECT_EQ(second, (std::vector<OutputMode>{2, 4, 5, 6, 100, 101}));
}

}  // namespace
}  // namespace tw
