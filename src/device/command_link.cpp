#include "device/command_link.h"

#include <algorithm>

#include "base/text_scan.h"
#include "platform/clock.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr int kPromptAttempts = 10;
constexpr uint32_t kPause_ms = 10;
constexpr char kReturn = '\r';

bool IsGivenUp(const DeviceLink& link) {
  return link.givesUp != nullptr && link.givesUp(link.givesUpContext);
}

// Reads until the prompt, giving each byte to `take`.
template <typename Take>
LinkResult AwaitPrompt(DeviceLink& link, uint32_t limit_ms, Take take) {
  PromptMatcher matcher;
  const uint32_t begin = MillisecondClock();
  do {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadByte(link, byte, got)) return LinkResult::portFailed;
    if (got == 0) continue;
    take(static_cast<char>(byte));
    if (matcher.Take(byte)) return LinkResult::success;
  } while (MillisecondClock() - begin <= limit_ms);
  return LinkResult::noPrompt;
}

bool IsLineEnd(char c) {
  return c == '\r' || c == '\n';
}

bool IsNumber(std::string_view line, bool point) {
  if (!line.empty() && (line[0] == '+' || line[0] == '-')) line.remove_prefix(1);
  const bool digits = std::any_of(line.begin(), line.end(), [](char c) { return c >= '0' && c <= '9'; });
  const bool clean = std::all_of(line.begin(), line.end(),
                                 [&](char c) { return (c >= '0' && c <= '9') || (point && c == '.'); });
  return digits && clean && std::count(line.begin(), line.end(), '.') <= 1;
}

// Query, reply, and its value line.
LinkResult Ask(DeviceLink& link, CommandId id, std::string_view& line) {
  const LinkResult sent = SendCommandNoValue(link, id);
  if (sent != LinkResult::success) return sent;
  size_t length = 0;
  const LinkResult answered = ReadReply(link, length);
  if (answered != LinkResult::success) return answered;
  return FindValueLine({link.reply, length}, line) ? LinkResult::success : LinkResult::invalid;
}

template <typename T>
LinkResult Query(DeviceLink& link, CommandId id, bool (*parse)(std::string_view, T&), T& target) {
  std::string_view line;
  const LinkResult result = Ask(link, id, line);
  if (result != LinkResult::success) return result;
  return parse(line, target) ? LinkResult::success : LinkResult::invalid;
}

}  // namespace

bool WriteBytes(DeviceLink& link, std::string_view text) {
  if (IsGivenUp(link)) return false;
  const auto size = static_cast<uint32_t>(text.size());
  if (link.writeLimit_ms == 0) return WriteSerialLine(link.port, text.data(), size);
  if (link.takesNothing)
    return false;  // the stop procedure alone has thirty, each of which would take its time
  uint32_t written = 0;
  if (!WriteSerialLineWithin(link.port, text.data(), size, link.writeLimit_ms, written)) return false;
  link.takesNothing = written != size;
  return written == size;
}

bool ReadByte(DeviceLink& link, uint8_t& byte, uint32_t& got) {
  if (IsGivenUp(link) || !ReadSerialLine(link.port, &byte, 1, got)) return false;
  if (got != 0) link.heard.Take(byte);
  return got != 0 || link.givesUp == nullptr || IsLineThere(link.port);
}

void TellStep(const DeviceLink& link, LinkStep step, int32_t number, int32_t count) {
  if (link.tells != nullptr) link.tells(link.tellsContext, {step, number, count});
}

void CountSteps(DeviceLink& link, LinkStep step, int32_t count) {
  link.counted = {step, 0, count};
}

void TellNextStep(DeviceLink& link) {
  LinkProgress& counted = link.counted;
  TellStep(link, counted.step, ++counted.number, counted.count);
}

bool PromptMatcher::Take(uint8_t byte) {
  constexpr uint8_t kPrompt[] = {'\r', '\n', '>'};
  seen_ = byte == kPrompt[seen_] ? seen_ + 1 : byte == kPrompt[0] ? 1 : 0;
  if (seen_ < sizeof kPrompt) return false;
  seen_ = 0;
  return true;
}

LinkResult SendCommand(DeviceLink& link, CommandId id, std::string_view value) {
  const std::string_view keyword = KeywordOf(id);
  if (keyword.empty()) return LinkResult::invalid;
  const bool written = WriteBytes(link, keyword) && WriteBytes(link, " ") && WriteBytes(link, value) &&
                       WriteBytes(link, {&kReturn, 1});
  return written ? LinkResult::success : LinkResult::portFailed;
}

LinkResult SendCommandNoValue(DeviceLink& link, CommandId id) {
  const std::string_view keyword = KeywordOf(id);
  if (keyword.empty()) return LinkResult::invalid;
  return WriteBytes(link, keyword) && WriteBytes(link, {&kReturn, 1}) ? LinkResult::success
                                                                      : LinkResult::portFailed;
}

LinkResult ReadReply(DeviceLink& link, size_t& length) {
  length = 0;
  const LinkResult result = AwaitPrompt(link, kReplyLimit_ms, [&](char c) {
    if (length + 1 < kReplySize) link.reply[length++] = c;
  });
  link.reply[length] = '\0';
  return result;
}

LinkResult SkipReply(DeviceLink& link) {
  return AwaitPrompt(link, kReplyLimit_ms, [](char) {});
}

bool TakeLateReply(DeviceLink& link) {
  TellStep(link, LinkStep::lateReply);
  return AwaitPrompt(link, kLateReplyLimit_ms, [](char) {}) == LinkResult::success;
}

LinkResult RequestPrompt(DeviceLink& link) {
  LinkResult result = LinkResult::noPrompt;
  for (int attempt = 0; attempt < kPromptAttempts; ++attempt) {
    TellStep(link, LinkStep::prompting, attempt + 1, kPromptAttempts);
    result = WriteBytes(link, {&kReturn, 1}) ? SkipReply(link) : LinkResult::portFailed;
    SleepMilliseconds(kPause_ms);
    if (result == LinkResult::success) break;
  }
  return result;
}

LinkResult Exchange(DeviceLink& link, CommandId id, std::string_view value) {
  const LinkResult sent = SendCommand(link, id, value);
  return sent == LinkResult::success ? SkipReply(link) : sent;
}

LinkResult Exchange(DeviceLink& link, CommandId id) {
  const LinkResult sent = SendCommandNoValue(link, id);
  return sent == LinkResult::success ? SkipReply(link) : sent;
}

LinkResult QueryInt(DeviceLink& link, CommandId id, int32_t& target) {
  return Query(link, id, ParseIntLine, target);
}

LinkResult QueryFloat(DeviceLink& link, CommandId id, float& target) {
  return Query(link, id, ParseFloatLine, target);
}

LinkResult QueryString(DeviceLink& link, std::span<char> target) {
  std::string_view line;
  const LinkResult result = Ask(link, CommandId::identity, line);
  if (result != LinkResult::success && result != LinkResult::invalid) return result;
  if (target.empty()) return LinkResult::success;
  const size_t count = std::min(line.size(), target.size() - 1);
  std::copy_n(line.begin(), count, target.begin());
  target[count] = '\0';
  return LinkResult::success;
}

bool FindValueLine(std::string_view reply, std::string_view& line) {
  const auto echoEnd = std::find_if(reply.begin(), reply.end(), IsLineEnd);
  const auto begin = std::find_if_not(echoEnd, reply.end(), IsLineEnd);
  if (begin == reply.end()) return false;
  const auto end = std::find_if(begin, reply.end(), IsLineEnd);
  if (end == reply.end() && *begin == '>') return false;  // the prompt itself
  line = reply.substr(static_cast<size_t>(begin - reply.begin()), static_cast<size_t>(end - begin));
  return true;
}

bool ParseIntLine(std::string_view line, int32_t& value) {
  return IsNumber(line, false) && ScanInt(line, value);
}

bool ParseFloatLine(std::string_view line, float& value) {
  return IsNumber(line, true) && ScanFloat(line, value);
}

}  // namespace tw
