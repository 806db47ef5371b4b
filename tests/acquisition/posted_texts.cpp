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

// Nobody looks at these here.
void PostProgress(AppState&, const ProgressBlock&) {}
void PostOwnText(AppState& state, StatusPart part, OwnTexts&, const wchar_t* text) {
  PostStatusText(state, part, text);
}
bool PostConversionEnd(AppState&, bool) {
  return true;
}

namespace test {

std::vector<PostedText> TakePostedTexts() {
  const std::lock_guard held(mutex);
  return std::exchange(posted, {});
}

}  // namespace test
}  // namespace tw
