// Command lines to the device and their replies. The device echoes each line, answers, and prints its prompt:
// CR LF '>'. All of this runs on the GUI thread while no worker owns the port.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "device/command_table.h"
#include "device/device_link.h"

namespace tw {

enum class LinkResult : uint8_t {
  success = 0,
  invalid = 1,      // unknown command, or a reply without a valid value
  portFailed = 2,   // a read or write failed
  noPrompt = 3,     // the prompt did not come in time
  stopTimeOut = 4,  // the device did not stop
};

inline constexpr uint32_t kReplyLimit_ms = 2000;
inline constexpr uint32_t kLateReplyLimit_ms = 1500;

// Recognises the prompt byte by byte.
class PromptMatcher {
 public:
  // True when this byte completes the prompt.
  bool Take(uint8_t byte);

 private:
  uint32_t seen_ = 0;
};

// Writes keyword, blank, value and CR, each on its own; no line feed. `invalid` (and nothing written) for an
// id without keyword.
[[nodiscard]] LinkResult SendCommand(DeviceLink& link, CommandId id, std::string_view value);
// Writes keyword and CR.
[[nodiscard]] LinkResult SendCommandNoValue(DeviceLink& link, CommandId id);

// Collects the reply through its prompt, at most 2,000 ms in all. `length` bytes and a zero stand in the
// link's buffer, on failure those that came. What does not fit is only matched against the prompt.
[[nodiscard]] LinkResult ReadReply(DeviceLink& link, size_t& length);

// The same for a reply that nobody looks at.
[[nodiscard]] LinkResult SkipReply(DeviceLink& link);

// Takes away a reply that has not come in time, since it would be taken for that of the next command. Waits
// 1,500 ms at most; false when none came.
[[nodiscard]] bool TakeLateReply(DeviceLink& link);

// Sends a bare CR and waits for the prompt, up to 10 times; the result is that of the last attempt.
[[nodiscard]] LinkResult RequestPrompt(DeviceLink& link);

// Command and reply; the reply must end in the prompt.
[[nodiscard]] LinkResult Exchange(DeviceLink& link, CommandId id, std::string_view value);
[[nodiscard]] LinkResult Exchange(DeviceLink& link, CommandId id);

// Queries. On any failure the target keeps its value. A value line that is valid but too large for the target
// is `invalid` too.
[[nodiscard]] LinkResult QueryInt(DeviceLink& link, CommandId id, int32_t& target);
[[nodiscard]] LinkResult QueryFloat(DeviceLink& link, CommandId id, float& target);
// Always "#iden"; the line as it stands, cut to fit, with a terminating zero. A reply without a value line is
// an empty identity.
[[nodiscard]] LinkResult QueryString(DeviceLink& link, std::span<char> target);

// The line behind the echoed command line; false when the reply has none. Pure.
[[nodiscard]] bool FindValueLine(std::string_view reply, std::string_view& line);
// Strict: digits, a sign only as the first character, for a float at most one point. Pure.
[[nodiscard]] bool ParseIntLine(std::string_view line, int32_t& value);
[[nodiscard]] bool ParseFloatLine(std::string_view line, float& value);

}  // namespace tw
