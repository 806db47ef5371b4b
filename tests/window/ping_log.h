// What the virtual echosounder says that it sent (echosim --log), and a record file taken apart ping by ping:
// both for comparing the two.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tw {

struct LoggedPing {
  uint64_t begin = 0;  // in all that was sent
  uint64_t size = 0;
  uint64_t hash = 0;   // FNV-1a of the block
  bool whole = false;  // as sent, and all of it taken by the line, which holds little while nobody reads
};

// The log that TW_PING_LOG names, as far as it is written, oldest first.
[[nodiscard]] std::vector<LoggedPing> ReadPingLog();

// The blocks of a record file, each with its two sentences and its end behind it. `fault` says what is not as
// it should be, and where; empty when the file is whole from its first byte to its last.
struct Recording {
  std::string settings;  // what stands before the first block
  std::vector<std::string_view> blocks;
  std::string fault;
};
[[nodiscard]] Recording TakeApart(std::string_view file);

// What is wrong with the recording, when the whole pings of the log should stand in it from the first one on,
// none lost, none torn; empty when nothing is. The device goes on sending behind the last. What is left of a
// ping that was not whole may stand in its place, and the next one may be lost with it.
[[nodiscard]] std::string CompareWithLog(const Recording& recording, const std::vector<LoggedPing>& log);

}  // namespace tw
