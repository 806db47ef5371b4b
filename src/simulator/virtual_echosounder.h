// A virtual echosounder: prompt, commands, settings and echo stream of a real device, over a sea bed of its
// own, with faults to order. A state machine without clock, thread or I/O (see instrument.h for how it is
// bound to a line). The same options and the same calls give the same bytes on every machine.
//
// It sends no faster than its line. A ping that is due while earlier bytes have not left yet waits until
// the line is free, and the next one is due one interval after that: on a slow line the device pings more
// slowly, it drops nothing. The same happens while more than 8 MiB wait to be taken by the binder.
//
// It keeps account: every ping (PingObserver and Pings()), every command and every byte that it received.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "simulator/bounded_log.h"
#include "simulator/echo_stream.h"
#include "simulator/instrument.h"
#include "simulator/paced_line.h"
#include "simulator/sea_bed.h"
#include "simulator/sounder_prompt.h"

namespace tw::sim {

// One block, as it stands in the stream. In dual operation a ping has two, the high frequency's first, with
// the same number.
struct SentPing {
  uint32_t number;  // since power-on or the last reset, from 1
  int64_t time_us;  // the binder's time at which the block began to leave
  uint32_t deviceTime_s;
  uint32_t deviceTime_ms;
  float altitude_m;  // 0: no bottom in range
  float temperature_c;
  float pitch_deg;
  float roll_deg;
  int32_t txFrequency_hz;
  int32_t samplingFrequency_hz;
  int32_t outputMode;
  uint32_t sampleCount;
  int32_t bottomIndex;  // of the strongest sample; -1: no bottom in range
  uint64_t offset;      // of the block's first byte in all that was sent
  uint64_t size;        // bytes that left: of a block that a stop cut short, its first ones
  uint64_t hash;        // FNV-1a, 64 bits, of the block as it was made
  bool faulty;          // a block fault has hit it
  bool whole;           // the last byte has left
};

// Called from within the device's own calls; must not call back.
class PingObserver {
 public:
  virtual ~PingObserver() = default;
  // A block has been made; `samples` are the numbers in it (not those that make it oversize).
  virtual void PingMade(const SentPing& ping, std::span<const uint16_t> samples) = 0;
  // Its last byte has left, or it has been cut short.
  virtual void PingEnded(const SentPing& ping) = 0;
};

struct ReceivedByte {
  int64_t time_us;
  uint8_t byte;
};

struct ReceivedCommand {
  int64_t time_us;
  std::string line;
  bool refused;
};

// FNV-1a, 64 bits.
[[nodiscard]] uint64_t HashOf(std::span<const uint8_t> bytes);

class VirtualEchosounder final : public VirtualInstrument {
 public:
  // `observer` may be null; it outlives the device.
  explicit VirtualEchosounder(const SounderOptions& options, PingObserver* observer = nullptr);

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override;
  [[nodiscard]] size_t Send(std::span<uint8_t> out, int64_t now_us) override;
  [[nodiscard]] size_t Waiting(int64_t now_us) override;
  [[nodiscard]] int64_t NextSend_us(int64_t now_us) const override;
  [[nodiscard]] bool HungUp(int64_t now_us) const override;

  [[nodiscard]] bool Streaming() const { return streaming_; }
  [[nodiscard]] int32_t LineSpeed() const { return line_.Baud(); }
  [[nodiscard]] const SounderSettings& Settings() const { return prompt_.Settings(); }

  // Pings that have ended by the last call, oldest first; bytes and command lines received.
  [[nodiscard]] const BoundedLog<SentPing>& Pings() const { return pings_; }
  [[nodiscard]] const BoundedLog<ReceivedByte>& Bytes() const { return bytes_; }
  [[nodiscard]] const BoundedLog<ReceivedCommand>& Commands() const { return commands_; }

 private:
  void Advance(int64_t now_us);
  void EndPings(int64_t now_us);
  void TakeByte(uint8_t byte, int64_t now_us);
  void TakeLine(const std::string& line, int64_t now_us);
  void Stop(int64_t now_us);

  [[nodiscard]] int64_t Interval_us() const;
  [[nodiscard]] int64_t NextPing_us() const;
  [[nodiscard]] int64_t NextChatter_us() const;
  void Ping(int64_t start_us);
  void SendBlock(bool low, const SeaState& sea, int64_t start_us);
  void FillSamples(bool low, int32_t bottomIndex, int32_t bits);
  [[nodiscard]] size_t SampleCount(bool low) const;
  [[nodiscard]] double SamplesPerMetre() const;
  void Log(SentPing ping);
  void SendGarbage();

  void Say(std::string_view text, int64_t notBefore_us);
  void SayPrompt(int64_t notBefore_us);

  SounderOptions options_;
  PingObserver* observer_;
  SounderPrompt prompt_;
  SeaBed seaBed_;
  PacedLine line_;

  bool streaming_;
  bool hungUp_ = false;
  int64_t due_us_ = 0;      // of the next ping, the line permitting
  int64_t chatter_us_ = 0;  // of the next line of noise at the prompt
  uint32_t number_ = 0;
  uint64_t pingIndex_ = 0;  // since power-on; no reset touches it
  uint64_t blockIndex_ = 0;
  double sailed_s_ = 0.0;

  std::vector<uint16_t> samples_;
  std::vector<uint8_t> block_;
  std::deque<SentPing> leaving_;  // made, not wholly left
  BoundedLog<SentPing> pings_;
  BoundedLog<ReceivedByte> bytes_;
  BoundedLog<ReceivedCommand> commands_;
};

}  // namespace tw::sim
