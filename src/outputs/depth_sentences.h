// The sentences of a ping as NMEA 0183 gives them, for programs and instruments of others:
//
//   $SDDBT,41.34,f,12.60,M,6.89,F*30           depth below the transducer in feet, metres, fathoms
//   $SDDPT,12.60,0.50,50.0*50                  depth, offset of the transducer, range (m)
//   $SDMTW,18.2,C*0F                           water temperature
//   $SDXDR,A,2.10,D,PTCH,A,-1.20,D,ROLL*66     pitch and roll in degrees
//
// Each writes one sentence with checksum, CR LF and a terminating zero and returns its length, at most 82
// without the zero. A value that is not finite or beyond all measure gives no sentence: 0 and an empty text.
// Numbers are decimals with a point, never with an exponent, never "-0.0". Pure; any thread.
#pragma once

#include <cstddef>
#include <span>

namespace tw {

inline constexpr size_t kMaxSentence = 82;
inline constexpr size_t kSentenceText = kMaxSentence + 1;
using SentenceText = std::span<char, kSentenceText>;

// True for a depth that can be sent: what rounds to 0.00 m is no bottom.
[[nodiscard]] bool IsDepth(float depth_m);

size_t BuildDbt(SentenceText text, float depth_m);

// A range that cannot be is an empty field, an offset that cannot be no sentence.
size_t BuildDpt(SentenceText text, float depth_m, float offset_m, float range_m);

size_t BuildMtw(SentenceText text, float temperature_c);

// Both, or none.
size_t BuildXdr(SentenceText text, float pitch_deg, float roll_deg);

}  // namespace tw
