// The options as a form: where the rows of a page stand, in dialog units, so that they scale with font and
// screen; what can be changed when; and how a number turns into a text and back. Pure; any thread.
//
// A switch is a check box. A number is a label, its field, the arrows in that field and its unit; an address
// a label and its field; a choice a label and its list; a slider a label, its track and its value. What means
// nothing without a switch stands below it, indented.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "app/settings/settings_layout.h"
#include "app/settings/stored_options.h"

namespace tw {

enum class OptionItemKind : uint8_t { check, label, number, arrows, unit, address, list, track };

struct OptionItem {
  OptionItemKind kind;
  const OptionRow* row;
  int32_t id;  // of the control
  DialogRect place;
};

// The row of an item by the item's control; null for any other.
[[nodiscard]] const OptionRow* RowOfControl(int32_t id);

// In the order of the keyboard: each label ahead of its number.
inline constexpr size_t kMaxOptionItems = 64;
struct OptionForm {
  OptionItem items[kMaxOptionItems];
  size_t count;
  int32_t width;  // that the rows take, margins included
  int32_t height;
};

// Without items for a page that has no rows.
[[nodiscard]] OptionForm LayOutOptions(OptionPage page);

// The control in which the option's value stands.
[[nodiscard]] int32_t ControlOf(const OptionRow& row);

// Whether it can be changed while the form shows these values.
[[nodiscard]] bool IsUsable(const OptionRow& row, const Options& shown, bool running);
// The run forbids it, whatever the form shows.
[[nodiscard]] bool IsLocked(const OptionRow& row, bool running);

inline constexpr size_t kOptionTextSize = 16;
inline constexpr size_t kOptionErrorSize = 160;

// Why it is grey; empty where it can be changed.
void WhyUnusable(const OptionRow& row, const Options& shown, bool running, std::span<wchar_t> reason);

// The text of a number's or an address' field, and of a slider's value.
void FormatOption(const OptionRow& row, const Options& options, std::span<wchar_t> text);

// Reads the text of a number or an address. False when it is none, or out of its bounds: the options are
// unchanged, and `error` names the bounds.
[[nodiscard]] bool ReadOption(const OptionRow& row, const wchar_t* text, Options& options,
                              std::span<wchar_t> error);

}  // namespace tw
