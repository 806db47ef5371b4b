#include "tests/acquisition/posted_texts.h"

#include <mutex>
#include <utility>

namespace tw {
namespace {

std::mutex mutex;
std::vector<test::PostedText> posted;

}  // namespace

void PostStatusText(AppState&, StatusPart part, const wchar_t* text) {
  const std::lock_guard held(mutex);
  posted.push_back({part, text});
}

namespace test {

std::vector<PostedText> TakePostedTexts() {
  const std::lock_guard held(mutex);
  return std::exchange(posted, {});
}

}  // namespace test
}  // namespace tw
