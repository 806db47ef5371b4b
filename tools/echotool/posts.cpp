// The program's workers post texts to a window; here there is none.
#include "app/posts.h"

namespace tw {

void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

}  // namespace tw
