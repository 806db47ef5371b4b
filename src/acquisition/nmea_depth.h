// The sentences of an NMEA epoch (see epoch_reader.h). Each ends in CR LF; "*hh" is the checksum.
//
//   $SDDBT,%f,f,%f,M,%f,F*hh                    depth below the transducer in feet, metres, fathoms
//   $GPDBT,%f,f,%f,M,,*hh                       the same, second family: no fathoms
//   $SDZDA,%2d%2d%2d.%2d,%d,%d,%d,00,00,*hh     hours, minutes, seconds, hundredths, day, month, year
//   $SDXDR,A,%f,D,PTCH,A,%f,D,ROLL*hh           pitch and roll, degrees; second family: $YXXDR
//   $SDXDR,A,%f,P,EMA*hh                        one more reading
//   $SDMTW,%f,*hh                               water temperature; second family: $GPMTW
//
// A sentence is found by its address, wherever it stands in the epoch, and cut at its first CR LF; what is
// not complete, or does not match its form in every literal character, is a missing sentence. kept: the
// checksum is not compared, and a sentence with a wrong one counts. Recorded of a ping: "#F %d Hz" with the
// frequency that was set for its channel, the epoch as received, GGA, RMC. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "acquisition/stream_form.h"
#include "base/calendar.h"

namespace tw {

extern const StreamForm kFirstNmeaStream;
extern const StreamForm kSecondNmeaStream;

enum class SentenceResult : int8_t {
  noBottom = -1,  // depth, first family: an empty field; the depth is 0
  value = 0,
  missing = 1,  // the targets are unchanged
};

struct NmeaForms {
  std::string_view depth;
  std::string_view transducer;
  std::string_view temperature;
  bool fathoms;  // the depth is told in fathoms too, and an empty field means that there is no bottom
};

inline constexpr NmeaForms kFirstFamilyNmea{"$SDDBT,", "$SDXDR,", "$SDMTW,", true};
inline constexpr NmeaForms kSecondFamilyNmea{"$GPDBT,", "$YXXDR,", "$GPMTW,", false};

[[nodiscard]] SentenceResult ParseDepth(std::string_view epoch, const NmeaForms& forms, float& depth_m);

// Pitch and roll come from the first transducer sentence that holds ",ROLL*".
[[nodiscard]] SentenceResult ParsePitchRoll(std::string_view epoch, const NmeaForms& forms, float& pitch_deg,
                                            float& roll_deg);

[[nodiscard]] SentenceResult ParseWaterTemperature(std::string_view epoch, const NmeaForms& forms,
                                                   float& temperature_c);

// First family only: the first transducer sentence that holds ",EMA*". Given, unread.
[[nodiscard]] SentenceResult ParseEma(std::string_view epoch, float& reading);

struct DeviceTime {
  uint32_t unix_s;        // the fields taken as UTC, whole seconds since 1970
  CalendarTime calendar;  // the fields as they stand; local time; given, unread
  uint32_t milliseconds;  // hundredths * 10
};

// First family only. A date or time that no calendar has, or one before 1970 or after 2105, is missing.
[[nodiscard]] SentenceResult ParseDeviceTime(std::string_view epoch, DeviceTime& time);

// The frequency line "#F %d Hz" at the front of an epoch. False: there is none.
[[nodiscard]] bool ParseFrequencyLine(std::string_view epoch, int32_t& frequency_hz);

}  // namespace tw
