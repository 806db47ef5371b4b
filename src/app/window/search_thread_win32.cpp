#include "app/window/search_thread_win32.h"

#include <utility>

#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/thread.h"

namespace tw {
namespace {

class [[nodiscard]] Hold {
 public:
  explicit Hold(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~Hold() { ReleaseSRWLockExclusive(&lock_); }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  SRWLOCK& lock_;
};

}  // namespace

Search::Search(HWND dialog, SearchPlan plan, std::shared_ptr<Search> former)
    : dialog_(dialog), plan_(std::move(plan)), former_(std::move(former)) {}

bool Search::Begin(const std::shared_ptr<Search>& search) {
  auto share = std::make_unique<std::shared_ptr<Search>>(search);
  const auto body = [](void* argument) {
    const std::unique_ptr<std::shared_ptr<Search>> own(static_cast<std::shared_ptr<Search>*>(argument));
    (*own)->Run();
  };
  const Handle thread = StartThread(body, share.get());
  if (thread == Handle::null) return false;
  static_cast<void>(share.release());  // the thread's now
  CloseThread(thread);
  return true;
}

void Search::Cancel() {
  StoreShared(cancelled_, 1);
  const Hold hold(lock_);
  dialog_ = nullptr;
}

std::vector<SearchNews> Search::TakeNews(bool& over) {
  const Hold hold(lock_);
  over = over_;
  return std::exchange(news_, {});
}

void Search::Run() {
  AwaitFormer();
  const SearchListener listener{
      this, [](void* to, const SearchNews& news) { static_cast<Search*>(to)->Tell(&news); },
      [](void* of) { return LoadShared(static_cast<Search*>(of)->cancelled_) != 0; }};
  SearchDevices(plan_, listener);
  Tell(nullptr);
}

// One whose port never comes back is left alone.
void Search::AwaitFormer() {
  constexpr int kSlices = 100;
  constexpr uint32_t kSlice_ms = 20;
  for (int i = 0; i < kSlices && former_ != nullptr && !former_->IsOver(); ++i) SleepMilliseconds(kSlice_ms);
  former_ = nullptr;
}

// Nothing: the search is over.
void Search::Tell(const SearchNews* news) {
  const Hold hold(lock_);
  if (news != nullptr) news_.push_back(*news);
  if (news == nullptr) over_ = true;
  if (dialog_ != nullptr) PostMessageW(dialog_, kSearchMessage, 0, 0);
}

bool Search::IsOver() {
  const Hold hold(lock_);
  return over_;
}

}  // namespace tw
