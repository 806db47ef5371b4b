#include "device/stop_device.h"

#include <algorithm>
#include <string_view>

#include "app/app_state.h"
#include "base/text_format.h"
#include "device/serial_ports.h"
#include "platform/clock.h"
#include "platform/debug_output.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr int kAttempts = 30;
constexpr uint32_t kAttempt_ms = 1000;
constexpr uint32_t kProcedure_ms = 30'000;
constexpr uint32_t kPause_ms = 10;
constexpr char kStopKey[] = " ";
constexpr std::string_view kEndOfStream = "DataEnd";
constexpr std::string_view kPrompt = "\r\n>";

constexpr uint32_t kProbe_ms = 30'000;
constexpr int kIdleReads = 10;

// The last N bytes received.
template <size_t N>
class Window {
 public:
  void Take(char byte) {
    std::copy(std::begin(bytes_) + 1, std::end(bytes_), std::begin(bytes_));
    bytes_[N - 1] = byte;
  }
  [[nodiscard]] bool Holds(std::string_view text) const { return std::string_view(bytes_, N) == text; }

 private:
  char bytes_[N] = {};
};

// kept: the windows persist from one call to the next, so an end mark is found although its beginning came
// during an earlier attempt.
struct Windows {
  Window<7> end;
  Window<3> prompt;
  Window<5> rs232;
  Window<5> rs485;
  Window<3> usb;
};
constinit Windows windows{};

// One stop key and what comes within a second.
LinkResult Attempt(Handle port) {
  const uint32_t begin = MillisecondClock();
  if (!WriteSerialLine(port, kStopKey, 1)) return LinkResult::portFailed;
  do {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadSerialLine(port, &byte, 1, got)) return LinkResult::portFailed;
    if (got == 0) continue;
    windows.end.Take(static_cast<char>(byte));
    windows.prompt.Take(static_cast<char>(byte));
    if (windows.end.Holds(kEndOfStream) || windows.prompt.Holds(kPrompt)) return LinkResult::success;
  } while (MillisecondClock() - begin <= kAttempt_ms);
  WriteDebugText(L"Stop command timeout\n");
  return LinkResult::stopTimeOut;
}

LinkResult StopStreaming(Handle port) {
  LinkResult result = LinkResult::stopTimeOut;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const uint32_t begin = MillisecondClock();
    result = Attempt(port);
    if (result == LinkResult::success) {
      static_cast<void>(RequestPrompt(port));  // kept: a device that has stopped counts as stopped
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

void TakeProbeByte(char byte) {
  windows.rs232.Take(byte);
  windows.rs485.Take(byte);
  windows.usb.Take(byte);
  if (windows.rs232.Holds("RS232")) globals.interfaceType = 0;
  if (windows.rs485.Holds("RS485")) globals.interfaceType = 1;
  if (windows.usb.Holds("USB")) globals.interfaceType = 2;
}

}  // namespace

LinkResult StopDevice(Handle port) {
  if (WaitForAnyByte(port)) return StopStreaming(port);
  return RequestPrompt(port) == LinkResult::success ? LinkResult::success : LinkResult::noPrompt;
}

LinkResult ProbeInterface(Handle port) {
  const uint32_t begin = MillisecondClock();
  const LinkResult sent = SendCommandNoValue(port, CommandId::info);
  int idleReads = 0;
  while (MillisecondClock() - begin <= kProbe_ms) {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadSerialLine(port, &byte, 1, got)) return LinkResult::portFailed;
    if (got != 0) {
      TakeProbeByte(static_cast<char>(byte));
      continue;
    }
    if (++idleReads > kIdleReads) break;
    if (idleReads == kIdleReads) SleepMilliseconds(kPause_ms);
  }
  return sent;
}

}  // namespace tw
