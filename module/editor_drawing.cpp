#include "module/editor_drawing.h"

#ifdef _WIN32
#include "editor/about_view.h"
#include "editor/closed_loop_dialog_view.h"
#include "editor/event_dialog_views.h"
#include "editor/hex_dialog_views.h"
#include "editor/page_view.h"
#include "editor/view_factory.h"
#include "platform/message_box.h"

namespace {

constexpr const wchar_t* kNoDrawing =
    L"This build of Tarn has no drawing of its editor yet: its page cannot be shown on Windows. "
    L"The instance works as configured; its configuration travels in its saved state.";

// Says so once for each page the host tries to open; no dialog can open without the page.
class CNoDrawing final : public CEditorViewFactory {
 public:
  std::unique_ptr<IPageView> CreatePageView(ParentWindow) override {
    ShowMessageBox(kNoDrawing, L"Tarn", MB_OK_FLAG | MB_ICONWARNING_FLAG);
    return nullptr;
  }
  std::unique_ptr<IHexEditDialogView> CreateHexEditDialog(ParentWindow) override { return {}; }
  std::unique_ptr<IPrefixEditorView> CreatePrefixEditor(ParentWindow) override { return {}; }
  std::unique_ptr<IProgramDialogView> CreateProgramDialog(ParentWindow) override { return {}; }
  std::unique_ptr<IControllerDialogView> CreateControllerDialog(ParentWindow) override {
    return {};
  }
  std::unique_ptr<IWaitDialogView> CreateWaitDialog(ParentWindow) override { return {}; }
  std::unique_ptr<IAboutDialogView> CreateAboutDialog(ParentWindow) override { return {}; }
  std::unique_ptr<IClosedLoopDialogView> CreateClosedLoopDialog(ParentWindow) override {
    return {};
  }
};

}  // namespace

void InstallEditorDrawing() noexcept {
  static CNoDrawing none;
  SetEditorViewFactory(&none);
}
#else
#include "ui/qt_editor.h"

void InstallEditorDrawing() noexcept { InstallQtEditor(); }
#endif
