#include "simulator/virtual_echosounder.h"

#include <algorithm>

#include "simulator/seeded_noise.h"

namespace tw::sim {
namespace {

constexpr int64_t kAutomaticInterval_us = 100'000;
constexpr int64_t kShortestInterval_us = 20'000;
constexpr int64_t kChatterPeriod_us = 100'000;
constexpr int64_t kMicrosecondsPerMillisecond = 1'000;
constexpr size_t kMostUntaken = 8 << 20;

bool Holds(const std::vector<std::string>& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

VirtualEchosounder::VirtualEchosounder(const SounderOptions& options, PingObserver* observer)
    : options_(WithinBounds(options)),
      prompt_(options_),
      maker_(options_),
      line_(options_.baud, options_.delivery_us),
      streaming_(options_.streaming),
      pings_(observer, options_.logSize),
      bytes_(options_.logSize),
      commands_(options_.logSize) {}

// Sending.

size_t VirtualEchosounder::Send(std::span<uint8_t> out, int64_t now_us) {
  Advance(now_us);
  return line_.Take(out, now_us);
}

size_t VirtualEchosounder::Waiting(int64_t now_us) {
  Advance(now_us);
  return line_.Ready(now_us);
}

bool VirtualEchosounder::HungUp(int64_t now_us) const {
  return options_.faults.instrument.HungUpAt(now_us);
}

int64_t VirtualEchosounder::NextSend_us(int64_t now_us) const {
  const int64_t ready_us = line_.NextReady_us(now_us);
  if (ready_us != kNever) return ready_us;
  const int64_t begins_us = std::min(NextPing_us(), NextChatter_us());
  if (HungUp(now_us) || begins_us == kNever || HungUp(begins_us)) return kNever;
  return std::max(now_us, line_.FirstVisible_us(begins_us));
}

// Makes everything that begins by now, in the order of time.
void VirtualEchosounder::Advance(int64_t now_us) {
  if (hungUp_) return;
  if (now_us >= newSpeed_us_) {
    line_.SetBaud(static_cast<int32_t>(Settings().Whole(Setting::speed)));
    newSpeed_us_ = kNever;
  }
  const bool ends = HungUp(now_us);
  const int64_t until_us = ends ? options_.faults.instrument.hangUpAt_us : now_us;
  for (int64_t at_us; (at_us = NextPing_us()) <= until_us;) {
    if (line_.Untaken() > kMostUntaken) {
      due_us_ = until_us + Interval_us();
      break;
    }
    Ping(at_us);
    due_us_ = at_us + Interval_us();
  }
  for (int64_t at_us; (at_us = NextChatter_us()) <= until_us;) {
    if (line_.Untaken() <= kMostUntaken) Say("~?\r\n", at_us);
    chatter_us_ = std::max(at_us, until_us - kChatterPeriod_us * 100) + kChatterPeriod_us;
  }
  EndPings(until_us);
  if (!ends) return;
  line_.CutUnsent(until_us);
  EndPings(until_us);
  hungUp_ = true;
}

int64_t VirtualEchosounder::Interval_us() const {
  const int64_t interval_us = Settings().Thousandths(Setting::interval) * 1'000;
  return interval_us == 0 ? kAutomaticInterval_us : std::max(interval_us, kShortestInterval_us);
}

int64_t VirtualEchosounder::NextPing_us() const {
  if (!streaming_) return kNever;
  return options_.faults.instrument.AfterSilence_us(std::max(due_us_, line_.Idle_us()));
}

int64_t VirtualEchosounder::NextChatter_us() const {
  if (streaming_ || !options_.faults.chatter) return kNever;
  return options_.faults.instrument.AfterSilence_us(chatter_us_);
}

// One ping.

void VirtualEchosounder::Ping(int64_t start_us) {
  ++number_;
  ++pingIndex_;
  sailed_s_ += static_cast<double>(Interval_us()) * 1e-6;
  const ChannelUse use = maker_.UseOf(Settings());
  SendMessage(use, start_us);
  if (use == ChannelUse::highOfTwo) SendMessage(ChannelUse::lowOfTwo, line_.Idle_us());
}

void VirtualEchosounder::SendMessage(ChannelUse use, int64_t start_us) {
  maker_.Make({number_, pingIndex_, sailed_s_, prompt_.Clock_ms(start_us)}, use, Settings());
  SentPing ping = maker_.Account();
  ping.time_us = start_us;
  ping.offset = line_.End();
  pings_.Made(ping, maker_.Samples());
  line_.Put(maker_.Bytes(), start_us);
  SendGarbage();
}

// Noise with starts of the marks that a reader hunts for.
void VirtualEchosounder::SendGarbage() {
  constexpr std::string_view kPieces[] = {"#Dev",      "\r\n\r\n", "#Device", "##DataStart\r\n",
                                          "\xFF\x80~", "4095\r\n"};
  const auto wanted = static_cast<size_t>(options_.faults.garbageBytes);
  if (wanted == 0) return;
  Dice dice(options_.seed ^ Mix(pingIndex_));
  std::vector<uint8_t> garbage;
  while (garbage.size() < wanted) {
    const std::string_view piece = kPieces[dice.Below(std::size(kPieces))];
    garbage.insert(garbage.end(), piece.begin(), piece.end());
    garbage.push_back(static_cast<uint8_t>(dice.Below(256)));
  }
  garbage.resize(wanted);
  line_.Put(garbage, 0);
}

void VirtualEchosounder::EndPings(int64_t now_us) {
  pings_.Settle(line_.Left(now_us), line_.End());
}

// Receiving.

void VirtualEchosounder::Receive(std::span<const uint8_t> bytes, int64_t now_us) {
  Advance(now_us);
  if (hungUp_) return;
  for (const uint8_t byte : bytes) {
    bytes_.Add({now_us, byte});
    if (!options_.faults.instrument.dead && !options_.faults.deaf) TakeByte(byte, now_us);
  }
}

void VirtualEchosounder::TakeByte(uint8_t byte, int64_t now_us) {
  if (streaming_) {
    if (byte == ' ') Stop(now_us);
    return;
  }
  const auto line = prompt_.Take(byte);
  if (!line) return;
  TakeLine(*line, now_us);
}

void VirtualEchosounder::TakeLine(const std::string& line, int64_t now_us) {
  const std::string_view keyword = KeywordOf(line);
  const int64_t answer_us = now_us + Delay_us(keyword);
  if (line.empty()) {
    SayPrompt(answer_us);
    return;
  }
  PromptAnswer answer{line + "\r\nError\r\n", PromptEffect::none, true, Holds(options_.faults.mute, keyword)};
  if (!answer.mute && !Holds(options_.faults.refused, keyword)) answer = prompt_.Answer(line, now_us);
  commands_.Add({now_us, line, answer.refused});
  if (answer.mute) return;
  Say(answer.text, answer_us);
  if (answer.effect == PromptEffect::go) {
    streaming_ = true;
    due_us_ = answer_us;
    return;
  }
  SayPrompt(answer_us);
  if (answer.effect == PromptEffect::none) return;
  if (answer.effect == PromptEffect::reset) number_ = 0;
  newSpeed_us_ = line_.Idle_us();
}

int64_t VirtualEchosounder::Delay_us(std::string_view keyword) {
  const SounderFaults& faults = options_.faults;
  const bool late = !wasLate_ && !faults.late.empty() && keyword == faults.late;
  wasLate_ = wasLate_ || late;
  return (faults.replyDelay_ms + (late ? faults.late_ms : 0)) * kMicrosecondsPerMillisecond;
}

void VirtualEchosounder::Stop(int64_t now_us) {
  streaming_ = false;
  chatter_us_ = now_us + kChatterPeriod_us;
  line_.CutAfterLine(now_us);
  EndPings(now_us);
  const SounderFaults& faults = options_.faults;
  if (faults.splitEndMark) {
    Say("Data", now_us);
    Say("End\r\n", line_.Idle_us() + faults.splitPause_ms * kMicrosecondsPerMillisecond);
  } else {
    Say("DataEnd\r\n", now_us);
  }
  SayPrompt(now_us);
}

void VirtualEchosounder::Say(std::string_view text, int64_t notBefore_us) {
  if (options_.faults.instrument.SilentAt(notBefore_us)) return;
  line_.Put({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, notBefore_us);
}

void VirtualEchosounder::SayPrompt(int64_t notBefore_us) {
  switch (options_.faults.prompt) {
    case PromptStyle::whole:
      Say("\r\n>", notBefore_us);
      return;
    case PromptStyle::missing:
      return;
    case PromptStyle::split:
      Say("\r\n", notBefore_us);
      Say(">", std::max(notBefore_us, line_.Idle_us()) +
                   options_.faults.splitPause_ms * kMicrosecondsPerMillisecond);
      return;
    case PromptStyle::doubledReturn:
      Say("\r\r\n>", notBefore_us);
      return;
  }
}

}  // namespace tw::sim
