#include "tools/echotool/tide.h"

#include <algorithm>
#include <cmath>

#include "base/calendar.h"
#include "base/text_scan.h"
#include "platform/owned_file.h"
#include "platform/system_error.h"
#include "tools/echotool/file_names.h"

namespace tw::echotool {
namespace {

constexpr uint64_t kMostBytes = uint64_t{16} * 1024 * 1024;
constexpr double kHighest_m = 100.0;

// So many digits, no more and no fewer, and a value within its bounds.
bool TakeDigits(std::string_view& text, size_t count, int32_t low, int32_t high, int32_t& value) {
  value = 0;
  if (text.size() < count) return false;
  for (const char c : text.substr(0, count)) {
    if (c < '0' || c > '9') return false;
    value = 10 * value + (c - '0');
  }
  text.remove_prefix(count);
  return value >= low && value <= high;
}

bool TakeTime(std::string_view& text, CalendarTime& time) {
  if (!TakeDigits(text, 4, 1970, 9999, time.year) || !ScanLiteral(text, "-") ||
      !TakeDigits(text, 2, 1, 12, time.month) || !ScanLiteral(text, "-") ||
      !TakeDigits(text, 2, 1, 31, time.day) || !(ScanLiteral(text, "T") || ScanLiteral(text, " ")) ||
      !TakeDigits(text, 2, 0, 23, time.hour) || !ScanLiteral(text, ":") ||
      !TakeDigits(text, 2, 0, 59, time.minute))
    return false;
  return !ScanLiteral(text, ":") || TakeDigits(text, 2, 0, 59, time.second);
}

}  // namespace

bool Tide::ParseLine(std::string_view line, Height& height) {
  CalendarTime time{};
  if (!TakeTime(line, time)) return false;
  static_cast<void>(ScanLiteral(line, "Z"));
  const size_t value = line.find_first_not_of(" \t,;");
  if (value == 0 || value == line.npos) return false;
  line.remove_prefix(value);
  if (!ScanDouble(line, height.height_m) || line.find_first_not_of(" \t\r") != line.npos) return false;
  height.time_ms = UnixSecondsFromCalendar(time) * 1000;
  return std::fabs(height.height_m) <= kHighest_m;
}

bool Tide::Parse(std::string_view text, std::string& error) {
  heights_.clear();
  for (size_t number = 1; !text.empty(); ++number) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.find_first_not_of(" \t\r") == line.npos || line.front() == '#') continue;
    Height height{};
    const bool parsed = ParseLine(line, height);
    if (!parsed && number == 1) continue;
    if (!parsed) error = "is no UTC with a height in metres";
    if (parsed && !heights_.empty() && height.time_ms <= heights_.back().time_ms)
      error = "is not later than the line before";
    if (!error.empty()) {
      error = "line " + std::to_string(number) + " " + error;
      return false;
    }
    heights_.push_back(height);
  }
  if (heights_.empty()) error = "holds no height";
  return error.empty();
}

bool Tide::Read(const std::string& path, std::string& error) {
  const OwnedFile file(OpenFileForReading(WideName(path).c_str(), WriteSharing::allowed));
  uint64_t size = 0;
  if (file.Get() == Handle::invalid || !FileSize(file.Get(), size)) {
    error = path + " cannot be opened: " + ReasonText(LastSystemError());
    return false;
  }
  std::string text(static_cast<size_t>(std::min(size, kMostBytes + 1)), '\0');
  uint32_t got = 0;
  if (!ReadFileBytes(file.Get(), text.data(), static_cast<uint32_t>(text.size()), got)) {
    error = path + " cannot be read: " + ReasonText(LastSystemError());
    return false;
  }
  text.resize(got);
  if (size > kMostBytes) error = "is longer than 16 MiB";
  if (error.empty() && Parse(text, error)) return true;
  error = path + ": " + error;
  return false;
}

std::optional<double> Tide::At(int64_t time_ms) const {
  const auto after =
      std::lower_bound(heights_.begin(), heights_.end(), time_ms,
                       [](const Height& each, int64_t wanted) { return each.time_ms < wanted; });
  if (after == heights_.end()) return std::nullopt;
  if (after->time_ms == time_ms) return after->height_m;
  if (after == heights_.begin()) return std::nullopt;
  const Height& before = *(after - 1);
  const double part =
      static_cast<double>(time_ms - before.time_ms) / static_cast<double>(after->time_ms - before.time_ms);
  return before.height_m + part * (after->height_m - before.height_m);
}

}  // namespace tw::echotool
