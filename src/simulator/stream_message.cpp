#include "simulator/stream_message.h"

#include <iterator>

#include "base/checksum.h"

namespace tw::sim {
namespace {

constexpr int kMostDigits = 20;

}  // namespace

TextWriter& TextWriter::Padded(uint64_t value, int width) {
  char digits[kMostDigits];
  char* at = std::end(digits);
  for (; value > 0 || (width > 0 && at > std::begin(digits)); value /= 10, --width) {
    *--at = static_cast<char>('0' + value % 10);
  }
  return Text({at, static_cast<size_t>(std::end(digits) - at)});
}

TextWriter& TextWriter::Count(int64_t value) {
  const size_t begin = Size();
  if (value < 0) Text("-");
  Padded(static_cast<uint64_t>(value < 0 ? -value : value), 1);
  Mark(begin, FieldKind::count);
  return *this;
}

TextWriter& TextWriter::Decimal(int64_t value, int decimals) {
  const size_t begin = Size();
  uint64_t scale = 1;
  for (int i = 0; i < decimals; ++i) scale *= 10;
  const auto size = static_cast<uint64_t>(value < 0 ? -value : value);
  if (value < 0) Text("-");
  Padded(size / scale, 1).Text(".").Padded(size % scale, decimals);
  Mark(begin, FieldKind::decimal);
  return *this;
}

TextWriter& TextWriter::EndSentence(size_t begin) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const auto* text = reinterpret_cast<const char*>(out_.bytes.data());
  const uint8_t sum = XorChecksum({text + begin + 1, Size() - begin - 1});
  const char end[] = {'*', kDigits[sum >> 4], kDigits[sum & 15], '\r', '\n'};
  return Text({end, std::size(end)});
}

}  // namespace tw::sim
