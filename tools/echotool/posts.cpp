// The program's workers post texts to a window; here there is none.
#include "app/state/posts.h"

namespace tw {

void PostStatusText(AppState&, StatusPart, const wchar_t*) {}
void PostProgress(AppState&, const ProgressBlock&) {}
void PostOwnText(AppState&, StatusPart, OwnTexts&, const wchar_t*) {}
bool PostConversionEnd(AppState&, bool) {
  return true;
}

}  // namespace tw
