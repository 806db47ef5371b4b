#include "tools/echotool/info_output.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>

#include "base/text_format.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/summary.h"

namespace tw::echotool {
namespace {

constexpr int64_t kSecond_ms = 1'000;

template <typename... Values>
void Line(std::string& out, const char* key, const char* format, Values... values) {
  char text[256];
  out.append(text, FormatText(text, "  %-13s ", key));
  out.append(text, FormatText(text, format, values...));
  out += '\n';
}

std::string Decimal(double value, int decimals) {
  char text[400];  // the largest there is has 309 digits
  return std::isfinite(value) ? std::string(text, FormatText(text, "%.*f", decimals, value)) : "";
}

// One value, or the lowest and the highest.
std::string ExtentText(const Extent& extent, int decimals) {
  const std::string low = Decimal(extent.low, decimals);
  const std::string high = Decimal(extent.high, decimals);
  return low == high ? low : low + " to " + high;
}

// Never 100.0 or 0.0 for what is not all or nothing.
double Percent(uint64_t part, uint64_t whole) {
  if (part == 0 || whole == 0) return 0.0;
  if (part >= whole) return 100.0;
  return std::clamp(100.0 * static_cast<double>(part) / static_cast<double>(whole), 0.1, 99.9);
}

double Seconds(int64_t milliseconds) {
  return static_cast<double>(milliseconds) / static_cast<double>(kSecond_ms);
}

void RunningLines(std::string& out, const RecordingFigures& figures) {
  if (figures.timed != 0) {
    Line(out, "duration", "%s", DurationText(figures.running_ms).c_str());
    if (figures.Rate() > 0) Line(out, "rate", "%.2f pings a second", figures.Rate());
    if (figures.gaps != 0)
      Line(out, "gaps", "%" PRIu64 " longer than 2 s, the longest %.1f s", figures.gaps,
           Seconds(figures.longestGap_ms));
    if (figures.setBack != 0) Line(out, "clock", "%" PRIu64 " times set back", figures.setBack);
  }
  if (figures.missing != 0) Line(out, "missing", "%" PRIu64 " ping numbers", figures.missing);
  if (figures.restarts != 0)
    Line(out, "restarts", "%" PRIu64 " times the numbers begin anew", figures.restarts);
  Line(out, "positions", "%" PRIu64 " pings (%.1f %%)", figures.positions,
       Percent(figures.positions, figures.pings));
  if (figures.jumps != 0)
    Line(out, "jumps", "%" PRIu64 " positions out of reach of the one before", figures.jumps);
  if (figures.positions != 0) Line(out, "distance", "%.0f m", figures.distance_m);
}

// The fields of both forms for programs, in their order; what is not known is empty.
struct Field {
  const char* name;
  std::string value;
  bool isText = false;
};

std::string Told(bool known, double value, int decimals) {
  return known ? Decimal(value, decimals) : "";
}

std::string TimeField(const RecordingFigures& figures, int64_t time_ms) {
  return figures.timed != 0 ? IsoTime(time_ms, Milliseconds::always) : "";
}

void AddExtent(std::vector<Field>& fields, const char* low, const char* high, const Extent& extent,
               int decimals) {
  fields.push_back({low, Told(extent.count != 0, extent.low, decimals)});
  fields.push_back({high, Told(extent.count != 0, extent.high, decimals)});
}

// Those that totals have as well.
void AddRun(std::vector<Field>& fields, const RecordingFigures& figures) {
  const bool timed = figures.timed != 0;
  fields.push_back({"pings", std::to_string(figures.pings)});
  fields.push_back({"begin", TimeField(figures, figures.begin_ms), true});
  fields.push_back({"end", TimeField(figures, figures.end_ms), true});
  fields.push_back({"duration_s", Told(timed, Seconds(figures.running_ms), 3)});
  fields.push_back({"rate_hz", Told(figures.Rate() > 0, figures.Rate(), 3)});
  fields.push_back({"gaps", timed ? std::to_string(figures.gaps) : ""});
  fields.push_back({"longest_gap_s", Told(figures.gaps != 0, Seconds(figures.longestGap_ms), 3)});
  fields.push_back({"clock_set_back", timed ? std::to_string(figures.setBack) : ""});
  fields.push_back({"missing_pings", std::to_string(figures.missing)});
  fields.push_back({"number_restarts", std::to_string(figures.restarts)});
  AddExtent(fields, "depth_min_m", "depth_max_m", figures.depth_m, 3);
  AddExtent(fields, "depth_low_min_m", "depth_low_max_m", figures.depthLow_m, 3);
  fields.push_back({"positions", std::to_string(figures.positions)});
  fields.push_back({"position_jumps", std::to_string(figures.jumps)});
  AddExtent(fields, "latitude_min_deg", "latitude_max_deg", figures.latitude_deg, 8);
  AddExtent(fields, "longitude_min_deg", "longitude_max_deg", figures.longitude_deg, 8);
  fields.push_back({"distance_m", Told(figures.positions != 0, figures.distance_m, 1)});
}

std::vector<Field> FieldsOf(std::string_view file, const PingSource& recording,
                            const RecordingFigures& figures) {
  const RecordingKind& kind = recording.Kind();
  const auto& info = recording.Told().info;
  std::vector<Field> fields = {
      {"file", std::string(file), true},
      {"size_bytes", std::to_string(recording.Size())},
      {"kind", kind.name, true},
      {"family", std::to_string(static_cast<int32_t>(kind.family))},
      {"output_mode", std::to_string(kind.outputMode)},
      {"channels", std::to_string(kind.channels)},
      {"frequency_hz", Told(figures.frequency_hz[0].count != 0, figures.frequency_hz[0].low, 0)},
      {"frequency_low_hz", Told(figures.frequency_hz[1].count != 0, figures.frequency_hz[1].low, 0)},
  };
  AddExtent(fields, "sampling_min_hz", "sampling_max_hz", figures.sampling_hz, 0);
  fields.push_back({"samples_max", std::to_string(figures.longestTrace)});
  fields.push_back({"sound_speed_mps", info ? Decimal(static_cast<double>(info->soundSpeed_mps), 1) : ""});
  AddExtent(fields, "range_min_m", "range_max_m", figures.range_m, 3);
  fields.push_back({"gain_db", info ? Decimal(static_cast<double>(info->gain), 1) : ""});
  fields.push_back({"first_ping", std::to_string(figures.firstNumber)});
  fields.push_back({"last_ping", std::to_string(figures.lastNumber)});
  AddRun(fields, figures);
  fields.push_back({"skipped_bytes", std::to_string(recording.Skipped())});
  return fields;
}

std::string ObjectOf(const std::vector<Field>& fields, std::string_view indent) {
  std::string out = "{";
  for (const Field& field : fields) {
    if (out.size() > 1) out += ',';
    out += '\n' + std::string(indent) + "  \"" + field.name + "\": ";
    out += field.value.empty() ? "null" : field.isText ? QuotedJson(field.value) : field.value;
  }
  return out + '\n' + std::string(indent) + '}';
}

}  // namespace

std::string DurationText(int64_t duration_ms) {
  const int64_t seconds = duration_ms / kSecond_ms;
  char text[64];
  return {text, FormatText(text, "%" PRId64 ":%02d:%02d", seconds / 3'600,
                           static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60))};
}

std::string FiguresText(const PingSource& recording, const RecordingFigures& figures) {
  std::string out;
  Line(out, "file size", "%" PRIu64 " bytes", recording.Size());
  std::string frequencies;
  for (const Extent& frequency : figures.frequency_hz) {
    if (frequency.count == 0) continue;
    frequencies += (frequencies.empty() ? "" : " and ") + ExtentText(frequency, 0);
  }
  if (!frequencies.empty()) Line(out, "frequency", "%s Hz", frequencies.c_str());
  if (figures.sampling_hz.count != 0)
    Line(out, "sampling", "%s Hz", ExtentText(figures.sampling_hz, 0).c_str());
  if (const auto& info = recording.Told().info) {
    Line(out, "sound speed", "%s m/s", Decimal(static_cast<double>(info->soundSpeed_mps), 1).c_str());
    Line(out, "gain", "%s dB", Decimal(static_cast<double>(info->gain), 0).c_str());
  }
  if (figures.range_m.count != 0) Line(out, "range", "%s m", ExtentText(figures.range_m, 1).c_str());
  RunningLines(out, figures);
  return out;
}

std::string FiguresJson(std::string_view file, const PingSource& recording, const RecordingFigures& figures) {
  return ObjectOf(FieldsOf(file, recording, figures), "    ");
}

std::string FiguresCsvRow(std::string_view file, const PingSource& recording,
                          const RecordingFigures& figures) {
  std::string row;
  for (const Field& field : FieldsOf(file, recording, figures)) {
    if (!row.empty()) row += ',';
    row += field.isText ? CsvCell(field.value) : field.value;
  }
  return row + "\r\n";
}

std::string FiguresCsvHeader() {
  return "file,size_bytes,kind,family,output_mode,channels,frequency_hz,frequency_low_hz,sampling_min_hz,"
         "sampling_max_hz,samples_max,sound_speed_mps,range_min_m,range_max_m,gain_db,first_ping,last_ping,"
         "pings,"
         "begin,end,duration_s,rate_hz,gaps,longest_gap_s,clock_set_back,missing_pings,number_restarts,"
         "depth_min_m,depth_max_m,depth_low_min_m,depth_low_max_m,positions,position_jumps,latitude_min_deg,"
         "latitude_max_deg,longitude_min_deg,longitude_max_deg,distance_m,skipped_bytes\r\n";
}

void InfoTotals::Add(const RecordingTold& told) {
  ++files;
  bytes += told.bytes;
  skipped += told.skipped;
  figures.Add(told.figures);
}

std::string TotalsText(const InfoTotals& totals) {
  std::string out = "total of " + std::to_string(totals.files) + " recordings\n";
  const RecordingFigures& figures = totals.figures;
  Line(out, "file size", "%" PRIu64 " bytes", totals.bytes);
  Line(out, "pings", "%" PRIu64, figures.pings);
  if (figures.timed != 0)
    Line(out, "time", "%s to %s", IsoTime(figures.begin_ms, Milliseconds::always).c_str(),
         IsoTime(figures.end_ms, Milliseconds::always).c_str());
  if (figures.depth_m.count != 0) Line(out, "depth", "%s m", ExtentText(figures.depth_m, 3).c_str());
  RunningLines(out, figures);
  Line(out, "damaged", "%" PRIu64 " of %" PRIu64 " bytes skipped", totals.skipped, totals.bytes);
  return out;
}

std::string DocumentJson(const std::vector<std::string>& recordings, const InfoTotals& totals) {
  std::string out = "{\n  \"format\": 1,\n  \"recordings\": [";
  for (const std::string& recording : recordings)
    out += (&recording == recordings.data() ? "\n    " : ",\n    ") + recording;
  out += recordings.empty() ? "],\n" : "\n  ],\n";
  std::vector<Field> fields = {{"recordings", std::to_string(totals.files)},
                               {"size_bytes", std::to_string(totals.bytes)}};
  AddRun(fields, totals.figures);
  fields.push_back({"skipped_bytes", std::to_string(totals.skipped)});
  return out + "  \"totals\": " + ObjectOf(fields, "  ") + "\n}\n";
}

}  // namespace tw::echotool
