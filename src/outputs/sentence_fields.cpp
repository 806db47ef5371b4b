#include "outputs/sentence_fields.h"

#include <cmath>
#include <string_view>

#include "base/checksum.h"
#include "base/text_format.h"

namespace tw {

Field NumberField(double value, int decimals, double low, double high) {
  Field field;
  if (!(value >= low && value <= high)) return field;
  constexpr double kHalves[] = {0.5, 0.05, 0.005, 0.0005, 0.00005};
  const bool isZero = std::fabs(value) < kHalves[decimals];  // else it might be printed as "-0.0"
  FormatText(field.text, "%.*f", decimals, isZero ? 0.0 : value);
  return field;
}

Field IntegerField(int32_t value, int width, int32_t low, int32_t high) {
  Field field;
  if (value >= low && value <= high) FormatText(field.text, "%0*d", width, value);
  return field;
}

size_t EndSentence(SentenceText text, size_t length) {
  constexpr size_t kEnd = 5;  // "*", two digits, CR, LF
  if (length == 0 || length + kEnd > kMaxSentence) return NoSentence(text);
  const unsigned sum = XorChecksum(std::string_view(text.data() + 1, length - 1));
  return length + FormatText(text.subspan(length), "*%02X\r\n", sum);
}

}  // namespace tw
