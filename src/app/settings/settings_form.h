// The device's settings as a form: which fields an operator sees, what he may enter, and how values and texts
// turn into each other. The settings dialogs and the main window's selectors are made of it. Pure; any
// thread.
//
// Three forms: a single-frequency device of the first family (the active channel), a dual one (both channels
// side by side), and the other families (the one channel, whose values are the high ones). A played file's
// form has the fields that record files tell; its channel's values are the high ones too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "app/state/device_settings.h"

namespace tw {

enum class SettingsForm : uint8_t { single, dual, detail };

enum class FieldKind : uint8_t { edit, combo, shown };

// In the order in which a form shows them.
enum class SettingsField : uint8_t {
  range,
  interval,
  outputMode,
  txLength,
  txPower,
  gain,
  tvgMode,
  tvgSpreading,
  tvgAbsorption,
  attenuation,
  deadZone,
  offset,
  threshold,
  soundSpeed,
  medianFilter,
  movingAverage,
  outputRate,
  identity,
  firmware,
  interfaceType,
  sampling,
  smoothing,
};
inline constexpr size_t kSettingsFields = 22;

// What a form depends on beside the settings.
struct FormFacts {
  DeviceFamily family;
  bool dual;
  bool smoothingSupported;
  bool presetCapable;
  int32_t interfaceType;  // 0 RS-232, 1 RS-485, 2 USB
  float firmwareVersion;
  bool played = false;  // the settings came out of a record file
};

[[nodiscard]] SettingsForm FormOf(const FormFacts& facts);

// The channel whose values a form with one column shows.
[[nodiscard]] FieldChannel ActiveChannel(const FormFacts& facts, const DeviceSettings& settings);

[[nodiscard]] bool IsShown(SettingsField field, const FormFacts& facts);
[[nodiscard]] FieldKind KindOf(SettingsField field);
[[nodiscard]] bool IsPerChannel(SettingsField field);

// With its unit and an ampersand ahead of the letter that leads to it.
[[nodiscard]] const wchar_t* LabelOf(SettingsField field);

// A preset that is in force rules output, range and interval.
[[nodiscard]] bool IsPresetInForce(const FormFacts& facts, const DeviceSettings& settings);

// What is entered there has an effect. It has none in a played file; where a preset rules the value; on the
// TVG mode of a device that is started with mode 1; on the filters while the device smooths instead; and on
// the low range of a dual run, which starts with the high one for both.
[[nodiscard]] bool IsUsable(SettingsField field, FieldChannel channel, const FormFacts& facts,
                            const DeviceSettings& settings);

// Why it has none, as the operator is told it; null where it has one.
[[nodiscard]] const wchar_t* WhyUnusable(SettingsField field, FieldChannel channel, const FormFacts& facts,
                                         const DeviceSettings& settings);

inline constexpr size_t kFieldTextSize = 128;

// The value as the form shows it.
void FormatField(SettingsField field, FieldChannel channel, const FormFacts& facts,
                 const DeviceSettings& settings, std::span<wchar_t> text);

// The items of a combo, in order; the device's own value is among them.
inline constexpr size_t kMaxFieldItems = 32;
struct FieldItems {
  wchar_t items[kMaxFieldItems][kFieldTextSize];
  size_t count;
};
void ListItems(SettingsField field, FieldChannel channel, const FormFacts& facts,
               const DeviceSettings& settings, FieldItems& items);

// Reads a text into the settings. A text that says what stands there already changes nothing, whatever it is;
// only a dead zone is held against the range all the same. False when it is no number, or one out of its
// limits, or no item: the settings are unchanged, and `error` holds "Value of %s must be from %s to %s."
// or, where it is one, "… must be a whole number from …".
// Limits depend on the settings, so a form is read in its order.
[[nodiscard]] bool ReadField(SettingsField field, FieldChannel channel, const FormFacts& facts,
                             const wchar_t* text, DeviceSettings& settings, std::span<wchar_t> error);

// Takes one field of a form over into `settings`, which may have changed since it was filled from `shown`: as
// ReadField does where the text is another one than was shown; a field that was not edited changes nothing.
[[nodiscard]] bool TakeField(SettingsField field, FieldChannel channel, const FormFacts& facts,
                             const DeviceSettings& shown, const wchar_t* text, DeviceSettings& settings,
                             std::span<wchar_t> error);

// The presets of the main window's selector: off, automatic and the numbers 0 to 9.
void ListPresets(const DeviceSettings& settings, FieldItems& items);

}  // namespace tw
