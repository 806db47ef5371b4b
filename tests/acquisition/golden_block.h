// One echo text block of the first device family and one of the others, written by hand from the description
// of the format.
#pragma once

namespace tw::test {

inline constexpr char kGoldenBlock[] =
    "#DeviceID KT-1042\r\n"
    "#TimeWork 12.5\r\n"
    "#NSamples 4\r\n"
    "#OutputMode 4\r\n"
    "#Sampling_Frequency,Hz 25000\r\n"
    "#Altitude 4.250\r\n"
    "#Temperature 11.40\r\n"
    "#Pitch,deg 1.20\r\n"
    "#Roll,deg -0.35\r\n"
    "#Ping 17\r\n"
    "#Tx_Frequency,Hz 200000\r\n"
    "##DataStart\r\n"
    "12\r\n"
    "7\r\n"
    "4011\r\n"
    "0\r\n"
    "\r\n"
    "\r\n";

inline constexpr char kGoldenSecondBlock[] =
    "#DeviceID 0042\r\n"
    "#TimeWork 12.5\r\n"
    "#NSamples 4\r\n"
    "#Resolution,mm 7.5\r\n"
    "#OutputMode 4\r\n"
    "#Altitude,m 4.250\r\n"
    "#Temperature,\260C 11.40\r\n"
    "#Pitch,deg 1.20\r\n"
    "#Roll,deg -0.35\r\n"
    "#Ping 17\r\n"
    "#Tx_Frequency,Hz 200000\r\n"
    "##DataStart\r\n"
    "12\r\n"
    "7\r\n"
    "4011\r\n"
    "0\r\n"
    "\r\n"
    "\r\n";

}  // namespace tw::test
