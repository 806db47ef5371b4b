// How high the water stood, from a file of the user's: a line a time, UTC, and metres, in order of time.
// Blanks, tabs, commas or semicolons between them; seconds, "T", "Z" may be missing. The first line may name
// columns; empty lines and those that begin with # are passed over.
//
//   2026-05-01T09:30:00Z 1.23
//   2026-05-01 09:40,1.31
//
// One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tw::echotool {

class Tide {
 public:
  // False, and `error` says why, when the file cannot be read or is none of this kind.
  [[nodiscard]] bool Read(const std::string& path, std::string& error);

  // The same with the file's text.
  [[nodiscard]] bool Parse(std::string_view text, std::string& error);

  // In metres, on the straight line between two heights; nothing outside of the file's times.
  [[nodiscard]] std::optional<double> At(int64_t time_ms) const;

 private:
  struct Height {
    int64_t time_ms;
    double height_m;
  };

  [[nodiscard]] static bool ParseLine(std::string_view line, Height& height);

  std::vector<Height> heights_;
};

}  // namespace tw::echotool
