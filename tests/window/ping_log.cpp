#include "tests/window/ping_log.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

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

// One sentence with its line end; `type` is "GGA" or "RMC".
bool TakeSentence(std::string_view& rest, std::string_view type) {
  const size_t end = rest.find("\r\n");
  if (end == std::string_view::npos) return false;
  const std::string_view line = rest.substr(0, end);
  const bool talker = line.starts_with("$GP") || line.starts_with("$GN");
  if (!talker || line.substr(3, 3) != type || line.size() < 10 || line[line.size() - 3] != '*') return false;
  rest.remove_prefix(end + 2);
  return true;
}

std::string At(const char* what, std::string_view file, std::string_view rest) {
  return std::string(what) + " at byte " + std::to_string(file.size() - rest.size());
}

// A place in all that was sent.
struct Stretch {
  uint64_t begin = 0;
  uint64_t size = 0;

  [[nodiscard]] bool Touches(const Stretch& other) const {
    return begin < other.begin + other.size && other.begin < begin + size;
  }
};

bool IsSame(std::string_view block, const LoggedPing& ping) {
  return block.size() == ping.size && Fnv1a(block) == ping.hash;
}

}  // namespace

std::vector<LoggedPing> ReadPingLog() {
  const wchar_t* const path = _wgetenv(L"TW_PING_LOG");
  std::vector<LoggedPing> pings;
  std::vector<Stretch> places;  // of the pings
  std::vector<Stretch> dropped;
  std::istringstream lines(path == nullptr ? "" : ReadWholeFile(path));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string kind, time, samples, frequency, hash, state;
    Stretch place;
    LoggedPing ping;
    words >> kind;
    if (kind == "dropped" && words >> time >> place.begin >> place.size) dropped.push_back(place);
    if (kind != "ping" || !(words >> ping.number >> time >> ping.altitude_m >> samples >> frequency >>
                            place.begin >> place.size >> hash >> state)) {
      continue;
    }
    ping.size = place.size;
    ping.hash = std::stoull(hash, nullptr, 16);
    ping.whole = state == "whole";
    pings.push_back(ping);
    places.push_back(place);
  }
  for (size_t i = 0; i < pings.size(); ++i) {
    for (const Stretch& gone : dropped) pings[i].whole = pings[i].whole && !gone.Touches(places[i]);
  }
  return pings;
}

std::string ReadWholeFile(const std::wstring& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Recording TakeApart(std::string_view file) {
  Recording recording;
  const size_t first = file.find(kBlockStart);
  recording.settings = file.substr(0, first);
  std::string_view rest = first == std::string_view::npos ? std::string_view() : file.substr(first);
  while (!rest.empty()) {
    const size_t end = rest.find(kBlockEnd);
    if (!rest.starts_with(kBlockStart) || end == std::string_view::npos) {
      recording.fault = At("no whole block", file, rest);
      break;
    }
    const std::string_view block = rest.substr(0, end + kBlockEnd.size());
    rest.remove_prefix(block.size());
    if (!TakeSentence(rest, "GGA") || !TakeSentence(rest, "RMC") || !Take(rest, kPingEnd)) {
      recording.fault = At("no sentences", file, rest);
      break;
    }
    recording.blocks.push_back(block);
  }
  return recording;
}

uint64_t Fnv1a(std::string_view bytes) {
  uint64_t hash = 0xCBF29CE484222325u;
  for (const char byte : bytes) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 0x100000001B3u;
  }
  return hash;
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
