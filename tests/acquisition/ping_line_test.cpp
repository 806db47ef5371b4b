#include "acquisition/ping_line.h"

#include <gtest/gtest.h>

#include <string>

namespace tw {
namespace {

// 2023-11-14 22:13:20 UTC.
constexpr PingLineValues kValues = {1'700'000'000, 4'294'967'295u, 12.3456f, 11.0f, -1.25f, 2.0f, -0.04f};

TEST(PingLine, SingleWithAndWithoutAttitude) {
  wchar_t text[256];
  FormatPingLine(text, kValues, false);
  EXPECT_EQ(std::wstring(text),
            L"Time:14.11.2023 22:13:20 UTC Ping:4294967295, Altitude:12.346m, Temperature:-1.2\u00B0C");
  FormatPingLine(text, kValues, true);
  EXPECT_EQ(std::wstring(text),
            L"Time:14.11.2023 22:13:20 UTC Ping:4294967295, Altitude:12.346m, Temperature:-1.2\u00B0C, "
            L"Pitch:2.0\u00B0, Roll:-0.0\u00B0");
}

TEST(PingLine, DualTellsBothAltitudes) {
  wchar_t text[256];
  FormatDualPingLine(text, kValues, false);
  EXPECT_EQ(std::wstring(text),
            L"Time:14.11.2023 22:13:20, Ping:4294967295, AltitudeH:12.35m, AltitudeL:11.00m, "
            L"Temperature:-1.2\u00B0C");
  FormatDualPingLine(text, kValues, true);
  EXPECT_EQ(std::wstring(text),
            L"Time:14.11.2023 22:13:20, Ping:4294967295, AltitudeH:12.35m, AltitudeL:11.00m, "
            L"Temperature:-1.2\u00B0C, Pitch:2.0\u00B0, Roll:-0.0\u00B0");
}

}  // namespace
}  // namespace tw
