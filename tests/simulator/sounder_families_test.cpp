// What each family of the device knows, tells and can be told, and the first family's variants.
#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

constexpr DeviceFamily kFirst = DeviceFamily::first;
constexpr DeviceFamily kSecond = DeviceFamily::second;
constexpr DeviceFamily kThird = DeviceFamily::third;

struct Value {
  const char* keyword;
  const char* factory;
  const char* other = "9";  // another one, where it can be set
};

constexpr Value kFacts[] = {
    {"#getfreq", "450000"},
    {"#samplfreq", "25000"},
    {"#swversion", "2.10"},
};
constexpr Value kFactsOfTwoChannels[] = {
    {"##maxrangel", "200000"}, {"##maxrangeh", "200000"}, {"##maxlengthl", "1000"}, {"##maxlengthh", "1000"},
    {"##freql", "200000"},     {"#getfreql", "200000"},   {"#getfl", "200000"},     {"##freqh", "450000"},
    {"#getfreqh", "450000"},   {"#getfh", "450000"},      {"##vfreql", "200000"},   {"##vfreqh", "450000"},
    {"##getsimul", "0"},       {"#smooth", "0"},
};
constexpr Value kSettingsOfTwoChannels[] = {
    {"#rangel", "30000", "200000"},  {"#rangeh", "30000", "1000"}, {"#thresholdl", "10", "0"},
    {"#thresholdh", "10", "100"},    {"#offsetl", "0", "-10000"},  {"#offseth", "0", "10000"},
    {"#deadzonel", "500", "200000"}, {"#deadzoneh", "500", "0"},   {"#txlengthl", "100", "1"},
    {"#txlengthh", "50", "1000"},    {"#attnl", "0", "1"},         {"#attnh", "0", "100"},
};
constexpr Value kGainsOfTwoChannels[] = {
    {"#gainlow", "0.000", "-60.000"},  {"#gainhigh", "0.000", "60.000"}, {"#tvgsprdl", "15.000", "0.000"},
    {"#tvgsprdh", "15.000", "60.000"}, {"#tvgabslow", "0.060", "0.000"}, {"#tvgabshigh", "0.140", "2.000"},
    {"#txpower", "100.000", "12.500"}, {"#outrate", "0.00", "100.00"},
};
constexpr Value kSettingsOfOneChannel[] = {
    {"#threshold", "10", "55"},    {"#offset", "0", "-250"},      {"#deadzone", "500", "32767"},
    {"#txlength", "50", "321"},    {"#gain", "0.000", "-12.500"}, {"#tvgsprd", "15.000", "22.500"},
    {"#tvgabs", "0.140", "0.125"},
};
constexpr Value kPresetsAndFilters[] = {
    {"#auto", "0", "1"},
    {"#preset", "255", "3"},
    {"#medianflt", "1", "31"},
    {"#movavgflt", "1", "31"},
};
constexpr Value kSettings[] = {
    {"#range", "30000", "1000"}, {"#interval", "0.00", "0.25"},
    {"#output", "2", "4"},       {"#sound", "1500.000", "1487.500"},
    {"#tvgmode", "1", "3"},      {"#pingonce", "0", "1"},
    {"#nmeadbt", "1", "0"},      {"#nmeadpt", "0", "1"},
    {"#nmeamtw", "1", "0"},      {"#nmeaxdr", "1", "0"},
    {"#nmeaema", "1", "0"},      {"#nmeazda", "1", "0"},
    {"#nmeadpzero", "1", "0"},
};

enum class Can : uint8_t { nothing, ask, set, both };

// What the families can do with each of the values.
struct Group {
  std::span<const Value> values;
  Can first, second, third;

  [[nodiscard]] Can Of(DeviceFamily family) const {
    return family == kFirst ? first : family == kSecond ? second : third;
  }
};
constexpr Group kGroups[] = {
    {kFacts, Can::ask, Can::ask, Can::nothing},
    {kFactsOfTwoChannels, Can::ask, Can::nothing, Can::nothing},
    {kSettingsOfTwoChannels, Can::both, Can::nothing, Can::nothing},
    {kGainsOfTwoChannels, Can::both, Can::nothing, Can::nothing},
    {kSettingsOfOneChannel, Can::nothing, Can::both, Can::set},
    {kPresetsAndFilters, Can::both, Can::both, Can::nothing},
    {kSettings, Can::both, Can::both, Can::set},
};

class Families : public testing::TestWithParam<DeviceFamily> {
 protected:
  // Calls visit(value, asks, sets) for each value of any family.
  template <typename Visitor>
  void ForEachValue(Visitor visit) {
    for (const Group& group : kGroups) {
      const Can can = group.Of(GetParam());
      for (const Value& value : group.values) {
        SCOPED_TRACE(value.keyword);
        visit(value, can == Can::ask || can == Can::both, can == Can::set || can == Can::both);
      }
    }
  }
  void ExpectFactoryValues() {
    ForEachValue([&](const Value& value, bool asks, bool) {
      EXPECT_EQ(end_.Ask(value.keyword, 100),
                asks ? Told(value.keyword, value.factory) : Refused(value.keyword));
    });
  }

  Sounder end_{{.family = GetParam()}};
};

TEST_P(Families, TellAndTakeWhatTheyKnowAndGoBackToTheFactorysValues) {
  const std::string information = end_.Ask("#info");
  ExpectFactoryValues();
  ForEachValue([&](const Value& value, bool asks, bool sets) {
    const std::string setting = std::string(value.keyword) + " " + value.other;
    EXPECT_EQ(end_.Ask(setting, 100), sets ? Accepted(setting) : Refused(setting));
    if (asks && sets) {
      EXPECT_EQ(end_.Ask(value.keyword, 100), Told(value.keyword, value.other));
    }
  });
  if (GetParam() == kFirst) (void)end_.Ask("#setfreqdual");
  EXPECT_NE(end_.Ask("#info"), information);
  EXPECT_EQ(end_.Ask("#default"), Accepted("#default"));
  ExpectFactoryValues();
  EXPECT_EQ(end_.Ask("#info"), information);
}

TEST_P(Families, KeepTimeAndSpeedWhenTheyGoBack) {
  for (const auto line : {"#time 1800000000", "#speed 3000000", "#default"}) {
    EXPECT_EQ(end_.Ask(line, 100), Accepted(line));
  }
  EXPECT_EQ(end_.Ask("#time"), Told("#time", "1800000000"));
  EXPECT_EQ(end_.Ask("#speed"), Told("#speed", "3000000")) << "the line stays as it is";
}

TEST_P(Families, CommandsWithoutValue) {
  for (const auto line : {"#setfreqlow", "#setfreqhigh", "#setfreqdual"}) {
    EXPECT_EQ(end_.Ask(line), GetParam() == kFirst ? Accepted(line) : Refused(line));
  }
  EXPECT_EQ(end_.Ask("#reset"), Accepted("#reset"));
  EXPECT_TRUE(end_.Ask("#go", 50).starts_with("#go\r\n"));
  EXPECT_TRUE(end_.device.Streaming());
}

TEST_P(Families, OneChannelHasNoLowFrequency) {
  const Sounder both({.family = GetParam(), .lowFrequency = true, .dual = true});
  const bool two = GetParam() == kFirst;
  EXPECT_EQ(both.device.Settings().Whole(Setting::frequencyInUse), two ? 200'000 : 450'000);
  EXPECT_EQ(both.device.Settings().Whole(Setting::simultaneous), two ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(All, Families, testing::Values(kFirst, kSecond, kThird), [](const auto& family) {
  return family.param == kFirst ? "First" : family.param == kSecond ? "Second" : "Third";
});

TEST(Identity, IsATextOrANumber) {
  const struct {
    DeviceFamily family;
    const char* identity;
    const char* told;
  } rows[] = {
      {kFirst, "", "VIRTUAL-0001"}, {kFirst, "SIM0001", "SIM0001"}, {kSecond, "", "42"},
      {kSecond, "SIM0001", "42"},   {kSecond, "1042", "1042"},      {kSecond, "1234567890", "42"},
      {kThird, "1042", "Error"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sounder({.family = row.family, .identity = row.identity}).Ask("#iden"), Told("#iden", row.told))
        << row.identity;
  }
}

// The third family's block of 38 bytes, or of another length, was packed by another program.
TEST(Information, AsEachFamilyTellsIt) {
  const std::string frequency = "]\r\nTx Frequency      450000 Hz  ";
  const struct {
    SounderOptions options;
    std::string told;
  } rows[] = {
      {{.interfaceWord = InterfaceWord::usb},
       "Device VIRTUAL-0001\r\nFirmware 2.10\r\nRange 30000 mm\r\nOutput 2\r\nInterface USB"},
      {{.family = kSecond, .identity = "1042", .firmware_hundredths = 195},
       "Device 1042\r\nFirmware 1.95\r\nRange 30000 mm\r\nOutput 2"},
      {{.family = kThird}, "B64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AU=" + frequency},
      {{.family = kThird, .faults = {.informationBytes = 13}}, "B64INFO[JgAAACoAAAAwdQAAMg==" + frequency},
      {{.family = kThird, .faults = {.informationBytes = 40}},
       "B64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AUAAA==" + frequency},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sounder(row.options).Ask("#info"), Told("#info", row.told));
  }
  EXPECT_EQ(Sounder({.family = kThird}).Ask("#deadzone 32768"), Refused("#deadzone 32768"))
      << "the block could not tell it";
}

TEST(Variants, AutomaticModeAndPresetGoTogether) {
  const struct {
    const char* line;
    const char* automatic;
    const char* preset;
  } rows[] = {{"#auto 1", "1", "10"},
              {"#preset 3", "0", "3"},
              {"#preset 10", "1", "10"},
              {"#auto 0", "0", "255"},
              {"#preset 0", "0", "0"}};
  Sounder end({});
  for (const auto& row : rows) {
    EXPECT_EQ(end.Ask(row.line), Accepted(row.line));
    EXPECT_EQ(end.Ask("#auto"), Told("#auto", row.automatic)) << row.line;
    EXPECT_EQ(end.Ask("#preset"), Told("#preset", row.preset)) << row.line;
  }
  EXPECT_EQ(Sounder({.automatic = true}).Ask("#preset"), Told("#preset", "10"));
  EXPECT_EQ(Sounder({.preset = 7}).Ask("#preset"), Told("#preset", "7"));
}

TEST(Variants, Smoothing) {
  const struct {
    Smoothing smoothing;
    const char* smooth;
    const char* rate;
  } rows[] = {
      {Smoothing::absent, "Error", "Error"}, {Smoothing::off, "0", "2.50"}, {Smoothing::on, "1", "2.50"}};
  for (const auto& row : rows) {
    Sounder end({.smoothing = row.smoothing});
    EXPECT_EQ(end.Ask("#smooth"), Told("#smooth", row.smooth));
    (void)end.Ask("#outrate 2.50");
    EXPECT_EQ(end.Ask("#outrate"), Told("#outrate", row.rate));
  }
}

TEST(Variants, OlderFirmwareCannotTellWhatCameLater) {
  for (const bool silent : {false, true}) {
    Sounder end({.faults = {.lacksFrom = "#txpower", .lacksSilently = silent}});
    EXPECT_EQ(end.Ask("##maxrangel"), Told("##maxrangel", "200000"));
    EXPECT_EQ(end.Ask("#sound"), Told("#sound", "1500.000")) << "the one before";
    for (const auto word : {"#txpower", "##getsimul", "#smooth", "#movavgflt"}) {
      EXPECT_EQ(end.Ask(word), silent ? "" : Refused(word));
    }
    EXPECT_EQ(end.Ask("#medianflt 5"), Accepted("#medianflt 5")) << "set it can be";
    EXPECT_EQ(end.device.Settings().Whole(Setting::medianFilter), 5);
  }
  Sounder second({.family = kSecond, .faults = {.lacksFrom = "#preset"}});
  EXPECT_EQ(second.Ask("#auto"), Told("#auto", "0"));
  EXPECT_EQ(second.Ask("#interval"), Refused("#interval"));
}

}  // namespace
}  // namespace tw::sim
