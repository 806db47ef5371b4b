#include "playback/segy_text_header.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace tw {
namespace {

// The bytes are those of iconv(1) -t CP037 for the same texts.
TEST(SegyTextHeader, CardsInEbcdic) {
  std::array<uint8_t, kSegyTextHeaderSize> header;
  BuildSegyTextHeader(header);
  const struct {
    size_t offset;
    std::string_view bytes;
  } rows[] = {
      // "C 1 CLIENT Client "
      {0, "\xC3\x40\xF1\x40\xC3\xD3\xC9\xC5\xD5\xE3\x40\xC3\x93\x89\x85\x95\xA3\x40"},
      // "C 2 LINE 316_171200 AREA"
      {80,
       "\xC3\x40\xF2\x40\xD3\xC9\xD5\xC5\x40\xF3\xF1\xF6\x6D\xF1\xF7\xF1\xF2\xF0\xF0\x40\xC1\xD9\xC5\xC1"},
      // "C10 FILTERS: ALIAS", and "DB/OCT" at its end
      {720, "\xC3\xF1\xF0\x40\xC6\xC9\xD3\xE3\xC5\xD9\xE2\x7A\x40\xC1\xD3\xC9\xC1\xE2"},
      {720 + 74, "\xC4\xC2\x61\xD6\xC3\xE3"},
      // "DAY-START"
      {160 + 22, "\xC4\xC1\xE8\x60\xE2\xE3\xC1\xD9\xE3"},
      // "C39 SEG Y REV1"
      {38 * 80, "\xC3\xF3\xF9\x40\xE2\xC5\xC7\x40\xE8\x40\xD9\xC5\xE5\xF1\x40"},
      // "C40 END TEXTUAL HEDAER"
      {39 * 80,
       "\xC3\xF4\xF0\x40\xC5\xD5\xC4\x40\xE3\xC5\xE7\xE3\xE4\xC1\xD3\x40\xC8\xC5\xC4\xC1\xC5\xD9\x40"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(std::memcmp(header.data() + row.offset, row.bytes.data(), row.bytes.size()), 0) << row.offset;
  }
  for (size_t card = 0; card < 40; ++card) EXPECT_EQ(header[80 * card], 0xC3) << card;
  EXPECT_EQ(header[3198], 0x40);
  EXPECT_EQ(header[3199], 0x00);
}

}  // namespace
}  // namespace tw
