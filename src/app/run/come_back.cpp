#include "app/run/come_back.h"

#include <cstring>
#include <memory>
#include <new>

#include "acquisition/live_worker.h"
#include "app/run/connection.h"
#include "base/shared_value.h"
#include "device/serial_ports.h"
#include "device/settings_writer.h"
#include "device/start_sequence.h"
#include "device/stop_device.h"
#include "platform/clock.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr int32_t kPowerOnSpeed_bps = 115'200;
constexpr uint32_t kPause_ms = 10;

bool IsAtSpeedOfRun(uint32_t attempt) {
  return attempt % 2 == 0 || globals.deviceBaud == kPowerOnSpeed_bps;
}

Handle OpenAgain(AppState& state, const LiveStart&, uint32_t attempt) {
  const int32_t speed_bps = IsAtSpeedOfRun(attempt) ? globals.deviceBaud : kPowerOnSpeed_bps;
  const Handle port = OpenAtSpeed(state.devicePortName, speed_bps);
  if (port == Handle::invalid || IsLineThere(port)) return port;
  CloseSerialLine(port);  // some systems open a name that has nothing behind it
  return Handle::invalid;
}

bool IsSameDevice(const LiveStart& start, const DeviceSettings& told) {
  if (start.deviceFamily != DeviceFamily::first) return told.identifierWord == start.settings.identifierWord;
  return std::strcmp(told.identity, start.settings.identity) == 0;
}

bool GivesUp(void* worker) {
  return static_cast<AwayWorker*>(worker)->GivenUp();
}

// At another speed than the run's, perhaps streaming: told the run's, which goes into force with its reset.
// The next attempt finds it there.
void TellSpeed(DeviceLink& link) {
  if (StopDevice(link) != LinkResult::success) return;
  if (SendSpeed(link, globals.deviceBaud) != LinkResult::success) return;
  static_cast<void>(SkipReply(link));
  static_cast<void>(SendCommandNoValue(link, CommandId::reset));
}

// The device has come to its prompt. `none`: it streams as the run wants it.
AwayFor Restart(DeviceLink& link, const LiveStart& start) {
  static_cast<void>(SkipReply(link));  // a prompt that comes late would shift each later reply by one
  SleepMilliseconds(kPause_ms);
  DeviceSettings told{};
  if (!ReadSettingsOf(link, start.deviceFamily, told)) return AwayFor::answer;
  if (!IsSameDevice(start, told)) return AwayFor::otherDevice;
  DeviceSettings wanted = start.settings;
  wanted.simultaneous = start.dual ? 1 : 0;
  if (WriteChangedSettings(link, start.deviceFamily, wanted, told) != LinkResult::success) {
    return AwayFor::answer;
  }
  StartDevice(link, start.deviceFamily, start.dual, wanted, told);
  return AwayFor::nothing;
}

bool RestartDevice(AppState& state, const LiveStart& start, Handle port, uint32_t attempt,
                   AwayWorker& worker) {
  const std::unique_ptr<DeviceLink> link(new (std::nothrow) DeviceLink{});
  if (link == nullptr) return false;
  constexpr uint32_t kWriteLimit_ms = 2'000;  // Stop waits for the worker
  link->port = port;
  link->writeLimit_ms = kWriteLimit_ms;
  link->givesUp = GivesUp;
  link->givesUpContext = &worker;
  if (!IsAtSpeedOfRun(attempt)) {
    TellSpeed(*link);
    return false;
  }
  const AwayFor reason = StopDevice(*link) == LinkResult::success ? Restart(*link, start) : AwayFor::answer;
  if (worker.GivenUp() || reason == AwayFor::nothing) return reason == AwayFor::nothing;
  NoteAway(state, start, reason);
  return false;
}

}  // namespace

const LinkRescue kLinkRescue{OpenAgain, IsAtSpeedOfRun, RestartDevice};

}  // namespace tw
