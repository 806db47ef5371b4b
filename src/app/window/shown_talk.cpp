#include "app/window/shown_talk.h"

#include "app/settings/link_texts.h"
#include "device/device_link.h"

namespace tw {
namespace {

void Show(void* state, const LinkProgress& progress) {
  wchar_t text[kStatusTextSize];
  FormatProgress(progress, text);
  ShowProgress(*static_cast<AppState*>(state), text);
}

}  // namespace

ShownTalk::ShownTalk(AppState& state, const wchar_t* first) : state_(state) {
  state.link->tells = Show;
  state.link->tellsContext = &state;
  ShowProgress(state, first);
}

void ShownTalk::End() {
  if (state_.link->tells == nullptr) return;
  state_.link->tells = nullptr;
  ShowProgress(state_, L"");
}

}  // namespace tw
