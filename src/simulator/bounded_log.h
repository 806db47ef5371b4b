// A log that keeps its newest entries and counts those that it had to forget.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

namespace tw::sim {

template <typename Entry>
class BoundedLog {
 public:
  explicit BoundedLog(size_t capacity) : capacity_(capacity) {}

  void Add(Entry entry) {
    ++total_;
    entries_.push_back(std::move(entry));
    if (entries_.size() > capacity_) entries_.pop_front();
  }

  // The kept entries, oldest first.
  [[nodiscard]] const std::deque<Entry>& Entries() const { return entries_; }

  // All entries ever added, forgotten ones included.
  [[nodiscard]] uint64_t Total() const { return total_; }

 private:
  size_t capacity_;
  uint64_t total_ = 0;
  std::deque<Entry> entries_;
};

}  // namespace tw::sim
