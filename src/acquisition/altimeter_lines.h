// The lines of the altimeter modes and of the instruments that a device can stand in for: their forms, for
// the reader, and their values. Numbers are decimal; a blank in a form stands for any white space, none too.
//
// Simple altimeter (the frequency line in front is sent by devices that report their frequency):
//   Alt : 4.250<CR><LF>                       altitude, m
//   Hz<CR><LF> 200000.0<CR><LF>               transmit frequency of the altitude that follows, Hz
// DESO-25(M), a line per channel; it is complete with its asterisk:
//   DA 4.25 m*                                altitude of the first channel, m
//   DB 4.31 m*                                of the second
// Altimeter dual:
//   Dual : 17, 4.250, 4.310, 11.40<CR><LF>    number, altitude high, altitude low, temperature
// Sonarmite DFX:
//   1 4.25 4.31 0.00 0.00 0<CR><LF>           altitude, in a dual run altitude low, three values not used
// Sonarmite OLD:
//   1 4.25 0 0 0 12.10 0 0<CR><LF>            altitude, three values not used
// PSA-916:
//   R4.25<CR><LF>                             range, m: the altitude
// AltiPlusTemp.:
//   4.250,   11.40<CR><LF>                    altitude, temperature
//
// A line is read up to its first mismatch, and what was read so far counts, as long as the altitude is among
// it (for AltiPlusTemp. the temperature too); any other line is no ping. Recorded of a ping: the line as
// received, GGA, RMC. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "acquisition/line_reader.h"
#include "acquisition/stream_form.h"

namespace tw {

inline constexpr std::string_view kAltMark = "Alt : ";
inline constexpr std::string_view kHertzMark = "Hz\r\n";
inline constexpr std::string_view kDualMark = "Dual ";
inline constexpr std::string_view kRangeMark = "R";
inline constexpr std::string_view kDesoMarks[] = {"DA", "DB"};
inline constexpr std::string_view kReportingMarks[] = {kAltMark, kHertzMark};

inline constexpr LineForm kSimpleForm{{&kAltMark, 1}, "\r\n"};
inline constexpr LineForm kReportingForm{kReportingMarks, "\r\n", kHertzMark};
inline constexpr LineForm kDesoForm{kDesoMarks, "*"};
inline constexpr LineForm kDualForm{{&kDualMark, 1}, "\r\n"};
inline constexpr LineForm kPsaForm{{&kRangeMark, 1}, "\r\n"};
inline constexpr LineForm kPlainForm{{}, "\r\n"};  // both Sonarmites, AltiPlusTemp.

extern const StreamForm kSimpleStream;
extern const StreamForm kReportingStream;  // simple, of a device that reports its frequency; reads both
extern const StreamForm kDesoStream;
extern const StreamForm kDualStream;
extern const StreamForm kDfxStream;
extern const StreamForm kOldStream;
extern const StreamForm kPsaStream;
extern const StreamForm kAltiTempStream;

struct AltimeterValues {
  float altitude_m;
  float temperature_c;
  bool hasAltitudeLow;
  float altitudeLow_m;
  bool secondChannel;  // the line says that it is the second channel's
  bool hasFrequency;
  int32_t frequency_hz;
};

// Each reads one line. True: it holds a ping; `values` then has what the line says, its three flags set or
// cleared, and what it does not say as it was. False: `values` is unchanged.
[[nodiscard]] bool ParseSimple(std::string_view line, AltimeterValues& values);  // both variants
[[nodiscard]] bool ParseDeso(std::string_view line, AltimeterValues& values);
[[nodiscard]] bool ParseDual(std::string_view line, AltimeterValues& values);
[[nodiscard]] bool ParseSonarmiteDfx(std::string_view line, AltimeterValues& values);
[[nodiscard]] bool ParseSonarmiteOld(std::string_view line, AltimeterValues& values);
[[nodiscard]] bool ParsePsa916(std::string_view line, AltimeterValues& values);
[[nodiscard]] bool ParseAltiPlusTemp(std::string_view line, AltimeterValues& values);

}  // namespace tw
