#include "gps/nmea_parser.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "base/checksum.h"
#include "base/text_scan.h"

namespace tw {
namespace {

constexpr std::string_view kNoMemory = "Insufficient memory!";

void Silence(void*, std::string_view) {}

// Where a sentence stands at the front of what has arrived.
struct Framed {
  enum class Kind : uint8_t { sentence, skip, wait } kind;
  size_t used;            // bytes that are done with
  std::string_view text;  // '$' to '*' inclusive
};

// `text` begins with '$'.
Framed FrameSentence(std::string_view text) {
  const std::string_view reach = text.substr(0, kMaxSentence);
  const size_t end = std::min(reach.find('*'), reach.size());
  const size_t next = reach.substr(0, end).find('$', 1);
  if (next != reach.npos) return {Framed::Kind::skip, next, {}};
  if (end == reach.size()) {
    if (end < kMaxSentence) return {Framed::Kind::wait, 0, {}};
    return {Framed::Kind::skip, 1, {}};
  }
  // Behind the '*' each byte that has come must fit; then it may still wait for the others.
  const std::string_view tail = text.substr(end + 1, 4);
  const auto isHex = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
  };
  for (size_t i = 0; i < tail.size(); ++i) {
    const bool fits = i < 2 ? isHex(tail[i]) : tail[i] == (i == 2 ? '\r' : '\n');
    if (!fits) return {Framed::Kind::skip, end + 1, {}};
  }
  if (tail.size() < 4) return {Framed::Kind::wait, 0, {}};
  std::string_view digits = tail.substr(0, 2);
  uint32_t sum = 0;
  const bool right = ScanHex(digits, 2, sum) && sum == XorChecksum(text.substr(1, end - 1));
  return {right ? Framed::Kind::sentence : Framed::Kind::skip, end + 5, text.substr(0, end + 1)};
}

std::unique_ptr<PacketNode> TakeNode(NmeaParser& parser) {
  if (parser.spare == nullptr) return std::unique_ptr<PacketNode>(new (std::nothrow) PacketNode{});
  std::unique_ptr<PacketNode> node = std::move(parser.spare);
  parser.spare = std::move(node->next);
  return node;
}

bool Enqueue(NmeaParser& parser, SentenceType type, const Packet& packet) {
  std::unique_ptr<PacketNode> node = TakeNode(parser);
  if (node == nullptr) {
    parser.error(parser.context, kNoMemory);
    return false;
  }
  node->type = type;
  node->packet = packet;
  PacketNode* added = node.get();
  (parser.last == nullptr ? parser.first : parser.last->next) = std::move(node);
  parser.last = added;
  return true;
}

bool TakeSentence(NmeaParser& parser, std::string_view sentence) {
  parser.trace(parser.context, sentence);
  const SentenceType type = TypeOfSentence(sentence);
  if (type == SentenceType::other) return false;
  Packet packet;
  const ParseFailure failure = ParseSentence(type, sentence, packet);
  if (failure.sentence == nullptr) return Enqueue(parser, type, packet);
  if (failure.detail != nullptr) parser.error(parser.context, failure.detail);
  parser.error(parser.context, failure.sentence);
  return false;
}

void SetTime(GpsFix& fix, const TimeOfDay& time) {
  fix.utc.hour = time.hour;
  fix.utc.minute = time.minute;
  fix.utc.second = time.second;
  fix.utc.hundredth = time.hundredth;
}

void Apply(const GgaPacket& gga, GpsFix& fix) {
  fix.presence |= kHasGga;
  SetTime(fix, gga.time);
  fix.quality = gga.quality;
  fix.satellitesInUse = gga.satellitesInUse;
  fix.hdop = gga.hdop;
  fix.elevation_m = gga.elevation_m;
  fix.latitude = gga.latitude;
  fix.longitude = gga.longitude;
  fix.geoidHeight_m = gga.geoidHeight_m;
  fix.differentialAge_s = gga.differentialAge_s;
  fix.differentialStation = gga.differentialStation;
}

void Apply(const GsaPacket& gsa, GpsFix& fix) {
  fix.presence |= kHasGsa;
  fix.fixType = gsa.fixType;
  fix.pdop = gsa.pdop;
  fix.hdop = gsa.hdop;
  fix.vdop = gsa.vdop;
}

void Apply(const GsvPacket& gsv, GpsFix& fix) {
  fix.presence |= kHasGsv;
  fix.satellitesInView = gsv.satellitesInView;
  const int32_t begin = 4 * (gsv.sentenceIndex - 1);
  std::copy_n(gsv.satellites, std::min(gsv.count, kMaxSatellites - begin), fix.satellites + begin);
}

void Apply(const RmcPacket& rmc, GpsFix& fix) {
  fix.presence |= kHasRmc;
  SetTime(fix, rmc.time);
  if (rmc.hasDate) {
    fix.utc.year = rmc.year;
    fix.utc.month = rmc.month;
    fix.utc.day = rmc.day;
  }
  fix.latitude = rmc.latitude;
  fix.longitude = rmc.longitude;
  fix.speed_kmh = rmc.speed_kmh;
  fix.direction_deg = rmc.direction_deg;
  fix.declination_deg = rmc.declination_deg;
  fix.modeCode = rmc.modeCode;
}

void Apply(const VtgPacket& vtg, GpsFix& fix) {
  fix.presence |= kHasVtg;
  fix.direction_deg = vtg.direction_deg;
  fix.speed_kmh = vtg.speed_kmh;
}

}  // namespace

bool MakeParser(NmeaParser& parser, size_t capacity) {
  if (parser.trace == nullptr) parser.trace = Silence;
  if (parser.error == nullptr) parser.error = Silence;
  parser.capacity = std::max(capacity, kMinParserCapacity);
  parser.length = 0;
  parser.buffer.reset(new (std::nothrow) uint8_t[parser.capacity]);
  if (parser.buffer != nullptr) return true;
  parser.error(parser.context, kNoMemory);
  return false;
}

int ParserPush(NmeaParser& parser, const uint8_t* bytes, size_t count) {
  if (parser.length + count >= parser.capacity) parser.length = 0;
  if (count >= parser.capacity) {
    bytes += count - (parser.capacity - 1);
    count = parser.capacity - 1;
  }
  if (count != 0) std::memcpy(parser.buffer.get() + parser.length, bytes, count);
  parser.length += count;

  const std::string_view whole(reinterpret_cast<const char*>(parser.buffer.get()), parser.length);
  size_t at = 0;
  int parsed = 0;
  for (;;) {
    at = std::min(whole.find('$', at), whole.size());
    if (at == whole.size()) break;
    const Framed framed = FrameSentence(whole.substr(at));
    if (framed.kind == Framed::Kind::wait) break;
    if (framed.kind == Framed::Kind::sentence && TakeSentence(parser, framed.text)) ++parsed;
    at += framed.used;
  }
  parser.length -= at;
  std::memmove(parser.buffer.get(), parser.buffer.get() + at, parser.length);
  return parsed;
}

int ApplyPackets(NmeaParser& parser, GpsFix& fix) {
  int applied = 0;
  while (parser.first != nullptr) {
    std::unique_ptr<PacketNode> node = std::move(parser.first);
    parser.first = std::move(node->next);
    std::visit([&](const auto& packet) { Apply(packet, fix); }, node->packet);
    // kept: a GNGGA clears the flag as well, so the sentences behind it go back to four decimals.
    parser.talkerGn = node->type == SentenceType::gnrmc;
    node->next = std::move(parser.spare);
    parser.spare = std::move(node);
    ++applied;
  }
  parser.last = nullptr;
  return applied;
}

}  // namespace tw
