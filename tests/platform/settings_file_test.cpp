#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/registry.h"
#include "platform/system_error.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

constexpr wchar_t kKey[] = L"Software\\Tidewriter\\Settings";

// Every test of this program has a configuration folder of its own, never the user's.
class ConfigurationFolder : public testing::Environment {
 public:
  void SetUp() override { setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1); }
  std::filesystem::path File() const { return folder_.Path() / "tidewriter" / "settings"; }

 private:
  test::TestFolder folder_;
};
auto* const configuration =
    static_cast<ConfigurationFolder*>(testing::AddGlobalTestEnvironment(new ConfigurationFolder));

std::string Content() {
  return test::ReadWhole(configuration->File());
}

void Put(const std::string& content) {
  std::filesystem::create_directories(configuration->File().parent_path());
  test::WriteWhole(configuration->File(), content);
}

TEST(SettingsFile, AValueIsALineThatTheNextWriteReplaces) {
  Put("of another hand\n");
  constexpr uint8_t kBytes[] = {0, 0xAB};
  ASSERT_TRUE(WriteRegistryNumber(kKey, L"LowSpeed", 9600));
  ASSERT_TRUE(WriteRegistryText(kKey, L"Folder", L"100 %\t\u00E9\n"));
  ASSERT_TRUE(WriteRegistryBytes(kKey, L"Bytes", kBytes));
  ASSERT_TRUE(WriteRegistryNumber(kKey, L"LowSpeed", 115200));
  EXPECT_EQ(Content(),
            "of another hand\n"
            "Software\\Tidewriter\\Settings\tFolder\tt\t100 %25%09\xC3\xA9%0A\n"
            "Software\\Tidewriter\\Settings\tBytes\tb\t00ab\n"
            "Software\\Tidewriter\\Settings\tLowSpeed\tn\t115200\n");
  wchar_t text[32] = {};
  EXPECT_TRUE(ReadRegistryText(kKey, L"Folder", text, sizeof(text)));
  EXPECT_STREQ(text, L"100 %\t\u00E9\n");
}

TEST(SettingsFile, ADamagedNumberIsNone) {
  for (const char* const number : {"", "x", "-1", "12 34", "4294967296"}) {
    Put("Software\\Tidewriter\\Settings\tLowSpeed\tn\t" + std::string(number));
    uint32_t value = 7;
    EXPECT_FALSE(ReadRegistryNumber(kKey, L"LowSpeed", value)) << number;
    EXPECT_EQ(value, 7u) << number;
  }
}

TEST(SettingsFile, AFileTooLongToBeOursIsNeitherReadNorReplaced) {
  const std::string endless(size_t{1} << 21, 'x');
  Put(endless);
  EXPECT_FALSE(WriteRegistryNumber(kKey, L"LowSpeed", 9600));
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(EFBIG));
  EXPECT_EQ(Content(), endless);
}

}  // namespace
}  // namespace tw
