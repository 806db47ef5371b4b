#include "app/settings/settings_form.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <sstream>
#include <string>
#include <vector>

#include "app/settings/settings_text.h"

namespace tw {
namespace {

using F = SettingsField;
using enum FieldChannel;

// Family, both channels, smoothing, presets, interface, firmware.
constexpr FormFacts kSingle{DeviceFamily::first, false, false, true, 2, 3.25f};
constexpr FormFacts kDual{DeviceFamily::first, true, true, false, 0, 4.0f};
constexpr FormFacts kSecond{DeviceFamily::second, false, false, false, 0, 1.0f};
constexpr FormFacts kThird{DeviceFamily::third, false, false, false, 0, 0.0f};

DeviceSettings Device() {
  DeviceSettings s{};
  s.lowFrequency_hz = 200'000;
  s.highFrequency_hz = 447'000;
  s.frequencyInUse_hz = 200'000;
  s.rangeLow_mm = 30'000;
  s.rangeHigh_mm = 10'000;
  s.maxRangeLow_mm = 200'000;
  s.maxRangeHigh_mm = 100'000;
  s.maxLengthLow = 500;
  s.pingInterval_ms = 100;
  s.outputMode = 4;
  s.gainLow = -1.5f;
  s.gainHigh = 2.125f;
  s.soundSpeed_mps = 1500.0f;
  s.medianFilter = 3;
  s.samplingFrequency_hz = 25'000;
  s.preset = 255;
  s.identifierWord = 42;
  return s;
}

std::wstring Text(F field, FieldChannel channel, const FormFacts& facts, const DeviceSettings& settings) {
  wchar_t text[kFieldTextSize];
  FormatField(field, channel, facts, settings, text);
  return text;
}

// What is said when the text is refused.
std::wstring ErrorOf(F field, FieldChannel channel, const FormFacts& facts, const wchar_t* text,
                     DeviceSettings& settings) {
  wchar_t error[256] = L"";
  const bool taken = ReadField(field, channel, facts, text, settings, error);
  EXPECT_TRUE(!taken || *error == L'\0');
  return taken ? L"taken" : error;
}

// What the limits below do not show.
TEST(SettingsForm, ValuesAsTexts) {
  const struct {
    F field;
    FieldChannel channel;
    FormFacts facts;
    std::wstring text;
  } rows[] = {
      {F::outputMode, common, kSingle, L"Echo Txt 12bit"},
      {F::outputMode, common, kThird, L"Echo txt Fixed 200 Samples"},
      {F::gain, high, kDual, L"2.125"},
      {F::firmware, common, kSingle, L"3.25"},
      {F::interfaceType, common, kSingle, L"USB"},
      {F::identity, common, kSecond, L"0042"},
      {F::interfaceType, common, kSecond, L"unknown"},
      {F::firmware, common, kSecond, L"1.00"},
      {F::firmware, common, kThird, L"unknown"},
      {F::smoothing, common, kSingle, L"not supported"},
      {F::smoothing, common, kDual, L"off"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Text(row.field, row.channel, row.facts, Device()), row.text) << static_cast<int>(row.field);
  }
}

// Each value of the record stands in its own field: no two of them are alike.
TEST(SettingsForm, EachFieldShowsItsOwnValue) {
  DeviceSettings s{};
  s.rangeLow_mm = 25'000, s.rangeHigh_mm = 35'000;
  s.txLengthLow = 33, s.txLengthHigh = 34;
  s.txPower = 55.5f;
  s.gainLow = -3.5f, s.gainHigh = 4.25f;
  s.tvgMode = 3;
  s.tvgSpreadingLow = 22.5f, s.tvgSpreadingHigh = 23.5f;
  s.tvgAbsorptionLow = 0.125f, s.tvgAbsorptionHigh = 0.25f;
  s.attenuationLow = 17, s.attenuationHigh = 18;
  s.deadZoneLow_mm = 321, s.deadZoneHigh_mm = 322;
  s.offsetLow_mm = -12, s.offsetHigh_mm = 13;
  s.thresholdLow_percent = 31, s.thresholdHigh_percent = 32;
  s.medianFilter = 5, s.movingAverageFilter = 7;
  s.pingInterval_ms = 250, s.outputMode = 4;
  s.soundSpeed_mps = 1'487.0f, s.outputRate = 12.5f;
  std::wstring shown;
  for (size_t i = 0; i <= static_cast<size_t>(F::outputRate); ++i) {
    for (const FieldChannel channel : {low, high}) shown += Text(static_cast<F>(i), channel, kDual, s) + L"|";
  }
  EXPECT_EQ(
      shown,
      L"25|35|0.25|0.25|Echo Txt 12bit|Echo Txt 12bit|33|34|55.5|55.5|-3.5|4.25|3|3|22.5|23.5|0.125|0.25|"
      L"17|18|321|322|-12|13|31|32|1487.0|1487.0|5|5|7|7|12.50|12.50|");
}

TEST(SettingsForm, TextsAreHeldAgainstTheLimits) {
  const std::wstring whole = L" must be a whole number from ";
  const struct {
    F field;
    FieldChannel channel;
    std::wstring limits;
    std::wstring taken;  // and shown as they were entered
    std::wstring refused;
  } rows[] = {
      {F::range, low, L"Range (low) must be from 1 to 200", L"1 200", L"0.9 200.1"},
      {F::range, high, L"Range (high) must be from 1 to 100", L"12.5 100", L"100.5"},
      {F::interval, common, L"Ping interval must be from 0.01 to 10.00", L"Auto 0.25 10.00", L"0.001 10.01"},
      {F::txLength, low, L"Transmit length (low)" + whole + L"1 to 500", L"500", L"0 501"},
      {F::txLength, high, L"Transmit length (high)" + whole + L"1 to 1000", L"1000", L"1001"},
      {F::gain, low, L"Gain (low) must be from -60.0 to 60.0", L"-60.0 60.0", L"-60.001 60.1"},
      {F::deadZone, high, L"Dead zone (high)" + whole + L"0 to 10000", L"10000", L"10001 10.5"},
      {F::offset, low, L"Offset (low)" + whole + L"-10000 to 10000", L"-10000", L"-10001 10001"},
      {F::threshold, low, L"Threshold (low)" + whole + L"0 to 100", L"0 100", L"101"},
      {F::soundSpeed, common, L"Speed of sound must be from 1300.0 to 1700.0", L"1700.0", L"1299.9 1700.5"},
      {F::tvgAbsorption, high, L"TVG absorption (high) must be from 0.00 to 2.00", L"0.14", L"2.01"},
      {F::movingAverage, common, L"Moving average" + whole + L"1 to 31", L"31", L"-5 32"},
      {F::outputRate, common, L"Output rate must be from 0.00 to 100.00", L"12.34", L"100.01"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.limits));
    DeviceSettings settings = Device();
    std::wstring shown;
    for (std::wistringstream texts(row.taken); texts >> shown;) {
      EXPECT_EQ(ErrorOf(row.field, row.channel, kDual, shown.c_str(), settings), L"taken");
      EXPECT_EQ(Text(row.field, row.channel, kDual, settings), shown);
    }
    std::wstring text;
    for (std::wistringstream texts(row.refused); texts >> text;) {
      EXPECT_EQ(ErrorOf(row.field, row.channel, kDual, text.c_str(), settings),
                L"Value of " + row.limits + L".");
      EXPECT_EQ(Text(row.field, row.channel, kDual, settings), shown);
    }
  }
}

TEST(SettingsForm, NumbersAreReadStrictly) {
  DeviceSettings settings = Device();
  for (const wchar_t* const text : {L"3,5", L" 3", L"3 ", L"1e1", L"nan", L"", L"-", L".", L"1.2.3",
                                    L"00000000000000000000000000000000000000001"}) {
    EXPECT_EQ(ErrorOf(F::gain, high, kDual, text, settings),
              L"Value of Gain (high) must be from -60.0 to 60.0.");
    EXPECT_EQ(settings.gainHigh, 2.125f);
  }
  EXPECT_EQ(ErrorOf(F::gain, high, kDual, L"+3.5", settings), L"taken");
  EXPECT_EQ(settings.gainHigh, 3.5f);
  EXPECT_EQ(ErrorOf(F::outputMode, common, kDual, L"deso-25(m)", settings), L"") << "no item";
  EXPECT_EQ(ErrorOf(F::outputMode, common, kDual, L"DESO-25(M)", settings), L"taken");
  EXPECT_EQ(settings.outputMode, 6);
}

// What the device reported may lie outside all limits; a form that is confirmed unchanged changes nothing.
TEST(SettingsForm, UnchangedTextsAreAlwaysTaken) {
  DeviceSettings settings = Device();
  settings.pingInterval_ms = 3;
  settings.gainLow = 99.0f;
  settings.outputMode = 77;
  settings.rangeLow_mm = 30;  // firmware that tells metres
  for (size_t i = 0; i < kSettingsFields; ++i) {
    for (const FieldChannel channel : {low, high}) {
      const auto field = static_cast<F>(i);
      const std::wstring shown = Text(field, channel, kDual, settings);
      EXPECT_EQ(ErrorOf(field, channel, kDual, shown.c_str(), settings), L"taken") << i;
      EXPECT_EQ(Text(field, channel, kDual, settings), shown) << i;
    }
  }
}

TEST(SettingsForm, FirmwareThatTellsMetresIsAnsweredInMetres) {
  DeviceSettings settings = Device();
  settings.rangeLow_mm = 30;
  settings.maxRangeLow_mm = 50;
  EXPECT_EQ(Text(F::range, low, kSingle, settings), L"30");
  EXPECT_EQ(ErrorOf(F::range, low, kSingle, L"60", settings), L"Value of Range must be from 1 to 50.");
  EXPECT_EQ(ErrorOf(F::range, low, kSingle, L"40", settings), L"taken");
  EXPECT_EQ(settings.rangeLow_mm, 40);
}

TEST(SettingsForm, ARangeBelowTheDeadZoneIsRefusedAtTheDeadZone) {
  DeviceSettings settings = Device();
  settings.deadZoneLow_mm = 5'000;
  EXPECT_EQ(ErrorOf(F::deadZone, low, kSingle, L"5000", settings), L"taken");
  EXPECT_EQ(ErrorOf(F::range, low, kSingle, L"3", settings), L"taken");
  EXPECT_EQ(ErrorOf(F::deadZone, low, kSingle, L"5000", settings),
            L"Value of Dead zone must be a whole number from 0 to 3000.");
}

TEST(SettingsForm, FieldsWithoutEffectCannotBeUsed) {
  constexpr FormFacts kSmoothing{DeviceFamily::second, false, true, false, 0, 1.0f};
  const struct {
    const char* what;
    F field;
    FieldChannel channel;
    FormFacts facts;
    bool usable;
  } rows[] = {
      {"a start of one frequency sets the TVG mode", F::tvgMode, common, kSingle, false},
      {"the other families are started alike", F::tvgMode, common, kSecond, false},
      {"a start of both frequencies leaves it", F::tvgMode, common, kDual, true},
      {"smoothing takes the filters' place", F::medianFilter, common, kSmoothing, false},
      {"smoothing takes the filters' place", F::movingAverage, common, kSmoothing, false},
      {"a device that cannot smooth", F::movingAverage, common, kSecond, true},
      {"a dual start sends the high range", F::range, low, kDual, false},
      {"a dual start sends the high range", F::range, high, kDual, true},
      {"the one range there is", F::range, low, kSingle, true},
  };
  DeviceSettings settings = Device();
  settings.smoothing = 1;
  for (const auto& row : rows)
    EXPECT_EQ(IsUsable(row.field, row.channel, row.facts, settings), row.usable) << row.what;
}

// Between opening and "OK" the device may have been told something else.
TEST(SettingsForm, OnlyWhatWasEditedIsTaken) {
  DeviceSettings now = Device();
  now.gainHigh = 7.0f;
  now.deadZoneHigh_mm = 6'000;
  wchar_t error[256] = L"";
  EXPECT_TRUE(TakeField(F::gain, high, kDual, Device(), L"2.125", now, error));
  EXPECT_EQ(now.gainHigh, 7.0f);
  EXPECT_TRUE(TakeField(F::deadZone, high, kDual, Device(), L"0", now, error));
  EXPECT_EQ(now.deadZoneHigh_mm, 6'000);
  EXPECT_TRUE(TakeField(F::range, high, kDual, Device(), L"5", now, error));
  EXPECT_EQ(now.rangeHigh_mm, 5'000);
  EXPECT_EQ(now.rangeLow_mm, 5'000) << "the range of both";
  EXPECT_FALSE(TakeField(F::deadZone, high, kDual, Device(), L"0", now, error)) << "beyond the range";
}

std::wstring Items(F field, FieldChannel channel, const FormFacts& facts, const DeviceSettings& settings) {
  static FieldItems items;
  ListItems(field, channel, facts, settings, items);
  std::wstring text;
  for (size_t i = 0; i < items.count; ++i) text += (i == 0 ? L"" : L"|") + std::wstring(items.items[i]);
  return text;
}

TEST(SettingsForm, ItemsHoldTheDevicesOwnValueInItsPlace) {
  const struct {
    int32_t range_mm;
    int32_t maximum_mm;  // 0: not told
    std::wstring items;
  } ranges[] = {
      {10'000, 100'000, L"1|2|3|5|10|15|20|30|40|50|60|70|80|90|100"},
      {12'500, 20'000, L"1|2|3|5|10|12.5|15|20"},
      {500'000, 20'000, L"1|2|3|5|10|15|20|500"},
      {10'000, 0, L"1|2|3|5|10|15|20|30|40|50|60|70|80|90|100|120|150|200"},
  };
  DeviceSettings settings = Device();
  for (const auto& row : ranges) {
    settings.rangeHigh_mm = row.range_mm;
    settings.maxRangeHigh_mm = row.maximum_mm;
    EXPECT_EQ(Items(F::range, high, kSingle, settings), row.items);
  }
  EXPECT_EQ(Items(F::interval, common, kSingle, settings),
            L"Auto|0.01|0.02|0.05|0.10|0.20|0.25|0.50|1.00|2.00|5.00|10.00");
  settings.pingInterval_ms = 33;
  EXPECT_EQ(Items(F::interval, common, kSingle, settings),
            L"Auto|0.01|0.02|0.033|0.05|0.10|0.20|0.25|0.50|1.00|2.00|5.00|10.00");
  EXPECT_EQ(Items(F::tvgMode, common, kSingle, settings), L"0|1|2|3");
  const std::wstring modes = Items(F::outputMode, common, kThird, settings);
  EXPECT_TRUE(modes.starts_with(L"Altimeter Simple|Echo Txt|"));
  EXPECT_FALSE(modes.ends_with(L"|Echo txt Fixed 200 Samples")) << "a mode that the list has";
  settings.outputMode = 101;
  EXPECT_EQ(Items(F::outputMode, common, kThird, settings), modes + L"|101");
}

TEST(SettingsForm, FieldsOfEachForm) {
  const struct {
    FormFacts facts;
    SettingsForm form;
    std::string mnemonics;  // one a field, in order; a dot: none
  } rows[] = {
      {kSingle, SettingsForm::single, "riolpgmsandftuev....."},
      {kDual, SettingsForm::dual, "riolpgmsandftuevh....."},
      {kSecond, SettingsForm::detail, "riolgmsadftuev....."},
      {kThird, SettingsForm::detail, "riolgdftu....."},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FormOf(row.facts), row.form);
    std::string mnemonics;
    for (size_t i = 0; i < kSettingsFields; ++i) {
      if (!IsShown(static_cast<F>(i), row.facts)) continue;
      const std::wstring label = LabelOf(static_cast<F>(i));
      const size_t at = label.find(L'&');
      mnemonics += at == label.npos ? '.' : static_cast<char>(towlower(static_cast<wint_t>(label[at + 1])));
    }
    EXPECT_EQ(mnemonics, row.mnemonics);
  }
}

TEST(SettingsForm, Presets) {
  static FieldItems items;
  DeviceSettings settings = Device();
  ListPresets(settings, items);
  ASSERT_EQ(items.count, 12u);
  settings.preset = 17;
  ListPresets(settings, items);
  ASSERT_EQ(items.count, 13u);
  for (size_t i = 0; i < items.count; ++i) {
    int32_t preset = -1;
    ASSERT_TRUE(ReadPreset(items.items[i], preset));
    wchar_t text[kFieldTextSize];
    FormatPreset(preset, text);
    EXPECT_STREQ(text, items.items[i]);
  }
  EXPECT_TRUE(IsPresetInForce(kSingle, settings));
  settings.preset = kNoPreset;
  EXPECT_FALSE(IsPresetInForce(kSingle, settings));
}

}  // namespace
}  // namespace tw
