#include "outputs/depth_sentences.h"

#include "base/text_format.h"
#include "outputs/sentence_fields.h"

namespace tw {
namespace {

constexpr double kMetresPerFoot = 0.3048;
constexpr double kMetresPerFathom = 1.8288;
constexpr float kNoDepth_m = 0.005f;     // and less: printed it is 0
constexpr float kDeepest_m = 12'000.0f;  // no sea is
constexpr double kMostOffset_m = 100.0;
constexpr double kColdest_c = -10.0;
constexpr double kHottest_c = 60.0;

}  // namespace

bool IsDepth(float depth_m) {
  return depth_m > kNoDepth_m && depth_m <= kDeepest_m;
}

size_t BuildDbt(SentenceText text, float depth_m) {
  if (!IsDepth(depth_m)) return NoSentence(text);
  const double depth = depth_m;
  return EndSentence(text, FormatText(text, "$SDDBT,%.2f,f,%.2f,M,%.2f,F", depth / kMetresPerFoot, depth,
                                      depth / kMetresPerFathom));
}

size_t BuildDpt(SentenceText text, float depth_m, float offset_m, float range_m) {
  const Field offset = NumberField(offset_m, 2, -kMostOffset_m, kMostOffset_m);
  if (!IsDepth(depth_m) || offset.IsEmpty()) return NoSentence(text);
  const Field range = NumberField(range_m, 1, 0.1, kDeepest_m);
  return EndSentence(
      text, FormatText(text, "$SDDPT,%.2f,%s,%s", static_cast<double>(depth_m), offset.text, range.text));
}

size_t BuildMtw(SentenceText text, float temperature_c) {
  const Field temperature = NumberField(temperature_c, 1, kColdest_c, kHottest_c);
  if (temperature.IsEmpty()) return NoSentence(text);
  return EndSentence(text, FormatText(text, "$SDMTW,%s,C", temperature.text));
}

size_t BuildXdr(SentenceText text, float pitch_deg, float roll_deg) {
  const Field pitch = NumberField(pitch_deg, 2, -90.0, 90.0);
  const Field roll = NumberField(roll_deg, 2, -180.0, 180.0);
  if (pitch.IsEmpty() || roll.IsEmpty()) return NoSentence(text);
  return EndSentence(text, FormatText(text, "$SDXDR,A,%s,D,PTCH,A,%s,D,ROLL", pitch.text, roll.text));
}

}  // namespace tw
