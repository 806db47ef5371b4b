// The pages of options as they are read, for every row of the table.
#include "app/settings/option_form.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tw {
namespace {

TEST(OptionForm, EachRowHasControlsOfItsOwnOnItsPage) {
  std::set<int32_t> ids;
  size_t rows = 0;
  for (int number = 0; number < kOptionPages; ++number) {
    const auto page = static_cast<OptionPage>(number);
    const OptionForm form = LayOutOptions(page);
    for (size_t i = 0; i < form.count; ++i) {
      EXPECT_EQ(form.items[i].row->page, page);
      EXPECT_TRUE(ids.insert(form.items[i].id).second) << form.items[i].row->text;
      rows += form.items[i].id == ControlOf(*form.items[i].row) ? 1 : 0;
    }
  }
  EXPECT_EQ(rows, OptionRows().size());
}

TEST(OptionForm, NumbersOutOfTheirBoundsAreRefusedByName) {
  const OptionRow& row = OptionRows()[1];
  Options options = StandardOptions();
  wchar_t error[kOptionErrorSize] = L"";
  for (const wchar_t* const good : {L"5", L" 60 "}) EXPECT_TRUE(ReadOption(row, good, options, error));
  EXPECT_EQ(options.silence_s, 60);
  for (const wchar_t* const bad : {L"4", L"61", L"", L"x", L"5.5", L"5 1", L"99999999999999999999"}) {
    error[0] = L'\0';
    EXPECT_FALSE(ReadOption(row, bad, options, error)) << bad;
    EXPECT_STREQ(error, L"\"Lost without data for\" must be a whole number from 5 to 60 s.");
  }
  EXPECT_FALSE(ReadOption(row, (std::wstring(100, L' ') + L"10").c_str(), options, error));
  EXPECT_EQ(options.silence_s, 60);
}

std::wstring Reason(const OptionRow& row, const Options& shown, bool running) {
  wchar_t reason[kOptionErrorSize];
  WhyUnusable(row, shown, running, reason);
  return reason;
}

TEST(OptionForm, WhatNeedsASwitchOrNoRunIsGreyWithoutAndSaysSo) {
  for (const OptionRow& row : OptionRows()) {
    Options shown = StandardOptions();
    EXPECT_EQ(IsUsable(row, shown, false), row.needs == nullptr) << row.text;
    EXPECT_EQ(Reason(row, shown, false).empty(), row.needs == nullptr) << row.text;
    if (row.needs != nullptr) shown.*row.needs = 1;
    EXPECT_EQ(IsUsable(row, shown, true), !row.atStart) << row.text;
    EXPECT_EQ(Reason(row, shown, true).empty(), !row.atStart) << row.text;
    EXPECT_EQ(RowOfControl(ControlOf(row)), &row);
  }
}

}  // namespace
}  // namespace tw
