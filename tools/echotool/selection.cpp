#include "tools/echotool/selection.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <string_view>

#include "base/calendar.h"

namespace tw::echotool {
namespace {

constexpr double kMostSeconds = 1e10;  // beyond the year 2286
constexpr double kDegrees = 180.0 / std::numbers::pi;

// A number off the front of the text; no sign but a minus, no white space, no word.
template <typename Number>
bool TakeNumber(std::string_view& text, Number& value) {
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (fault != std::errc{}) return false;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return true;
}

bool TakeDegrees(std::string_view& text, double most, double& value) {
  return TakeNumber(text, value) && std::fabs(value) <= most;  // false for what is no number, too
}

bool TakeChar(std::string_view& text, std::string_view either) {
  if (text.empty() || either.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

// Exactly so many digits.
bool TakeDigits(std::string_view& text, size_t count, int32_t& value) {
  std::string_view digits = text.substr(0, count);
  if (digits.size() < count || digits.front() == '-' || !TakeNumber(digits, value) || !digits.empty())
    return false;
  text.remove_prefix(count);
  return true;
}

// Up to three digits behind the point are milliseconds; more are left out.
bool TakeFraction(std::string_view& text, int32_t& milliseconds) {
  size_t digits = 0;
  for (; !text.empty() && text.front() >= '0' && text.front() <= '9'; text.remove_prefix(1)) {
    if (digits++ < 3) milliseconds = milliseconds * 10 + (text.front() - '0');
  }
  for (size_t i = digits; i < 3; ++i) milliseconds *= 10;
  return digits != 0;
}

// 2025-03-14T09:30:00, a blank in place of the T, a fraction and a Z behind it as one likes.
bool ReadUtc(std::string_view text, int64_t& time_ms) {
  CalendarTime t{};
  const bool date = TakeDigits(text, 4, t.year) && TakeChar(text, "-") && TakeDigits(text, 2, t.month) &&
                    TakeChar(text, "-") && TakeDigits(text, 2, t.day);
  const bool time = date && TakeChar(text, "T ") && TakeDigits(text, 2, t.hour) && TakeChar(text, ":") &&
                    TakeDigits(text, 2, t.minute) && TakeChar(text, ":") && TakeDigits(text, 2, t.second);
  if (!time || (TakeChar(text, ".") && !TakeFraction(text, t.millisecond))) return false;
  static_cast<void>(TakeChar(text, "Z"));
  const int64_t seconds = UnixSecondsFromCalendar(t);
  const CalendarTime same = CalendarFromUnixSeconds(seconds);  // no 30th of February
  time_ms = seconds * 1'000 + t.millisecond;
  return text.empty() && same.month == t.month && same.day == t.day && same.hour == t.hour &&
         same.minute == t.minute && same.second == t.second;
}

bool ReadMoment(std::string_view text, std::optional<Moment>& moment) {
  Moment read{};
  std::string_view rest = text;
  double seconds = 0;
  if (TakeNumber(rest, seconds) && rest.empty()) {
    if (!(seconds >= 0 && seconds <= kMostSeconds)) return false;
    read = {std::llround(seconds * 1'000.0), true};
  } else if (!ReadUtc(text, read.time_ms)) {
    return false;
  }
  moment = read;
  return true;
}

bool ReadNumbers(std::string_view text, std::optional<NumberRange>& range) {
  NumberRange read{};
  if (!TakeNumber(text, read.first) || !TakeChar(text, "-") || !TakeNumber(text, read.last) ||
      !text.empty() || read.last < read.first)
    return false;
  range = read;
  return true;
}

bool ReadArea(std::string_view text, std::optional<Area>& area) {
  Area read{};
  if (!TakeDegrees(text, 180.0, read.west) || !TakeChar(text, ",") || !TakeDegrees(text, 90.0, read.south) ||
      !TakeChar(text, ",") || !TakeDegrees(text, 180.0, read.east) || !TakeChar(text, ",") ||
      !TakeDegrees(text, 90.0, read.north) || !text.empty() || read.north < read.south)
    return false;
  area = read;
  return true;
}

bool Contains(const Area& area, const RecordedPing& ping) {
  if (!ping.hasPosition) return false;
  const double latitude = ping.latitude_rad * kDegrees;
  const double longitude = ping.longitude_rad * kDegrees;
  const bool east = longitude >= area.west;
  const bool west = longitude <= area.east;
  return latitude >= area.south && latitude <= area.north &&
         (area.west <= area.east ? east && west : east || west);
}

}  // namespace

std::optional<bool> TakeSelectionOption(const std::string& word, std::span<const std::string>& rest,
                                        Selection& selection, std::string& error) {
  const std::string_view value = rest.empty() ? std::string_view{} : rest.front();
  bool sound = false;
  if (word == "--from" || word == "--to") {
    sound = ReadMoment(value, word == "--from" ? selection.from : selection.to);
    if (!sound) error = word + " needs a time, as 2025-03-14T09:30:00 in UTC, or seconds from the start";
  } else if (word == "--pings") {
    sound = ReadNumbers(value, selection.pings);
    if (!sound) error = "--pings needs the first and the last number, as 100-250";
  } else if (word == "--area") {
    sound = ReadArea(value, selection.area);
    if (!sound) error = "--area needs west, south, east and north in degrees, as -5.5,35,3,40.25";
  } else {
    return std::nullopt;
  }
  if (sound) rest = rest.subspan(1);
  return sound;
}

bool Chooser::FitsTime() const {
  if (!selection_.from && !selection_.to) return true;
  if (!start_ms_) return false;
  const auto at = [&](const Moment& moment) {
    return moment.fromStart ? *start_ms_ + moment.time_ms : moment.time_ms;
  };
  return (!selection_.from || time_ms_ >= at(*selection_.from)) &&
         (!selection_.to || time_ms_ < at(*selection_.to));
}

bool Chooser::Takes(const RecordedPing& ping) {
  if (const auto told = clock_.TimeOf(ping)) {
    if (!start_ms_) start_ms_ = told;
    time_ms_ = *told;
  }
  const auto& numbers = selection_.pings;
  return FitsTime() &&
         (!numbers || (ping.header.ping >= numbers->first && ping.header.ping <= numbers->last)) &&
         (!selection_.area || Contains(*selection_.area, ping));
}

}  // namespace tw::echotool
