// The pages of options as they are laid out and read, for every row of the table.
#include "app/settings/option_form.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <set>
#include <string>

namespace tw {
namespace {

constexpr OptionPage kPages[] = {OptionPage::link, OptionPage::recording, OptionPage::outputs,
                                 OptionPage::display};

bool IsBeside(const DialogRect& a, const DialogRect& b) {
  return a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y || b.y + b.height <= a.y;
}

TEST(OptionForm, EachRowStandsOnItsPageWithAKeyAndAnIdOfItsOwn) {
  std::set<int32_t> ids;
  std::set<const OptionRow*> rows;
  for (const OptionPage page : kPages) {
    const OptionForm form = LayOutOptions(page);
    std::set<wint_t> keys{L'u'};  // of "Defaults"
    for (size_t i = 0; i < form.count; ++i) {
      const OptionItem& item = form.items[i];
      const std::wstring text = item.row->text;
      EXPECT_EQ(item.row->page, page);
      EXPECT_TRUE(ids.insert(item.id).second) << text;
      EXPECT_LE(item.place.x + item.place.width, form.width) << text;
      EXPECT_LE(item.place.y + item.place.height, form.height) << text;
      for (size_t k = i + 1; k < form.count; ++k) {
        const bool arrows = form.items[k].kind == OptionItemKind::arrows;  // they stand in their number
        EXPECT_TRUE(arrows || IsBeside(item.place, form.items[k].place)) << text;
        if (item.kind == OptionItemKind::arrows) break;
      }
      if (item.id != ControlOf(*item.row)) continue;
      rows.insert(item.row);
      const size_t key = text.find(L'&');
      ASSERT_LT(key + 1, text.size());
      EXPECT_TRUE(keys.insert(towlower(static_cast<wint_t>(text[key + 1]))).second) << text;
      EXPECT_EQ(item.place.x > form.items[0].place.x, item.row->needs != nullptr || item.row->unit != nullptr)
          << text;
    }
  }
  EXPECT_EQ(rows.size(), OptionRows().size());
}

TEST(OptionForm, NumbersOutOfTheirBoundsAreRefusedByName) {
  for (const OptionRow& row : OptionRows()) {
    if (row.unit == nullptr) continue;
    const auto read = [&](const std::wstring& text, int32_t expected) {
      Options options = StandardOptions();
      wchar_t error[kOptionErrorSize] = L"";
      const bool taken = ReadOption(row, text.c_str(), options, error);
      EXPECT_EQ(options.*row.value, taken ? expected : row.standard);
      return taken ? std::wstring() : error;
    };
    EXPECT_EQ(read(std::to_wstring(row.least), row.least), L"");
    EXPECT_EQ(read(L" " + std::to_wstring(row.most) + L" ", row.most), L"");
    const std::wstring bounds = L"must be a whole number from " + std::to_wstring(row.least) + L" to " +
                                std::to_wstring(row.most) + L" " + row.unit + L".";
    for (const std::wstring& bad :
         {std::to_wstring(row.least - 1), std::to_wstring(row.most + 1), std::wstring(), std::wstring(L"x"),
          std::to_wstring(row.least) + L".5", std::to_wstring(row.least) + L" 1",
          std::wstring(L"99999999999999999999"), std::wstring(100, L' ') + L"10"}) {
      EXPECT_TRUE(read(bad, row.standard).ends_with(bounds)) << row.text;
    }
  }
  Options options{};
  wchar_t error[kOptionErrorSize] = L"";
  ASSERT_FALSE(ReadOption(OptionRows()[1], L"4", options, error));
  EXPECT_STREQ(error, L"\"Lost without data for\" must be a whole number from 5 to 60 s.");
}

TEST(OptionForm, WhatNeedsASwitchOrNoRunIsGreyWithout) {
  for (const OptionRow& row : OptionRows()) {
    Options shown = StandardOptions();
    EXPECT_EQ(IsUsable(row, shown, false), row.needs == nullptr) << row.text;
    if (row.needs != nullptr) shown.*row.needs = 1;
    EXPECT_TRUE(IsUsable(row, shown, false)) << row.text;
    EXPECT_EQ(IsUsable(row, shown, true), !row.atStart) << row.text;
  }
}

}  // namespace
}  // namespace tw
