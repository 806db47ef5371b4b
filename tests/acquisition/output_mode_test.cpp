#include "acquisition/output_mode.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace tw {
namespace {

using Rows = std::vector<std::pair<OutputMode, std::wstring>>;

// The lists as the manual of the devices prints them.
const Rows kNamesOfFamily1 = {{1, L"Simple Altimeter"}, {3, L"Altimeter NMEA"},
                              {2, L"Echo Txt 10bit"},   {4, L"Echo Txt 12bit"},
                              {100, L"Echo Bin 12bit"}, {101, L"Echo Bin 8bit/compand"},
                              {6, L"DESO-25(M)"},       {7, L"Altimeter Dual"},
                              {8, L"Sonarmite DFX"},    {9, L"Sonarmite OLD"}};
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

Rows NamesOfFamily0() {
  Rows rows(kNamesOfFamily2.begin(), kNamesOfFamily2.begin() + 10);
  rows[1].second = L"Echo Txt";
  return rows;
}

TEST(OutputMode, EachFamilyHasItsListsAndFindsItsNamesExactly) {
  const std::vector<OutputMode> others{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 100, 101};
  const struct {
    int32_t family;
    Rows offered;
    std::vector<OutputMode> accepted;  // any other becomes NMEA
    std::vector<OutputMode> echo;      // carry samples
    std::vector<std::wstring> unknown;
  } rows[] = {{1,
               kNamesOfFamily1,
               {1, 2, 3, 4, 6, 7, 8, 9, 100, 101},
               {2, 4, 100, 101},
               {L"", L"Echo Txt", L"Altimeter Dual ", L"altimeter dual"}},
              {2, kNamesOfFamily2, others, {2, 4, 5, 6, 100, 101}, {L"Echo Txt"}},
              {0, NamesOfFamily0(), others, {2, 4, 5, 6, 100, 101}, {L"Echo txt", L"Echo Bin 10bit"}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.family);
    Rows offered;
    for (const OutputModeName& each : OfferedModes(row.family)) offered.emplace_back(each.code, each.name);
    EXPECT_EQ(offered, row.offered);
    std::vector<OutputMode> accepted;
    std::vector<OutputMode> echo;
    for (OutputMode mode = -1; mode <= 103; ++mode) {
      if (CarriesEchoSamples(row.family, mode)) echo.push_back(mode);
      if (AcceptedMode(row.family, mode) == mode) {
        accepted.push_back(mode);
      } else {
        EXPECT_EQ(AcceptedMode(row.family, mode), 3) << mode;
      }
    }
    EXPECT_EQ(accepted, row.accepted);
    EXPECT_EQ(echo, row.echo);
    OutputMode mode = -7;
    for (const std::wstring& name : row.unknown)
      EXPECT_FALSE(ModeOfName(row.family, name.c_str(), mode)) << name.c_str();
    EXPECT_EQ(mode, -7);
    for (const auto& [code, name] : row.offered) {
      EXPECT_TRUE(ModeOfName(row.family, name.c_str(), mode)) << code;
      EXPECT_EQ(mode, code);
    }
  }
}

}  // namespace
}  // namespace tw
