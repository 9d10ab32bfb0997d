#include "platform/notify.h"
#include "platform/windows/system.h"

// Each target is a message-only window whose user data points at it. Posted messages from
// WM_USER up go to the target; the system's own go to the default procedure.

namespace {

constexpr wchar_t kClassName[] = L"TarnNotifyTarget";

LRESULT CALLBACK TargetProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message >= WM_USER) {
    const LONG_PTR data = GetWindowLongPtrW(window, GWLP_USERDATA);
    if (auto* target = reinterpret_cast<CNotifyTarget*>(data)) {
      target->OnPosted(message, wParam, lParam);
      return 0;
    }
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

bool RegisterTargetClass() {
  static const bool registered = [] {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = TargetProcedure;
    windowClass.hInstance = ThisModule();
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass) != 0;
  }();
  return registered;
}

HWND AsWindow(NotifyHandle handle) { return reinterpret_cast<HWND>(handle); }

}  // namespace

NotifyHandle RegisterNotifyTarget(CNotifyTarget& target) {
  if (!RegisterTargetClass()) return 0;
  HWND window = CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                ThisModule(), nullptr);
  if (!window) return 0;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&target));
  return reinterpret_cast<NotifyHandle>(window);
}

// Posts still queued for the window are discarded with it, so none reaches a gone target.
void UnregisterNotifyTarget(NotifyHandle handle) {
  if (handle == 0) return;
  SetWindowLongPtrW(AsWindow(handle), GWLP_USERDATA, 0);
  DestroyWindow(AsWindow(handle));
}

// A null window would post to the calling thread itself.
bool PostNotify(NotifyHandle handle, MessageId message, WPARAM_T wParam, LPARAM_T lParam) {
  return handle != 0 && PostMessageW(AsWindow(handle), message, wParam, lParam) != 0;
}

void DeliverQueuedNotifications() {
  MSG message;
  while (PeekMessageW(&message, nullptr, WM_USER, 0xFFFF, PM_REMOVE)) DispatchMessageW(&message);
}
