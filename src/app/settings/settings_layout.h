// Where the fields of a settings form stand, in dialog units, so that it scales with font and screen. Two
// columns of rows, a label and its value each; of a dual device's channels the low one left, the high one
// right, under a heading. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/settings/settings_form.h"

namespace tw {

enum class FormItemKind : uint8_t { heading, label, edit, combo, text };

struct DialogRect {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
};

struct FormItem {
  FormItemKind kind;
  SettingsField field;   // not of a heading
  FieldChannel channel;  // of a heading: what it says
  int32_t id;            // of the control
  DialogRect place;
};

inline constexpr size_t kMaxFormItems = 4 + 3 * kSettingsFields;

// In the order of the keyboard: each label ahead of its value.
struct FormLayout {
  FormItem items[kMaxFormItems];
  size_t count;
  DialogRect ok;
  DialogRect cancel;
  int32_t width;  // of the dialog's client area
  int32_t height;
};

[[nodiscard]] FormLayout LayOutForm(const FormFacts& facts, const DeviceSettings& settings);

// The control of a value.
[[nodiscard]] int32_t ControlOf(SettingsField field, FieldChannel channel);

}  // namespace tw
