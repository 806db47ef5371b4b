// The search for a device on a thread of its own, which owns the ports that it opens, as a dialog sees it.
// The dialog never waits for it.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "app/run/device_search.h"

namespace tw {

inline constexpr UINT kSearchMessage = WM_APP + 1;  // to the dialog: there is news, or the search is over

// What dialog and thread share; whichever of them ends last takes it along.
class Search {
 public:
  // `former`, if any, was cancelled; its port may not be closed yet, and is waited for two seconds at most.
  Search(HWND dialog, SearchPlan plan, std::shared_ptr<Search> former);

  // Starts the thread. False when the system has none to give.
  [[nodiscard]] static bool Begin(const std::shared_ptr<Search>& search);

  // The dialog hears no more afterwards, and the thread ends by itself. GUI thread.
  void Cancel();

  // What has been told since the last call, and whether nothing more comes. GUI thread.
  [[nodiscard]] std::vector<SearchNews> TakeNews(bool& over);

 private:
  void Run();
  void AwaitFormer();
  void Tell(const SearchNews* news);
  [[nodiscard]] bool IsOver();

  SRWLOCK lock_ = SRWLOCK_INIT;
  HWND dialog_;                   // under the lock; null: nobody listens
  std::vector<SearchNews> news_;  // under the lock
  bool over_ = false;             // under the lock
  int32_t cancelled_ = 0;         // shared
  const SearchPlan plan_;
  std::shared_ptr<Search> former_;  // the thread's
};

}  // namespace tw
