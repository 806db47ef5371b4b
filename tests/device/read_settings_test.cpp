// Reading the whole parameter set of the families that are asked query by query, with each query failing in
// turn in each way.
#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "device/settings_readers.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

using S = DeviceSettings;

// What a failure does to the reading.
enum class After : uint8_t { fails, ends, skipsNext };

// A field of the record of either type; none for what stands elsewhere.
struct Field {
  constexpr Field() = default;
  constexpr Field(int32_t S::*field) : whole(field) {}
  constexpr Field(float S::*field) : real(field) {}

  void Set(S& settings, double value) const {
    if (whole != nullptr) settings.*whole = static_cast<int32_t>(value);
    if (real != nullptr) settings.*real = static_cast<float>(value);
  }
  [[nodiscard]] double Get(const S& settings) const {
    if (whole != nullptr) return settings.*whole;
    return real != nullptr ? static_cast<double>(settings.*real) : 0.0;
  }

  int32_t S::*whole = nullptr;
  float S::*real = nullptr;
};

struct Query {
  std::string_view keyword;
  std::string answer;
  double kept;  // of the answer
  Field field;
  After after = After::ends;
  double fallback = -1;  // what a failure leaves in the field; -1: what stood there
};

const Query kFirstFamily[] = {
    {"##maxrangel", "201000", 201'000, &S::maxRangeLow_mm, After::fails},
    {"#rangeh", "31000", 31'000, &S::rangeHigh_mm, After::fails},
    {"#auto", "0", 0, &S::automaticMode, After::skipsNext},
    {"#preset", "3", 3, &S::preset},
    {"##maxrangeh", "101000", 101'000, &S::maxRangeHigh_mm},
    {"##maxlengthh", "205", 205, &S::maxLengthHigh},
    {"##maxlengthl", "410", 410, &S::maxLengthLow},
    {"#swversion", "1.25", 0, {}, After::fails},
    {"#getfreq", "447000", 447'000, &S::frequencyInUse_hz, After::fails},
    {"#rangel", "61000", 61'000, &S::rangeLow_mm, After::fails},
    {"#rangeh", "32000", 32'000, &S::rangeHigh_mm, After::fails},
    {"#interval", "0.25", 250, &S::pingInterval_ms},
    {"#output", "5", 6, &S::outputMode},
    {"#thresholdl", "21", 21, &S::thresholdLow_percent},
    {"#thresholdh", "22", 22, &S::thresholdHigh_percent},
    {"#offsetl", "-11", -11, &S::offsetLow_mm},
    {"#offseth", "+12", 12, &S::offsetHigh_mm},
    {"#deadzonel", "151", 151, &S::deadZoneLow_mm},
    {"#deadzoneh", "152", 152, &S::deadZoneHigh_mm},
    {"#txlengthl", "41", 41, &S::txLengthLow},
    {"#txlengthh", "42", 42, &S::txLengthHigh},
    {"#gainlow", "-1.5", -1.5, &S::gainLow},
    {"#gainhigh", "2.5", 2.5, &S::gainHigh},
    {"#tvgsprdl", "15.5", 15.5, &S::tvgSpreadingLow},
    {"#tvgsprdh", "20.5", 20.5, &S::tvgSpreadingHigh},
    {"#tvgabslow", "0.0625", 0.0625, &S::tvgAbsorptionLow},
    {"#tvgabshigh", ".125", 0.125, &S::tvgAbsorptionHigh},
    {"##freql", "199000", 199'000, &S::lowFrequency_hz},
    {"##freqh", "447000", 447'000, &S::highFrequency_hz},
    {"#tvgmode", "2", 2, &S::tvgMode},
    {"#iden", "KT-1042", 0, {}},
    {"#sound", "1487.5", 1487.5, &S::soundSpeed_mps},
    {"#txpower", "87.5", 87.5, &S::txPower},
    {"#samplfreq", "25000", 25'000, &S::samplingFrequency_hz},
    {"#attnl", "1", 1, &S::attenuationLow},
    {"#attnh", "2", 2, &S::attenuationHigh},
    {"##vfreql", "200000", 200'000, &S::virtualLowFrequency_hz},
    {"##vfreqh", "450000", 450'000, &S::virtualHighFrequency_hz},
    {"##getsimul", "0", 0, &S::simultaneous},
    {"#smooth", "0", 0, &S::smoothing, After::skipsNext, 0},
    {"#outrate", "7.5", 7.5, &S::outputRate},
    {"#medianflt", "5", 5, &S::medianFilter, After::ends, 2},
    {"#movavgflt", "4", 4, &S::movingAverageFilter, After::ends, 1},
};

const Query kSecondFamily[] = {
    {"#iden", "1042", 1042, &S::identifierWord, After::fails},
    {"#range", "50", 50, &S::rangeHigh_mm, After::fails},
    {"#auto", "0", 0, &S::automaticMode, After::skipsNext},
    {"#preset", "255", 255, &S::preset},
    {"#interval", "0.1", 100, &S::pingInterval_ms},
    {"#output", "5", 5, &S::outputMode},
    {"#threshold", "20", 20, &S::thresholdHigh_percent},
    {"#offset", "-30", -30, &S::offsetHigh_mm},
    {"#deadzone", "150", 150, &S::deadZoneHigh_mm},
    {"#txlength", "50", 50, &S::txLengthHigh},
    {"#gain", "-2.5", -2.5, &S::gainHigh},
    {"#tvgmode", "1", 1, &S::tvgMode},
    {"#tvgsprd", "15.5", 15.5, &S::tvgSpreadingHigh},
    {"#tvgabs", "0.125", 0.125, &S::tvgAbsorptionHigh},
    {"#sound", "1500", 1500, &S::soundSpeed_mps},
    {"#getfreq", "450000", 450'000, &S::frequencyInUse_hz},
    {"#samplfreq", "100000", 100'000, &S::samplingFrequency_hz},
    {"#medianflt", "3", 3, &S::medianFilter},
    {"#movavgflt", "4", 4, &S::movingAverageFilter},
    {"#swversion", "1.25", 0, {}},
};

struct Family {
  friend void PrintTo(const Family& family, std::ostream* out) { *out << family.name; }
  const char* name;
  LinkResult (*read)(DeviceLink&, S&, bool&);
  std::span<const Query> queries;
};
const Family kFirst = {"First", ReadAllSettings, kFirstFamily};
const Family kSecond = {"Second", ReadSecondFamilySettings, kSecondFamily};

// A record in which every field shows whether it was set; the filters are small enough to be replaced.
S Before() {
  S settings;
  std::memset(&settings, 0x11, sizeof settings);
  std::memset(settings.identity, 0, sizeof settings.identity);
  settings.medianFilter = 0;
  settings.movingAverageFilter = 0;
  return settings;
}

std::string Reply(std::string_view keyword, std::string_view answer) {
  return std::string(keyword) + "\r\n" + std::string(answer) + "\r\n\r\n>";
}

// One reading in which a query fails: what the device says and is asked, and what is left.
struct Reading {
  Reading(const Family& family, size_t failing, std::string_view failure, const DeviceFacts& before)
      : facts(before) {
    for (size_t i = 0; i < family.queries.size(); ++i) {
      const Query& query = family.queries[i];
      asked += std::string(query.keyword) + "\r";
      replies.push_back(i == failing ? std::string(failure) : Reply(query.keyword, query.answer));
      if (i != failing) {
        Keep(query, family.read == ReadAllSettings);
        continue;
      }
      if (query.fallback >= 0) query.field.Set(settings, query.fallback);
      if (query.keyword == "#auto") facts.presetCapable = false;
      if (query.keyword == "#smooth") {
        settings.outputRate = 0;
        facts.smoothingSupported = false;
      }
      if (query.after == After::fails) result = LinkResult::invalid;
      if (query.after != After::skipsNext) return;
      ++i;
    }
  }

  void Keep(const Query& query, bool first) {
    query.field.Set(settings, query.kept);
    if (query.keyword == "#getfreq" && !first) {
      settings.highFrequency_hz = settings.virtualHighFrequency_hz = settings.frequencyInUse_hz;
    }
    if (query.keyword == "#iden" && first) std::strcpy(settings.identity, query.answer.c_str());
    if (query.keyword == "#auto") facts.presetCapable = true;
    if (query.keyword == "#preset") facts.currentPreset = static_cast<int32_t>(query.kept);
    if (query.keyword == "#swversion") facts.firmwareVersion = 1.25f;
    if (query.keyword == "#smooth") facts.smoothingSupported = true;
  }

  std::vector<std::string> replies;
  std::string asked;
  LinkResult result = LinkResult::success;
  S settings = Before();
  DeviceFacts facts;
};

class ReadSettings : public test::ScriptedLineTest, public testing::WithParamInterface<Family> {
 protected:
  void Read(const Family& family, const std::vector<std::string>& replies, const S& before = Before(),
            const DeviceFacts& facts = {}) {
    device_ = test::LineScript();
    for (const std::string& reply : replies) device_.replies.push_back({reply});
    link_.facts = facts;
    settings_ = before;
    result_ = family.read(link_, settings_, silent_);
  }

  S settings_{};
  LinkResult result_ = LinkResult::success;
  bool silent_ = false;
};

TEST_P(ReadSettings, EachQueryFailingInItsTurn) {
  const std::span<const Query> queries = GetParam().queries;
  for (const std::string failure : {"", "#x\r\n\r\n>", "#x\r\nError\r\n\r\n>"}) {
    for (size_t turn = 0; turn < 2 * (queries.size() + 1); ++turn) {
      const size_t failing = turn / 2;
      const bool able = turn % 2 == 1;
      const DeviceFacts before{.presetCapable = able, .currentPreset = 7, .smoothingSupported = able};
      const std::string keyword(failing < queries.size() ? queries[failing].keyword : "none");
      SCOPED_TRACE(keyword + " answered with " + failure);
      // An identity that is a text can be any, and none.
      if (keyword == "#iden" && failing > 0 && !failure.empty()) continue;
      const Reading expected(GetParam(), failing, failure, before);
      Read(GetParam(), expected.replies, Before(), before);
      EXPECT_EQ(result_, expected.result);
      EXPECT_EQ(silent_, failure.empty() && expected.result != LinkResult::success);
      EXPECT_EQ(device_.received, expected.asked);
      for (const Query& query : queries) {
        EXPECT_EQ(query.field.Get(settings_), query.field.Get(expected.settings)) << "of " << query.keyword;
      }
      EXPECT_STREQ(settings_.identity, expected.settings.identity);
      EXPECT_EQ(std::memcmp(&settings_, &expected.settings, sizeof settings_), 0) << "what no query tells";
      EXPECT_EQ(link_.facts.presetCapable, expected.facts.presetCapable);
      EXPECT_EQ(link_.facts.currentPreset, expected.facts.currentPreset);
      EXPECT_EQ(link_.facts.smoothingSupported, expected.facts.smoothingSupported);
      EXPECT_EQ(link_.facts.firmwareVersion, expected.facts.firmwareVersion);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Families, ReadSettings, testing::Values(kFirst, kSecond),
                         [](const auto& family) { return std::string(family.param.name); });

// Answers of the first family that change what is kept.
class ReadFirstFamily : public ReadSettings {
 protected:
  struct Answer {
    std::string_view keyword;
    std::string_view text;  // empty: the query is not asked
  };
  void ReadWith(const std::vector<Answer>& others, const S& before = Before()) {
    std::vector<std::string> replies;
    for (const Query& query : kFirstFamily) {
      std::string_view text = query.answer;
      for (const Answer& other : others) text = other.keyword == query.keyword ? other.text : text;
      if (!text.empty()) replies.push_back(Reply(query.keyword, text));
    }
    Read(kFirst, replies, before);
    EXPECT_EQ(result_, LinkResult::success);
  }
};

TEST_F(ReadFirstFamily, AnyLineIsAnIdentityAlsoAnEmptyOne) {
  for (const std::string line : {"Error", "\r"}) {
    ReadWith({{"#iden", line}, {"##getsimul", "1"}});
    EXPECT_STREQ(settings_.identity, line == "\r" ? "" : "Error");
    EXPECT_EQ(settings_.simultaneous, 1) << "the reading goes on";
    EXPECT_EQ(settings_.movingAverageFilter, 4);
  }
}

TEST_F(ReadFirstFamily, TheAutomaticModeIsPresetTenWithoutAsking) {
  ReadWith({{"#auto", "1"}, {"#preset", ""}});
  EXPECT_EQ(settings_.preset, 10);
  EXPECT_EQ(link_.facts.currentPreset, 10);
  EXPECT_EQ(settings_.movingAverageFilter, 4);
}

TEST_F(ReadFirstFamily, WhileSmoothingTheFiltersAreAskedInVain) {
  ReadWith({{"#smooth", "1"}, {"#medianflt", "Error"}, {"#movavgflt", "Error"}});
  EXPECT_EQ(settings_.medianFilter, 0);
  EXPECT_EQ(settings_.movingAverageFilter, 0);
  EXPECT_TRUE(device_.received.ends_with("#medianflt\r#movavgflt\r"));
}

TEST_F(ReadFirstFamily, FiltersThatAreLargeEnoughStay) {
  const struct {
    std::string_view refused;
    int32_t S::*filter;
    int32_t before, after;
  } rows[] = {{"#medianflt", &S::medianFilter, -1, 2},       {"#medianflt", &S::medianFilter, 2, 2},
              {"#medianflt", &S::medianFilter, 3, 3},        {"#movavgflt", &S::movingAverageFilter, 1, 1},
              {"#movavgflt", &S::movingAverageFilter, 0, 1}, {"#movavgflt", &S::movingAverageFilter, 2, 2}};
  for (const auto& row : rows) {
    S before = Before();
    before.*row.filter = row.before;
    ReadWith({{row.refused, "Error"}}, before);
    EXPECT_EQ(settings_.*row.filter, row.after) << row.refused << " " << row.before;
  }
}

TEST_F(ReadFirstFamily, TheHighChannelIsActiveOnlyAlone) {
  const struct {
    const char* inUse;
    const char* simultaneous;
    bool active;
  } rows[] = {{"447000", "0", true}, {"199000", "0", false}, {"447000", "1", false}};
  for (const auto& row : rows) {
    ReadWith({{"#getfreq", row.inUse}, {"##getsimul", row.simultaneous}});
    EXPECT_EQ(link_.facts.highChannelActive, row.active) << row.inUse << " " << row.simultaneous;
  }
}

TEST_F(ReadFirstFamily, AnIntervalBeyondReasonIsNotTaken) {
  const struct {
    const char* interval;
    int32_t kept;
  } rows[] = {{"0", 0}, {"0.0157", 15}, {"3600", 3'600'000}, {"3601", 0x11111111}, {"-0.5", 0x11111111}};
  for (const auto& row : rows) {
    ReadWith({{"#interval", row.interval}});
    EXPECT_EQ(settings_.pingInterval_ms, row.kept) << row.interval;
    EXPECT_EQ(settings_.movingAverageFilter, 4) << "the reading goes on";
  }
}

}  // namespace
}  // namespace tw
