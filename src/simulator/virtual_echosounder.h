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
#include <string>

#include "simulator/bounded_log.h"
#include "simulator/instrument.h"
#include "simulator/paced_line.h"
#include "simulator/ping_account.h"
#include "simulator/ping_maker.h"
#include "simulator/sounder_prompt.h"

namespace tw::sim {

struct ReceivedByte {
  int64_t time_us;
  uint8_t byte;
};

struct ReceivedCommand {
  int64_t time_us;
  std::string line;
  bool refused;
};

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

  // The speed of the device's line; a new one from the moment on at which the prompt behind the command that
  // puts it into force has left (see speedAtOnce).
  [[nodiscard]] int32_t LineSpeed() const override { return line_.Baud(); }
  [[nodiscard]] const SounderSettings& Settings() const { return prompt_.Settings(); }

  // Pings that have ended by the last call, oldest first; bytes and command lines received.
  [[nodiscard]] const BoundedLog<SentPing>& Pings() const { return pings_.Ended(); }
  [[nodiscard]] const BoundedLog<ReceivedByte>& Bytes() const { return bytes_; }
  [[nodiscard]] const BoundedLog<ReceivedCommand>& Commands() const { return commands_; }

 private:
  void Advance(int64_t now_us);
  void EndPings(int64_t now_us);
  void TakeByte(uint8_t byte, int64_t now_us);
  void TakeLine(const std::string& line, int64_t now_us);
  [[nodiscard]] int64_t Delay_us(std::string_view keyword);
  void Stop(int64_t now_us);

  [[nodiscard]] int64_t Interval_us() const;
  [[nodiscard]] int64_t NextPing_us() const;
  [[nodiscard]] int64_t NextChatter_us() const;
  void Ping(int64_t start_us);
  void SendMessage(ChannelUse use, int64_t start_us);
  void SendGarbage();

  void Say(std::string_view text, int64_t notBefore_us);
  void SayPrompt(int64_t notBefore_us);

  SounderOptions options_;
  SounderPrompt prompt_;
  PingMaker maker_;
  PacedLine line_;

  bool streaming_;
  bool hungUp_ = false;
  bool wasLate_ = false;          // the answer that comes late has been given
  int64_t newSpeed_us_ = kNever;  // when the line takes on the speed that has been set
  int64_t due_us_ = 0;            // of the next ping, the line permitting
  int64_t chatter_us_ = 0;        // of the next line of noise at the prompt
  uint32_t number_ = 0;
  uint64_t pingIndex_ = 0;  // since power-on; no reset touches it
  double sailed_s_ = 0.0;

  PingAccount pings_;
  BoundedLog<ReceivedByte> bytes_;
  BoundedLog<ReceivedCommand> commands_;
};

}  // namespace tw::sim
