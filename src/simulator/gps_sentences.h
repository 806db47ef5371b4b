// The sentences of a GPS receiver, NMEA 0183. Each function gives a whole sentence, checksum and CR LF
// included. Pure; any thread.
#pragma once

#include <string>
#include <string_view>

#include "base/calendar.h"

namespace tw::sim {

// What a receiver knows at one moment.
struct GpsMoment {
  CalendarTime utc;
  double latitude_deg;   // north positive
  double longitude_deg;  // east positive
  double course_deg;
  double speed_kn;
  bool fix;
  bool differential;
  bool emptyFields;
  bool laterFields;
};

inline constexpr int kGsvSentences = 3;

// `talker` is "GP" or "GN".
[[nodiscard]] std::string GgaSentence(std::string_view talker, const GpsMoment& moment);
[[nodiscard]] std::string GsaSentence(std::string_view talker, const GpsMoment& moment);
[[nodiscard]] std::string RmcSentence(std::string_view talker, const GpsMoment& moment);
[[nodiscard]] std::string VtgSentence(std::string_view talker, const GpsMoment& moment);
[[nodiscard]] std::string GllSentence(std::string_view talker, const GpsMoment& moment);

// The satellites in view, sentence `index` of kGsvSentences, from 1. Always of the GPS alone: "GP".
[[nodiscard]] std::string GsvSentence(int index, const GpsMoment& moment);

}  // namespace tw::sim
