#include "simulator/paced_line.h"

#include <algorithm>

#include "simulator/instrument.h"

namespace tw::sim {
namespace {

constexpr int64_t kBitsPerByteTimesMicroseconds = int64_t{10} * 1'000'000;

}  // namespace

PacedLine::PacedLine(int32_t baud, int64_t delivery_us) : baud_(baud), delivery_us_(delivery_us) {}

int64_t PacedLine::Duration_us(uint64_t count, int32_t baud) {
  return (static_cast<int64_t>(count) * kBitsPerByteTimesMicroseconds + baud - 1) / baud;
}

int64_t PacedLine::RoundUp_us(int64_t time_us) const {
  if (delivery_us_ <= 0) return time_us;
  return (time_us + delivery_us_ - 1) / delivery_us_ * delivery_us_;
}

void PacedLine::Put(std::span<const uint8_t> bytes, int64_t notBefore_us) {
  if (bytes.empty()) return;
  const int64_t start_us = std::max(notBefore_us, idle_us_);
  runs_.push_back({start_us, baud_, end_, end_ + bytes.size()});
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  end_ += bytes.size();
  idle_us_ = start_us + Duration_us(bytes.size(), baud_);
}

uint64_t PacedLine::Left(int64_t now_us) const {
  uint64_t left = taken_;
  for (const Run& run : runs_) {
    if (now_us < run.start_us) break;
    const int64_t elapsed_us = now_us - run.start_us;
    const uint64_t size = run.end - run.begin;
    if (elapsed_us < Duration_us(size, run.baud)) {
      const auto count = static_cast<uint64_t>(elapsed_us * run.baud / kBitsPerByteTimesMicroseconds);
      return std::max(left, run.begin + std::min(count, size));
    }
    left = run.end;
  }
  return left;
}

size_t PacedLine::Ready(int64_t now_us) const {
  const int64_t visible_us = delivery_us_ > 0 ? now_us - now_us % delivery_us_ : now_us;
  const uint64_t left = Left(visible_us);
  return static_cast<size_t>(left - taken_);
}

size_t PacedLine::Take(std::span<uint8_t> out, int64_t now_us) {
  const size_t count = std::min(out.size(), Ready(now_us));
  if (count == 0) return 0;
  std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(head_), count, out.begin());
  lastTaken_ = out[count - 1];
  head_ += count;
  taken_ += count;
  while (!runs_.empty() && runs_.front().end <= taken_) runs_.pop_front();
  if (head_ == bytes_.size() || head_ > bytes_.size() / 2) {
    bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<ptrdiff_t>(head_));
    head_ = 0;
  }
  return count;
}

int64_t PacedLine::NextReady_us(int64_t now_us) const {
  if (runs_.empty()) return kNever;
  const Run& run = runs_.front();
  const uint64_t first = std::max(taken_, run.begin);
  const int64_t left_us = run.start_us + Duration_us(first - run.begin + 1, run.baud);
  return std::max(now_us, RoundUp_us(left_us));
}

int64_t PacedLine::FirstVisible_us(int64_t start_us) const {
  return RoundUp_us(std::max(start_us, idle_us_) + Duration_us(1, baud_));
}

void PacedLine::CutAfterLine(int64_t now_us) {
  const uint64_t left = Left(now_us);
  const uint8_t last = left > taken_ ? ByteAt(left - 1) : lastTaken_;
  uint64_t cut = left;
  for (uint8_t byte = last; byte != '\n' && cut < end_; ++cut) byte = ByteAt(cut);
  CutAt(cut, now_us);
}

void PacedLine::CutAt(uint64_t position, int64_t now_us) {
  if (position >= end_) return;
  bytes_.resize(bytes_.size() - static_cast<size_t>(end_ - position));
  end_ = position;
  while (!runs_.empty() && runs_.back().begin >= position) runs_.pop_back();
  idle_us_ = now_us;
  if (runs_.empty()) return;
  Run& last = runs_.back();
  last.end = std::min(last.end, position);
  idle_us_ = std::max(now_us, last.start_us + Duration_us(last.end - last.begin, last.baud));
  while (!runs_.empty() && runs_.front().end <= taken_) runs_.pop_front();
}

}  // namespace tw::sim
