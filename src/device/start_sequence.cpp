#include "device/start_sequence.h"

#include <cinttypes>

#include "base/shared_value.h"
#include "base/text_format.h"
#include "device/command_link.h"
#include "platform/clock.h"

namespace tw {
namespace {

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

// A preset in force decides the output itself.
void SendOutput(AppState& state, Handle port) {
  if (globals.presetCapable != 0 && globals.currentPreset != kNoPreset) return;
  SendNumber(port, CommandId::output, state.settings.outputMode);
  state.appliedSettings.outputMode = state.settings.outputMode;
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
  const bool dual = FamilyInUse() == DeviceFamily::first && LoadShared(globals.dualMode) != 0;
  if (dual) {
    SendDual(state, port);
  } else {
    SendSingle(state, port);
  }
  static_cast<void>(SendCommandNoValue(port, CommandId::go));
}

}  // namespace tw
