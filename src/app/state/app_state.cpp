#include "app/state/app_state.h"

#include <type_traits>

namespace tw {

static_assert(std::is_trivial_v<AppState> && std::is_trivial_v<Globals>);

constinit Globals globals{};

}  // namespace tw
