#include "tools/echotool/track_output.h"

#include <cinttypes>
#include <cmath>
#include <cstring>

#include "base/text_format.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {
namespace {

constexpr size_t kRowSize = 1024;

// A row of comma-separated values that grows field by field.
class Row {
 public:
  explicit Row(char* text) : text_(text) {}

  void Time(uint32_t seconds) {
    Separate();
    if (seconds == 0) return;  // the recording tells none
    WholeSeconds(seconds);
    size_ += FormatText(Rest(), "Z");
  }
  void FineTime(int64_t milliseconds, bool present) {
    Separate();
    if (!present || milliseconds < kSecond_ms) return;
    WholeSeconds(milliseconds / kSecond_ms);
    size_ += FormatText(Rest(), ".%03dZ", static_cast<int>(milliseconds % kSecond_ms));
  }
  void Whole(uint32_t value, bool present = true) {
    Separate();
    if (present) size_ += FormatText(Rest(), "%" PRIu32, value);
  }
  void Decimal(double value, int decimals, bool present = true) {
    Separate();
    if (present && std::isfinite(value)) size_ += FormatText(Rest(), "%.*f", decimals, value);
  }
  [[nodiscard]] std::string_view End() {
    text_[size_++] = '\r';
    text_[size_++] = '\n';
    return {text_, size_};
  }

 private:
  static constexpr int64_t kSecond_ms = 1'000;

  void WholeSeconds(int64_t seconds) { size_ += StoreIsoSeconds(Rest(), seconds); }
  void Separate() {
    if (fields_++ != 0) text_[size_++] = ',';
  }
  [[nodiscard]] std::span<char> Rest() const { return {text_ + size_, kRowSize - 16 - size_}; }

  char* text_;
  size_t size_ = 0;
  size_t fields_ = 0;
};

}  // namespace

bool AppendText(OutputFile& output, std::string_view text) {
  uint8_t* const out = output.Room(text.size());
  if (out == nullptr) return false;
  std::memcpy(out, text.data(), text.size());
  output.Take(text.size());
  return true;
}

bool CsvWriter::Begin() {
  return AppendText(output_,
                    "time_utc,ping,latitude_deg,longitude_deg,altitude_m,temperature_c,pitch_deg,roll_deg,"
                    "channel,frequency_hz,altitude_low_m,time_ms_utc\r\n");
}

bool CsvWriter::Append(const RecordedPing& ping) {
  char text[kRowSize];
  Row row(text);
  const PingHeader& header = ping.header;
  const bool attitude = header.pitch_deg < kNoAttitude;
  row.Time(header.timeOfWork_s);
  row.Whole(header.ping);
  row.Decimal(Degrees(ping.latitude_rad), 8, ping.hasPosition);
  row.Decimal(Degrees(ping.longitude_rad), 8, ping.hasPosition);
  row.Decimal(static_cast<double>(header.altitude_m), 3);
  row.Decimal(static_cast<double>(header.temperature_c), 2);
  row.Decimal(static_cast<double>(header.pitch_deg), 2, attitude);
  row.Decimal(static_cast<double>(header.roll_deg), 2, attitude);
  row.Whole(static_cast<uint32_t>(ping.channel) + 1);
  row.Whole(static_cast<uint32_t>(header.txFrequency_hz), header.txFrequency_hz > 0);
  row.Decimal(static_cast<double>(ping.altitudeLow_m), 3, ping.bothChannels);
  row.FineTime(ping.time_ms, ping.hasMilliseconds);
  return AppendText(output_, row.End());
}

bool KmlWriter::Begin() {
  const std::string name = MarkupText(name_);
  return AppendText(
      output_,
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<kml xmlns=\"http://www.opengis.net/kml/2.2\" xmlns:gx=\"http://www.google.com/kml/ext/2.2\">\n"
      "<Document>\n<name>" +
          name +
          "</name>\n"
          "<Style id=\"track\"><LineStyle><color>ff0000ff</color><width>3</width></LineStyle></Style>\n");
}

bool KmlWriter::AppendPlacemark(std::string_view geometry) {
  return AppendText(output_, "<Placemark>\n<name>" + MarkupText(name_) +
                                 "</name>\n<styleUrl>#track</styleUrl>\n" + std::string(geometry));
}

bool KmlWriter::Append(const RecordedPing& ping) {
  const auto point = track_.Next(ping);
  if (!point) return true;
  kept_.Add(*point);
  char text[kRowSize];
  const std::string_view position(
      text, FormatText(text, "%.8f,%.8f\n", point->place.longitude, point->place.latitude));
  if (++positions_ == 1) {
    first_ = position;
    return true;
  }
  if (positions_ == 2 &&
      !AppendPlacemark("<LineString>\n<tessellate>1</tessellate>\n<coordinates>\n" + first_))
    return false;
  return AppendText(output_, position);
}

// A line has two places at least.
bool KmlWriter::End() {
  const bool ended =
      positions_ == 0 ||
      (positions_ == 1
           ? AppendPlacemark("<Point>\n<coordinates>\n" + first_ + "</coordinates>\n</Point>\n</Placemark>\n")
           : AppendText(output_, "</coordinates>\n</LineString>\n</Placemark>\n"));
  return ended && AppendTimes() && AppendMarks() && AppendText(output_, "</Document>\n</kml>\n") &&
         output_.Flush();
}

// Places that no time belongs to, or an earlier one than the place before had, are left to the line.
bool KmlWriter::AppendTimes() {
  std::vector<TrackPoint> timed;
  for (const TrackPoint& point : kept_.End())
    if (point.time_ms && (timed.empty() || *point.time_ms > *timed.back().time_ms)) timed.push_back(point);
  if (timed.size() < 2) return true;
  bool written = AppendPlacemark("<gx:Track>\n");
  for (const TrackPoint& point : timed)
    written = written && AppendText(output_, "<when>" + IsoTime(*point.time_ms) + "</when>\n");
  for (const TrackPoint& point : timed) {
    char text[kRowSize];
    const size_t length =
        FormatText(text, "<gx:coord>%.8f %.8f 0</gx:coord>\n", point.place.longitude, point.place.latitude);
    written = written && AppendText(output_, {text, length});
  }
  return written && AppendText(output_, "</gx:Track>\n</Placemark>\n");
}

bool KmlWriter::AppendMarks() {
  for (const EventMark& mark : marks_) {
    if (!mark.hasPosition) continue;
    char text[kRowSize];
    const size_t length = FormatText(text, "<Point>\n<coordinates>\n%.8f,%.8f\n</coordinates>\n</Point>\n",
                                     mark.longitude_deg, mark.latitude_deg);
    if (!AppendText(output_, "<Placemark>\n<name>" + MarkupText(NameOf(mark)) + "</name>\n<TimeStamp><when>" +
                                 IsoTime(mark.time_ms) + "</when></TimeStamp>\n" + std::string(text, length) +
                                 "</Placemark>\n"))
      return false;
  }
  return true;
}

}  // namespace tw::echotool
