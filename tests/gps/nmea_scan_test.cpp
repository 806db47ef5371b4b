#include "gps/nmea_scan.h"

#include <gtest/gtest.h>

namespace tw {
namespace {

// All else is seen in the sentences of the parser's tests.
TEST(NmeaScan, ABlankInTheFormatIsAnyNumberOfBlanks) {
  for (const std::string_view text : {"1,A*", "1, A*", "1,   A*"}) {
    int32_t number = 0;
    char letter = '?';
    const ScanTarget targets[] = {&number, &letter};
    EXPECT_EQ(ScanSentence(text, "%d, %C*", targets), 2) << text;
    EXPECT_EQ(letter, 'A') << text;
  }
}

}  // namespace
}  // namespace tw
