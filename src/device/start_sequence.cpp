#include "device/start_sequence.h"

#include <cinttypes>

#include "base/text_format.h"
#include "device/command_link.h"
#include "platform/clock.h"

namespace tw {
namespace {

void Send(DeviceLink& link, CommandId id, const char* value) {
  TellNextStep(link);
  static_cast<void>(Exchange(link, id, value));
}

void SendNumber(DeviceLink& link, CommandId id, int32_t value) {
  char text[16];
  FormatText(text, "%" PRId32, value);
  Send(link, id, text);
}

void SendTime(DeviceLink& link) {
  char text[16];
  FormatText(text, "%" PRIu32, static_cast<uint32_t>(UnixMilliseconds() / 1000));
  Send(link, CommandId::time, text);
}

// A preset in force decides the output itself.
void SendOutput(DeviceLink& link, const DeviceSettings& settings, DeviceSettings& applied) {
  if (link.facts.presetCapable && link.facts.currentPreset != kNoPreset) {
    ++link.counted.number;
    return;
  }
  SendNumber(link, CommandId::output, settings.outputMode);
  applied.outputMode = settings.outputMode;
}

void SendSingle(DeviceLink& link, DeviceSettings& settings, DeviceSettings& applied) {
  CountSteps(link, LinkStep::starting, 11);
  SendTime(link);
  Send(link, CommandId::tvgMode, "1");
  settings.tvgMode = 1;
  applied.tvgMode = 1;
  Send(link, CommandId::pingOnce, "0");
  Send(link, CommandId::nmeaDpZero, "1");
  Send(link, CommandId::nmeaDbt, "1");
  Send(link, CommandId::nmeaDpt, "0");
  Send(link, CommandId::nmeaMtw, "1");
  Send(link, CommandId::nmeaEma, "1");
  Send(link, CommandId::nmeaZda, "1");
  Send(link, CommandId::nmeaXdr, "1");
  SendOutput(link, settings, applied);
}

void SendDual(DeviceLink& link, DeviceSettings& settings, DeviceSettings& applied) {
  CountSteps(link, LinkStep::starting, 5);
  SendTime(link);
  Send(link, CommandId::nmeaDpt, "1");
  Send(link, CommandId::nmeaEma, "1");
  SendOutput(link, settings, applied);
  SendNumber(link, CommandId::range, settings.rangeHigh_mm);
  // One command for both channels.
  settings.rangeLow_mm = settings.rangeHigh_mm;
  applied.rangeLow_mm = settings.rangeHigh_mm;
  applied.rangeHigh_mm = settings.rangeHigh_mm;
}

}  // namespace

void StartDevice(DeviceLink& link, DeviceFamily family, bool dual, DeviceSettings& settings,
                 DeviceSettings& applied) {
  if (family == DeviceFamily::first && dual) {
    SendDual(link, settings, applied);
  } else {
    SendSingle(link, settings, applied);
  }
  static_cast<void>(SendCommandNoValue(link, CommandId::go));
}

}  // namespace tw
