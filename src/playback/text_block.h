// A ping of a binary recording as text, the form that spreadsheets and other people's programs take. Lines
// end in CR LF:
//
//   #DeviceID 000
//   #TimeWork 1700000000
//   #Ping 17
//   #Altitude 4.2500
//   #Temperature 11.40
//   #NSamples 4
//   #Sampling_Frequency,Hz 100000
//   #Tx_Frequency,Hz 450000
//   #Range,m 30.0
//   #OutputMode 4                    kept: whatever mode the recording was made in
//   #Pitch,deg 1.2000
//   #Roll,deg -0.3500
//   #gpsLatitude,radian 0.753982252
//   #gpsLongitude,radian 0.125663704
//   #gpsAltitude,m 12.000000
//   #gpsPDOP 1.500000
//   #gpsvalid 1
//
//   ####DataStart                    kept: four signs, where a device's own block has two
//   23                               samples 1, 3, 5 …
//   41
//   ##DataEnd
//   $GPGLL,4312.0000000,N,00712.0000000,E,221320.00,A,A*57
//   (two empty lines; one when there is no position line)
//
// Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/ping_record.h"

namespace tw {

inline constexpr size_t kTextBlockSize = 256'000;

// Lays out the block of a ping and returns its length. Sample lines that do not fit are left out; the lines
// behind them always fit.
size_t LayOutTextBlock(const PingHeader& ping, std::span<const uint16_t> samples,
                       std::span<char, kTextBlockSize> block);

inline constexpr size_t kGllSize = 256;

// The GLL sentence of a ping's position without "$" and line end, with a terminating zero; returns its
// length. Position and time of the fix, as recorded. kept: degrees are not padded with zeros.
size_t BuildGll(const PingHeader& ping, std::span<char, kGllSize> text);

}  // namespace tw
