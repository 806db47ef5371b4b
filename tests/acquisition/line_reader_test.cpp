#include "acquisition/line_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquisition/altimeter_lines.h"
#include "tests/acquisition/blocks_of.h"

namespace tw {
namespace {

using Blocks = std::vector<std::string>;

Blocks LinesOf(const LineForm& form, std::string_view stream, size_t pieceSize = test::kWhole) {
  LineReader reader(form);
  return test::BlocksOf(reader, stream, pieceSize);
}

// One whole line of each form.
struct Sample {
  const char* what;
  const LineForm& form;
  std::string line;
};

const Sample kSamples[] = {
    {"simple", kSimpleForm, "Alt : 4.250\r\n"},
    {"reporting", kReportingForm, "Hz\r\n 200000.0\r\nAlt : 4.250\r\n"},
    {"DESO first", kDesoForm, "DA 4.25 m*"},
    {"DESO second", kDesoForm, "DB 4.31 m*"},
    {"dual", kDualForm, "Dual : 17, 4.250, 4.310, 11.40\r\n"},
    {"DFX", kPlainForm, "1 4.25 4.31 0.00 0.00 0\r\n"},
    {"OLD", kPlainForm, "1 4.25 0 0 0 12.10 0 0\r\n"},
    {"PSA-916", kPsaForm, "R4.25\r\n"},
    {"AltiPlusTemp", kPlainForm, "4.250,   11.40\r\n"},
};

TEST(LineReader, FindsTheLinesOfEachForm) {
  for (const Sample& each : kSamples) {
    const Blocks two{each.line, each.line};
    EXPECT_EQ(LinesOf(each.form, each.line + each.line), two) << each.what;
    EXPECT_EQ(LinesOf(each.form, each.line + each.line, 1), two) << each.what << ", one byte at a time";
  }
}

TEST(LineReader, NeedsEveryByteOfTheLine) {
  for (const Sample& each : kSamples) {
    for (size_t length = 0; length < each.line.size(); ++length) {
      LineReader reader(each.form);
      const std::string_view line(each.line);
      EXPECT_EQ(test::BlocksOf(reader, line.substr(0, length)), Blocks{}) << each.what << ' ' << length;
      EXPECT_EQ(test::BlocksOf(reader, line.substr(length)), Blocks{each.line}) << each.what;
    }
  }
}

TEST(LineReader, GetsBackInStep) {
  const std::string alt = "Alt : 4.25\r\n";
  const struct {
    const char* what;
    const LineForm& form;
    std::string stream;
    Blocks lines;
  } cases[] = {
      {"garbage around", kSimpleForm, "\xFFlt : 1\r\n" + alt + "> \r\n" + alt + "Al", {alt, alt}},
      {"a mark that begins anew inside itself", kSimpleForm, "AltAlt : 1\r\n", {"Alt : 1\r\n"}},
      {"DESO's two marks share a letter", kDesoForm, "DDDA1 m*DDB2 m*", {"DA1 m*", "DB2 m*"}},
      {"a lost line end costs its line alone", kSimpleForm, "Alt : 1.0" + alt, {alt}},
      {"half a line end", kSimpleForm, "Alt : 1.0\r" + alt, {alt}},
      {"what follows DESO's asterisk is dropped", kDesoForm, "DA1 m*\r\nDB2 m*\r\n", {"DA1 m*", "DB2 m*"}},
      {"an altitude without its frequency",
       kReportingForm,
       alt + "Hz\r\n 33000\r\n" + alt,
       {alt, "Hz\r\n 33000\r\n" + alt}},
      {"the newest of two frequencies counts",
       kReportingForm,
       "Hz\r\n 1\r\nHz\r\n 2\r\n" + alt,
       {"Hz\r\n 2\r\n" + alt}},
      {"a frequency whose altitude is damaged",
       kReportingForm,
       "Hz\r\n 1\r\nAlt; 3\r\nHz\r\n 2\r\n" + alt,
       {"Hz\r\n 2\r\n" + alt}},
      {"a zero byte is a byte", kPsaForm, std::string("R1\0\r\n", 5), {std::string("R1\0\r\n", 5)}},
      {"lines without a mark: every line", kPlainForm, "\r\nx\r\n1 2\r\n", {"\r\n", "x\r\n", "1 2\r\n"}},
      {"CR and LF alone end nothing", kPlainForm, "1\r2\n3\r\n", {"1\r2\n3\r\n"}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(LinesOf(each.form, each.stream), each.lines) << each.what;
    EXPECT_EQ(LinesOf(each.form, each.stream, 1), each.lines) << each.what << ", one byte at a time";
  }
}

TEST(LineReader, ALineOfTheGreatestLengthIsReadAndALongerOneIsDropped) {
  for (const Sample& each : kSamples) {
    const std::string end(each.form.end);
    const std::string mark(each.form.starts.empty() ? "1 " : std::string(each.form.starts[0]));
    const std::string fits = mark + std::string(kMaxLine - mark.size() - end.size(), '7') + end;
    const std::string overlong = mark + "7" + fits.substr(mark.size());
    ASSERT_EQ(fits.size(), kMaxLine);
    for (const size_t piece : {size_t{1}, size_t{100}, test::kWhole}) {
      EXPECT_EQ(LinesOf(each.form, fits, piece), Blocks{fits}) << each.what;
      EXPECT_EQ(LinesOf(each.form, overlong + each.line, piece), Blocks{each.line}) << each.what;
      EXPECT_EQ(LinesOf(each.form, mark + std::string(10'000, '7') + end + each.line, piece),
                Blocks{each.line})
          << each.what;
    }
  }
  const std::string leading = "Hz\r\n" + std::string(300, '7') + "\r\n";
  EXPECT_EQ(LinesOf(kReportingForm, leading + "Alt : 1\r\n"), Blocks{"Alt : 1\r\n"});
}

}  // namespace
}  // namespace tw
