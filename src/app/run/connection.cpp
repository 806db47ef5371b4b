#include "app/run/connection.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "base/shared_value.h"
#include "base/text_format.h"
#include "device/command_link.h"
#include "device/probe_interface.h"
#include "device/serial_ports.h"
#include "device/settings_readers.h"
#include "device/stop_device.h"
#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/system_error.h"

namespace tw {
namespace {

constexpr int32_t kFastSpeed_bps = 3'000'000;
constexpr uint32_t kPause_ms = 10;
constexpr int kRepeats = 2;  // of forms in one identification, each of another form

struct FamilyReader {
  DeviceFamily family;
  LinkResult (*read)(DeviceLink& link, DeviceSettings& settings, bool& silent);
};

// In the order in which they are tried.
constexpr FamilyReader kFamilyReaders[] = {
    {DeviceFamily::first, ReadAllSettings},
    {DeviceFamily::second, ReadSecondFamilySettings},
    {DeviceFamily::third, ReadSettingsFromB64Info},
};

RunResult OpenReceiver(AppState& state) {
  if (globals.gpsPortNumber == kNoGpsPort) return {};
  TellStep(*state.link, LinkStep::receiver);
  const Handle port = OpenDevicePort(state.gpsPortName, globals.gpsBaud);
  const uint32_t error = LastSystemError();
  StoreShared(state.gpsPort, port);
  if (port == Handle::invalid) return {RunFault::receiverRefused, error};
  return {};
}

// What is known before a form is read: the settings, and what the device tells beside them.
struct Beginning {
  DeviceSettings settings;
  void (*forget)(DeviceFacts& facts);
};

void ForgetAbilities(DeviceFacts& facts) {
  facts.presetCapable = facts.smoothingSupported = facts.highChannelActive = false;
}

void ForgetDevice(DeviceFacts& facts) {
  facts = DeviceFacts{};
}

// Reads into a copy, so that a form that fails half-way leaves nothing behind. A form that fails for want of
// a reply is tried once more while `repeats` lasts: a reply that only comes late would be taken for that of
// the next form's first query, and a device of another family would seem to answer.
bool ReadsAs(const FamilyReader& reader, DeviceLink& link, const Beginning& beginning, int& repeats,
             DeviceSettings& settings) {
  bool silent = false;
  const auto reads = [&] {
    beginning.forget(link.facts);
    settings = beginning.settings;
    return reader.read(link, settings, silent) == LinkResult::success;
  };
  if (reads()) return true;
  if (silent && repeats > 0) {
    --repeats;
    static_cast<void>(TakeLateReply(link));
    if (reads()) return true;
  }
  beginning.forget(link.facts);
  return false;
}

const FamilyReader* ReadSettings(DeviceLink& link, DeviceSettings& settings) {
  const Beginning beginning{StartUpSettings(), ForgetDevice};
  int repeats = kRepeats;
  const auto* const reader = std::find_if(
      std::begin(kFamilyReaders), std::end(kFamilyReaders),
      [&](const FamilyReader& each) { return ReadsAs(each, link, beginning, repeats, settings); });
  return reader == std::end(kFamilyReaders) ? nullptr : reader;
}

const FamilyReader& ReaderOf(DeviceFamily family) {
  return *std::find_if(std::begin(kFamilyReaders), std::end(kFamilyReaders),
                       [&](const FamilyReader& each) { return each.family == family; });
}

// The frequency that a single device pings with is that of one of its channels. Older firmware that cannot
// tell a channel's frequency may have another one than this program takes it to have: the nearer one gives
// way.
void SettleFrequencies(DeviceSettings& settings) {
  const int64_t used_hz = settings.frequencyInUse_hz;
  if (settings.simultaneous != 0 || used_hz <= 0) return;
  const int64_t toLow_hz = std::abs(used_hz - settings.lowFrequency_hz);
  const int64_t toHigh_hz = std::abs(used_hz - settings.highFrequency_hz);
  int32_t& nearer_hz = toLow_hz < toHigh_hz ? settings.lowFrequency_hz : settings.highFrequency_hz;
  nearer_hz = settings.frequencyInUse_hz;
}

// A channel that older firmware gives no name of its own goes by its frequency.
void NameChannels(DeviceSettings& settings) {
  if (settings.virtualLowFrequency_hz == 0) settings.virtualLowFrequency_hz = settings.lowFrequency_hz;
  if (settings.virtualHighFrequency_hz == 0) settings.virtualHighFrequency_hz = settings.highFrequency_hz;
}

// What is the same of each reading of a device of this family.
void Settle(DeviceFamily family, DeviceSettings& settings) {
  if (family == DeviceFamily::first) {
    SettleFrequencies(settings);
  } else {
    settings.simultaneous = 0;
  }
  NameChannels(settings);
}

void TakeOver(AppState& state, DeviceFamily family, DeviceSettings& settings) {
  Settle(family, settings);
  globals.measuredLowFrequency_hz = settings.virtualLowFrequency_hz;
  globals.measuredHighFrequency_hz = settings.virtualHighFrequency_hz;
  state.appliedSettings = settings;
  state.settings = settings;
}

// What each family needs once it is known. A device that does not answer the reset any more shows as a
// silent line.
void SettleFamily(DeviceLink& link, DeviceFamily family) {
  switch (family) {
    case DeviceFamily::first:
      static_cast<void>(Exchange(link, CommandId::reset));
      if (ProbeInterface(link) != LinkResult::success) link.facts.interfaceType = 0;
      return;
    case DeviceFamily::second:
      static_cast<void>(Exchange(link, CommandId::reset));
      return;
    case DeviceFamily::third:
      link.facts.smoothingSupported = false;
      return;
  }
}

}  // namespace

void CloseDevicePort(AppState& state) {
  state.link->port = Handle::invalid;
  CloseSerialLine(ExchangeShared(state.devicePort, Handle::invalid));
}

void CloseGpsPort(AppState& state) {
  CloseSerialLine(ExchangeShared(state.gpsPort, Handle::invalid));
}

void TakeCommunication(AppState& state, const RunChoices& choices) {
  CopyWide(state.devicePortName, choices.device.name);
  CopyWide(state.gpsPortName, choices.receiver.name);
  globals.devicePortNumber = static_cast<int32_t>(PortNumberOf(choices.device.name));
  globals.deviceBaud = choices.device.speed_bps;
  constexpr uint32_t kWriteLimit_ms = 10'000;
  state.link->writeLimit_ms = state.options.giveUpWriting != 0 ? kWriteLimit_ms : 0;
  const bool chosen = choices.receiver.name[0] != L'\0';
  globals.gpsPortNumber = chosen ? static_cast<int32_t>(PortNumberOf(choices.receiver.name)) : kNoGpsPort;
  globals.gpsBaud = choices.receiver.speed_bps;
}

Handle OpenAtSpeed(const wchar_t* name, int32_t speed_bps) {
  return speed_bps == kFastSpeed_bps ? OpenFastDevicePort(name) : OpenDevicePort(name, speed_bps);
}

bool OpenDevice(AppState& state, uint32_t& error) {
  const Handle port = OpenAtSpeed(state.devicePortName, globals.deviceBaud);
  error = LastSystemError();
  StoreShared(state.devicePort, port);
  state.link->port = port;
  state.link->takesNothing = false;
  return port != Handle::invalid;
}

RunResult ConnectPorts(AppState& state, const ElapsedLog& log) {
  uint32_t error = 0;
  if (!OpenDevice(state, error)) return {RunFault::deviceRefused, error};
  log.Write("After Connect Time :  ");
  state.link->heard = {};
  if (StopDevice(*state.link) != LinkResult::success) return {RunFault::noPrompt};
  // A prompt that comes late would shift each later reply by one; without one this costs the reply's limit.
  static_cast<void>(SkipReply(*state.link));
  SleepMilliseconds(kPause_ms);
  log.Write("After Stop Time   ");
  return OpenReceiver(state);
}

RunResult IdentifyDevice(AppState& state) {
  DeviceSettings settings{};
  const FamilyReader* reader = ReadSettings(*state.link, settings);
  if (reader == nullptr) return {RunFault::unidentified};
  SettleFamily(*state.link, reader->family);
  StoreShared(globals.deviceFamily, static_cast<int32_t>(reader->family));
  TakeOver(state, reader->family, settings);
  return {};
}

bool ReadSettingsBack(AppState& state) {
  const DeviceFamily family = FamilyInUse();
  const Beginning beginning{state.settings, ForgetAbilities};
  int repeats = 1;
  DeviceSettings settings{};
  if (!ReadsAs(ReaderOf(family), *state.link, beginning, repeats, settings)) return false;
  TakeOver(state, family, settings);
  return true;
}

bool ReadSettingsOf(DeviceLink& link, DeviceFamily family, DeviceSettings& settings) {
  int repeats = 1;
  if (!ReadsAs(ReaderOf(family), link, {StartUpSettings(), ForgetDevice}, repeats, settings)) return false;
  Settle(family, settings);
  return true;
}

}  // namespace tw
