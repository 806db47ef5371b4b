// A serial line that is a terminal of the system, real or pseudo. Its waits take real time.
#pragma once

#include <memory>

#include "platform/posix/line.h"

namespace tw {

class TerminalLine final : public Line {
 public:
  // Opens the terminal for this process alone, raw, as the mode string says. Null with the system error set.
  [[nodiscard]] static std::shared_ptr<TerminalLine> Open(const std::wstring& name, const char* path,
                                                          const char* mode, uint32_t readConstant_ms);

  TerminalLine(const std::wstring& name, uint32_t readConstant_ms, int terminal, int wakeUp)
      : Line(name, readConstant_ms), terminal_(terminal), wakeUp_(wakeUp) {}
  ~TerminalLine() override;

  [[nodiscard]] int64_t Take(std::span<uint8_t> out) override;
  [[nodiscard]] bool Put(std::span<const uint8_t> bytes) override;
  [[nodiscard]] bool PutUntil(std::span<const uint8_t> bytes, int64_t deadline_us, uint32_t& put) override;
  [[nodiscard]] uint32_t Waiting() override;
  void Await(int64_t deadline_us) override;
  void Wake() override;
  void Shut() override { Wake(); }

 private:
  // Waits for the terminal to be ready for `events`, a Wake, or the end of the time (negative: none).
  void WaitFor(short events, int timeout_ms);

  const int terminal_;  // non-blocking
  const int wakeUp_;    // an eventfd that ends a wait
};

}  // namespace tw
