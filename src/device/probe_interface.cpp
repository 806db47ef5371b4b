#include "device/probe_interface.h"

#include "platform/clock.h"

namespace tw {
namespace {

constexpr uint32_t kProbe_ms = 30'000;
constexpr uint32_t kPause_ms = 10;
constexpr int kIdleReads = 10;

void TakeByte(DeviceLink& link, char byte) {
  ProbeWindows& windows = link.probeWindows;
  windows.rs232.Take(byte);
  windows.rs485.Take(byte);
  windows.usb.Take(byte);
  if (windows.rs232.Holds("RS232")) link.facts.interfaceType = 0;
  if (windows.rs485.Holds("RS485")) link.facts.interfaceType = 1;
  if (windows.usb.Holds("USB")) link.facts.interfaceType = 2;
}

}  // namespace

LinkResult ProbeInterface(DeviceLink& link) {
  TellStep(link, LinkStep::probing);
  const uint32_t begin = MillisecondClock();
  const LinkResult sent = SendCommandNoValue(link, CommandId::info);
  int idleReads = 0;
  while (MillisecondClock() - begin < kProbe_ms) {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadByte(link, byte, got)) return LinkResult::portFailed;
    if (got != 0) {
      TakeByte(link, static_cast<char>(byte));
      continue;
    }
    if (++idleReads > kIdleReads) break;
    if (idleReads == kIdleReads) SleepMilliseconds(kPause_ms);
  }
  return sent;
}

}  // namespace tw
