#include "platform/virtual/peer_line.h"

#include <algorithm>
#include <cerrno>

#include "platform/posix/last_error.h"

namespace tw {
namespace {

constexpr size_t kInputQueueSize = size_t{1} << 20;

// What waits is lost; as much as an input queue holds, so that an endless device does not hold us.
void Drain(SerialPeer& peer, int64_t now_us) {
  uint8_t scrap[4096];
  size_t lost = 0;
  while (lost < kInputQueueSize && peer.Waiting(now_us) > 0) {
    const size_t got = peer.Send(scrap, now_us);
    if (got == 0) return;
    lost += got;
  }
}

}  // namespace

bool PeerLine::Open(const char* mode) {
  const std::lock_guard held(monitor_);
  if (!peer_.Open(mode)) {
    SetSystemError(ENOENT);
    return false;
  }
  Drain(peer_, Now_us());
  return true;
}

int64_t PeerLine::Take(std::span<uint8_t> out) {
  const std::lock_guard held(monitor_);
  const int64_t now_us = Now_us();
  if (peer_.HungUp(now_us)) {
    SetSystemError(EIO);
    return -1;
  }
  return static_cast<int64_t>(peer_.Send(out, now_us));
}

bool PeerLine::Put(std::span<const uint8_t> bytes) {
  const std::lock_guard held(monitor_);
  const int64_t now_us = Now_us();
  if (peer_.HungUp(now_us)) {
    SetSystemError(EIO);
    return false;
  }
  peer_.Receive(bytes, now_us);
  monitor_.WakeAll();
  return true;
}

bool PeerLine::PutUntil(std::span<const uint8_t> bytes, int64_t, uint32_t& put) {
  const bool taken = Put(bytes);
  put = taken ? static_cast<uint32_t>(bytes.size()) : 0;
  return taken;
}

uint32_t PeerLine::Waiting() {
  const std::lock_guard held(monitor_);
  return static_cast<uint32_t>(std::min(peer_.Waiting(Now_us()), kInputQueueSize));
}

void PeerLine::Await(int64_t deadline_us) {
  const std::lock_guard held(monitor_);
  if (Closed()) return;
  // At least a moment, so that time goes on even with a device that promises bytes and has none.
  const int64_t now_us = Now_us();
  const int64_t until_us = std::max(peer_.NextSend_us(now_us), now_us + 1);
  monitor_.WaitUntil(std::min(deadline_us, until_us), "bytes on a serial line");
}

void PeerLine::Wake() {
  const std::lock_guard held(monitor_);
  monitor_.WakeAll();
}

void PeerLine::Shut() {
  const std::lock_guard held(monitor_);
  peer_.Close();
  monitor_.WakeAll();
}

}  // namespace tw
