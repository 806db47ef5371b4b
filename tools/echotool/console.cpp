#include "tools/echotool/console.h"

#include <algorithm>

#include "base/text_format.h"
#include "platform/console.h"

namespace tw::echotool {
namespace {

constexpr size_t kColumns = 79;       // of all that is shown
constexpr size_t kLabelColumns = 48;  // with bar and percentage it fits

// Letters of eastern Asia take two columns. Some others count as wide as well: that costs them a column.
size_t ColumnsOf(unsigned char lead, unsigned char second) {
  const bool wide = lead > 0xE1 || (lead == 0xE1 && second >= 0x84);
  return wide ? 2 : 1;
}

bool Continues(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::string Label(const Count& count, std::string_view name, std::string_view work) {
  std::string label;
  if (count.of > 1) label = std::to_string(count.number) + " of " + std::to_string(count.of) + " ";
  const size_t taken = std::min(kLabelColumns, label.size() + work.size());
  return label + FitColumns(name, kLabelColumns - taken) + std::string(work);
}

}  // namespace

std::string FitColumns(std::string_view text, size_t columns) {
  std::string out;
  for (size_t at = 0; at < text.size();) {
    size_t end = at + 1;
    while (end < text.size() && Continues(text[end])) ++end;
    const auto lead = static_cast<unsigned char>(text[at]);
    const size_t width = ColumnsOf(lead, end > at + 1 ? static_cast<unsigned char>(text[at + 1]) : 0);
    if (width > columns) break;
    columns -= width;
    if (lead < ' ' || lead == 0x7F) {
      out += '?';
    } else {
      out += text.substr(at, end - at);
    }
    at = end;
  }
  return out;
}

ProgressBar::ProgressBar(const Count& count, std::string_view name, std::string_view work, uint64_t size)
    : label_(Label(count, name, work)), size_(size), console_(IsErrorTerminal()) {}

ProgressBar::~ProgressBar() {
  if (shown_ >= 0) WriteError("\r" + std::string(kColumns, ' ') + "\r");
}

void ProgressBar::Show(uint64_t position) {
  if (!console_ || size_ == 0) return;
  const int percent = static_cast<int>(position >= size_ ? 100 : position / (size_ / 100 + 1));
  if (percent == shown_) return;
  shown_ = percent;
  constexpr int kWidth = 20;
  const int full = percent * kWidth / 100;
  char bar[64];
  WriteError("\r" + label_ +
             std::string(bar, FormatText(bar, " [%.*s%*s] %3d %%", full, "####################",
                                         kWidth - full, "", percent)));
}

}  // namespace tw::echotool
