#include "simulator/sounder_prompt.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "simulator/echo_stream.h"
#include "simulator/sounder_information.h"

namespace tw::sim {
namespace {

constexpr size_t kLongestLine = 256;
constexpr int64_t kSonarmiteOld = 9;
constexpr int64_t kLatestClock = int64_t{0xFFFFFFFF} * kThousand;

bool IsLineSpeed(int64_t thousandths) {
  return std::any_of(std::begin(kLineSpeeds), std::end(kLineSpeeds),
                     [&](int32_t speed) { return speed * kThousand == thousandths; });
}

}  // namespace

struct SounderPrompt::Outcome {
  bool accepted = false;
  std::string value = {};
  PromptEffect effect = PromptEffect::none;
  bool mute = false;
};

SounderPrompt::SounderPrompt(const SounderOptions& options)
    : options_(options), settings_(options), clockAhead_ms_(int64_t{options.startTime_s} * 1'000) {}

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
  PromptAnswer answer{std::string(line) + "\r\n", outcome.effect, !outcome.accepted, outcome.mute};
  if (!outcome.accepted) answer.text += "Error\r\n";
  if (outcome.accepted && !outcome.value.empty()) answer.text += outcome.value + "\r\n";
  return answer;
}

SounderPrompt::Outcome SounderPrompt::Carry(std::string_view word, std::string_view value, int64_t now_us) {
  const Keyword* keyword = FindKeyword(options_.family, word);
  if (keyword == nullptr) return {};
  const bool smooths = options_.smoothing != Smoothing::absent;
  if (!smooths && (keyword->setting == Setting::smooth || keyword->setting == Setting::outputRate)) return {};
  const bool asks = value.empty();
  if (keyword->access == Access::command) return asks ? Obey(keyword->meaning) : Outcome{};
  if (asks && Lacks(*keyword)) return {.mute = options_.faults.lacksSilently};
  if (asks) return keyword->Told() ? Tell(*keyword, now_us) : Outcome{};
  int64_t number = 0;
  if (!keyword->Settable() || !ReadThousandths(value, number)) return {};
  return Change(*keyword, number, now_us);
}

bool SounderPrompt::Lacks(const Keyword& keyword) const {
  const Keyword* oldest = FindKeyword(options_.family, options_.faults.lacksFrom);
  return oldest != nullptr && CameNotBefore(keyword, *oldest);
}

SounderPrompt::Outcome SounderPrompt::Tell(const Keyword& keyword, int64_t now_us) const {
  switch (keyword.meaning) {
    case Meaning::identity:
      return {true, options_.identity};
    case Meaning::information:
      return {true, Information(options_, settings_)};
    case Meaning::clock:
      return {true, std::to_string(Clock_ms(now_us) / 1'000)};
    case Meaning::bothRanges:
      return {true, settings_.Text(settings_.LowInUse() ? Setting::rangeLow : Setting::rangeHigh)};
    case Meaning::value:
    case Meaning::output:
    case Meaning::automatic:
    case Meaning::preset:
    case Meaning::speed:
      return {true, settings_.Text(keyword.setting)};
    case Meaning::useLow:
    case Meaning::useHigh:
    case Meaning::useBoth:
    case Meaning::restore:
    case Meaning::reset:
    case Meaning::go:
      break;
  }
  return {};
}

bool SounderPrompt::CanStream(int64_t mode) const {
  const bool dual = settings_.Whole(Setting::simultaneous) != 0;
  if (options_.refusesDualOld && dual && mode == kSonarmiteOld) return false;
  return FindStreamMode(options_.family, static_cast<int32_t>(std::clamp<int64_t>(mode, 0, 1'000))) !=
         nullptr;
}

SounderPrompt::Outcome SounderPrompt::Change(const Keyword& keyword, int64_t thousandths, int64_t now_us) {
  const Setting setting = keyword.setting;
  switch (keyword.meaning) {
    case Meaning::value:
      return {settings_.Set(setting, thousandths)};
    case Meaning::bothRanges:
      return {settings_.Set(Setting::rangeLow, thousandths) &&
              settings_.Set(Setting::rangeHigh, thousandths)};
    case Meaning::output:
      return {CanStream(thousandths / kThousand) && settings_.Set(setting, thousandths)};
    case Meaning::automatic:
      return {settings_.SetAutomatic(thousandths)};
    case Meaning::preset:
      return {settings_.SetPreset(thousandths)};
    case Meaning::speed:
      if (!IsLineSpeed(thousandths) || !settings_.Set(setting, thousandths)) return {};
      return {.accepted = true, .effect = options_.speedAtOnce ? PromptEffect::newSpeed : PromptEffect::none};
    case Meaning::clock:
      if (thousandths < 0 || thousandths > kLatestClock) return {};
      clockAhead_ms_ = thousandths - now_us / 1'000;
      return {true};
    case Meaning::identity:
    case Meaning::information:
    case Meaning::useLow:
    case Meaning::useHigh:
    case Meaning::useBoth:
    case Meaning::restore:
    case Meaning::reset:
    case Meaning::go:
      break;
  }
  return {};
}

// Both at once is a matter of the first family, which can refuse it for one of its modes.
bool SounderPrompt::Use(Setting frequency, bool both) {
  const bool old = settings_.Whole(Setting::output) == kSonarmiteOld;
  if (both && options_.refusesDualOld && old) return false;
  return settings_.Set(Setting::frequencyInUse, settings_.Thousandths(frequency)) &&
         settings_.Set(Setting::simultaneous, both ? kThousand : 0);
}

SounderPrompt::Outcome SounderPrompt::Obey(Meaning command) {
  switch (command) {
    case Meaning::useLow:
      return {Use(Setting::frequencyLow, false)};
    case Meaning::useHigh:
      return {Use(Setting::frequencyHigh, false)};
    case Meaning::useBoth:
      return {Use(Setting::frequencyHigh, true)};
    case Meaning::restore:
      settings_.Restore();
      return {true};
    case Meaning::reset:
      return {.accepted = true, .effect = PromptEffect::reset};
    case Meaning::go:
      return {.accepted = true, .effect = PromptEffect::go};
    case Meaning::value:
    case Meaning::output:
    case Meaning::automatic:
    case Meaning::preset:
    case Meaning::speed:
    case Meaning::bothRanges:
    case Meaning::clock:
    case Meaning::identity:
    case Meaning::information:
      break;
  }
  return {};
}

}  // namespace tw::sim
