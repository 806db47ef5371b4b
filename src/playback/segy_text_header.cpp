#include "playback/segy_text_header.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tw {
namespace {

constexpr size_t kCards = 40;
constexpr size_t kCardSize = 80;
static_assert(kCards * kCardSize == kSegyTextHeaderSize);

// Trailing blanks left out. kept: the spelling, and figures that do not come from the data.
constexpr std::string_view kTemplate[] = {
    "C 1 CLIENT Client                 Tidewriter             CREW NO",
    "C 2 LINE 316_171200 AREA                        MAP ID",
    "C 3 REEL NO           DAY-START OF REEL 316 YEAR 2009 OBSERVER",
    "C 4 INSTRUMENT: MFG TideWriter MODEL            SERIAL NO",
    "C 5 DATA TRACES/RECORD 1      AUXILIARY TRACES/RECORD 0       CDP FOLD 1",
    "C 6 SAMPLE INTERVAL 40      SAMPLES/TRACE 692   BITS/IN     BYTES/SAMPPLE 2",
    "C 7 RECORDING FORMAT 3      FORMAT THIS REEL 3      MEASUREMENT SYSTEM 1",
    "C 8 SAMPLE CODE: FIXED PT",
    "C 9 GAIN  TYPE: OTHER",
    "C10 FILTERS: ALIAS     HZ  NOTCH     HZ  BAND     -     HZ  SLOPE    -    DB/OCT",
    "C11 SOURCE: TYPE            NUMBER/POINT        POINT INTERVAL",
    "C12     PATTERN:                           LENGTH        WIDTH",
    "C13 SWEEP: START 20  HZ END 150  HZ  LENGTH  20  MS  CHANNEL NO     TYPE",
    "C14 TAPER: START LENGTH       MS END LENGTH       MS TYPE",
    "C15 SPREAD: OFFSET        MAX DISTANCE        GROUP INTERVAL",
    "C16 GEOPHONES: PER GROUP     SPACING     FREQUENCY     MFG          MODEL",
    "C17     PATTERN:                           LENGTH        WIDTH",
    "C18 TRACESSORTED BY : RECORD",
    "C19 AMPLITUDE RECOVE RY:",
    "C20 MAP PROJECTION                      ZONE ID       COORDINATE UNITS 2",
    "C21 PROCESSING:",
    "C22 PROCESSING:",
    "C23",
    "C24",
    "C25",
    "C26",
    "C27",
    "C28",
    "C29",
    "C30",
    "C31",
    "C32",
    "C33",
    "C34",
    "C35",
    "C36",
    "C37",
    "C38",
    "C39 SEG Y REV1",
    "C40 END TEXTUAL HEDAER",
};
static_assert(std::size(kTemplate) == kCards);
static_assert(std::all_of(std::begin(kTemplate), std::end(kTemplate),
                          [](std::string_view card) { return card.size() <= kCardSize; }));

// EBCDIC, code page 037, for the characters of the template. Its letters stand in three runs of nine, nine
// and eight, with gaps between them.
constexpr uint8_t Ebcdic(char c) {
  const auto run = [](int letter, uint8_t first) {
    return static_cast<uint8_t>(first + letter / 9 * 16 + letter % 9 + (letter >= 18 ? 1 : 0));
  };
  if (c >= 'A' && c <= 'Z') return run(c - 'A', 0xC1);
  if (c >= 'a' && c <= 'z') return run(c - 'a', 0x81);
  if (c >= '0' && c <= '9') return static_cast<uint8_t>(0xF0 + (c - '0'));
  switch (c) {
    case ':':
      return 0x7A;
    case '/':
      return 0x61;
    case '-':
      return 0x60;
    case '_':
      return 0x6D;
    default:
      return 0x40;
  }
}

}  // namespace

void BuildSegyTextHeader(std::span<uint8_t, kSegyTextHeaderSize> header) {
  std::fill(header.begin(), header.end(), Ebcdic(' '));
  for (size_t card = 0; card < kCards; ++card) {
    std::transform(kTemplate[card].begin(), kTemplate[card].end(), header.subspan(card * kCardSize).begin(),
                   Ebcdic);
  }
  header.back() = 0;  // kept: the last character of the last card is a NUL
}

}  // namespace tw
