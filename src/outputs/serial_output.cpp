#include "outputs/serial_output.h"

#include <cinttypes>

#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/system_error.h"

namespace tw {
namespace {

constexpr uint32_t kTryAgain_ms = 5'000;
constexpr uint32_t kWriteLimit_ms = 500;
constexpr uint64_t kBitsPerByte = 10;  // with start and stop bit
// No message takes longer; what seems to is a time that has passed.
constexpr uint32_t kLongest_ms = 2 * kMaxMessage * kBitsPerByte * 1'000 / kMinOutputSpeed;

}  // namespace

SerialOutput::SerialOutput(const OutputOptions& options, SinkCount& count)
    : options_(options), count_(count), free_ms_(MillisecondClock()) {
  MakeLock(lock_);
}

SerialOutput::~SerialOutput() {
  DestroyEvent(something_);
  DestroyEvent(end_);
  DestroyLock(lock_);
}

bool SerialOutput::Make() {
  return MakeEvent(something_, ResetMode::automatic) && MakeEvent(end_, ResetMode::manual);
}

void SerialOutput::Put(const DepthMessage& message) {
  {
    const Locked held(lock_);
    if (hasPut_) count_.Dropped();
    put_ = message;
    hasPut_ = true;
  }
  Signal(something_);
}

void SerialOutput::End() {
  Signal(end_);
  Signal(something_);
}

bool SerialOutput::Take(DepthMessage& message) {
  const Locked held(lock_);
  if (!hasPut_) return false;
  message = put_;
  hasPut_ = false;
  return true;
}

void SerialOutput::Run() {
  DepthMessage message;
  while (WaitForEvent(something_, kWaitForever) && !WaitForEvent(end_, BusyFor_ms())) {
    if (Take(message)) Write(message);
  }
  CloseSerialLine(line_);
}

void SerialOutput::Write(const DepthMessage& message) {
  const uint32_t now_ms = MillisecondClock();
  if (!message.IsStale(now_ms) && IsOpen(now_ms) && WriteWhole(message)) return count_.Sent();
  count_.Dropped();
}

bool SerialOutput::IsOpen(uint32_t now_ms) {
  if (line_ != Handle::invalid) return true;
  if (tried_ && now_ms - tried_ms_ < kTryAgain_ms) return false;
  char mode[64];
  FormatText(mode, "baud=%" PRId32 " parity=N data=8 stop=1", options_.speed);
  line_ = OpenSerialLine(options_.line, mode, 0);
  if (line_ == Handle::invalid) count_.Failed(LastSystemError());
  tried_ = true;
  tried_ms_ = MillisecondClock();
  return line_ != Handle::invalid;
}

// A line that takes nothing is left open: somebody may empty it again. What it took a part of ends in the
// middle, and its readers find the next "$".
bool SerialOutput::WriteWhole(const DepthMessage& message) {
  uint32_t written = 0;
  const bool works =
      WriteSerialLineWithin(line_, message.text.data(), message.Size(), kWriteLimit_ms, written);
  if (!works) {
    count_.Failed(LastSystemError());
    CloseSerialLine(line_);
    line_ = Handle::invalid;
  }
  NoteWritten(written);
  return works && written == message.Size();
}

void SerialOutput::NoteWritten(uint32_t size) {
  const uint32_t left_ms = BusyFor_ms();
  const auto speed = static_cast<uint64_t>(options_.speed);
  const auto takes_ms = static_cast<uint32_t>((size * kBitsPerByte * 1'000 + speed - 1) / speed);
  free_ms_ = MillisecondClock() + left_ms + takes_ms;
}

uint32_t SerialOutput::BusyFor_ms() const {
  const uint32_t left_ms = free_ms_ - MillisecondClock();
  return left_ms <= kLongest_ms ? left_ms : 0;
}

}  // namespace tw
