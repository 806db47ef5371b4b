// One message of a device's stream while it is being put together: its bytes, and where its numbers stand, so
// that a fault can hit one of them. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tw::sim {

enum class FieldKind : uint8_t {
  decimal,  // a measured value: text, or a float of four bytes
  count,    // a length, count or code: text, or four bytes
};

struct MessageField {
  size_t offset;
  size_t size;
  FieldKind kind;
};

struct StreamMessage {
  std::vector<uint8_t> bytes;
  std::vector<MessageField> fields;
  bool binary = false;

  void Clear() {
    bytes.clear();
    fields.clear();
    binary = false;
  }
};

// Appends text. Numbers are written digit by digit: a long run writes tens of millions of them.
class TextWriter {
 public:
  explicit TextWriter(StreamMessage& out) : out_(out) {}

  TextWriter& Text(std::string_view text) {
    out_.bytes.insert(out_.bytes.end(), text.begin(), text.end());
    return *this;
  }
  TextWriter& Count(int64_t value);  // at least -2^63 + 1
  // At least `width` digits, with zeros in front.
  TextWriter& Padded(uint64_t value, int width);
  // A value in units of 10^-decimals, 1 to 9 decimals: Decimal(-5, 2) is -0.05.
  TextWriter& Decimal(int64_t value, int decimals);

  // The checksum of a sentence whose '$' stands at `begin`, and CR LF.
  TextWriter& EndSentence(size_t begin);

  [[nodiscard]] size_t Size() const { return out_.bytes.size(); }

 private:
  void Mark(size_t begin, FieldKind kind) { out_.fields.push_back({begin, Size() - begin, kind}); }

  StreamMessage& out_;
};

}  // namespace tw::sim
