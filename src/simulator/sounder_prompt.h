// The device at its prompt: collects command lines and answers them.
//
//   line    = keyword [ ' ' value ] CR          LF and blanks before a keyword are ignored
//   answer  = line CR LF [ value-line CR LF ]   the prompt follows, which the device adds
//
// A keyword that is asked for a value gives a value line; a setting that is accepted gives none; what is
// unknown, refused, malformed, out of range or longer than 256 characters gives the line "Error". What a
// family knows, tells and can be told stands in the tables of sounder_keywords.cpp. Pure; not thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/sounder_keywords.h"
#include "simulator/sounder_settings.h"

namespace tw::sim {

// What a command does beyond its answer; the device carries it out.
enum class PromptEffect : uint8_t { none, go, reset, newSpeed };

struct PromptAnswer {
  std::string text;  // without the prompt
  PromptEffect effect = PromptEffect::none;
  bool refused = false;
  bool mute = false;  // nothing is said, no prompt either
};

class SounderPrompt {
 public:
  // The options are within their bounds.
  explicit SounderPrompt(const SounderOptions& options);

  // Takes one byte. A finished line, which may be empty, is returned.
  [[nodiscard]] std::optional<std::string> Take(uint8_t byte);

  // Answers a line that is not empty.
  [[nodiscard]] PromptAnswer Answer(std::string_view line, int64_t now_us);

  [[nodiscard]] const SounderSettings& Settings() const { return settings_; }

  // The device's clock, milliseconds since 1970.
  [[nodiscard]] int64_t Clock_ms(int64_t now_us) const { return now_us / 1'000 + clockAhead_ms_; }

 private:
  struct Outcome;
  [[nodiscard]] Outcome Carry(std::string_view word, std::string_view value, int64_t now_us);
  [[nodiscard]] Outcome Tell(const Keyword& keyword, int64_t now_us) const;
  [[nodiscard]] Outcome Change(const Keyword& keyword, int64_t thousandths, int64_t now_us);
  [[nodiscard]] Outcome Obey(Meaning command);
  [[nodiscard]] bool Use(Setting frequency, bool both);
  [[nodiscard]] bool CanStream(int64_t mode) const;
  [[nodiscard]] bool Lacks(const Keyword& keyword) const;

  const SounderOptions options_;
  SounderSettings settings_;
  int64_t clockAhead_ms_;
  std::string line_;
};

// The first word of a command line.
[[nodiscard]] std::string_view KeywordOf(std::string_view line);

}  // namespace tw::sim
