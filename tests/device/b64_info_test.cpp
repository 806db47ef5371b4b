#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "device/base64.h"
#include "device/settings_readers.h"
#include "platform/clock.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

// 38 bytes, written out by hand and encoded with base64(1): identifier 1042, range 30000, transmit length 20,
// interval 0.25 s, dead zone 150, offset -10, threshold 20, gain 3.5, output mode 4, sound speed 1500.
constexpr std::string_view kBlock = "AAAAABIEAAAwdQAAFAAAAIA+lgD2/xQAAABgQAAAAAAAAAQA3AU=";

const std::string kAnswer = "B64INFO[" + std::string(kBlock) + "]\r\n\r\n>";

TEST(Base64, KnownTexts) {
  uint8_t out[16];
  const struct {
    std::string_view text;
    std::string_view bytes;
  } rows[] = {{"Zm9vYmFy", "foobar"},
              {"Zm9vYmE=", std::string_view("fooba\0", 6)},
              {"Zm9vYg==", std::string_view("foob\0\0", 6)},
              {"", ""},
              {"Zm9", ""},
              {"Zm9vYm!y", "foo"}};
  for (const auto& row : rows) {
    const size_t length = DecodeBase64(row.text, out);
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(out), length), row.bytes) << row.text;
  }
  EXPECT_EQ(DecodeBase64("Zm9vYmFy", std::span(out).first(5)), 3u);
}

// What the block says of a record.
DeviceSettings Told(DeviceSettings s = {}) {
  s.identifierWord = 1042;
  s.rangeHigh_mm = 30'000;
  s.txLengthHigh = 20;
  s.pingInterval_ms = 250;
  s.deadZoneHigh_mm = 150;
  s.offsetHigh_mm = -10;
  s.thresholdHigh_percent = 20;
  s.gainHigh = 3.5f;
  s.outputMode = 4;
  s.soundSpeed_mps = 1500.f;
  s.reservedPower = 100.f;
  s.smoothing = 0;
  return s;
}

bool Same(const DeviceSettings& a, const DeviceSettings& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(B64Info, AShortBlockSetsOnlyWhatIsWhole) {
  for (size_t length = 0; length < kBlock.size(); ++length) {
    DeviceSettings settings{};
    settings.rangeHigh_mm = -1;
    settings.soundSpeed_mps = -1.f;
    DecodeB64Info(kBlock.substr(0, length), settings);
    const size_t bytes = length / 4 * 3;
    EXPECT_EQ(settings.rangeHigh_mm, bytes >= 12 ? 30'000 : -1) << length;
    EXPECT_EQ(settings.pingInterval_ms, bytes >= 18 ? 250 : 0) << length;
    EXPECT_EQ(settings.soundSpeed_mps, bytes >= 38 ? 1500.f : -1.f) << length;
  }
}

TEST(B64Info, ValuesThatAreNoNumbersOrBeyondReasonLeaveTheirFields) {
  // Interval and gain of the block above replaced: NaN and infinity, then -1 s and 1e9.
  for (const char* text : {"AAAAABIEAAAwdQAAFAAAAMB/lgD2/xQAAACAfwAAAAAAAAQA3AU=",
                           "AAAAABIEAAAwdQAAFAAAAIC/lgD2/xQAKGtuTgAAAAAAAAQA3AU="}) {
    DeviceSettings settings{};
    settings.pingInterval_ms = 42;
    settings.gainHigh = 1.5f;
    DecodeB64Info(text, settings);
    EXPECT_EQ(settings.pingInterval_ms, 42) << text;
    EXPECT_EQ(settings.gainHigh, 1.5f) << text;
    EXPECT_EQ(settings.deadZoneHigh_mm, 150) << text;
  }
}

class B64InfoDialogue : public test::ScriptedLineTest {
 protected:
  DeviceSettings settings_{};
  bool silent_ = false;
};

TEST_F(B64InfoDialogue, BlockAndFrequency) {
  settings_.smoothing = 1;
  device_.replies = {{"#info\r\nName X\r\nB6" + kAnswer},
                     {"#info\r\nTx FrTx Frequency      450000 Hz  \r\n\r\n>"}};
  EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::success);
  DeviceSettings told = Told();
  told.frequencyInUse_hz = told.highFrequency_hz = told.virtualHighFrequency_hz = 450'000;
  EXPECT_TRUE(Same(settings_, told));
  EXPECT_EQ(device_.received, "#info\r#info\r");
  EXPECT_GE(VirtualNow_us(), 2'000'000) << "between the two";
}

TEST_F(B64InfoDialogue, ADeviceIsGivenUpAfterTwoSecondsOfSilenceOrTenInAll) {
  const std::tuple<test::ScriptedReply, int64_t, bool> rows[] = {
      {{""}, 2'000'000, true},
      {{"#info\r\nError\r\n\r\n>"}, 2'000'000, false},                         // has answered
      {{"B64INFO[" + std::string(100, 'A'), 0, 1'500'000}, 10'000'000, true},  // never silent for two seconds
  };
  for (const auto& [reply, limit_us, silent] : rows) {
    device_.replies = {reply};
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::noPrompt);
    EXPECT_EQ(silent_, silent);
    EXPECT_GE(VirtualNow_us() - begin_us, limit_us);
    EXPECT_LE(VirtualNow_us() - begin_us, limit_us + 110'000);
  }
}

TEST_F(B64InfoDialogue, EveryTruncationLeavesTheRecordAsItWas) {
  for (size_t length = 0; length < kAnswer.size(); ++length) {
    std::memset(&settings_, 0x11, sizeof settings_);
    const DeviceSettings before = settings_;
    device_.replies = {{kAnswer.substr(0, length)}};
    EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::noPrompt) << length;
    EXPECT_TRUE(Same(settings_, before)) << length;
  }
}

TEST_F(B64InfoDialogue, ATextOf256CharactersIsFatal) {
  const auto read = [this](size_t length) {
    device_.replies = {{"B64INFO[" + std::string(length, 'A') + "]\r\n\r\n>"}};
    return ReadSettingsFromB64Info(link_, settings_, silent_);
  };
  EXPECT_EQ(read(255), LinkResult::success);
  for (const size_t length : {256u, 5'000u}) EXPECT_DEATH(static_cast<void>(read(length)), "too long");
}

TEST_F(B64InfoDialogue, TheFrequencyStandsInALineOfTheFirstKilobyteOrIsAsItWas) {
  const std::string line = "Tx Frequency      450000 Hz  \r\n";
  const struct {
    const char* what;
    std::string answer;
    int32_t frequency_hz;
  } rows[] = {{"no answer", "", 7},
              {"no number", "#info\r\nTx Frequency    ? Hz\r\n>", 7},
              {"another unit", "#info\r\nTx Frequency  450000 kHz\r\n>", 7},
              {"no line", "#info\r\nTx Freq\r\n>", 7},
              {"last in the kilobyte", std::string(1024 - line.size(), ' ') + line, 450'000},
              {"just behind it", std::string(1025 - line.size(), ' ') + line, 7}};
  for (const auto& row : rows) {
    settings_ = DeviceSettings{};
    settings_.frequencyInUse_hz = 7;
    device_.replies = {{"B64INFO[" + std::string(kBlock) + "]\r\n>"}, {row.answer}};
    EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::success) << row.what;
    DeviceSettings told = Told();
    told.frequencyInUse_hz = row.frequency_hz;
    told.highFrequency_hz = told.virtualHighFrequency_hz = row.frequency_hz == 7 ? 0 : row.frequency_hz;
    EXPECT_TRUE(Same(settings_, told)) << row.what;
    char rest = 0;
    for (uint32_t got = 1; got != 0;) ASSERT_TRUE(ReadSerialLine(link_.port, &rest, 1, got));
  }
}

TEST_F(B64InfoDialogue, TheSecondAnswerIsReadToItsPrompt) {
  const std::string line = "#info\r\nTx Frequency      450000 Hz  \r\n";
  const struct {
    std::string rest;
    int64_t spacing_us;
  } rows[] = {{"\r\n>", 0}, {">", 0}, {"Gain > 3\r\n\r\n>", 5'000}, {std::string(2'000, '-') + "\r\n>", 900}};
  for (const auto& row : rows) {
    device_.replies = {{kAnswer}, {line + row.rest, 0, row.spacing_us}};
    EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::success) << row.rest;
    EXPECT_EQ(settings_.frequencyInUse_hz, 450'000) << row.rest;
    SleepMilliseconds(3'000);
    EXPECT_EQ(BytesWaiting(link_.port), 0u) << row.rest;
  }
  settings_.frequencyInUse_hz = 7;
  device_.replies = {{kAnswer}, {line + "\r\n>", 2'300'000}, {line + "\r\n>"}};
  EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::success);
  EXPECT_EQ(settings_.frequencyInUse_hz, 450'000) << "asked again when it has come late";
  EXPECT_EQ(BytesWaiting(link_.port), 0u);
}

TEST_F(B64InfoDialogue, AFailingLineChangesNothing) {
  const DeviceSettings before = settings_;
  device_.replies = {{kAnswer}};
  HangUpLine(test::kScriptedLine, 30);
  EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::portFailed);
  ClearFaults();
  for (uint64_t call = 1; call <= 2; ++call) {
    InjectFault({.point = FaultPoint::writeLine, .call = call});
    EXPECT_EQ(ReadSettingsFromB64Info(link_, settings_, silent_), LinkResult::portFailed);
    ClearFaults();
  }
  EXPECT_TRUE(Same(settings_, before));
}

}  // namespace
}  // namespace tw
