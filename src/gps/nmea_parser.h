// From the bytes of a GPS receiver to the fix: NMEA 0183 (IEC 61162-1) sentences GGA, GSA, GSV, RMC, VTG and
// GLL with talkers GP and GN.
//
//   ...noise...$GPGGA,123519.00,4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,*hh<CR><LF>
//
// A sentence begins at '$' and ends with '*', two hexadecimal digits (the checksum) and CR LF. Getting back
// in step: another '$' before the '*' begins a new sentence; what is not finished after 256 bytes, has other
// bytes behind the '*', or a wrong checksum is passed over. No I/O, no clock; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "gps/gps_fix.h"
#include "gps/nmea_packet.h"

namespace tw {

inline constexpr size_t kMinParserCapacity = 256;
inline constexpr size_t kMaxSentence = 256;

struct PacketNode {
  SentenceType type;
  Packet packet;
  std::unique_ptr<PacketNode> next;
};

struct NmeaParser {
  // Get each sentence whose checksum is right ("$" to "*"), and each error text.
  void (*trace)(void* context, std::string_view text);
  void (*error)(void* context, std::string_view text);
  void* context;

  std::unique_ptr<uint8_t[]> buffer;
  size_t capacity;
  size_t length;
  std::unique_ptr<PacketNode> first;
  PacketNode* last;
  std::unique_ptr<PacketNode> spare;  // nodes of sentences that were applied, used again
  bool talkerGn;  // the last sentence applied to the fix was a GNRMC; outlives the parser, see GpsWorker
};

// Makes a parser ready whose fields are zero but for the callbacks and `talkerGn` that the caller has set:
// silence stands in for a missing callback. The buffer has at least 256 bytes. False when there is no memory:
// "Insufficient memory!" has been reported, and the parser must not be used.
[[nodiscard]] bool MakeParser(NmeaParser& parser, size_t capacity);

// Appends the bytes and parses all whole sentences. When length and count would reach the capacity, the
// buffer is emptied first; of a push as large as the buffer its tail is kept. Returns the sentences parsed.
int ParserPush(NmeaParser& parser, const uint8_t* bytes, size_t count);

// Applies the parsed sentences to the fix in the order of their arrival, and keeps their nodes for the next
// ones. Returns how many.
int ApplyPackets(NmeaParser& parser, GpsFix& fix);

}  // namespace tw
