// Cuts the stream of an altimeter or of an emulated instrument into lines. What begins and ends a line is its
// form; the forms are in altimeter_lines.h.
//
//   ...noise...Alt : 4.250<CR><LF>Alt : 4.262<CR><LF>...
//
// Getting back in step: bytes outside a line are dropped. A start mark inside a line begins the line anew, so
// that a line without its end costs itself alone; a line that outgrows kMaxLine is dropped. Lines of a form
// without a mark of its own begin behind CR LF, or at the first byte of the stream. A pure state machine; one
// thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/start_hunt.h"
#include "acquisition/stream_reader.h"

namespace tw {

inline constexpr size_t kMaxLine = 256;  // characters, start and end marks included

struct LineForm {
  std::span<const std::string_view> starts;  // empty: lines have no mark of their own
  std::string_view end;
  // A line with this start does not stand for itself: it is kept and put before the next line of another
  // start, both together being one block. Empty when the form has none.
  std::string_view leading = {};
};

class LineReader final : public StreamReader {
 public:
  // What `form` refers to outlives the reader.
  explicit LineReader(const LineForm& form)
      : form_(form), hunt_(form.starts), gathering_(form.starts.empty()) {}

  [[nodiscard]] bool Feed(std::span<const uint8_t>& input) override;
  void Break() override;

  // One line, both marks included, behind its leading line if there was one.
  [[nodiscard]] std::string_view Block() const override { return {buffer_, length_}; }
  [[nodiscard]] size_t LastPiece() const override {
    const size_t line = length_ - lineStart_;
    return lineStart_ == 0 || behindLead_ == line ? length_ : line;
  }

 private:
  [[nodiscard]] bool Take(uint8_t byte);
  void Gather(uint8_t byte);
  void BeginLine(std::string_view start);
  void Drop();
  [[nodiscard]] bool AtEnd() const;

  LineForm form_;
  StartHunt hunt_;
  char buffer_[2 * kMaxLine];  // a leading line and a line
  size_t lineStart_ = 0;       // length of the leading line that is kept
  size_t length_ = 0;
  uint64_t behindLead_ = 0;  // bytes that have come since the leading line
  std::string_view start_;   // of the line that is being gathered
  bool gathering_;
  bool overlong_ = false;  // a line without a mark that is no longer gathered; its end is still waited for
  bool complete_ = false;
  bool leads_ = false;   // the last block had a leading line
  bool broken_ = false;  // the next one must have one too, else it is the rest of a block
};

}  // namespace tw
