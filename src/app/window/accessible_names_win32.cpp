#include "app/window/accessible_names_win32.h"

#include <windows.h>

// Defines the identifiers below; needs the types of windows.h.
#include <initguid.h>

#include <oleacc.h>

#include "app/window/control_ids.h"
#include "app/window/window_handles_win32.h"

namespace tw {
namespace {

struct SpokenName {
  int id;
  const wchar_t* name;
};
constexpr SpokenName kNames[] = {
    {ID_FAST_BACK, L"Back by 100 places"},
    {ID_BACK, L"Back by 20 places"},
    {ID_PAUSE, L"Hold"},
    {ID_RESUME, L"Play on"},
};

}  // namespace

// A system without the service reads the arrows. The names live as long as the service, which is as long as
// the process.
void NameControls(const AppState& state) {
  IAccPropServices* services = nullptr;
  static_cast<void>(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                              reinterpret_cast<void**>(&services))))
    return;
  for (const SpokenName& row : kNames) {
    services->SetHwndPropStr(Control(state, row.id), static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                             PROPID_ACC_NAME, row.name);
  }
}

}  // namespace tw
