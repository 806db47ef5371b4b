// The forms as they are laid out, for every device that has one.
#include "app/settings/settings_layout.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace tw {
namespace {

// As much of an item as is seen while no list is open.
DialogRect SeenOf(const FormItem& item) {
  constexpr int32_t kClosedCombo = 14;
  DialogRect place = item.place;
  if (item.kind == FormItemKind::combo) place.height = kClosedCombo;
  return place;
}

bool Intersect(const DialogRect& a, const DialogRect& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

void ExpectApart(const FormLayout& layout) {
  std::vector<DialogRect> places{layout.ok, layout.cancel};
  for (size_t i = 0; i < layout.count; ++i) places.push_back(SeenOf(layout.items[i]));
  for (size_t i = 0; i < places.size(); ++i) {
    const DialogRect& place = places[i];
    EXPECT_TRUE(place.x >= 0 && place.y >= 0 && place.x + place.width <= layout.width &&
                place.y + place.height <= layout.height)
        << i;
    for (size_t k = i + 1; k < places.size(); ++k) EXPECT_FALSE(Intersect(place, places[k])) << i << k;
  }
}

// Alt and a letter goes from a label to the control that follows it.
void ExpectLabelsAheadOfTheirValues(const FormLayout& layout) {
  std::set<int32_t> ids;
  size_t values = 0;
  for (size_t i = 0; i < layout.count; ++i) {
    const FormItem& item = layout.items[i];
    if (item.kind == FormItemKind::heading) continue;
    EXPECT_TRUE(ids.insert(item.id).second) << item.id;
    if (item.kind != FormItemKind::label) {
      ++values;
      continue;
    }
    ASSERT_LT(i + 1, layout.count);
    EXPECT_EQ(layout.items[i + 1].field, item.field);
    EXPECT_NE(layout.items[i + 1].kind, FormItemKind::label);
  }
  EXPECT_GE(values, 13u);
}

TEST(SettingsLayout, NothingOverlapsAndEachLabelStandsAheadOfItsValue) {
  const struct {
    const char* name;
    FormFacts facts;
  } forms[] = {{"single", {DeviceFamily::first, false, false, false, 0, 1.0f}},
               {"single that smooths", {DeviceFamily::first, false, true, false, 0, 1.0f}},
               {"dual", {DeviceFamily::first, true, false, false, 0, 1.0f}},
               {"dual that smooths", {DeviceFamily::first, true, true, false, 0, 1.0f}},
               {"second family", {DeviceFamily::second, false, false, true, 0, 1.0f}},
               {"third family", {DeviceFamily::third, false, false, false, 0, 1.0f}},
               {"played", {DeviceFamily::first, false, false, false, 0, 1.0f, true}},
               {"played pair", {DeviceFamily::first, true, false, false, 0, 1.0f, true}}};
  for (const auto& form : forms) {
    SCOPED_TRACE(form.name);
    const FormLayout layout = LayOutForm(form.facts, DeviceSettings{});
    ExpectApart(layout);
    ExpectLabelsAheadOfTheirValues(layout);
  }
}

}  // namespace
}  // namespace tw
