// The view of the About box: a dialog around an HTML view, sized to a picture.
#pragma once

#include <string>

#include "editor/modal_view.h"
#include "platform/html_view.h"

namespace about_dialog {
inline constexpr int kHtmlPlaceholder = 1023;  // the control the HTML view replaces
}  // namespace about_dialog

struct PixelSize {
  int width = 0;
  int height = 0;
  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

class IAboutDialogView : public IModalView {
 public:
  // [editor thread, before RunModal]
  virtual void SetTitle(const std::wstring& title) = 0;
  // [editor thread, before RunModal] Gives the HTML area (the placeholder 1023) this size and
  // the dialog the outer size that holds it.
  virtual void SetHtmlAreaSize(PixelSize size) = 0;
  // [editor thread, before RunModal] Makes the HTML view in place of the placeholder, owned by
  // the view; null when none can be made.
  virtual IHtmlView* CreateHtmlView() = 0;
  // [editor thread] Shows the dialog until EndDialog; answers its result. OK and the close box
  // are reported through `events`.
  virtual int RunModal(IModalEvents& events) = 0;
};
