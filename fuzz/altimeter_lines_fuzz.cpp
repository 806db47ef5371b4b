// Any bytes as the stream of an altimeter or an emulated instrument. The first byte chooses the form and the
// pieces in which the rest arrives; the lines must be the same as in one piece, and their values finite.
#include <cmath>
#include <string>
#include <vector>

#include "acquisition/altimeter_lines.h"
#include "fuzz/pieces.h"

namespace tw {
namespace {

struct Mode {
  const LineForm& form;
  bool (*parse)(std::string_view line, AltimeterValues& values);
};

constexpr Mode kModes[] = {
    {kSimpleForm, ParseSimple}, {kReportingForm, ParseSimple},   {kDesoForm, ParseDeso},
    {kDualForm, ParseDual},     {kPlainForm, ParseSonarmiteDfx}, {kPlainForm, ParseSonarmiteOld},
    {kPsaForm, ParsePsa916},    {kPlainForm, ParseAltiPlusTemp},
};

void Parse(const Mode& mode, const std::string& text) {
  // Without the zero behind it, so that a read behind the end shows.
  const std::vector<char> line(text.begin(), text.end());
  AltimeterValues values{.altitude_m = 1,
                         .temperature_c = 1,
                         .hasAltitudeLow = false,
                         .altitudeLow_m = 1,
                         .secondChannel = false,
                         .hasFrequency = false,
                         .frequency_hz = 1};
  static_cast<void>(mode.parse({line.data(), line.size()}, values));
  Require(std::isfinite(values.altitude_m) && std::isfinite(values.altitudeLow_m));
  Require(std::isfinite(values.temperature_c) && values.frequency_hz >= 0);
}

}  // namespace
}  // namespace tw

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const std::span<const uint8_t> stream(bytes + 1, size - 1);
  const tw::Mode& mode = tw::kModes[bytes[0] % std::size(tw::kModes)];
  const auto lines = tw::BlocksOf(
      [&] { return tw::LineReader(mode.form); }, stream, size_t{1} + bytes[0] / std::size(tw::kModes),
      [&](std::string_view line) {
        tw::Require(line.size() <= 2 * tw::kMaxLine && line.ends_with(mode.form.end));
      });
  for (const std::string& line : lines) tw::Parse(mode, line);
  tw::Parse(mode, std::string(stream.begin(), stream.end()));
  return 0;
}
