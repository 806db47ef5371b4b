// The options as a table: what each is called, what it may be, and how it is stored, one number each in a key
// of its own in the current user's registry. GUI thread. All failures are silent, as with the other stored
// choices.
#pragma once

#include <cstdint>
#include <span>

#include "app/state/options.h"

namespace tw {

inline constexpr wchar_t kOptionsKey[] = L"Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Options";

enum class OptionPage : uint8_t { link, recording, outputs, sentences, display, depth, playback };
inline constexpr int kOptionPages = 7;
[[nodiscard]] const wchar_t* NameOfPage(OptionPage page);

struct OptionRow {
  OptionPage page;
  int32_t Options::*value;
  const wchar_t* name;  // in the registry
  const wchar_t* text;  // beside its box, with its access key
  const wchar_t* tip;   // what it is good for, while the mouse rests on it
  const wchar_t* unit;  // behind its number; null: the option is a switch or a choice
  int32_t standard;
  int32_t least;
  int32_t most;
  int32_t Options::*needs;                    // the switch without which it means nothing; null: none
  bool atStart = false;                       // read when a run starts, so that nobody changes it during one
  OptionAddress Options::*address = nullptr;  // in the place of a number; `value` is null then
  std::span<const wchar_t* const> choices{};  // the value is the place of one of these
  bool isSlider = false;                      // a number that is set with a slider

  [[nodiscard]] bool IsSwitch() const { return unit == nullptr && address == nullptr && choices.empty(); }
};

// In the order of the pages and of their lines.
[[nodiscard]] std::span<const OptionRow> OptionRows();

[[nodiscard]] Options StandardOptions();
// The options of one page only.
void ResetPage(OptionPage page, Options& options);

// A value that is not stored, or out of its bounds, is the standard one.
[[nodiscard]] Options LoadOptions();
void SaveOptions(const Options& options);

}  // namespace tw
