#include "device/probe_interface.h"

#include "app/state/app_state.h"
#include "device/rolling_window.h"
#include "platform/clock.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr uint32_t kProbe_ms = 30'000;
constexpr uint32_t kPause_ms = 10;
constexpr int kIdleReads = 10;

// kept: like those of the stop procedure the windows persist from one call to the next.
struct Windows {
  RollingWindow<5> rs232;
  RollingWindow<5> rs485;
  RollingWindow<3> usb;
};
constinit Windows windows{};

void TakeByte(char byte) {
  windows.rs232.Take(byte);
  windows.rs485.Take(byte);
  windows.usb.Take(byte);
  if (windows.rs232.Holds("RS232")) globals.interfaceType = 0;
  if (windows.rs485.Holds("RS485")) globals.interfaceType = 1;
  if (windows.usb.Holds("USB")) globals.interfaceType = 2;
}

}  // namespace

LinkResult ProbeInterface(Handle port) {
  const uint32_t begin = MillisecondClock();
  const LinkResult sent = SendCommandNoValue(port, CommandId::info);
  int idleReads = 0;
  while (MillisecondClock() - begin < kProbe_ms) {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadSerialLine(port, &byte, 1, got)) return LinkResult::portFailed;
    if (got != 0) {
      TakeByte(static_cast<char>(byte));
      continue;
    }
    if (++idleReads > kIdleReads) break;
    if (idleReads == kIdleReads) SleepMilliseconds(kPause_ms);
  }
  return sent;
}

}  // namespace tw
