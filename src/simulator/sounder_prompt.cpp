#include "simulator/sounder_prompt.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "simulator/echo_stream.h"
#include "simulator/sounder_keywords.h"

namespace tw::sim {
namespace {

constexpr size_t kLongestLine = 256;
constexpr int64_t kLatestClock = int64_t{0xFFFFFFFF} * kThousand;

std::string_view NameOf(InterfaceWord word) {
  switch (word) {
    case InterfaceWord::rs232:
      return "RS232";
    case InterfaceWord::rs485:
      return "RS485";
    case InterfaceWord::usb:
      return "USB";
  }
  return {};
}

bool IsLineSpeed(int64_t thousandths) {
  return std::any_of(std::begin(kLineSpeeds), std::end(kLineSpeeds),
                     [&](int32_t speed) { return speed * kThousand == thousandths; });
}

bool IsWhole(int64_t thousandths) {
  return thousandths % kThousand == 0;
}

}  // namespace

struct SounderPrompt::Outcome {
  bool accepted = false;
  std::string value = {};
  PromptEffect effect = PromptEffect::none;
};

SounderPrompt::SounderPrompt(const SounderOptions& options)
    : family_(options.family),
      identity_(options.identity),
      interfaceWord_(options.interfaceWord),
      settings_(options),
      clockAhead_ms_(int64_t{options.startTime_s} * 1'000) {}

std::optional<std::string> SounderPrompt::Take(uint8_t byte) {
  if (byte == '\r') {
    return std::exchange(line_, {});
  }
  if (byte == '\n' || (byte == ' ' && line_.empty())) return std::nullopt;
  // One byte more than the longest line is kept: it marks the line as overlong.
  if (line_.size() <= kLongestLine) line_.push_back(static_cast<char>(byte));
  return std::nullopt;
}

std::string_view KeywordOf(std::string_view line) {
  return line.substr(0, line.find(' '));
}

PromptAnswer SounderPrompt::Answer(std::string_view line, int64_t now_us) {
  const std::string_view keyword = KeywordOf(line);
  std::string_view value = line.substr(keyword.size());
  value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
  value = value.substr(0, value.find_last_not_of(' ') + 1);
  const Outcome outcome = line.size() > kLongestLine ? Outcome{} : Carry(keyword, value, now_us);
  PromptAnswer answer{std::string(line) + "\r\n", outcome.effect, !outcome.accepted};
  if (!outcome.accepted) answer.text += "Error\r\n";
  if (outcome.accepted && !outcome.value.empty()) answer.text += outcome.value + "\r\n";
  return answer;
}

Setting SounderPrompt::InUse(Setting low) const {
  const bool lowInUse =
      settings_.Whole(Setting::simultaneous) == 0 &&
      settings_.Thousandths(Setting::frequencyInUse) == settings_.Thousandths(Setting::frequencyLow);
  return static_cast<Setting>(static_cast<uint8_t>(low) + (lowInUse ? 0 : 1));
}

std::string SounderPrompt::Information() const {
  return "Device " + identity_ + "\r\nFirmware " + settings_.Text(Setting::firmware) + "\r\nInterface " +
         std::string(NameOf(interfaceWord_)) + "\r\nRange " + settings_.Text(InUse(Setting::rangeLow)) +
         " mm\r\nOutput " + settings_.Text(Setting::output);
}

SounderPrompt::Outcome SounderPrompt::Carry(std::string_view word, std::string_view value, int64_t now_us) {
  const Keyword* keyword = FindKeyword(family_, word);
  if (keyword == nullptr) return {};
  const bool asks = value.empty();
  int64_t number = 0;
  if (!asks && !ReadThousandths(value, number)) return {};
  const auto change = [&](Setting setting, int64_t thousandths) {
    return Outcome{.accepted = settings_.Set(setting, thousandths)};
  };
  const auto choose = [&](Setting frequency, int64_t simultaneous) {
    const bool accepted = asks && settings_.Set(Setting::frequencyInUse, settings_.Thousandths(frequency)) &&
                          settings_.Set(Setting::simultaneous, simultaneous * kThousand);
    return Outcome{.accepted = accepted};
  };
  const auto tellOrSet = [&](Setting setting, bool allowed) {
    if (asks) return Outcome{.accepted = true, .value = settings_.Text(setting)};
    return allowed ? change(setting, number) : Outcome{};
  };
  switch (keyword->meaning) {
    case Meaning::value:
      return tellOrSet(keyword->setting, true);
    case Meaning::fact:
      return tellOrSet(keyword->setting, false);
    case Meaning::inUse:
      return tellOrSet(InUse(keyword->setting), true);
    case Meaning::output: {
      const auto mode = static_cast<int32_t>(std::clamp<int64_t>(number / kThousand, 0, 1'000));
      return tellOrSet(keyword->setting, IsWhole(number) && FindStreamMode(family_, mode) != nullptr);
    }
    case Meaning::speed:
      return tellOrSet(keyword->setting, IsLineSpeed(number));
    case Meaning::clock:
      if (asks) return {true, std::to_string(Clock_ms(now_us) / 1'000)};
      if (number < 0 || number > kLatestClock) return {};
      clockAhead_ms_ = number - now_us / 1'000;
      return {.accepted = true};
    case Meaning::identity:
      return {asks, identity_};
    case Meaning::information:
      return {asks, Information()};
    case Meaning::useLow:
      return choose(Setting::frequencyLow, 0);
    case Meaning::useHigh:
      return choose(Setting::frequencyHigh, 0);
    case Meaning::useBoth:
      return choose(Setting::frequencyHigh, 1);
    case Meaning::restore:
      if (asks) settings_.Restore();
      return {.accepted = asks};
    case Meaning::reset:
      return {.accepted = asks, .effect = asks ? PromptEffect::reset : PromptEffect::none};
    case Meaning::go:
      return {.accepted = asks, .effect = asks ? PromptEffect::go : PromptEffect::none};
  }
  return {};
}

}  // namespace tw::sim
