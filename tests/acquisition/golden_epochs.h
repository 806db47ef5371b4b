// Epochs of both device families, written by hand from the description of the format, checksums made with
// another program.
#pragma once

namespace tw::test {

#define TW_FIRST_EPOCH                        \
  "$SDZDA,123456.78,16,11,2026,00,00,*43\r\n" \
  "$SDDBT,13.94,f,4.250,M,2.32,F*39\r\n"      \
  "$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65\r\n"  \
  "$SDMTW,11.40,*73\r\n"                      \
  "$SDXDR,A,1.5,P,EMA*2B\r\n"

inline constexpr char kFirstEpoch[] = TW_FIRST_EPOCH;
inline constexpr char kReportingEpoch[] = "#F 200000 Hz\r\n" TW_FIRST_EPOCH;
inline constexpr char kSecondEpoch[] =
    "$GPDBT,13.94,f,4.250,M,,*62\r\n"
    "$GPDPT,4.250,0.0*54\r\n"
    "$YXXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*73\r\n"
    "$GPMTW,11.40,*73\r\n"
    "$GPEMA,1.5*58\r\n";

#undef TW_FIRST_EPOCH

}  // namespace tw::test
