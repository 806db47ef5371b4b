#include "tests/window/ping_log.h"

#include <cstdlib>
#include <sstream>
#include <utility>

#include "simulator/sent_ping.h"
#include "tests/app/test_files.h"
#include "tests/end_to_end/recorded_position.h"

namespace tw {
namespace {

constexpr std::string_view kBlockStart = "#DeviceID ";
constexpr std::string_view kBlockEnd = "\r\n\r\n\r\n";
constexpr std::string_view kPingEnd = "\r\n\r\n";

bool Take(std::string_view& rest, std::string_view expected) {
  if (!rest.starts_with(expected)) return false;
  rest.remove_prefix(expected.size());
  return true;
}

bool IsSame(std::string_view block, const LoggedPing& ping) {
  return block.size() == ping.size &&
         sim::HashOf({reinterpret_cast<const uint8_t*>(block.data()), block.size()}) == ping.hash;
}

}  // namespace

std::vector<LoggedPing> ReadPingLog() {
  const wchar_t* const path = _wgetenv(L"TW_PING_LOG");
  std::vector<LoggedPing> pings;
  std::vector<std::pair<uint64_t, uint64_t>> dropped;  // from and to
  std::istringstream lines(path == nullptr ? "" : test::ReadWhole(path));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string kind, other, hash, state;
    LoggedPing ping;
    words >> kind;
    if (kind == "dropped" && words >> other >> ping.begin >> ping.size) {
      dropped.emplace_back(ping.begin, ping.begin + ping.size);
    }
    if (kind != "ping") continue;
    for (int i = 0; i < 5; ++i) words >> other;  // number, time, altitude, samples, frequency
    if (!(words >> ping.begin >> ping.size >> hash >> state)) continue;
    ping.hash = std::stoull(hash, nullptr, 16);
    ping.whole = state == "whole";
    pings.push_back(ping);
  }
  for (LoggedPing& ping : pings) {
    for (const auto& [from, to] : dropped) {
      ping.whole = ping.whole && (to <= ping.begin || ping.begin + ping.size <= from);
    }
  }
  return pings;
}

Recording TakeApart(std::string_view file) {
  Recording recording;
  const size_t first = file.find(kBlockStart);
  recording.settings = file.substr(0, first);
  std::string_view rest = first == std::string_view::npos ? std::string_view() : file.substr(first);
  while (!rest.empty()) {
    const size_t end = rest.find(kBlockEnd);
    if (!rest.starts_with(kBlockStart) || end == std::string_view::npos) {
      recording.fault = "no whole block at byte " + std::to_string(file.size() - rest.size());
      break;
    }
    const std::string_view block = rest.substr(0, end + kBlockEnd.size());
    rest.remove_prefix(block.size());
    if (test::TakeSentence(rest, "$GPGGA,").empty() || test::TakeSentence(rest, "$GPRMC,").empty() ||
        !Take(rest, kPingEnd)) {
      recording.fault = "no sentences at byte " + std::to_string(file.size() - rest.size());
      break;
    }
    recording.blocks.push_back(block);
  }
  return recording;
}

std::string CompareWithLog(const Recording& recording, const std::vector<LoggedPing>& log) {
  if (!recording.fault.empty()) return recording.fault;
  size_t next = 0;
  size_t rests = 0;
  for (const std::string_view block : recording.blocks) {
    for (; next < log.size() && !log[next].whole; ++next) ++rests;
    const bool isBehindRest = next > 0 && !log[next - 1].whole;  // and may have gone with it
    if (next < log.size() && IsSame(block, log[next])) {
      ++next;
    } else if (isBehindRest && next + 1 < log.size() && log[next + 1].whole && IsSame(block, log[next + 1])) {
      next += 2;
    } else if (rests-- == 0) {
      return "behind ping " + std::to_string(next) + " of the log stands what was not sent there";
    }
  }
  return "";
}

}  // namespace tw
