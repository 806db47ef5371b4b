#include "acquisition/line_reader.h"

#include <algorithm>
#include <utility>

namespace tw {

bool LineReader::Feed(std::span<const uint8_t>& input) {
  if (complete_) {
    complete_ = false;
    lineStart_ = 0;
    Drop();
  }
  while (!input.empty()) {
    const uint8_t byte = input[0];
    input = input.subspan(1);
    if (Take(byte)) return true;
  }
  return false;
}

// A line without a mark of its own begins behind the end of the one that is torn, of which the last byte
// alone may come.
void LineReader::Break() {
  const bool torn = gathering_ && !complete_ && length_ > lineStart_;
  complete_ = false;
  lineStart_ = 0;
  hunt_ = StartHunt(form_.starts);
  Drop();
  broken_ = leads_;
  overlong_ = torn && gathering_;
  if (overlong_) length_ += form_.end.copy(buffer_, form_.end.size() - 1);
}

bool LineReader::Take(uint8_t byte) {
  ++behindLead_;
  if (gathering_) Gather(byte);
  const std::string_view start = hunt_.Take(byte);
  if (!start.empty()) {
    BeginLine(start);
    return false;
  }
  if (!gathering_ || byte != static_cast<uint8_t>(form_.end.back()) || !AtEnd()) return false;
  const bool leads = lineStart_ != 0;
  if (!overlong_ && !start_.empty() && start_ == form_.leading) {
    lineStart_ = length_;
    behindLead_ = 0;
    gathering_ = false;
  } else if (overlong_ || (std::exchange(broken_, false) && !leads)) {
    Drop();
  } else {
    complete_ = true;
    leads_ = leads;
  }
  return complete_;
}

void LineReader::Gather(uint8_t byte) {
  if (length_ - lineStart_ == kMaxLine) {
    if (!form_.starts.empty()) {
      Drop();
      return;
    }
    overlong_ = true;
    const size_t kept = form_.end.size() - 1;
    std::copy_n(buffer_ + length_ - kept, kept, buffer_ + lineStart_);
    length_ = lineStart_ + kept;
  }
  buffer_[length_++] = static_cast<char>(byte);
}

void LineReader::BeginLine(std::string_view start) {
  if (start == form_.leading) lineStart_ = 0;
  start_ = start;
  std::copy(start.begin(), start.end(), buffer_ + lineStart_);
  length_ = lineStart_ + start.size();
  gathering_ = true;
}

void LineReader::Drop() {
  length_ = lineStart_;
  start_ = {};
  gathering_ = form_.starts.empty();
  overlong_ = false;
}

bool LineReader::AtEnd() const {
  const size_t from = lineStart_ + start_.size();
  return std::string_view(buffer_ + from, length_ - from).ends_with(form_.end);
}

}  // namespace tw
