#include "app/window/lamps.h"

#include <cstring>
#include <cwchar>
#include <iterator>
#include <utility>

#include "acquisition/record_file.h"
#include "app/run/run_watch.h"
#include "app/settings/lamp_face.h"
#include "app/window/control_ids.h"
#include "app/window/run_changes.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"

namespace tw {
namespace {

// 0 before the first answer.
uint64_t SpaceLeft(const AppState& state) {
  return LoadShared(state.spaceAnswers) == 0 ? kUnknownSpace : LoadShared(state.freeSpace_bytes);
}

// A folder that is gone with its disk refuses each write.
RecordFault FaultShown(const AppState& state) {
  const RecordFault fault = FaultOfRecording(state);
  const bool gone = LoadShared(state.spaceAnswers) != 0 && SpaceLeft(state) == kUnknownSpace;
  return fault == RecordFault::diskRefuses && gone ? RecordFault::folderMissing : fault;
}

// The names in the title, behind the program's own.
const char* FileNames() {
  const char* name = globals.titleText;
  if (const char* const gap = std::strstr(name, "  ")) name = gap;
  while (*name == ' ') ++name;
  return name;
}

RecordingFacts CollectRecording(AppState& state, uint32_t now_ms) {
  return {.wanted = WantsRecording(state),
          .open = IsRecordFileOpen(state, RecordChannel::a) || IsRecordFileOpen(state, RecordChannel::b),
          .fault = FaultShown(state),
          .recorded_ms = Recorded_ms(state, now_ms),
          .noData_s = state.noData_s,
          .pings = LoadShared(state.recordedPings),
          .bytes = LoadShared(state.recordedBytes),
          .free_bytes = SpaceLeft(state),
          .files = FileNames(),
          .now_ms = now_ms};
}

ReceiverFacts CollectReceiver(AppState& state, uint32_t now_ms) {
  ReceiverFacts facts{};
  const Handle port = LoadShared(state.gpsPort);
  facts.chosen = state.gpsThread != Handle::null && globals.gpsPortNumber != kNoGpsPort;
  facts.open = facts.chosen && port != Handle::null && port != Handle::invalid;
  if (!facts.open) return facts;
  const ReceiverTimes times = TimesOfReceiver(state);
  const auto silence_ms = static_cast<uint32_t>(state.options.receiverSilence_s) * 1000;
  facts.state = JudgeReceiver(times, silence_ms, now_ms);
  facts.silent_s = Elapsed_ms(times.byte_ms, now_ms) / 1000;
  facts.fixAge_s = Elapsed_ms(LoadShared(state.receiverFix_ms), now_ms) / 1000;
  facts.baud = globals.gpsBaud;
  const Locked held(state.gpsLock);
  facts.hasFix = (globals.fix.presence & (kHasGga | kHasRmc)) != 0;
  facts.quality = globals.fix.quality;
  facts.satellites = globals.fix.satellitesInUse;
  facts.hdop = globals.fix.hdop;
  return facts;
}

// Only with the option for runs that go on unattended: without it the port's text stands, and the lamp tells.
// The port's text comes back as soon as the receiver does; at the end of a run there is another one.
void ShowReceiverTrouble(AppState& state, const ReceiverFacts& facts) {
  wchar_t text[kStatusTextSize];
  const bool trouble = FormatReceiverTrouble(text, facts) && state.options.keepRunGoing != 0;
  const uint32_t told_s = facts.open && facts.state == ReceiverState::silent ? facts.silent_s : 0;
  const bool told = std::exchange(state.watch.receiverTold, trouble ? 1 : 0) != 0;
  const bool same = told == trouble && state.watch.receiverTold_s == told_s;
  state.watch.receiverTold_s = trouble ? told_s : 0;
  if (same) return;
  if (trouble) {
    SetStatusText(state, StatusPart::gps, text);
  } else if (facts.open) {
    ShowReceiverPort(state);
  }
}

void ShowDiskState(AppState& state) {
  wchar_t text[std::size(RunWatch{}.diskText)];
  const bool alarm = FormatDiskState(text, {.pingsLost = LoadShared(state.pingsLost),
                                            .left_bytes = LoadShared(state.leftToWrite_bytes),
                                            .wanted = WantsRecording(state),
                                            .fault = FaultShown(state),
                                            .rate_Bps = state.watch.rate_Bps,
                                            .free_bytes = SpaceLeft(state)});
  if (std::wcscmp(text, state.watch.diskText) == 0) return;
  CopyWide(state.watch.diskText, text);
  if (alarm) {
    SetStatusAlarm(state, StatusPart::empty, state.watch.diskText);
  } else {
    SetStatusText(state, StatusPart::empty, text);
  }
}

}  // namespace

void ShowLamps(AppState& state, uint32_t now_ms) {
  state.noData_s = SecondsWithoutPing(state, now_ms);
  ShowLamp(state, ID_RECORDING_LAMP, LampOf(CollectRecording(state, now_ms)));
  const ReceiverFacts receiver = CollectReceiver(state, now_ms);
  ShowLamp(state, ID_RECEIVER_LAMP, LampOf(receiver));
  ShowReceiverTrouble(state, receiver);
  ShowDiskState(state);
}

}  // namespace tw
