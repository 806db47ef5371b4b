#include "device/start_sequence.h"

#include <algorithm>
#include <cinttypes>
#include <span>

#include "base/shared_value.h"
#include "base/text_format.h"
#include "device/command_link.h"
#include "platform/clock.h"

namespace tw {
namespace {

// What a device of the first family can be told to send; the others know two modes more.
constexpr int32_t kStartModes[] = {1, 2, 3, 4, 6, 7, 8, 9, 100, 101};
constexpr int32_t kFurtherModes[] = {5, 10};
constexpr int32_t kReplacementMode = 3;

void Send(Handle port, CommandId id, const char* value) {
  static_cast<void>(Exchange(port, id, value));
}

void SendNumber(Handle port, CommandId id, int32_t value) {
  char text[16];
  FormatText(text, "%" PRId32, value);
  Send(port, id, text);
}

void SendTime(Handle port) {
  char text[16];
  FormatText(text, "%" PRIu32, static_cast<uint32_t>(UnixMilliseconds() / 1000));
  Send(port, CommandId::time, text);
}

bool Holds(std::span<const int32_t> modes, int32_t mode) {
  return std::find(modes.begin(), modes.end(), mode) != modes.end();
}

// A preset in force decides the output itself.
void SendOutput(AppState& state, Handle port) {
  if (globals.presetCapable != 0 && globals.currentPreset != kNoPreset) return;
  int32_t& mode = state.settings.outputMode;
  const bool known =
      Holds(kStartModes, mode) || (LoadShared(globals.deviceFamily) != 1 && Holds(kFurtherModes, mode));
  if (!known) mode = kReplacementMode;
  SendNumber(port, CommandId::output, mode);
  state.appliedSettings.outputMode = mode;
}

void SendSingle(AppState& state, Handle port) {
  SendTime(port);
  Send(port, CommandId::tvgMode, "1");
  state.settings.tvgMode = 1;
  state.appliedSettings.tvgMode = 1;
  Send(port, CommandId::pingOnce, "0");
  Send(port, CommandId::nmeaDpZero, "1");
  Send(port, CommandId::nmeaDbt, "1");
  Send(port, CommandId::nmeaDpt, "0");
  Send(port, CommandId::nmeaMtw, "1");
  Send(port, CommandId::nmeaEma, "1");
  Send(port, CommandId::nmeaZda, "1");
  Send(port, CommandId::nmeaXdr, "1");
  SendOutput(state, port);
}

void SendDual(AppState& state, Handle port) {
  SendTime(port);
  Send(port, CommandId::nmeaDpt, "1");
  Send(port, CommandId::nmeaEma, "1");
  SendOutput(state, port);
  SendNumber(port, CommandId::range, state.settings.rangeHigh_mm);
  // One command for both channels.
  state.settings.rangeLow_mm = state.settings.rangeHigh_mm;
  state.appliedSettings.rangeLow_mm = state.settings.rangeHigh_mm;
  state.appliedSettings.rangeHigh_mm = state.settings.rangeHigh_mm;
}

}  // namespace

void StartDevice(AppState& state) {
  const Handle port = LoadShared(state.devicePort);
  const bool dual = LoadShared(globals.deviceFamily) == 1 && LoadShared(globals.dualMode) != 0;
  if (dual) {
    SendDual(state, port);
  } else {
    SendSingle(state, port);
  }
  static_cast<void>(SendCommandNoValue(port, CommandId::go));
}

}  // namespace tw
