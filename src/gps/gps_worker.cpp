#include "gps/gps_worker.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>

#include "app/state/posts.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "gps/gps_fix.h"
#include "gps/nmea_parser.h"
#include "gps/position_text.h"
#include "gps/receiver_watch.h"
#include "platform/clock.h"
#include "platform/debug_output.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr uint32_t kReadSize = 64;
constexpr size_t kParserCapacity = 4096;
constexpr uint32_t kRetry_ms = 2000;
constexpr uint32_t kSlice_ms = 100;

// What a worker began with. The system uses handles again, so the number counts too.
struct GpsRun {
  Handle port;
  uint32_t number;
  OpenPort open = nullptr;  // null: a port that fails stays away
  int32_t speed_bps = 0;
  wchar_t name[kPortNameSize]{};

  [[nodiscard]] bool IsCurrent(const AppState& state) const {
    return LoadShared(state.runNumber) == number && LoadShared(state.gpsPort) == port;
  }
};

// What the worker knows of the receiver's sentences.
struct Listener {
  NmeaParser parser{};
  uint32_t sentences = 0;  // whole ones since the last look
  bool dropped = false;    // the position was taken back, until a sentence tells it again
  int32_t droppedQuality = 0;
};

void CountSentence(void* context, std::string_view) {
  ++static_cast<Listener*>(context)->sentences;
}

bool IsSameTime(const GpsTime& a, const GpsTime& b) {
  return std::memcmp(&a, &b, sizeof(GpsTime)) == 0;
}

// With gpsLock held.
void DeriveValues(const NmeaParser& parser) {
  const GpsFix& fix = globals.fix;
  globals.gpsTalkerGn = parser.talkerGn ? 1 : 0;
  globals.gpsLatitude_rad = static_cast<float>(RadiansFromDegreesMinutes(fix.latitude));
  globals.gpsLongitude_rad = static_cast<float>(RadiansFromDegreesMinutes(fix.longitude));
  globals.gpsLongitudeDdmm = static_cast<float>(fix.longitude);
  globals.gpsPdop = static_cast<float>(std::sqrt(fix.hdop * fix.hdop + fix.vdop * fix.vdop));
  globals.gpsQuality = fix.quality;
  globals.gpsFixType = fix.fixType;
  globals.gpsTime_s = UnixSecondsOfFix(fix.utc);
}

// One read of what waits, or of the first byte that comes. `overruns` as in BytesWaiting.
bool ReadSome(Handle port, uint8_t (&bytes)[kReadSize], uint32_t& got, uint32_t& overruns) {
  const uint32_t wanted = std::clamp<uint32_t>(BytesWaiting(port, &overruns), 1, kReadSize);
  return ReadSerialLine(port, bytes, wanted, got);
}

void TellOverruns(uint32_t overruns) {
  wchar_t text[64];
  FormatWide(text, "GPS input lost : %" PRIu32 "\n", overruns);
  WriteDebugText(text);
}

// Puts what was parsed into the fix and tells how many sentences that were. A position that was taken back
// counts again with the next sentence that brings a time; a GGA has a quality of its own. With gpsLock held.
int ApplySentences(AppState& state, Listener& listener, uint32_t now_ms) {
  GpsFix& fix = globals.fix;
  const GpsTime before = fix.utc;
  if (listener.dropped) fix.quality = listener.droppedQuality;
  const int applied = ApplyPackets(listener.parser, fix);
  if (!IsSameTime(before, fix.utc)) {
    StoreShared(state.receiverFix_ms, now_ms);
    listener.dropped = false;
  }
  if (listener.dropped) fix.quality = 0;
  return applied;
}

// False when the run is over.
bool TakeBytes(AppState& state, const GpsRun& run, Listener& listener, const uint8_t* bytes, uint32_t count) {
  const uint32_t now_ms = MillisecondClock();
  const Locked held(state.gpsLock);
  if (!run.IsCurrent(state)) return false;
  static_cast<void>(ParserPush(listener.parser, bytes, count));
  const int applied = ApplySentences(state, listener, now_ms);
  DeriveValues(listener.parser);
  StoreShared(globals.gpsUpdates, LoadShared(globals.gpsUpdates) + static_cast<uint32_t>(applied));
  StoreShared(state.receiverByte_ms, now_ms);
  if (std::exchange(listener.sentences, 0) != 0) StoreShared(state.receiverSentence_ms, now_ms);
  return true;
}

// Takes the position of a receiver back that tells none any more, if the operator wants that.
void DropStalePosition(AppState& state, const GpsRun& run, Listener& listener) {
  const uint32_t silence_ms = LoadShared(state.dropPositionAfter_ms);
  if (silence_ms == 0 || listener.dropped) return;
  if (JudgeReceiver(TimesOfReceiver(state), silence_ms, MillisecondClock()) == ReceiverState::tells) return;
  const Locked held(state.gpsLock);
  if (!run.IsCurrent(state)) return;
  listener.dropped = true;
  listener.droppedQuality = std::exchange(globals.fix.quality, 0);
  globals.gpsQuality = 0;
}

void BeginTimes(AppState& state) {
  const uint32_t now_ms = MillisecondClock();
  StoreShared(state.receiverByte_ms, now_ms);
  StoreShared(state.receiverSentence_ms, now_ms);
  StoreShared(state.receiverFix_ms, now_ms);
}

// The talker flag outlives the parser: it changes only with a sentence that is applied.
bool BeginRun(AppState& state, const GpsRun& run, Listener& listener) {
  NmeaParser& parser = listener.parser;
  {
    const Locked held(state.gpsLock);
    if (!run.IsCurrent(state)) return false;
    ClearFix(globals.fix);
    parser.talkerGn = globals.gpsTalkerGn != 0;
    BeginTimes(state);
  }
  parser.trace = CountSentence;
  parser.context = &listener;
  if (MakeParser(parser, kParserCapacity)) return true;
  PostStatusText(state, StatusPart::position, kWithoutMemoryText);
  return false;
}

// Only where the port is to come back: without that a receiver that is silent stays so.
bool IsPortGone(const GpsRun& run) {
  return run.open != nullptr && !IsLineThere(run.port);
}

void ReadUntilTheEnd(AppState& state, const GpsRun& run, Listener& listener) {
  uint8_t bytes[kReadSize];
  uint32_t got = 0;
  uint32_t overruns = 0;
  uint32_t told = 0;
  while (run.IsCurrent(state) && ReadSome(run.port, bytes, got, overruns)) {
    if (got == 0 && IsPortGone(run)) return;
    if (got != 0 && !TakeBytes(state, run, listener, bytes, got)) return;
    DropStalePosition(state, run, listener);
    if (std::exchange(told, overruns) != overruns) TellOverruns(overruns);
  }
}

// Takes the port out of the record, leaves `left` there and quality 0 behind, and closes it. The port is
// closed by whoever takes it out, this thread or Stop, which takes the quality back itself. The lock is not
// held while the port closes: that can take seconds, in which each ping and each paint would wait for it.
bool LeavePort(AppState& state, const GpsRun& run, Handle left) {
  {
    const Locked held(state.gpsLock);
    if (LoadShared(state.runNumber) != run.number || !CompareExchangeShared(state.gpsPort, run.port, left)) {
      return false;
    }
    globals.fix.quality = 0;
    globals.gpsQuality = 0;
  }
  CloseSerialLine(run.port);
  return true;
}

// False when the run is over.
bool Pause(const AppState& state, const GpsRun& run) {
  for (uint32_t waited_ms = 0; waited_ms < kRetry_ms && run.IsCurrent(state); waited_ms += kSlice_ms) {
    SleepMilliseconds(kSlice_ms);
  }
  return run.IsCurrent(state);
}

// Under the lock under which a run becomes stale: what stands in the record by then is closed by Stop.
bool PutPort(AppState& state, const GpsRun& run, Handle opened) {
  const Locked held(state.linkLock);
  return LoadShared(state.runNumber) == run.number && CompareExchangeShared(state.gpsPort, run.port, opened);
}

// Behind a port that failed: opens it anew every 2 s. The port of a run whose receiver is away is the null
// handle. False when the run is over, or nothing is to come back.
bool ComeBack(AppState& state, GpsRun& run) {
  if (run.open == nullptr || run.name[0] == L'\0' || !LeavePort(state, run, Handle::null)) return false;
  run.port = Handle::null;
  while (Pause(state, run)) {
    const Handle opened = run.open(run.name, run.speed_bps);
    if (opened == Handle::invalid) continue;
    if (!IsLineThere(opened)) {
      CloseSerialLine(opened);
      continue;
    }
    if (!PutPort(state, run, opened)) {
      CloseSerialLine(opened);
      return false;
    }
    run.port = opened;
    return true;
  }
  return false;
}

// With its own copy of the choices, which a later Start changes.
GpsRun TakeRun(AppState& state) {
  GpsRun run{.port = LoadShared(state.gpsPort), .number = ExchangeShared(state.gpsRunNumber, 0)};
  const Locked held(state.linkLock);
  if (!run.IsCurrent(state)) return run;
  run.open = state.openReceiver;
  run.speed_bps = globals.gpsBaud;
  CopyWide(run.name, state.gpsPortName);
  return run;
}

}  // namespace

void GpsWorker(void* argument) {
  AppState& state = *static_cast<AppState*>(argument);
  GpsRun run = TakeRun(state);
  Listener listener;
  if (BeginRun(state, run, listener)) {
    do {
      ReadUntilTheEnd(state, run, listener);
    } while (ComeBack(state, run));
  }
  static_cast<void>(LeavePort(state, run, Handle::invalid));
}

void ClearPosition(AppState& state, bool receiver) {
  const Locked held(state.gpsLock);
  ClearFix(globals.fix);
  if (!receiver) globals.fix.quality = 0;
  globals.gpsLatitude_rad = 0;
  globals.gpsLongitude_rad = 0;
  globals.gpsLongitudeDdmm = 0;
  globals.gpsQuality = 0;
  globals.gpsFixType = 0;
  globals.gpsPdop = 0;
  globals.gpsTime_s = 0;
}

void FormatPositionStatus(AppState& state) {
  static constinit StatusTexts texts{};  // which one is next: under gpsLock
  const wchar_t* posted = nullptr;
  {
    const Locked held(state.gpsLock);
    auto& text = texts.Next();
    FormatPosition(text,
                   {globals.gpsFixType, globals.gpsLatitude_rad, globals.gpsLongitude_rad, globals.gpsPdop});
    posted = text;
  }
  PostStatusText(state, StatusPart::position, posted);
}

}  // namespace tw
