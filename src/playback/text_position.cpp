#include "playback/text_position.h"

#include <cstdint>

#include "base/text_scan.h"

namespace tw {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr size_t kMaxSentences = 2;
constexpr size_t kMaxBlanks = 6;

bool IsPositionSentence(std::string_view text) {
  if (text.size() < 6 || text[0] != '$' || text[1] != 'G') return false;
  const std::string_view kind = text.substr(3, 3);
  return kind == "GGA" || kind == "RMC";
}

std::string_view Behind(std::string_view text, std::string_view key) {
  const size_t at = text.find(key);
  return at == std::string_view::npos ? std::string_view{} : text.substr(at + key.size());
}

}  // namespace

SentenceTail FindSentences(std::string_view text) {
  SentenceTail tail{};
  if (text.starts_with(kLineEnd) && IsPositionSentence(text.substr(kLineEnd.size())))
    tail.size = kLineEnd.size();
  for (size_t i = 0; i < kMaxSentences && IsPositionSentence(text.substr(tail.size)); ++i) {
    const size_t end = text.find(kLineEnd, tail.size);
    if (end == std::string_view::npos) break;
    tail.size = end + kLineEnd.size();
  }
  while (tail.blanks < kMaxBlanks && tail.size + tail.blanks < text.size()) {
    const char next = text[tail.size + tail.blanks];
    if (next != '\r' && next != '\n') break;
    ++tail.blanks;
  }
  return tail;
}

bool FindTextPosition(std::string_view block, TextPosition& position) {
  // The lines stand ahead of the samples.
  const std::string_view head = block.substr(0, block.find("DataStart"));
  std::string_view latitude = Behind(head, "#gpsLatitude,radian ");
  std::string_view longitude = Behind(head, "#gpsLongitude,radian ");
  if (!ScanDouble(latitude, position.latitude_rad) || !ScanDouble(longitude, position.longitude_rad))
    return false;
  std::string_view altitude = Behind(head, "#gpsAltitude,m ");
  std::string_view pdop = Behind(head, "#gpsPDOP ");
  std::string_view valid = Behind(head, "#gpsvalid ");
  int32_t flag = 0;
  static_cast<void>(ScanFloat(altitude, position.altitude_m));
  static_cast<void>(ScanFloat(pdop, position.pdop));
  static_cast<void>(ScanInt(valid, flag));
  position.valid = flag > 0;
  return true;
}

}  // namespace tw
