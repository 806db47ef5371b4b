#include "gps/nmea_parser.h"

#include <cstring>
#include <new>

#include "simulator/virtual_gps.h"
#include "tests/gps/parser_fixture.h"

namespace {
bool memoryIsUsedUp = false;
}  // namespace

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return memoryIsUsedUp ? nullptr : ::operator new(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return memoryIsUsedUp ? nullptr : ::operator new[](size);
}

namespace tw {
namespace {

constexpr std::string_view kGga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
constexpr std::string_view kRmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n";

using Texts = std::vector<std::string>;

class NmeaParserTest : public ParserTest {};

TEST_F(NmeaParserTest, ASentenceIsParsedOnceWhenItsLineEndArrives) {
  for (size_t cut = 0; cut < kGga.size(); ++cut) {
    fix_ = {};
    EXPECT_EQ(Take(kGga.substr(0, cut)), 0) << cut;
    EXPECT_EQ(fix_.presence, 0u) << cut;
    EXPECT_EQ(Take(kGga.substr(cut)), 1) << cut;
    EXPECT_EQ(Take(""), 0) << cut;
    EXPECT_EQ(parser_.length, 0u) << cut;
  }
  EXPECT_TRUE(errors_.empty());
}

TEST_F(NmeaParserTest, GettingBackInStep) {
  using namespace std::string_literals;
  const struct {
    const char* why;
    std::string before;
  } rows[] = {
      {"garbage", "\xff\x00*47\r\nGPGGA,,"s},
      {"a torn sentence", "$GPGGA,123519,48"},
      {"many dollars", "$$$$$"},
      {"a wrong checksum", "$GPRMC,1,2,3*00\r\n"},
      {"no line end", "$GPRMC,1,2,3*00"},
      {"one digit", "$GPRMC,1,2,3*0"},
      {"no digits", "$GPRMC,1,2,3*"},
      {"no digits at all", "$GPRMC,1,2,3*xy\r\n"},
      {"CR without LF", "$GPRMC,1,2,3*00\r"},
      {"LF alone", "$GPRMC,1,2,3*00\n"},
      {"a sign in the checksum", "$GPRMC,1,2,3*-1\r\n"},
      {"an endless one", "$" + std::string(1000, 'x')},
      {"an endless one with an end", "$" + std::string(1000, 'x') + "*00\r\n"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Take(row.before + std::string(kGga)), 1) << row.why;
    EXPECT_EQ(Take(row.before), 0) << row.why;
    EXPECT_EQ(Take(kRmc), 1) << row.why;
    EXPECT_EQ(parser_.length, 0u) << row.why;
  }
  EXPECT_TRUE(errors_.empty());
}

TEST_F(NmeaParserTest, BytesThatCannotEndASentenceAreNotWaitedFor) {
  for (const char* torn : {"$GPGGA,1*4x", "$GPGGA,1*47\n", "$GPGGA,1*47\r\r", "$GPGGA,1*x"})
    EXPECT_TRUE(Push(torn) == 0 && parser_.length == 0) << torn;
}

TEST_F(NmeaParserTest, TheLongestSentenceHas256Bytes) {
  const auto padded = [](size_t size) { return Sentence("GPGSV,1,1,00" + std::string(size - 18, ',')); };
  EXPECT_EQ(padded(256).size(), 256u);
  EXPECT_EQ(Take(padded(256)), 1);
  EXPECT_EQ(Take(padded(270) + std::string(kGga)), 1);
  EXPECT_EQ(fix_.presence, kHasGsv | kHasGga);
}

TEST_F(NmeaParserTest, AFullBufferIsEmptiedBeforeTheNewBytesAreAppended) {
  Make(256);
  const std::string old = "$" + std::string(199, 'x');
  EXPECT_EQ(Take(old), 0);
  EXPECT_EQ(parser_.length, 200u);
  EXPECT_EQ(Take(std::string(55, 'y')), 0);  // 255 still fit
  EXPECT_EQ(parser_.length, 255u);
  EXPECT_EQ(Take("$"), 0);  // 256 would fill it: only the new byte stays
  EXPECT_EQ(parser_.length, 1u);
  EXPECT_EQ(Take(kGga.substr(1)), 1);
}

TEST_F(NmeaParserTest, ABigPushKeepsItsTail) {
  Make(0);
  ASSERT_EQ(parser_.capacity, 256u) << "the least it has";
  Push("$GPGGA,1");
  std::string many;
  while (many.size() < 1000) many += kGga;
  EXPECT_EQ(Take(many), 3);  // three whole sentences of 67 bytes stand in the last 255
  EXPECT_EQ(Take(std::string(256 - kRmc.size(), 'x') + std::string(kRmc)), 1);
}

TEST_F(NmeaParserTest, PacketsAreAppliedInTheirOrder) {
  EXPECT_EQ(Push(Sentence("GPVTG,1,T,,M,,N,10,K") + Sentence("GPVTG,2,T,,M,,N,20,K")), 2);
  EXPECT_EQ(Push(Sentence("GPVTG,3,T,,M,,N,30,K")), 1);
  EXPECT_EQ(fix_.speed_kmh, 0);
  EXPECT_EQ(ApplyPackets(parser_, fix_), 3);
  EXPECT_EQ(fix_.speed_kmh, 30);
  EXPECT_EQ(ApplyPackets(parser_, fix_), 0);
}

TEST_F(NmeaParserTest, TracesEachWholeSentence) {
  Take("$GPGLL,4916.45,N,12311.12,W,225444,A,*1D\r\n$GPZDA*48\r\n$GPZDA*49\r\n");
  EXPECT_EQ(traces_, (Texts{"$GPGLL,4916.45,N,12311.12,W,225444,A,*", "$GPZDA*"}));
}

TEST_F(NmeaParserTest, WithoutMemoryItSaysSo) {
  memoryIsUsedUp = true;
  EXPECT_EQ(Take(std::string(kGga) + std::string(kRmc)), 0);
  EXPECT_EQ(errors_, (Texts{"Insufficient memory!", "Insufficient memory!"}));
  EXPECT_EQ(fix_.presence, 0u);
  errors_.clear();
  NmeaParser parser{};
  parser.context = this;
  parser.error = parser_.error;
  EXPECT_FALSE(MakeParser(parser, 4096));
  memoryIsUsedUp = false;
  EXPECT_EQ(errors_, Texts{"Insufficient memory!"});
}

// The virtual receiver shares no code with the parser.
TEST_F(NmeaParserTest, ByteByByteAsInOnePiece) {
  for (const bool later : {false, true}) {
    sim::VirtualGps gps({.talker = later ? sim::GpsTalker::gn : sim::GpsTalker::gp,
                         .baud = 115'200,
                         .epochsPerSecond = 5,
                         .emptyFields = later,
                         .laterFields = later,
                         .faults = {.instrument = {}, .badChecksumEvery = 7}});
    std::string sent(3000, '\0');
    sent.resize(gps.Send({reinterpret_cast<uint8_t*>(sent.data()), sent.size()}, 900'000));
    Make(4096);
    fix_ = {};
    const int whole = Take(sent);
    EXPECT_GT(whole, 10);
    const GpsFix fix = fix_;
    Make(256);
    fix_ = {};
    int single = 0;
    for (const char c : sent) single += Take({&c, 1});
    EXPECT_EQ(single, whole);
    EXPECT_EQ(std::memcmp(&fix_, &fix, sizeof fix), 0);
  }
}

}  // namespace
}  // namespace tw
