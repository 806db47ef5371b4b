#include "gps/gps_worker.h"

#include <algorithm>
#include <cmath>

#include "app/posts.h"
#include "base/calendar.h"
#include "base/shared_value.h"
#include "gps/nmea_parser.h"
#include "gps/position_text.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr uint32_t kReadSize = 64;
constexpr size_t kParserCapacity = 4096;

uint32_t FixTime(const GpsTime& utc) {
  const CalendarTime time{utc.year + 1900, utc.month + 1, utc.day, utc.hour, utc.minute, utc.second, 0};
  return static_cast<uint32_t>(std::clamp<int64_t>(UnixSecondsFromCalendar(time), 0, UINT32_MAX));
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
  globals.gpsTime_s = FixTime(fix.utc);
}

// One read of what waits, or of the first byte that comes.
bool ReadSome(Handle port, uint8_t (&bytes)[kReadSize], uint32_t& got) {
  const uint32_t wanted = std::clamp<uint32_t>(BytesWaiting(port), 1, kReadSize);
  return ReadSerialLine(port, bytes, wanted, got);
}

void TakeBytes(AppState& state, NmeaParser& parser, const uint8_t* bytes, uint32_t count) {
  Locked held(state.gpsLock);
  ParserPush(parser, bytes, count);
  const int applied = ApplyPackets(parser, globals.fix);
  DeriveValues(parser);
  StoreShared(globals.gpsUpdates, LoadShared(globals.gpsUpdates) + static_cast<uint32_t>(applied));
}

// The port is closed here, since nobody else will find its handle once the field is invalid.
void GiveUpPort(AppState& state, Handle port) {
  if (CompareExchangeShared(state.gpsPort, port, Handle::invalid)) CloseSerialLine(port);
  Locked held(state.gpsLock);
  globals.fix.quality = 0;
  globals.gpsQuality = 0;
}

}  // namespace

void GpsWorker(void* argument) {
  AppState& state = *static_cast<AppState*>(argument);
  const uint32_t runNumber = LoadShared(state.runNumber);
  const Handle port = LoadShared(state.gpsPort);
  NmeaParser parser{};
  if (!MakeParser(parser, kParserCapacity)) return;
  {
    Locked held(state.gpsLock);
    ClearFix(globals.fix);
  }
  for (;;) {
    uint8_t bytes[kReadSize];
    uint32_t got = 0;
    const bool alive = ReadSome(port, bytes, got);
    if (LoadShared(state.runNumber) != runNumber) return;
    if (!alive) return GiveUpPort(state, port);
    if (got != 0) TakeBytes(state, parser, bytes, got);
  }
}

void FormatPositionStatus(AppState& state) {
  static constinit StatusTexts texts{};
  PositionValues values;
  {
    Locked held(state.gpsLock);
    values = {globals.gpsFixType, globals.gpsLatitude_rad, globals.gpsLongitude_rad, globals.gpsPdop};
  }
  auto& text = texts.Next();
  FormatPosition(text, values);
  PostStatusText(state, StatusPart::position, text);
}

}  // namespace tw
