// The Qt editor's view factory: each screen's view, drawn inside the window its logic names
// (a QWidget: the host's window for the page, the page for its dialogs).
#pragma once

#include "editor/view_factory.h"

class CQtEditorViewFactory final : public CEditorViewFactory {
 public:
  std::unique_ptr<IPageView> CreatePageView(ParentWindow parent) override;
  std::unique_ptr<IHexEditDialogView> CreateHexEditDialog(ParentWindow parent) override;
  std::unique_ptr<IPrefixEditorView> CreatePrefixEditor(ParentWindow parent) override;
  std::unique_ptr<IProgramDialogView> CreateProgramDialog(ParentWindow parent) override;
  std::unique_ptr<IControllerDialogView> CreateControllerDialog(ParentWindow parent) override;
  std::unique_ptr<IWaitDialogView> CreateWaitDialog(ParentWindow parent) override;
  std::unique_ptr<IAboutDialogView> CreateAboutDialog(ParentWindow parent) override;
  std::unique_ptr<IClosedLoopDialogView> CreateClosedLoopDialog(ParentWindow parent) override;
};

// [editor thread] A QApplication, the presenters and the pinned module, once; see qt_editor.h.
void EnsureQtRuntime();
