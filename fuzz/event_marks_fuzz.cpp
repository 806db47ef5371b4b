// Any bytes as a line of a log of events: a mark that is read is one that can be written, and reads the same.
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/state/event_marks.h"
#include "fuzz/pieces.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // Without the zero behind it, so that a read behind the end shows.
  const std::vector<char> line(data, data + size);
  tw::EventMark mark{};
  if (!tw::ParseMark({line.data(), line.size()}, mark)) return 0;
  tw::Require(mark.number != 0 && std::isfinite(mark.depth_m));
  tw::Require(std::abs(mark.latitude_deg) <= 90 && std::abs(mark.longitude_deg) <= 180);
  char detail[1'024];
  const size_t length = tw::FormatMark(detail, mark);
  std::string again = "2026-03-14T09:30:05.000Z,mark,\"";
  for (const char c : std::string_view(detail, length))
    again += c == '"' ? std::string("\"\"") : std::string(1, c);
  tw::EventMark other{};
  tw::Require(tw::ParseMark(again + "\"", other) && other.number == mark.number && other.ping == mark.ping);
  return 0;
}
