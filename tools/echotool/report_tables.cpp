#include "tools/echotool/report_tables.h"

#include <cinttypes>

#include "acquisition/output_mode.h"
#include "base/text_format.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/info_output.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/report_output.h"
#include "tools/echotool/summary.h"

namespace tw::echotool {
namespace {

template <typename... Values>
std::string Text(const char* format, Values... values) {
  char text[512];
  return {text, FormatText(text, format, values...)};
}

// Rows of two cells, the name of a value and the value.
class Table {
 public:
  explicit Table(const char* title) {
    text_ = "<section class=\"card\"><h2>" + std::string(title) + "</h2><table>";
  }
  void Row(const char* name, const std::string& value, bool warns = false) {
    text_ += "<tr><th>" + std::string(name) + "</th><td" + (warns ? " class=\"warn\"" : "") + ">" +
             MarkupText(value) + "</td></tr>";
  }
  [[nodiscard]] std::string End() const { return text_ + "</table></section>\n"; }

 private:
  std::string text_;
};

std::string ModeName(const RecordingKind& kind) {
  if (kind.outputMode == kPlayedBinary) return "echo binary";
  char name[128];
  NarrowText(name, NameOfMode(kind.family, kind.outputMode));
  return std::to_string(kind.outputMode) + ", " + name;
}

std::string ExtentOf(const Extent& extent, int decimals, const char* unit) {
  if (extent.count == 0) return "not told";
  const std::string low = Text("%.*f", decimals, extent.low);
  const std::string high = Text("%.*f", decimals, extent.high);
  return (low == high ? low : low + " to " + high) + unit;
}

}  // namespace

std::string SettingsTable(const PingSource& recording, const RecordingFigures& figures) {
  const RecordingKind& kind = recording.Kind();
  Table table("Settings");
  table.Row("kind", kind.name);
  table.Row("output mode", ModeName(kind));
  table.Row("frequency", ExtentOf(figures.frequency_hz[0], 0, " Hz"));
  if (figures.frequency_hz[1].count != 0)
    table.Row("low frequency", ExtentOf(figures.frequency_hz[1], 0, " Hz"));
  if (kind.hasSamples) table.Row("sampling", ExtentOf(figures.sampling_hz, 0, " Hz"));
  table.Row("range", ExtentOf(figures.range_m, 1, " m"));
  const auto& told = recording.Told().info;
  if (!told) {
    table.Row("settings line", "none: an older recording, or one that has lost its beginning");
    return table.End();
  }
  const InfoLine& info = *told;
  table.Row("sound speed", Text("%.1f m/s", static_cast<double>(info.soundSpeed_mps)));
  table.Row("ping interval", Text("%.1f s", static_cast<double>(info.interval_s)));
  table.Row("transmit length, power",
            Text("%d, %.1f %%", static_cast<int>(info.txLength), static_cast<double>(info.txPower)));
  table.Row("gain", Text("%.0f dB", static_cast<double>(info.gain)));
  table.Row("TVG", Text("%.0f log, %.2f dB/m", static_cast<double>(info.tvgSpreading),
                        static_cast<double>(info.tvgAbsorption)));
  table.Row("attenuation", std::to_string(info.attenuation));
  table.Row("dead zone", Text("%d mm", static_cast<int>(info.deadZone_mm)));
  table.Row("threshold", Text("%d %%", static_cast<int>(info.threshold_percent)));
  table.Row("offset", Text("%d mm", static_cast<int>(info.offset_mm)));
  return table.End();
}

std::string PingsTable(const PingSource& recording, const RecordingFigures& figures) {
  Table table("Pings");
  table.Row("pings", figures.channelPings[1] == 0
                         ? std::to_string(figures.pings)
                         : std::to_string(figures.channelPings[0]) + " and " +
                               std::to_string(figures.channelPings[1]) + " of the low frequency");
  table.Row("numbers", Text("%" PRIu32 " to %" PRIu32, figures.firstNumber, figures.lastNumber));
  table.Row("numbers missing", std::to_string(figures.missing), figures.missing != 0);
  if (figures.restarts != 0)
    table.Row("numbers begin anew", Text("%" PRIu64 " times", figures.restarts), true);
  if (figures.longestTrace != 0) table.Row("samples a ping", Text("up to %" PRIu32, figures.longestTrace));
  if (figures.timed == 0) {
    table.Row("times", "none told");
  } else {
    table.Row("rate", figures.Rate() > 0 ? Text("%.2f pings a second", figures.Rate()) : "not known");
    table.Row("gaps longer than 2 s",
              figures.gaps == 0 ? "none"
                                : Text("%" PRIu64 ", the longest %.1f s", figures.gaps,
                                       static_cast<double>(figures.longestGap_ms) / 1'000),
              figures.gaps != 0);
    if (figures.setBack != 0) table.Row("clock set back", Text("%" PRIu64 " times", figures.setBack), true);
  }
  table.Row("damage", DamageText(recording), recording.Skipped() != 0);
  table.Row("file size", SizeText(recording.Size()) + Text(" (%" PRIu64 " bytes)", recording.Size()));
  return table.End();
}

std::string PositionTable(const RecordingFigures& figures, uint64_t stood) {
  Table table("Position");
  table.Row("pings with position",
            Text("%" PRIu64 " (", figures.positions) + PercentText(figures.positions, figures.pings) + ")",
            figures.positions < figures.pings);
  if (figures.positions == 0) return table.End();
  table.Row("latitude", ExtentOf(figures.latitude_deg, 6, " deg"));
  table.Row("longitude", ExtentOf(figures.longitude_deg, 6, " deg"));
  table.Row("PDOP or HDOP", figures.pdop.count == 0
                                ? "not told"
                                : ExtentOf(figures.pdop, 1, "") + Text(", mean %.1f", figures.pdop.Mean()));
  table.Row("stood still for more than 10 s", Text("%" PRIu64 " pings", stood), stood != 0);
  table.Row("positions out of reach", std::to_string(figures.jumps), figures.jumps != 0);
  table.Row("distance run", DistanceText(figures));
  return table.End();
}

std::string MarksTable(const std::vector<EventMark>& marks) {
  if (marks.empty()) return "";
  std::string out =
      "<section class=\"card long\"><h2>Marks <small>the dashed lines above</small></h2><div "
      "class=\"scroll\">"
      "<table class=\"list\"><thead><tr><th class=\"n\">number</th><th>time</th><th class=\"n\">ping</th>"
      "<th class=\"n\">depth</th><th>position</th><th>word</th></tr></thead>\n";
  for (const EventMark& mark : marks) {
    char word[4 * kMarkWordSize];
    NarrowText(word, mark.word);
    out += Text("<tr><td class=\"n\">%" PRIu32 "</td><td>%s</td><td class=\"n\">%" PRIu32
                "</td><td class=\"n\">",
                mark.number, IsoClock(mark.time_ms).c_str(), mark.ping);
    out += mark.hasDepth ? Text("%.3f m", mark.depth_m) : "no bottom";
    out += "</td><td>" +
           (mark.hasPosition ? Text("%.6f %.6f", mark.latitude_deg, mark.longitude_deg) : "no position");
    out += "</td><td>" + MarkupText(word) + "</td></tr>\n";
  }
  return out + "</table></div></section>\n";
}

}  // namespace tw::echotool
