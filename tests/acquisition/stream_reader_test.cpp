// What holds for every stream reader, whatever its blocks look like, and how each gets back in step.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "acquisition/altimeter_lines.h"
#include "acquisition/block_reader.h"
#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "acquisition/epoch_reader.h"
#include "tests/acquisition/blocks_of.h"
#include "tests/acquisition/golden_block.h"
#include "tests/acquisition/golden_epochs.h"
#include "tests/acquisition/golden_frames.h"

namespace tw {
namespace {

using test::BlocksOf;
using test::kGoldenBlock;
using test::kGoldenDeviceBlock;
using test::kGoldenFrame;
using Blocks = std::vector<std::string>;
using Maker = std::unique_ptr<StreamReader> (*)();

template <typename Reader, const auto& form>
std::unique_ptr<StreamReader> Make() {
  return NewReader<Reader>(form);
}

constexpr Maker kEchoText = Make<BlockReader, kEchoTextMarks>;
constexpr Maker kFirstEpochs = Make<EpochReader, kFirstFamilyEpoch>;
constexpr Maker kSecondEpochs = Make<EpochReader, kSecondFamilyEpoch>;
constexpr Maker kSimple = Make<LineReader, kSimpleForm>;
constexpr Maker kReporting = Make<LineReader, kReportingForm>;
constexpr Maker kDeso = Make<LineReader, kDesoForm>;
constexpr Maker kDual = Make<LineReader, kDualForm>;
constexpr Maker kPsa = Make<LineReader, kPsaForm>;
constexpr Maker kPlain = Make<LineReader, kPlainForm>;
constexpr Maker kFrames = Make<FrameReader, kEchoFrames>;
constexpr Maker kDualFrames = Make<FrameReader, kDualEchoFrames>;
constexpr Maker kBlocks = Make<FrameReader, kDeviceBlocks>;

struct Sample {
  friend void PrintTo(const Sample& each, std::ostream* out) { *out << each.name; }
  const char* name;
  Maker make;
  std::string block;
  std::string noise;    // ends in a piece of the start mark
  size_t longest = 0;   // of a block that is read
  size_t filledAt = 0;  // where it may grow to that
};

class EachReader : public testing::TestWithParam<Sample> {
 protected:
  [[nodiscard]] Blocks Read(std::string_view stream, size_t piece = test::kWhole) const {
    const auto reader = each_.make();
    return BlocksOf(*reader, stream, piece);
  }
  // The block with so many characters more.
  [[nodiscard]] std::string Longer(size_t count) const {
    return std::string(each_.block).insert(each_.filledAt, count, '7');
  }

  const Sample& each_ = GetParam();
};

// Those that go by marks alone; the false length of a frame may cost more.
class EachTextReader : public EachReader {};

TEST_P(EachReader, FindsBlocksBetweenGarbage) {
  const Blocks two{each_.block, each_.block};
  for (const size_t piece : {size_t{1}, size_t{7}, test::kWhole}) {
    EXPECT_EQ(Read(each_.block + each_.block, piece), two) << "in pieces of " << piece;
    EXPECT_EQ(Read(each_.noise + each_.block + each_.noise + each_.block + each_.noise, piece), two)
        << "in pieces of " << piece;
  }
}

TEST_P(EachReader, NeedsEveryByteWhereverTheStreamIsCut) {
  const std::string_view block = each_.block;
  for (size_t length = 0; length < block.size(); ++length) {
    const auto reader = each_.make();
    EXPECT_EQ(BlocksOf(*reader, block.substr(0, length)), Blocks{}) << length;
    EXPECT_EQ(BlocksOf(*reader, block.substr(length)), Blocks{each_.block}) << length;
  }
}

TEST_P(EachReader, PutsNoHalvesTogetherWhereBytesAreMissing) {
  const std::string_view block = each_.block;
  for (size_t cut = 1; cut < block.size(); ++cut) {
    const auto reader = each_.make();
    EXPECT_EQ(BlocksOf(*reader, each_.block + each_.block.substr(0, cut)), Blocks{each_.block}) << cut;
    reader->Break();
    EXPECT_EQ(BlocksOf(*reader, each_.block.substr(cut) + each_.block), Blocks{each_.block}) << cut;
    reader->Break();
    EXPECT_EQ(BlocksOf(*reader, block), Blocks{each_.block}) << cut;
  }
}

TEST_P(EachTextReader, DropsWhatOutgrowsItsBufferByOneByte) {
  const size_t room = each_.longest - each_.block.size();
  for (const size_t piece : {size_t{1}, size_t{4'096}, test::kWhole}) {
    EXPECT_EQ(Read(Longer(room) + each_.block, piece), (Blocks{Longer(room), each_.block})) << piece;
    EXPECT_EQ(Read(Longer(room + 1) + each_.block, piece), Blocks{each_.block}) << piece;
    EXPECT_EQ(Read(Longer(room + 10'000) + each_.block, piece), Blocks{each_.block}) << piece;
  }
}

const Sample kTexts[] = {
    {"EchoText", kEchoText, kGoldenBlock, "\r\n> INFO\xFF#DeviceID", 255'999, 10},
    {"Epoch", kFirstEpochs, test::kFirstEpoch, "$SD#\r\n$GPDBT,\xFF$SDZD", 4'095, 10},
    {"ReportingEpoch", kFirstEpochs, test::kReportingEpoch, "$SDZD#F", 4'095, 30},
    {"SecondEpoch", kSecondEpochs, test::kSecondEpoch, "$SDZDA,$GPDB", 4'095, 10},
    {"Simple", kSimple, "Alt : 4.250\r\n", "> \r\n\xFFlt : 1\r\nAlt ", 256, 6},
    {"Reporting", kReporting, "Hz\r\n 200000.0\r\nAlt : 4.250\r\n", "Hz\r", 15 + 256, 21},
    {"DesoFirst", kDeso, "DA 4.25 m*", "\r\nDC 1 m*D", 256, 2},
    {"DesoSecond", kDeso, "DB 4.31 m*", "\r\nD", 256, 2},
    {"Dual", kDual, "Dual : 17, 4.250, 4.310, 11.40\r\n", "\r\nDual", 256, 5},
    {"Psa916", kPsa, "R4.25\r\n", "4.25\r\n", 256, 1},
    {"Dfx", kPlain, "1 4.25 4.31 0.00 0.00 0\r\n", "", 256, 2},
    {"AltiPlusTemp", kPlain, "4.250,   11.40\r\n", "", 256, 2},
};
const Sample kBinaries[] = {
    {"Frame", kFrames, kGoldenFrame, std::string("INFO:1\r\n\0TTR5", 13)},
    {"DualFrame", kDualFrames, "DUAL" + kGoldenFrame.substr(4), "TR57DUA"},
    {"DeviceBlock", kBlocks, kGoldenDeviceBlock, "TR57TIDEWRITE"},
};

std::string NameOf(const testing::TestParamInfo<Sample>& each) {
  return each.param.name;
}
INSTANTIATE_TEST_SUITE_P(Texts, EachReader, testing::ValuesIn(kTexts), NameOf);
INSTANTIATE_TEST_SUITE_P(Binaries, EachReader, testing::ValuesIn(kBinaries), NameOf);
INSTANTIATE_TEST_SUITE_P(Texts, EachTextReader, testing::ValuesIn(kTexts), NameOf);

TEST(StreamReaders, GetBackInStep) {
  using namespace std::string_literals;
  const std::string block = kGoldenBlock;
  const std::string endless = block.substr(0, block.size() - 1) + "\r";
  const std::string anew = "#DeviceID \r\n\r\r\n\r\n\r\n";
  const std::string brief = "#DeviceID \0\0\r\n\r\n\r\n"s;
  const std::string full = "$GPDBT" + std::string(4'095 - 6, '7');
  const std::string alt = "Alt : 4.25\r\n";
  const std::string pair = "Hz\r\n 2\r\n" + alt;
  const std::string frames = "TR57TR57\x01TR57" + kGoldenFrame;
  const std::string odd = test::With(kGoldenFrame, 24, 0xFFFFFFFF);  // no count, where a false one has it
  const std::string blocks = "TIDEWRITECTIDEWRITEC\x01TIDEWRITEC" + kGoldenDeviceBlock;
  const struct {
    const char* what;
    Maker make;
    std::string stream;
    Blocks found;
  } cases[] = {
      {"a start mark that begins anew at its second '#'", kEchoText, "#Device#" + block, {block}},
      {"an end mark that begins anew at a CR", kEchoText, anew, {anew}},
      {"zero bytes inside", kEchoText, brief + ".", {brief}},
      {"only two line ends", kEchoText, "#DeviceID 1\r\n\r\n.", {}},
      {"no end mark: the next start is part of the block", kEchoText, endless + block, {endless + block}},
      {"an endless epoch up to the next", kSecondEpochs, full + test::kSecondEpoch, {test::kSecondEpoch}},
      {"a mark that begins anew inside itself", kSimple, "AltAlt : 1\r\n", {"Alt : 1\r\n"}},
      {"DESO's two marks share a letter", kDeso, "DDDA1 m*DDB2 m*", {"DA1 m*", "DB2 m*"}},
      {"what follows DESO's asterisk is dropped", kDeso, "DA1 m*\r\nDB2 m*\r\n", {"DA1 m*", "DB2 m*"}},
      {"a lost line end costs its line alone", kSimple, "Alt : 1.0" + alt, {alt}},
      {"half a line end", kSimple, "Alt : 1.0\r" + alt, {alt}},
      {"altitudes without their frequency", kReporting, alt + pair + alt, {alt, pair, alt}},
      {"the newest of two frequencies counts", kReporting, "Hz\r\n 1\r\n" + pair, {pair}},
      {"a frequency whose altitude is damaged", kReporting, "Hz\r\n 1\r\nAlt; 3\r\n" + pair, {pair}},
      {"an endless frequency", kReporting, "Hz\r\n" + std::string(300, '7') + "\r\n" + alt, {alt}},
      {"a zero byte is a byte", kPsa, "R1\0\r\n"s, {"R1\0\r\n"s}},
      {"lines without a mark: every line", kPlain, "\r\nx\r\n1 2\r\n", {"\r\n", "x\r\n", "1 2\r\n"}},
      {"CR and LF alone end nothing", kPlain, "1\r2\n3\r\n", {"1\r2\n3\r\n"}},
      {"a frame right behind false magics", kFrames, frames, {kGoldenFrame}},
      {"a block right behind false magics", kBlocks, blocks, {kGoldenDeviceBlock}},
      {"a frame within a false one", kFrames, odd.substr(0, 8) + odd, {odd}},
      {"a block within a false one",
       kBlocks,
       kGoldenDeviceBlock.substr(0, 14) + kGoldenDeviceBlock,
       {kGoldenDeviceBlock}},
  };
  for (const auto& each : cases) {
    for (const size_t piece : {size_t{1}, test::kWhole}) {
      const auto reader = each.make();
      EXPECT_EQ(BlocksOf(*reader, each.stream, piece), each.found) << each.what << ", pieces of " << piece;
    }
  }
}

}  // namespace
}  // namespace tw
