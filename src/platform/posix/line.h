// One open serial line, whatever is behind it.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>

namespace tw {

class Line {
 public:
  explicit Line(std::wstring name, uint32_t readConstant_ms)
      : name_(std::move(name)), readConstant_ms_(readConstant_ms) {}
  virtual ~Line() = default;
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  // Takes what waits, at once; negative when the line has failed (the system error is set).
  [[nodiscard]] virtual int64_t Take(std::span<uint8_t> out) = 0;
  // Writes all; false with the system error set.
  [[nodiscard]] virtual bool Put(std::span<const uint8_t> bytes) = 0;
  // Writes what is taken until the deadline; false with the system error set. `put` tells how much.
  [[nodiscard]] virtual bool PutUntil(std::span<const uint8_t> bytes, int64_t deadline_us, uint32_t& put) = 0;
  [[nodiscard]] virtual uint32_t Waiting() = 0;
  // Waits until something may have changed: input, a Wake, or the deadline.
  virtual void Await(int64_t deadline_us) = 0;
  // Makes an Await end.
  virtual void Wake() = 0;
  // The handle was closed; other threads may still be in a call.
  virtual void Shut() = 0;

  [[nodiscard]] const std::wstring& Name() const { return name_; }
  [[nodiscard]] uint32_t ReadConstant_ms() const { return readConstant_ms_; }
  [[nodiscard]] bool Closed() const { return closed_; }
  void MarkClosed() { closed_ = true; }

 private:
  const std::wstring name_;
  const uint32_t readConstant_ms_;
  std::atomic<bool> closed_ = false;
};

}  // namespace tw
