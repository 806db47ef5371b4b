#include "app/run/device_search.h"

#include <algorithm>
#include <cinttypes>
#include <iterator>
#include <memory>
#include <new>

#include "app/run/connection.h"
#include "base/text_format.h"
#include "device/settings_readers.h"
#include "device/stop_device.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

using Identity = char (&)[kIdentitySize];

bool TellsText(DeviceLink& link, Identity identity) {
  DeviceSettings settings = StartUpSettings();
  bool silent = false;
  if (ReadAllSettings(link, settings, silent) != LinkResult::success) return false;
  std::copy(std::begin(settings.identity), std::end(settings.identity), std::begin(identity));
  std::replace_if(
      std::begin(identity), std::end(identity), [](char c) { return c != '\0' && (c < ' ' || c > '~'); },
      '?');
  return true;
}

bool TellsNumber(DeviceLink& link, Identity identity) {
  DeviceSettings settings = StartUpSettings();
  bool silent = false;
  if (ReadSecondFamilySettings(link, settings, silent) != LinkResult::success) {
    if (!ReadIdentifierFromB64Info(link, settings.identifierWord)) return false;
  }
  FormatText(identity, "%04" PRId32, settings.identifierWord);
  return true;
}

// One port at one speed.
class Attempt {
 public:
  Attempt(DeviceLink& link, const wchar_t* name, int32_t speed_bps) : link_(link) {
    link_.port = OpenAtSpeed(name, speed_bps);
    link_.heard = {};
    link_.takesNothing = false;
  }
  ~Attempt() {
    CloseSerialLine(link_.port);
    link_.port = Handle::invalid;
  }
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;

  void Look(SearchNews& news) {
    if (link_.port == Handle::invalid) {
      news.outcome = SearchOutcome::refused;
      return;
    }
    const bool found =
        FindPrompt(link_) && (TellsText(link_, news.identity) || TellsNumber(link_, news.identity));
    news.outcome = found ? SearchOutcome::device : SearchOutcome::heard;
    news.heard = link_.heard.Verdict();
  }

 private:
  DeviceLink& link_;
};

bool IsAnswer(const SearchNews& news) {
  return news.outcome != SearchOutcome::heard || news.heard == Heard::receiver;
}

// False when the search is cancelled.
bool SearchPort(DeviceLink& link, const SearchPlan& plan, size_t port, const SearchListener& listener) {
  SearchNews best{port, 0, SearchOutcome::heard};
  for (const int32_t speed_bps : plan.speeds_bps) {
    listener.takes(listener.context, {port, speed_bps, SearchOutcome::trying});
    SearchNews news{port, speed_bps, SearchOutcome::heard};
    Attempt(link, plan.ports[port].c_str(), speed_bps).Look(news);
    if (listener.isCancelled(listener.context)) return false;
    if (IsAnswer(news) || news.heard >= best.heard) best = news;
    if (IsAnswer(news)) break;
  }
  listener.takes(listener.context, best);
  return true;
}

}  // namespace

void SearchDevices(const SearchPlan& plan, const SearchListener& listener) {
  constexpr uint32_t kWriteLimit_ms = 500;
  const std::unique_ptr<DeviceLink> link(new (std::nothrow) DeviceLink{});
  if (link == nullptr) return;
  link->writeLimit_ms = kWriteLimit_ms;
  link->givesUp = listener.isCancelled;
  link->givesUpContext = listener.context;
  for (size_t port = 0; port < plan.ports.size(); ++port) {
    if (listener.isCancelled(listener.context) || !SearchPort(*link, plan, port, listener)) return;
  }
}

}  // namespace tw
