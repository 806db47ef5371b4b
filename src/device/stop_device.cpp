#include "device/stop_device.h"

#include <string_view>

#include "base/text_format.h"
#include "device/serial_ports.h"
#include "platform/clock.h"
#include "platform/debug_output.h"

namespace tw {
namespace {

constexpr int kAttempts = 30;
constexpr uint32_t kAttempt_ms = 1000;
constexpr uint32_t kProcedure_ms = 30'000;
constexpr uint32_t kPause_ms = 10;
constexpr std::string_view kStopKey = " ";
constexpr std::string_view kStopKeyAndReturn = " \r";
constexpr std::string_view kEndOfStream = "DataEnd";
constexpr std::string_view kPrompt = "\r\n>";

// One stop key and what comes within a second.
LinkResult Attempt(DeviceLink& link) {
  if (!WriteBytes(link, kStopKey)) return LinkResult::portFailed;
  const uint32_t begin = MillisecondClock();
  do {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadByte(link, byte, got)) return LinkResult::portFailed;
    if (got == 0) continue;
    link.stopWindows.end.Take(static_cast<char>(byte));
    link.stopWindows.prompt.Take(static_cast<char>(byte));
    if (link.stopWindows.end.Holds(kEndOfStream) || link.stopWindows.prompt.Holds(kPrompt))
      return LinkResult::success;
  } while (MillisecondClock() - begin < kAttempt_ms);
  WriteDebugText(L"Stop command timeout\n");
  return LinkResult::stopTimeOut;
}

LinkResult StopStreaming(DeviceLink& link) {
  LinkResult result = LinkResult::stopTimeOut;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const uint32_t begin = MillisecondClock();
    TellStep(link, LinkStep::stopping, attempt + 1, kAttempts);
    result = Attempt(link);
    if (result == LinkResult::success) {
      static_cast<void>(RequestPrompt(link));  // kept: a device that has stopped counts as stopped
      return result;
    }
    // kept: measured from the attempt's own start, this limit is never reached; 30 attempts are the bound.
    if (MillisecondClock() - begin > kProcedure_ms) return LinkResult::stopTimeOut;
    wchar_t text[64];
    FormatWide(text, "Stop Retry count : %d\n", attempt);
    WriteDebugText(text);
    SleepMilliseconds(kPause_ms);
  }
  return result;
}

enum class Look : uint8_t { prompt, noPrompt, over };

Look LookForPrompt(DeviceLink& link) {
  constexpr uint32_t kLook_ms = 1200;  // more than the second in which a GPS receiver speaks
  if (!WriteBytes(link, kStopKeyAndReturn)) return Look::over;
  PromptMatcher matcher;
  const uint32_t begin = MillisecondClock();
  do {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadByte(link, byte, got)) return Look::over;
    if (got == 0) continue;
    if (matcher.Take(byte)) return Look::prompt;
    if (link.heard.Verdict() == Heard::receiver) return Look::over;
  } while (MillisecondClock() - begin < kLook_ms);
  return link.heard.Verdict() == Heard::nothing ? Look::over : Look::noPrompt;
}

// The stop key and the CR may bring a prompt each: the later one would be taken for a reply. False when the
// line does not come to rest.
bool AwaitRest(DeviceLink& link) {
  constexpr uint32_t kRest_ms = 1000;
  constexpr int kIdleReads = 2;
  const uint32_t begin = MillisecondClock();
  for (int idle = 0; idle < kIdleReads;) {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadByte(link, byte, got) || MillisecondClock() - begin > kRest_ms) return false;
    idle = got == 0 ? idle + 1 : 0;
  }
  return true;
}

}  // namespace

LinkResult StopDevice(DeviceLink& link) {
  TellStep(link, LinkStep::listening);
  if (WaitForAnyByte(link)) return StopStreaming(link);
  return RequestPrompt(link) == LinkResult::success ? LinkResult::success : LinkResult::noPrompt;
}

bool FindPrompt(DeviceLink& link) {
  constexpr int kLooks = 3;
  for (int i = 0; i < kLooks; ++i) {
    const Look look = LookForPrompt(link);
    if (look == Look::over) return false;
    if (look == Look::prompt && AwaitRest(link)) return true;
  }
  return false;
}

}  // namespace tw
