#include "display/screenshot.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/app/test_folder.h"

namespace tw {
namespace {

constexpr CalendarTime kNoon{2025, 3, 14, 12, 0, 5, 0};
constexpr CalendarTime kLater{2025, 3, 14, 12, 2, 20, 0};

class Screenshot : public testing::Test {
 protected:
  // The path below the working folder, or "none".
  std::wstring Name(ShotKind kind, bool isDual, const CalendarTime& time) {
    wchar_t path[1024] = L"";
    const std::wstring folder = folder_.wstring();
    const ShotFacts facts{folder.c_str(), isDual, kind, 447'000, time};
    if (!NameScreenshot(path, facts, shots_)) return L"none";
    return std::filesystem::path(path).lexically_relative(folder_).generic_wstring();
  }

  const test::TestFolder root_;
  const std::filesystem::path folder_ = root_.Path() / "not made yet";
  AutomaticShots shots_{};
};

TEST_F(Screenshot, NamesTellTimeKindAndNumber) {
  constexpr ShotKind kManual = ShotKind::manual;
  constexpr ShotKind kAuto = ShotKind::automatic;
  EXPECT_EQ(Name(kManual, false, kNoon), L"20250314_120005_Dual_450kHz_ScreenShot(Manual)_1.png");
  EXPECT_TRUE(std::filesystem::is_directory(folder_));
  EXPECT_EQ(Name(kManual, false, kNoon), L"20250314_120005_Dual_450kHz_ScreenShot(Manual)_1.png");
  EXPECT_EQ(Name(kAuto, false, kNoon), L"20250314_120005_Dual_450kHz_ScreenShot(Auto)_1.png");
  EXPECT_EQ(Name(kManual, true, kLater), L"ScreenShot/20250314_120220_Dual_ScreenShot(Manual)_1.png");
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "ScreenShot"));
  EXPECT_EQ(Name(kAuto, true, kLater), L"ScreenShot/20250314_120005_Dual_ScreenShot(Auto)_2.png");
  EXPECT_EQ(Name(kAuto, false, kLater), L"20250314_120005_Dual_450kHz_ScreenShot(Auto)_3.png");
}

TEST_F(Screenshot, NoneWithoutAFolder) {
  EXPECT_EQ(Name(ShotKind::automatic, true, kNoon), L"none");  // the working folder is missing as well
  EXPECT_EQ(shots_.count, 0);
}

}  // namespace
}  // namespace tw
