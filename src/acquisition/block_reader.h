// Finds blocks in a byte stream: a start mark, anything, an end mark. Echo text of the first device family:
//
//   ...noise...#DeviceID KT-1042<CR><LF>#TimeWork 12.034<CR><LF>...##DataStart<CR><LF>
//   17<CR><LF>23<CR><LF>...<CR><LF><CR><LF><CR><LF>
//
// Getting back in step: bytes outside a block are dropped; a mismatch inside a mark restarts the comparison,
// counting the byte as a first match when it equals the mark's first byte; a block that outgrows the buffer
// is dropped whole and the hunt for the next start begins. A pure state machine; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/mark_hunt.h"
#include "acquisition/stream_reader.h"

namespace tw {

// With these marks the restart rule finds every occurrence, so that a search may stand in for it: the first
// byte of the start mark comes only once in it, and the end mark is one pair of bytes, repeated. Other marks
// must have one of these two forms.
struct BlockMarks {
  std::string_view start;
  std::string_view end;
};

inline constexpr BlockMarks kEchoTextMarks{"#DeviceID ", "\r\n\r\n\r\n"};
inline constexpr size_t kBlockBufferSize = 256'000;  // a block and its terminating zero

class BlockReader final : public StreamReader {
 public:
  // `bufferSize`: at most kBlockBufferSize.
  explicit BlockReader(const BlockMarks& marks, size_t bufferSize = kBlockBufferSize);

  [[nodiscard]] bool Feed(std::span<const uint8_t>& input) override;
  void Break() override;

  // From the start mark through the end mark. A zero follows its last byte.
  [[nodiscard]] std::string_view Block() const override {
    return {reinterpret_cast<const char*>(buffer_), length_};
  }

 private:
  void BeginHunt();
  void BeginBlock();
  bool Collect(std::span<const uint8_t>& input);

  BlockMarks marks_;
  MarkHunt hunt_;
  const size_t size_;  // of the buffer's part in use
  size_t length_ = 0;
  bool collecting_ = false;
  bool complete_ = false;
  uint8_t buffer_[kBlockBufferSize];
};

}  // namespace tw
