// What each family of the device knows, tells and can be told, and the first family's variants.
#include <gtest/gtest.h>

#include <vector>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

constexpr DeviceFamily kFirst = DeviceFamily::first;
constexpr DeviceFamily kSecond = DeviceFamily::second;
constexpr DeviceFamily kThird = DeviceFamily::third;
constexpr DeviceFamily kFamilies[] = {kFirst, kSecond, kThird};

enum class Can : uint8_t { nothing, ask, set, both };

// A value that is not the factory's, as it is sent and as it reads back.
struct Row {
  const char* keyword;
  const char* sent;
  const char* told;
  Can first, second, third;

  [[nodiscard]] Can Of(DeviceFamily family) const {
    return family == kFirst ? first : family == kSecond ? second : third;
  }
  [[nodiscard]] std::string Setting() const { return std::string(keyword) + " " + sent; }
};

constexpr Row kRows[] = {
    {"##maxrangel", "9", "200000", Can::ask, Can::nothing, Can::nothing},
    {"##maxrangeh", "9", "200000", Can::ask, Can::nothing, Can::nothing},
    {"##maxlengthl", "9", "1000", Can::ask, Can::nothing, Can::nothing},
    {"##maxlengthh", "9", "1000", Can::ask, Can::nothing, Can::nothing},
    {"#rangel", "200000", "200000", Can::both, Can::nothing, Can::nothing},
    {"#rangeh", "1000", "1000", Can::both, Can::nothing, Can::nothing},
    {"#thresholdl", "0", "0", Can::both, Can::nothing, Can::nothing},
    {"#thresholdh", "100", "100", Can::both, Can::nothing, Can::nothing},
    {"#offsetl", "-10000", "-10000", Can::both, Can::nothing, Can::nothing},
    {"#offseth", "10000", "10000", Can::both, Can::nothing, Can::nothing},
    {"#deadzonel", "200000", "200000", Can::both, Can::nothing, Can::nothing},
    {"#deadzoneh", "0", "0", Can::both, Can::nothing, Can::nothing},
    {"#txlengthl", "1", "1", Can::both, Can::nothing, Can::nothing},
    {"#txlengthh", "1000", "1000", Can::both, Can::nothing, Can::nothing},
    {"#gainlow", "-60.000", "-60.000", Can::both, Can::nothing, Can::nothing},
    {"#gainhigh", "60.000", "60.000", Can::both, Can::nothing, Can::nothing},
    {"#tvgsprdl", "0.000", "0.000", Can::both, Can::nothing, Can::nothing},
    {"#tvgsprdh", "60.000", "60.000", Can::both, Can::nothing, Can::nothing},
    {"#tvgabslow", "0.000", "0.000", Can::both, Can::nothing, Can::nothing},
    {"#tvgabshigh", "2.000", "2.000", Can::both, Can::nothing, Can::nothing},
    {"#attnl", "1", "1", Can::both, Can::nothing, Can::nothing},
    {"#attnh", "100", "100", Can::both, Can::nothing, Can::nothing},
    {"##freql", "9", "200000", Can::ask, Can::nothing, Can::nothing},
    {"##freqh", "9", "450000", Can::ask, Can::nothing, Can::nothing},
    {"##vfreql", "9", "200000", Can::ask, Can::nothing, Can::nothing},
    {"##vfreqh", "9", "450000", Can::ask, Can::nothing, Can::nothing},
    {"##getsimul", "1", "0", Can::ask, Can::nothing, Can::nothing},
    {"#smooth", "1", "0", Can::ask, Can::nothing, Can::nothing},
    {"#outrate", "100.00", "100.00", Can::both, Can::nothing, Can::nothing},
    {"#txpower", "12.500", "12.500", Can::both, Can::nothing, Can::nothing},
    {"#range", "1000", "1000", Can::both, Can::both, Can::set},
    {"#threshold", "55", "55", Can::nothing, Can::both, Can::set},
    {"#offset", "-250", "-250", Can::nothing, Can::both, Can::set},
    {"#deadzone", "32767", "32767", Can::nothing, Can::both, Can::set},
    {"#txlength", "321", "321", Can::nothing, Can::both, Can::set},
    {"#gain", "-12.500", "-12.500", Can::nothing, Can::both, Can::set},
    {"#tvgsprd", "22.500", "22.500", Can::nothing, Can::both, Can::set},
    {"#tvgabs", "0.125", "0.125", Can::nothing, Can::both, Can::set},
    {"#interval", "0.25", "0.25", Can::both, Can::both, Can::set},
    {"#output", "4", "4", Can::both, Can::both, Can::set},
    {"#sound", "1487.500", "1487.500", Can::both, Can::both, Can::set},
    {"#tvgmode", "3", "3", Can::both, Can::both, Can::set},
    {"#auto", "1", "1", Can::both, Can::both, Can::nothing},
    {"#preset", "3", "3", Can::both, Can::both, Can::nothing},
    {"#getfreq", "200000", "450000", Can::ask, Can::ask, Can::nothing},
    {"#samplfreq", "9", "25000", Can::ask, Can::ask, Can::nothing},
    {"#medianflt", "31", "31", Can::both, Can::both, Can::nothing},
    {"#movavgflt", "31", "31", Can::both, Can::both, Can::nothing},
    {"#swversion", "9", "2.10", Can::ask, Can::ask, Can::nothing},
    {"#pingonce", "1", "1", Can::both, Can::both, Can::set},
    {"#nmeadbt", "0", "0", Can::both, Can::both, Can::set},
    {"#nmeadpt", "1", "1", Can::both, Can::both, Can::set},
    {"#nmeamtw", "0", "0", Can::both, Can::both, Can::set},
    {"#nmeaxdr", "0", "0", Can::both, Can::both, Can::set},
    {"#nmeaema", "0", "0", Can::both, Can::both, Can::set},
    {"#nmeazda", "0", "0", Can::both, Can::both, Can::set},
    {"#nmeadpzero", "0", "0", Can::both, Can::both, Can::set},
    {"#time", "1800000000", "1800000000", Can::both, Can::both, Can::both},
    {"#speed", "3000000", "3000000", Can::both, Can::both, Can::both},
};

TEST(Families, TellAndTakeWhatTheyKnow) {
  for (const DeviceFamily family : kFamilies) {
    VirtualEchosounder device({.family = family});
    FarEnd end(device);
    for (const Row& row : kRows) {
      SCOPED_TRACE(testing::Message() << row.keyword << ", family " << static_cast<int>(family));
      const Can can = row.Of(family);
      const bool asks = can == Can::ask || can == Can::both;
      const bool sets = can == Can::set || can == Can::both;
      EXPECT_EQ(end.Ask(row.Setting(), 100), sets ? Accepted(row.Setting()) : Refused(row.Setting()));
      EXPECT_EQ(end.Ask(row.keyword, 100), asks ? Told(row.keyword, row.told) : Refused(row.keyword));
    }
  }
}

TEST(Families, CommandsWithoutValue) {
  const struct {
    const char* keyword;
    bool first, second, third;
  } rows[] = {
      {"#setfreqlow", true, false, false},  {"#setfreqhigh", true, false, false},
      {"#setfreqdual", true, false, false}, {"#default", true, true, true},
      {"#reset", true, true, true},
  };
  for (const DeviceFamily family : kFamilies) {
    VirtualEchosounder device({.family = family});
    FarEnd end(device);
    for (const auto& row : rows) {
      const bool known = family == kFirst ? row.first : family == kSecond ? row.second : row.third;
      EXPECT_EQ(end.Ask(row.keyword), known ? Accepted(row.keyword) : Refused(row.keyword));
    }
    EXPECT_TRUE(end.Ask("#go", 50).starts_with("#go\r\n"));
    EXPECT_TRUE(device.Streaming()) << static_cast<int>(family);
  }
}

TEST(Families, DefaultRestoresEverything) {
  for (const DeviceFamily family : kFamilies) {
    VirtualEchosounder device({.family = family});
    FarEnd end(device);
    const auto state = [&] {
      std::vector<std::string> answers = {end.Ask("#info")};
      for (const Row& row : kRows) {
        const bool keeps =
            std::string_view(row.keyword) == "#time" || std::string_view(row.keyword) == "#speed";
        if (!keeps) answers.push_back(end.Ask(row.keyword, 100));
      }
      return answers;
    };
    const auto before = state();
    for (const Row& row : kRows) (void)end.Ask(row.Setting(), 100);
    if (family == kFirst) (void)end.Ask("#setfreqdual");
    EXPECT_NE(state(), before);
    EXPECT_EQ(end.Ask("#default"), Accepted("#default"));
    EXPECT_EQ(state(), before) << static_cast<int>(family);
    EXPECT_EQ(end.Ask("#speed"), Told("#speed", "3000000")) << "the line stays as it is";
  }
}

TEST(Families, Identity) {
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
    VirtualEchosounder device({.family = row.family, .identity = row.identity});
    EXPECT_EQ(FarEnd(device).Ask("#iden"), Told("#iden", row.told)) << row.identity;
  }
}

TEST(Families, SecondTellsItsInformationAsText) {
  VirtualEchosounder device({.family = kSecond, .identity = "1042", .firmware_hundredths = 195});
  EXPECT_EQ(FarEnd(device).Ask("#info"),
            "#info\r\nDevice 1042\r\nFirmware 1.95\r\nRange 30000 mm\r\nOutput 2\r\n\r\n>");
}

// The blocks were packed by another program.
TEST(Families, ThirdTellsItsInformationAsABlock) {
  constexpr std::string_view kFrequency = "]\r\nTx Frequency      450000 Hz  \r\n\r\n>";
  VirtualEchosounder device({.family = kThird, .identity = "42"});
  EXPECT_EQ(
      FarEnd(device).Ask("#info"),
      "#info\r\nB64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AU=" + std::string(kFrequency));

  VirtualEchosounder changed({.family = kThird, .identity = "1042"});
  FarEnd end(changed);
  for (const auto line :
       {"#range 123456", "#txlength 321", "#interval 0.25", "#deadzone 32767", "#offset -250",
        "#threshold 55", "#gain -12.500", "#tvgsprd 22.500", "#tvgmode 3", "#output 10", "#sound 1487.250"}) {
    EXPECT_EQ(end.Ask(line), Accepted(line));
  }
  EXPECT_EQ(end.Ask("#deadzone 32768"), Refused("#deadzone 32768")) << "the block could not tell it";
  EXPECT_EQ(end.Ask("#info"), "#info\r\nB64INFO[JgAAABIEAABA4gEAQQEAAIA+/38G/zcAAABIwQAAtEEDAAoAzwU=" +
                                  std::string(kFrequency));
}

TEST(Families, BlockOfAnotherLength) {
  const struct {
    int32_t bytes;
    size_t text;
  } rows[] = {{0, 0}, {13, 20}, {189, 252}, {190, 256}};
  for (const auto& row : rows) {
    VirtualEchosounder device({.family = kThird, .faults = {.informationBytes = row.bytes}});
    const std::string answer = FarEnd(device).Ask("#info");
    const size_t begin = answer.find('[') + 1;
    EXPECT_EQ(answer.find(']') - begin, row.text);
    EXPECT_TRUE(answer.substr(begin).starts_with(row.bytes == 13 ? "JgAAACoAAAAwdQAAMg==]" : ""));
  }
}

TEST(Families, OutputIsOneThatTheFamilyStreams) {
  const struct {
    DeviceFamily family;
    std::vector<int> modes;
  } rows[] = {{kFirst, {1, 2, 3, 4, 6, 7, 8, 9, 100, 101}},
              {kSecond, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 100, 101}},
              {kThird, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 100, 101}}};
  for (const auto& row : rows) {
    VirtualEchosounder device({.family = row.family});
    FarEnd end(device);
    for (int mode = 0; mode <= 110; ++mode) {
      const std::string line = "#output " + std::to_string(mode);
      const bool known = std::find(row.modes.begin(), row.modes.end(), mode) != row.modes.end();
      EXPECT_EQ(end.Ask(line, 100), known ? Accepted(line) : Refused(line));
    }
  }
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
  VirtualEchosounder device({});
  FarEnd end(device);
  for (const auto& row : rows) {
    EXPECT_EQ(end.Ask(row.line), Accepted(row.line));
    EXPECT_EQ(end.Ask("#auto"), Told("#auto", row.automatic)) << row.line;
    EXPECT_EQ(end.Ask("#preset"), Told("#preset", row.preset)) << row.line;
  }
  VirtualEchosounder automatic({.automatic = true});
  EXPECT_EQ(FarEnd(automatic).Ask("#preset"), Told("#preset", "10"));
  VirtualEchosounder preset({.preset = 7});
  EXPECT_EQ(FarEnd(preset).Ask("#preset"), Told("#preset", "7"));
}

TEST(Variants, Smoothing) {
  const struct {
    Smoothing smoothing;
    const char* smooth;
    const char* rate;
  } rows[] = {
      {Smoothing::absent, "Error", "Error"}, {Smoothing::off, "0", "0.00"}, {Smoothing::on, "1", "0.00"}};
  for (const auto& row : rows) {
    VirtualEchosounder device({.smoothing = row.smoothing});
    FarEnd end(device);
    EXPECT_EQ(end.Ask("#smooth"), Told("#smooth", row.smooth));
    EXPECT_EQ(end.Ask("#outrate"), Told("#outrate", row.rate));
    const bool absent = row.smoothing == Smoothing::absent;
    EXPECT_EQ(end.Ask("#outrate 2.50"), absent ? Refused("#outrate 2.50") : Accepted("#outrate 2.50"));
  }
}

TEST(Variants, OlderFirmwareCannotTellWhatCameLater) {
  const std::string_view known[] = {"##maxrangel", "#output", "#iden", "#sound"};
  const std::string_view later[] = {"#txpower", "##getsimul", "#smooth", "#medianflt", "#movavgflt"};
  for (const bool silent : {false, true}) {
    VirtualEchosounder device({.faults = {.lacksFrom = "#txpower", .lacksSilently = silent}});
    FarEnd end(device);
    for (const auto word : known) EXPECT_EQ(end.Ask(word).find("Error"), std::string::npos) << word;
    for (const auto word : later) EXPECT_EQ(end.Ask(word), silent ? "" : Refused(word));
    EXPECT_EQ(end.Ask("#medianflt 5"), Accepted("#medianflt 5")) << "set it can be";
    EXPECT_EQ(device.Settings().Whole(Setting::medianFilter), 5);
  }
  VirtualEchosounder second({.family = kSecond, .faults = {.lacksFrom = "#preset"}});
  FarEnd end(second);
  EXPECT_EQ(end.Ask("#auto"), Told("#auto", "0"));
  EXPECT_EQ(end.Ask("#interval"), Refused("#interval"));
}

TEST(Variants, SonarmiteOldIsNotForBothChannels) {
  VirtualEchosounder any({.dual = true});
  EXPECT_EQ(FarEnd(any).Ask("#output 9"), Accepted("#output 9"));

  VirtualEchosounder device({.refusesDualOld = true});
  FarEnd end(device);
  EXPECT_EQ(end.Ask("#output 9"), Accepted("#output 9"));
  EXPECT_EQ(end.Ask("#setfreqdual"), Refused("#setfreqdual"));
  EXPECT_EQ(end.Ask("##getsimul"), Told("##getsimul", "0"));
  EXPECT_EQ(end.Ask("#output 8"), Accepted("#output 8"));
  EXPECT_EQ(end.Ask("#setfreqdual"), Accepted("#setfreqdual"));
  EXPECT_EQ(end.Ask("#output 9"), Refused("#output 9"));
  EXPECT_EQ(end.Ask("#output"), Told("#output", "8"));
}

TEST(Variants, OneChannelFamiliesHaveNoLowFrequency) {
  for (const DeviceFamily family : {kSecond, kThird}) {
    VirtualEchosounder device({.family = family, .lowFrequency = true, .dual = true});
    EXPECT_EQ(device.Settings().Whole(Setting::frequencyInUse), 450'000);
    EXPECT_EQ(device.Settings().Whole(Setting::simultaneous), 0);
  }
}

}  // namespace
}  // namespace tw::sim
