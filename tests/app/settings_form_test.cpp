#include "app/settings_form.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <string>

namespace tw {
namespace {

using F = SettingsField;
using enum FieldChannel;

constexpr FormFacts kSingle{.family = 1,
                            .dual = false,
                            .smoothingSupported = false,
                            .presetCapable = true,
                            .interfaceType = 2,
                            .firmwareVersion = 3.25f};
constexpr FormFacts kDual{.family = 1,
                          .dual = true,
                          .smoothingSupported = true,
                          .presetCapable = false,
                          .interfaceType = 0,
                          .firmwareVersion = 4.0f};
constexpr FormFacts kSecond{.family = 2,
                            .dual = false,
                            .smoothingSupported = false,
                            .presetCapable = false,
                            .interfaceType = 0,
                            .firmwareVersion = 1.0f};
constexpr FormFacts kThird{.family = 0,
                           .dual = false,
                           .smoothingSupported = false,
                           .presetCapable = false,
                           .interfaceType = 0,
                           .firmwareVersion = 0.0f};

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

TEST(SettingsForm, ValuesAsTexts) {
  const struct {
    F field;
    FieldChannel channel;
    FormFacts facts;
    std::wstring text;
  } rows[] = {
      {F::range, low, kSingle, L"30"},
      {F::range, high, kSingle, L"10"},
      {F::interval, common, kSingle, L"0.10"},
      {F::outputMode, common, kSingle, L"Echo Txt 12bit"},
      {F::outputMode, common, kThird, L"Echo txt Fixed 200 Samples"},
      {F::gain, low, kDual, L"-1.5"},
      {F::gain, high, kDual, L"2.125"},
      {F::soundSpeed, common, kSingle, L"1500.0"},
      {F::medianFilter, common, kSingle, L"3"},
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

TEST(SettingsForm, TextsAreReadStrictly) {
  const struct {
    F field;
    FieldChannel channel;
    const wchar_t* text;
    std::wstring shows;  // afterwards; empty: refused
    const wchar_t* error = L"";
  } rows[] = {
      {F::range, low, L"200", L"200"},
      {F::range, low, L"200.1", L"", L"Value of Range (low) must be from 1 to 200."},
      {F::range, high, L"100.5", L"", L"Value of Range (high) must be from 1 to 100."},
      {F::range, high, L"12.5", L"12.5"},
      {F::range, low, L"0.9", L"", L"Value of Range (low) must be from 1 to 200."},
      {F::interval, common, L"Auto", L"Auto"},
      {F::interval, common, L"0.25", L"0.25"},
      {F::interval, common, L"0.001", L"", L"Value of Ping interval must be from 0.01 to 10.00."},
      {F::interval, common, L"10.01", L"", L"Value of Ping interval must be from 0.01 to 10.00."},
      {F::outputMode, common, L"DESO-25(M)", L"DESO-25(M)"},
      {F::outputMode, common, L"deso-25(m)", L""},
      {F::txLength, low, L"500", L"500"},
      {F::txLength, low, L"501", L"", L"Value of Transmit length (low) must be from 1 to 500."},
      {F::txLength, high, L"1000", L"1000"},
      {F::gain, low, L"-60", L"-60.0"},
      {F::gain, low, L"-60.001", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"+3.5", L"3.5"},
      {F::gain, low, L"3,5", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L" 3", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"3 ", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"1e1", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"nan", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"-", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L".", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"1.2.3", L"", L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::gain, low, L"00000000000000000000000000000000000000001", L"",
       L"Value of Gain (low) must be from -60.0 to 60.0."},
      {F::deadZone, high, L"10000", L"10000"},
      {F::deadZone, high, L"10001", L"", L"Value of Dead zone (high) must be from 0 to 10000."},
      {F::deadZone, high, L"10.5", L"", L"Value of Dead zone (high) must be from 0 to 10000."},
      {F::offset, low, L"-10000", L"-10000"},
      {F::threshold, low, L"101", L"", L"Value of Threshold (low) must be from 0 to 100."},
      {F::soundSpeed, common, L"1299.9", L"", L"Value of Speed of sound must be from 1300.0 to 1700.0."},
      {F::tvgAbsorption, high, L"0.14", L"0.14"},
      {F::tvgAbsorption, high, L"2.01", L"", L"Value of TVG absorption (high) must be from 0.00 to 2.00."},
      {F::movingAverage, common, L"31", L"31"},
      {F::movingAverage, common, L"-5", L"", L"Value of Moving average must be from 1 to 31."},
      {F::outputRate, common, L"12.34", L"12.34"},
  };
  for (const auto& row : rows) {
    DeviceSettings settings = Device();
    const std::wstring before = Text(row.field, row.channel, kDual, settings);
    wchar_t error[256] = L"";
    const bool taken = ReadField(row.field, row.channel, kDual, row.text, settings, error);
    EXPECT_EQ(taken, !row.shows.empty()) << static_cast<int>(row.field) << std::wstring(row.text).size();
    EXPECT_STREQ(error, row.error);
    EXPECT_EQ(Text(row.field, row.channel, kDual, settings), taken ? row.shows : before);
  }
}

// What the device reported may lie outside all limits; a form that is confirmed unchanged changes nothing.
TEST(SettingsForm, UnchangedTextsAreAlwaysTaken) {
  DeviceSettings settings = Device();
  settings.pingInterval_ms = 3;
  settings.gainLow = 99.0f;
  settings.outputMode = 77;
  settings.rangeLow_mm = 30;  // firmware that tells metres
  for (size_t i = 0; i < kSettingsFields; ++i) {
    const auto field = static_cast<F>(i);
    for (const FieldChannel channel : {low, high}) {
      DeviceSettings read = settings;
      wchar_t error[256] = L"";
      EXPECT_TRUE(
          ReadField(field, channel, kDual, Text(field, channel, kDual, settings).c_str(), read, error))
          << i;
      EXPECT_EQ(Text(field, channel, kDual, read), Text(field, channel, kDual, settings)) << i;
    }
  }
}

TEST(SettingsForm, FirmwareThatTellsMetresIsAnsweredInMetres) {
  DeviceSettings settings = Device();
  settings.rangeLow_mm = 30;
  settings.maxRangeLow_mm = 50;
  EXPECT_EQ(Text(F::range, low, kSingle, settings), L"30");
  wchar_t error[256];
  EXPECT_FALSE(ReadField(F::range, low, kSingle, L"60", settings, error));
  EXPECT_TRUE(ReadField(F::range, low, kSingle, L"40", settings, error));
  EXPECT_EQ(settings.rangeLow_mm, 40);
}

std::wstring Items(F field, FieldChannel channel, const FormFacts& facts, const DeviceSettings& settings) {
  static FieldItems items;
  ListItems(field, channel, facts, settings, items);
  std::wstring text;
  for (size_t i = 0; i < items.count; ++i) text += (i == 0 ? L"" : L"|") + std::wstring(items.items[i]);
  return text;
}

TEST(SettingsForm, ItemsHoldTheDevicesOwnValueInItsPlace) {
  DeviceSettings settings = Device();
  EXPECT_EQ(Items(F::range, high, kSingle, settings), L"1|2|3|5|10|15|20|30|40|50|60|70|80|90|100");
  settings.rangeHigh_mm = 12'500;
  settings.maxRangeHigh_mm = 20'000;
  EXPECT_EQ(Items(F::range, high, kSingle, settings), L"1|2|3|5|10|12.5|15|20");
  settings.rangeHigh_mm = 500'000;
  EXPECT_EQ(Items(F::range, high, kSingle, settings), L"1|2|3|5|10|15|20|500");
  settings.maxRangeHigh_mm = 0;
  settings.rangeHigh_mm = 10'000;
  EXPECT_EQ(Items(F::range, high, kSecond, settings),
            L"1|2|3|5|10|15|20|30|40|50|60|70|80|90|100|120|150|200");
  EXPECT_EQ(Items(F::interval, common, kSingle, settings),
            L"Auto|0.01|0.02|0.05|0.10|0.20|0.25|0.50|1.00|2.00|5.00|10.00");
  settings.pingInterval_ms = 33;
  EXPECT_EQ(Items(F::interval, common, kSingle, settings),
            L"Auto|0.01|0.02|0.033|0.05|0.10|0.20|0.25|0.50|1.00|2.00|5.00|10.00");
  EXPECT_TRUE(Items(F::outputMode, common, kThird, settings).starts_with(L"Altimeter Simple|Echo Txt|"));
  EXPECT_EQ(Items(F::tvgMode, common, kSingle, settings), L"0|1|2|3");
  const std::wstring modes = Items(F::outputMode, common, kThird, settings);
  EXPECT_TRUE(modes.ends_with(L"|Sonarmite OLD")) << "a mode that the list has";
  settings.outputMode = 101;
  EXPECT_EQ(Items(F::outputMode, common, kThird, settings), modes + L"|101");
}

TEST(SettingsForm, ARangeBelowTheDeadZoneIsRefusedAtTheDeadZone) {
  DeviceSettings settings = Device();
  settings.deadZoneLow_mm = 5'000;
  wchar_t error[256];
  EXPECT_TRUE(ReadField(F::deadZone, low, kSingle, L"5000", settings, error));
  ASSERT_TRUE(ReadField(F::range, low, kSingle, L"3", settings, error));
  EXPECT_FALSE(ReadField(F::deadZone, low, kSingle, L"5000", settings, error));
  EXPECT_STREQ(error, L"Value of Dead zone must be from 0 to 3000.");
}

TEST(SettingsForm, FieldsOfEachForm) {
  const struct {
    FormFacts facts;
    SettingsForm form;
    std::string fields;  // a letter a field, in order
  } rows[] = {
      {kSingle, SettingsForm::single,
       "riolpgmsandftuev"
       "?????"},
      {kDual, SettingsForm::dual,
       "riolpgmsandftuevh"
       "?????"},
      {kSecond, SettingsForm::detail,
       "riolgmsadftuev"
       "?????"},
      {kThird, SettingsForm::detail,
       "riolgdftu"
       "?????"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FormOf(row.facts), row.form);
    std::string fields;
    for (size_t i = 0; i < kSettingsFields; ++i) {
      const auto field = static_cast<F>(i);
      if (!IsShown(field, row.facts)) continue;
      const std::wstring label = LabelOf(field);
      const size_t mnemonic = label.find(L'&');
      fields += mnemonic == label.npos
                    ? '?'
                    : static_cast<char>(towlower(static_cast<wint_t>(label[mnemonic + 1])));
    }
    // The letters lead to one field each.
    std::string sortedOnce = fields.substr(0, fields.find('?'));
    std::sort(sortedOnce.begin(), sortedOnce.end());
    EXPECT_EQ(std::adjacent_find(sortedOnce.begin(), sortedOnce.end()), sortedOnce.end()) << fields;
    EXPECT_EQ(fields.size(), row.fields.size());
    std::string expected = row.fields.substr(0, row.fields.find('?'));
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(sortedOnce, expected);
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
