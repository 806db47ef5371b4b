#include "app/settings/option_form.h"

#include <algorithm>
#include <cinttypes>
#include <string_view>

#include "app/window/control_ids.h"
#include "base/text_format.h"
#include "base/text_scan.h"
#include "outputs/output_options.h"

namespace tw {
namespace {

constexpr int32_t kMargin = 7;
constexpr int32_t kRowHeight = 16;
constexpr int32_t kIndent = 11;
constexpr int32_t kWidth = 214;  // of a row
constexpr int32_t kNumberLeft = 150;
constexpr int32_t kNumberWidth = 46;
constexpr int32_t kAddressWidth = 66;
constexpr int32_t kListLeft = 100;
constexpr int32_t kListWidth = 117;
constexpr int32_t kListDropped = 90;
constexpr int32_t kTrackWidth = kNumberLeft + kNumberWidth - kListLeft;
constexpr int32_t kUnitLeft = kNumberLeft + kNumberWidth + 4;
constexpr int32_t kUnitWidth = 21;
constexpr int32_t kCheckHeight = 10;
constexpr int32_t kTextHeight = 9;
constexpr int32_t kTextDrop = 2;  // a text stands on the line of the field beside it
constexpr int32_t kFieldHeight = 13;

constexpr int32_t kIdsPerRow = 4;

int32_t FirstId(const OptionRow& row) {
  return ID_OPTIONS_FIRST + kIdsPerRow * static_cast<int32_t>(&row - OptionRows().data());
}

void Add(OptionForm& form, const OptionItem& item) {
  if (form.count < kMaxOptionItems) form.items[form.count++] = item;
}

void AddSwitch(OptionForm& form, const OptionRow& row, int32_t x, int32_t y) {
  Add(form,
      {OptionItemKind::check, &row, ControlOf(row), {x, y + kTextDrop, kMargin + kWidth - x, kCheckHeight}});
}

void AddNumber(OptionForm& form, const OptionRow& row, int32_t x, int32_t y) {
  const int32_t id = FirstId(row);
  Add(form, {OptionItemKind::label, &row, id + 1, {x, y + kTextDrop, kNumberLeft - 4 - x, kTextHeight}});
  Add(form, {OptionItemKind::number, &row, id, {kNumberLeft, y, kNumberWidth, kFieldHeight}});
  Add(form, {OptionItemKind::arrows, &row, id + 2, {kNumberLeft, y, kNumberWidth, kFieldHeight}});
  Add(form, {OptionItemKind::unit, &row, id + 3, {kUnitLeft, y + kTextDrop, kUnitWidth, kTextHeight}});
}

void AddAddress(OptionForm& form, const OptionRow& row, int32_t x, int32_t y) {
  const int32_t id = FirstId(row);
  Add(form, {OptionItemKind::label, &row, id + 1, {x, y + kTextDrop, kNumberLeft - 4 - x, kTextHeight}});
  Add(form, {OptionItemKind::address, &row, id, {kNumberLeft, y, kAddressWidth, kFieldHeight}});
}

void AddList(OptionForm& form, const OptionRow& row, int32_t x, int32_t y) {
  const int32_t id = FirstId(row);
  Add(form, {OptionItemKind::label, &row, id + 1, {x, y + kTextDrop, kListLeft - 4 - x, kTextHeight}});
  Add(form, {OptionItemKind::list, &row, id, {kListLeft, y, kListWidth, kListDropped}});
}

void AddTrack(OptionForm& form, const OptionRow& row, int32_t x, int32_t y) {
  const int32_t id = FirstId(row);
  Add(form, {OptionItemKind::label, &row, id + 1, {x, y + kTextDrop, kListLeft - 4 - x, kTextHeight}});
  Add(form, {OptionItemKind::track, &row, id, {kListLeft, y, kTrackWidth, kFieldHeight}});
  Add(form, {OptionItemKind::unit, &row, id + 3, {kUnitLeft, y + kTextDrop, kUnitWidth, kTextHeight}});
}

void AddRow(OptionForm& form, const OptionRow& row, int32_t x, int32_t y) {
  if (row.address != nullptr) return AddAddress(form, row, x, y);
  if (row.IsSwitch()) return AddSwitch(form, row, x, y);
  if (!row.choices.empty()) return AddList(form, row, x, y);
  if (row.isSlider) return AddTrack(form, row, x, y);
  AddNumber(form, row, x, y);
}

// A label without the ampersand of its key.
void NarrowLabel(std::span<char> out, std::wstring_view label) {
  const size_t key = label.find(L'&');
  if (key == label.npos) {
    NarrowText(out, label);
    return;
  }
  const size_t before = NarrowText(out, label.substr(0, key));
  NarrowText(out.subspan(before), label.substr(key + 1));
}

const OptionRow* SwitchOf(const OptionRow& row) {
  for (const OptionRow& other : OptionRows()) {
    if (row.needs != nullptr && other.value == row.needs) return &other;
  }
  return nullptr;
}

void ExplainBounds(const OptionRow& row, std::span<wchar_t> error) {
  char label[96];
  char unit[16];
  NarrowLabel(label, row.text);
  NarrowText(unit, row.unit);
  FormatWide(error, "\"%s\" must be a whole number from %" PRId32 " to %" PRId32 "%s%s.", label, row.least,
             row.most, unit[0] == '\0' ? "" : " ", unit);
}

// The whole text is one number.
bool ScanNumber(std::wstring_view text, int32_t& value) {
  char narrow[64];
  const size_t length = NarrowText(narrow, text);
  std::string_view rest(narrow, length);
  if (!ScanInt(rest, value)) return false;
  SkipWhiteSpace(rest);
  return rest.empty() && text.size() < sizeof(narrow);
}

bool ReadAddress(const OptionRow& row, const wchar_t* text, Options& options, std::span<wchar_t> error) {
  uint32_t ip = 0;
  if (ParseAddress(text, ip)) {
    CopyWide((options.*row.address).text, text);
    return true;
  }
  CopyWide(error, L"An address is four numbers from 0 to 255, \"192.168.1.20\".");
  return false;
}

}  // namespace

OptionForm LayOutOptions(OptionPage page) {
  OptionForm form{};
  int32_t y = kMargin;
  for (const OptionRow& row : OptionRows()) {
    if (row.page != page) continue;
    const int32_t x = kMargin + (row.needs != nullptr ? kIndent : 0);
    AddRow(form, row, x, y);
    y += kRowHeight;
  }
  form.width = 2 * kMargin + kWidth;
  form.height = y + kMargin;
  return form;
}

int32_t ControlOf(const OptionRow& row) {
  return FirstId(row);
}

const OptionRow* RowOfControl(int32_t id) {
  const auto rows = OptionRows();
  if (id < ID_OPTIONS_FIRST) return nullptr;
  const auto place = static_cast<size_t>(id - ID_OPTIONS_FIRST) / kIdsPerRow;
  return place < rows.size() ? &rows[place] : nullptr;
}

bool IsLocked(const OptionRow& row, bool running) {
  return running && row.atStart;
}

bool IsUsable(const OptionRow& row, const Options& shown, bool running) {
  return !IsLocked(row, running) && (row.needs == nullptr || shown.*row.needs != 0);
}

void WhyUnusable(const OptionRow& row, const Options& shown, bool running, std::span<wchar_t> reason) {
  CopyWide(reason, L"");
  if (IsUsable(row, shown, running)) return;
  const OptionRow* const needed = SwitchOf(row);
  if (IsLocked(row, running) || needed == nullptr) {
    CopyWide(reason, L"It is taken over when a run starts: press Stop first.");
    return;
  }
  char label[96];
  NarrowLabel(label, needed->text);
  FormatWide(reason, "Tick \"%s\" first.", label);
}

void FormatOption(const OptionRow& row, const Options& options, std::span<wchar_t> text) {
  if (row.address != nullptr) {
    CopyWide(text, (options.*row.address).text);
  } else {
    FormatWide(text, "%" PRId32, options.*row.value);
  }
}

bool ReadOption(const OptionRow& row, const wchar_t* text, Options& options, std::span<wchar_t> error) {
  if (row.address != nullptr) return ReadAddress(row, text, options, error);
  int32_t value = 0;
  if (!ScanNumber(text, value) || value < row.least || value > row.most) {
    ExplainBounds(row, error);
    return false;
  }
  options.*row.value = value;
  return true;
}

}  // namespace tw
