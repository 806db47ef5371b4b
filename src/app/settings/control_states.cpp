#include "app/settings/control_states.h"

#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "device/device_link.h"

namespace tw {
namespace {

// When a control can be used in a state.
enum class Use : uint8_t {
  off,
  on,
  first,     // with a device of the first family
  presets,   // with one that has presets
  noPreset,  // unless a preset rules the value
};

struct Row {
  int id;
  Use uses[kProgramStates];
};

using enum Use;

// clang-format off
constexpr Row kRows[] = {
    //                      idle running   playing paused converting
    {ID_DEVICE_PORT,       {on,  off,      on,     on,    on}},
    {ID_DEVICE_SPEED,      {on,  off,      on,     on,    on}},
    {ID_GPS_PORT,          {on,  off,      on,     on,    on}},
    {ID_GPS_SPEED,         {on,  off,      on,     on,    on}},
    {ID_START,             {on,  off,      on,     on,    on}},
    {ID_STOP,              {off, on,       on,     on,    on}},
    {ID_APPLY,             {off, on,       off,    off,   off}},
    {ID_DEFAULT,           {off, on,       off,    off,   off}},
    {ID_LOW_FREQUENCY,     {off, first,    off,    off,   off}},
    {ID_HIGH_FREQUENCY,    {off, first,    off,    off,   off}},
    {ID_DUAL_MODE,         {off, first,    off,    off,   off}},
    {ID_RANGE,             {off, noPreset, off,    off,   off}},
    {ID_OUTPUT,            {off, noPreset, off,    off,   off}},
    {ID_INTERVAL,          {off, noPreset, off,    off,   off}},
    {ID_PRESET,            {off, presets,  off,    off,   off}},
    {ID_DETAIL,            {off, on,       on,     on,    off}},
    {ID_SHOW_SETTINGS,     {on,  on,       on,     on,    off}},
    {ID_PLAYBACK,          {on,  on,       on,     on,    off}},
    {ID_SEGY_CONVERT,      {on,  on,       on,     on,    off}},
    {ID_MENU_SEGY,         {on,  on,       on,     on,    off}},
    {ID_MENU_BIN_TO_TXT,   {on,  on,       on,     on,    off}},
    {ID_MENU_BAUD,         {on,  on,       off,    off,   off}},
    {ID_MENU_FIND,         {on,  off,      off,    off,   off}},
    {ID_RESUME,            {off, off,      off,    on,    off}},
    {ID_PAUSE,             {off, off,      on,     off,   off}},
    {ID_BACK,              {off, off,      on,     on,    off}},
    {ID_FAST_BACK,         {off, off,      on,     on,    off}},
    {ID_RECORD,            {on,  on,       on,     on,    on}},
    {ID_SAVE_ADDITIONAL,   {on,  on,       on,     on,    on}},
    {ID_TIMESTAMP,         {on,  on,       on,     on,    on}},
    {ID_AUTO_CAPTURE,      {on,  on,       on,     on,    on}},
    {ID_MENU_FOLDER,       {on,  on,       on,     on,    on}},
    {ID_MENU_MARK,         {off, on,       off,    off,   off}},
    {ID_MENU_MARK_WORD,    {off, on,       off,    off,   off}},
    {ID_MENU_EXIT,         {on,  on,       on,     on,    on}},
};
// clang-format on

bool IsUsable(Use use, const AppState& state) {
  const bool hasPresets = state.link->facts.presetCapable;
  switch (use) {
    case off:
      return false;
    case on:
      return true;
    case first:
      return FamilyInUse() == DeviceFamily::first;
    case presets:
      return hasPresets;
    case noPreset:
      return !hasPresets || state.settings.preset == kNoPreset;
  }
  return false;
}

constexpr wchar_t kNeedsDevice[] = L"No device is connected: press Start.";
constexpr wchar_t kNeedsFile[] = L"No recording is played: press Playback.";

const wchar_t* WhyOff(const Row& row, ProgramState now) {
  using enum ProgramState;
  const auto isOn = [&](ProgramState other) { return row.uses[static_cast<size_t>(other)] != off; };
  if (isOn(idle)) {
    if (now == running) return L"A run goes on: press Stop first.";
    return now == converting ? L"A conversion goes on: wait for its end, or press Stop."
                             : L"A recording is played: press Stop first.";
  }
  if (!isOn(running)) {
    if (now == playing) return L"The recording plays.";
    return now == paused ? L"The recording is held." : kNeedsFile;
  }
  if (!isOn(playing)) return kNeedsDevice;
  return isOn(converting) ? L"There is nothing to stop."
                          : L"No device is connected, and no recording is played.";
}

}  // namespace

ProgramState StateOfProgram(const AppState& state) {
  if (LoadShared(state.devicePort) != Handle::invalid) return ProgramState::running;
  if (ConversionUnderWay(state) != Conversion::none) return ProgramState::converting;
  if (state.playbackActive == 0) return ProgramState::idle;
  const bool paused = state.playbackAtEnd != 0 || state.playbackPaused != 0;
  return paused ? ProgramState::paused : ProgramState::playing;
}

void RefreshControlStates(AppState& state) {
  const auto column = static_cast<size_t>(StateOfProgram(state));
  for (const Row& row : kRows) EnableControl(state, row.id, IsUsable(row.uses[column], state));
}

const wchar_t* WhyDisabled(const AppState& state, int id) {
  const ProgramState now = StateOfProgram(state);
  for (const Row& row : kRows) {
    const Use use = row.uses[static_cast<size_t>(now)];
    if (row.id != id || IsUsable(use, state)) continue;
    switch (use) {
      case off:
        return WhyOff(row, now);
      case on:
        return nullptr;
      case first:
        return L"The device has one frequency.";
      case presets:
        return L"The device has no presets.";
      case noPreset:
        return L"The preset rules it: choose the preset \"Off\" and press Apply.";
    }
  }
  return nullptr;
}

}  // namespace tw
