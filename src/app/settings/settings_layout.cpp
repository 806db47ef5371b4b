#include "app/settings/settings_layout.h"

namespace tw {
namespace {

constexpr int32_t kMargin = 8;
constexpr int32_t kRowHeight = 16;
constexpr int32_t kHeadingHeight = 12;
constexpr int32_t kLabelWidth = 98;
constexpr int32_t kValueLeft = kLabelWidth + 4;
constexpr int32_t kValueWidth = 112;
constexpr int32_t kHalfWidth = 54;
constexpr int32_t kHalfLeft = kValueWidth - kHalfWidth;
constexpr int32_t kColumnWidth = kValueLeft + kValueWidth;
constexpr int32_t kColumnGap = 14;
constexpr int32_t kTextHeight = 9;
constexpr int32_t kTextDrop = 2;  // a text stands on the line of the edit beside it
constexpr int32_t kEditHeight = 13;
constexpr int32_t kListHeight = 160;  // of a combo with its list
constexpr int32_t kButtonWidth = 50;
constexpr int32_t kButtonHeight = 14;
constexpr int32_t kButtonGap = 6;

constexpr int32_t kFirstId = 2000;
constexpr int32_t kIdsPerField = 4;
static_assert(kIdsPerField > 1 + static_cast<int32_t>(FieldChannel::high), "a label and its values");
constexpr int32_t kHeadingId = kFirstId + kIdsPerField * static_cast<int32_t>(kSettingsFields);

int32_t LabelId(SettingsField field) {
  return kFirstId + kIdsPerField * static_cast<int32_t>(field);
}

FormItemKind ItemKindOf(FieldKind kind) {
  switch (kind) {
    case FieldKind::edit:
      return FormItemKind::edit;
    case FieldKind::combo:
      return FormItemKind::combo;
    case FieldKind::shown:
      return FormItemKind::text;
  }
  return FormItemKind::text;
}

DialogRect PlaceOfValue(FormItemKind kind, int32_t x, int32_t y, int32_t width) {
  switch (kind) {
    case FormItemKind::combo:
      return {x, y, width, kListHeight};
    case FormItemKind::edit:
      return {x, y, width, kEditHeight};
    default:
      return {x, y + kTextDrop, width, kTextHeight};
  }
}

void Add(FormLayout& layout, const FormItem& item) {
  layout.items[layout.count++] = item;
}

void AddHeadings(FormLayout& layout, int32_t x) {
  Add(layout, {FormItemKind::heading,
               SettingsField::range,
               FieldChannel::low,
               kHeadingId,
               {x + kValueLeft, kMargin, kHalfWidth, kTextHeight}});
  Add(layout, {FormItemKind::heading,
               SettingsField::range,
               FieldChannel::high,
               kHeadingId,
               {x + kValueLeft + kHalfLeft, kMargin, kHalfWidth, kTextHeight}});
}

void AddField(FormLayout& layout, SettingsField field, FieldChannel channel, bool dual, int32_t x,
              int32_t y) {
  Add(layout, {FormItemKind::label,
               field,
               FieldChannel::common,
               LabelId(field),
               {x, y + kTextDrop, kLabelWidth, kTextHeight}});
  const FormItemKind kind = ItemKindOf(KindOf(field));
  const int32_t left = x + kValueLeft;
  if (dual && IsPerChannel(field)) {
    Add(layout, {kind, field, FieldChannel::low, ControlOf(field, FieldChannel::low),
                 PlaceOfValue(kind, left, y, kHalfWidth)});
    Add(layout, {kind, field, FieldChannel::high, ControlOf(field, FieldChannel::high),
                 PlaceOfValue(kind, left + kHalfLeft, y, kHalfWidth)});
    return;
  }
  const bool wide = kind != FormItemKind::edit;
  Add(layout, {kind, field, channel, ControlOf(field, channel),
               PlaceOfValue(kind, left, y, wide ? kValueWidth : kHalfWidth)});
}

}  // namespace

int32_t ControlOf(SettingsField field, FieldChannel channel) {
  return LabelId(field) + 1 + static_cast<int32_t>(channel);
}

FormLayout LayOutForm(const FormFacts& facts, const DeviceSettings& settings) {
  FormLayout layout{};
  int32_t fields = 0;
  for (size_t i = 0; i < kSettingsFields; ++i)
    fields += IsShown(static_cast<SettingsField>(i), facts) ? 1 : 0;
  const int32_t perColumn = (fields + 1) / 2;
  const bool dual = FormOf(facts) == SettingsForm::dual;
  const int32_t top = kMargin + (dual ? kHeadingHeight : 0);
  const FieldChannel active = ActiveChannel(facts, settings);

  int32_t placed = 0;
  for (size_t i = 0; i < kSettingsFields; ++i) {
    const auto field = static_cast<SettingsField>(i);
    if (!IsShown(field, facts)) continue;
    const int32_t x = kMargin + placed / perColumn * (kColumnWidth + kColumnGap);
    const int32_t row = placed % perColumn;
    if (dual && row == 0) AddHeadings(layout, x);
    AddField(layout, field, active, dual, x, top + row * kRowHeight);
    ++placed;
  }

  layout.width = 2 * kMargin + 2 * kColumnWidth + kColumnGap;
  const int32_t buttons = top + perColumn * kRowHeight + kMargin;
  layout.cancel = {layout.width - kMargin - kButtonWidth, buttons, kButtonWidth, kButtonHeight};
  layout.ok = {layout.cancel.x - kButtonGap - kButtonWidth, buttons, kButtonWidth, kButtonHeight};
  layout.height = buttons + kButtonHeight + kMargin;
  return layout;
}

}  // namespace tw
