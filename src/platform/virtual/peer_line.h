// A serial line to a device in this process.
#pragma once

#include "platform/posix/line.h"
#include "platform/posix/monitor.h"
#include "platform/virtual/serial_peer.h"

namespace tw {

class PeerLine final : public Line {
 public:
  PeerLine(std::wstring name, uint32_t readConstant_ms, SerialPeer& peer)
      : Line(std::move(name), readConstant_ms), peer_(peer) {}

  // False, with the system error set, when the device refuses.
  [[nodiscard]] bool Open(const char* mode);

  [[nodiscard]] int64_t Take(std::span<uint8_t> out) override;
  [[nodiscard]] bool Put(std::span<const uint8_t> bytes) override;
  // A peer takes all at once.
  [[nodiscard]] bool PutUntil(std::span<const uint8_t> bytes, int64_t deadline_us, uint32_t& put) override;
  [[nodiscard]] uint32_t Waiting() override;
  void Await(int64_t deadline_us) override;
  void Wake() override;
  void Shut() override;

 private:
  Monitor monitor_;  // every call of the peer is made under it
  SerialPeer& peer_;
};

}  // namespace tw
