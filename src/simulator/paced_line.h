// The sending half of a serial line: bytes are put in as messages are made and leave one by one at a tenth
// of the line's speed a second (a start bit, eight data bits, a stop bit). Not thread-safe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace tw::sim {

class PacedLine {
 public:
  // `baud` at least 1. With `delivery_us` above 0 bytes become visible to Take only at whole multiples of
  // it, several at once, as a USB adapter hands them over; 0 shows each byte as soon as it has left.
  PacedLine(int32_t baud, int64_t delivery_us);

  // The speed of what is put from now on.
  void SetBaud(int32_t baud) { baud_ = baud; }
  [[nodiscard]] int32_t Baud() const { return baud_; }

  // Queues bytes behind all others; they begin to leave at `notBefore_us` at the earliest.
  void Put(std::span<const uint8_t> bytes, int64_t notBefore_us);

  // Takes bytes that are visible by now, in order.
  [[nodiscard]] size_t Take(std::span<uint8_t> out, int64_t now_us);
  [[nodiscard]] size_t Ready(int64_t now_us) const;

  // When the first byte that has not been taken becomes visible, not before `now_us`; kNever when there is
  // none.
  [[nodiscard]] int64_t NextReady_us(int64_t now_us) const;

  // When a byte that begins to leave at `start_us` becomes visible.
  [[nodiscard]] int64_t FirstVisible_us(int64_t start_us) const;

  // When the last byte put has left; the past when the line is idle.
  [[nodiscard]] int64_t Idle_us() const { return idle_us_; }

  // Positions in the stream of all bytes ever put and not cut: behind the last one put, and behind the last
  // one that has left by now.
  [[nodiscard]] uint64_t End() const { return end_; }
  [[nodiscard]] uint64_t Left(int64_t now_us) const;
  [[nodiscard]] size_t Untaken() const { return bytes_.size() - head_; }

  // Drops what stands behind the text line that is leaving just now.
  void CutAfterLine(int64_t now_us);

  // Drops what has not left by now.
  void CutUnsent(int64_t now_us) { CutAt(Left(now_us), now_us); }

 private:
  // Bytes that leave without a pause between them.
  struct Run {
    int64_t start_us;
    int32_t baud;
    uint64_t begin;
    uint64_t end;
  };

  [[nodiscard]] static int64_t Duration_us(uint64_t count, int32_t baud);
  [[nodiscard]] int64_t RoundUp_us(int64_t time_us) const;
  [[nodiscard]] uint8_t ByteAt(uint64_t position) const { return bytes_[head_ + (position - taken_)]; }
  void CutAt(uint64_t position, int64_t now_us);

  int32_t baud_;
  int64_t delivery_us_;
  std::vector<uint8_t> bytes_;  // from head_ on: what has not been taken
  size_t head_ = 0;
  uint64_t taken_ = 0;
  uint64_t end_ = 0;
  uint8_t lastTaken_ = '\n';
  int64_t idle_us_ = 0;
  std::deque<Run> runs_;
};

}  // namespace tw::sim
