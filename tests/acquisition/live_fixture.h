// The acquisition worker on the virtual clock, with a device that says what the test tells it to.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "base/bytes.h"
#include "platform/clock.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/acquisition/live_program.h"
#include "tests/device/line_script.h"

namespace tw::test {

inline constexpr RecordChannel kA = RecordChannel::a;
inline constexpr RecordChannel kB = RecordChannel::b;

class LiveTest : public testing::Test {
 protected:
  // Starts the worker, if none runs, and lets that much time pass.
  void Run_ms(uint32_t duration_ms, const StreamForm& form = kFirstTextStream) {
    if (state_.acquisitionThread == Handle::null) program_.StartWorker(form);
    SleepMilliseconds(duration_ms);
  }
  // The device says this, and the worker takes it.
  void Take(std::string_view text, const StreamForm& form = kFirstTextStream) {
    device_.At_ms(VirtualNow_us() / 1'000 + 50, text);
    Run_ms(100, form);
  }
  // The same of a whole run.
  void RunWith(std::string_view text, const StreamForm& form = kFirstTextStream) {
    Take(text, form);
    program_.StopWorker();
  }
  void Record() {
    program_.OpenFile(kA, L"a.log");
    program_.OpenFile(kB, L"b.log");
    Signal(state_.recordingEvent);
  }

  // The pings on view, and the first samples of ring A's.
  [[nodiscard]] PingHeader PingA() { return LoadPingHeader(state_.ringA->slots[program_.IndexA()]); }
  [[nodiscard]] PingHeader PingB() { return LoadPingHeader(state_.ringB->slots[program_.IndexB()]); }
  [[nodiscard]] std::vector<uint16_t> SamplesA(size_t count) {
    std::vector<uint16_t> samples(count);
    LoadLeNumbers(std::span(samples), state_.ringA->slots[program_.IndexA()] + kSlotSamples);
    return samples;
  }

  const VirtualClock clock_{1'700'000'000'000};  // 2023-11-14 22:13:20 UTC
  LineScript device_;
  LiveProgram program_{device_};
  AppState& state_ = program_.State();
};

}  // namespace tw::test
