#include "gps/gps_worker.h"

#include <algorithm>
#include <cmath>

#include "app/posts.h"
#include "base/shared_value.h"
#include "gps/nmea_parser.h"
#include "gps/position_text.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr uint32_t kReadSize = 64;
constexpr size_t kParserCapacity = 4096;

// What a worker began with. The system uses handles again, so the number counts too.
struct GpsRun {
  Handle port;
  uint32_t number;

  [[nodiscard]] bool IsCurrent(const AppState& state) const {
    return LoadShared(state.runNumber) == number && LoadShared(state.gpsPort) == port;
  }
};

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

// One read of what waits, or of the first byte that comes.
bool ReadSome(Handle port, uint8_t (&bytes)[kReadSize], uint32_t& got) {
  const uint32_t wanted = std::clamp<uint32_t>(BytesWaiting(port), 1, kReadSize);
  return ReadSerialLine(port, bytes, wanted, got);
}

// False when the run is over.
bool TakeBytes(AppState& state, const GpsRun& run, NmeaParser& parser, const uint8_t* bytes, uint32_t count) {
  const Locked held(state.gpsLock);
  if (!run.IsCurrent(state)) return false;
  static_cast<void>(ParserPush(parser, bytes, count));
  const int applied = ApplyPackets(parser, globals.fix);
  DeriveValues(parser);
  StoreShared(globals.gpsUpdates, LoadShared(globals.gpsUpdates) + static_cast<uint32_t>(applied));
  return true;
}

// The talker flag outlives the parser: it changes only with a sentence that is applied.
bool BeginRun(AppState& state, const GpsRun& run, NmeaParser& parser) {
  const Locked held(state.gpsLock);
  if (!run.IsCurrent(state)) return false;
  ClearFix(globals.fix);
  parser.talkerGn = globals.gpsTalkerGn != 0;
  return MakeParser(parser, kParserCapacity);
}

// The port is closed by whoever takes it out of the record, this thread or Stop. Without a port nobody else
// owns the fix: its quality becomes 0 even after a Stop, or the next run without a receiver would record this
// run's position as a valid one.
void EndRun(AppState& state, const GpsRun& run) {
  const Locked held(state.gpsLock);
  if (LoadShared(state.runNumber) == run.number &&
      CompareExchangeShared(state.gpsPort, run.port, Handle::invalid)) {
    CloseSerialLine(run.port);
  }
  if (LoadShared(state.gpsPort) != Handle::invalid) return;
  globals.fix.quality = 0;
  globals.gpsQuality = 0;
}

}  // namespace

void GpsWorker(void* argument) {
  AppState& state = *static_cast<AppState*>(argument);
  const GpsRun run{.port = LoadShared(state.gpsPort), .number = LoadShared(state.runNumber)};
  NmeaParser parser{};
  if (BeginRun(state, run, parser)) {
    uint8_t bytes[kReadSize];
    uint32_t got = 0;
    while (run.IsCurrent(state) && ReadSome(run.port, bytes, got)) {
      if (got != 0 && !TakeBytes(state, run, parser, bytes, got)) break;
    }
  }
  EndRun(state, run);
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
