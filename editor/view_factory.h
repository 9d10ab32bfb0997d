// Each screen's logic talks to its drawing through a passive view: the logic decides, the view
// shows and reports the user's actions back. One factory makes the views: the Qt editor installs
// its own, tests install recorders. With none installed (headless) no view can be made, and a
// screen that needs one does nothing: a modal dialog answers Cancel at once.
#pragma once

#include <memory>

class IPageView;
class IHexEditDialogView;
class IPrefixEditorView;
class IProgramDialogView;
class IControllerDialogView;
class IWaitDialogView;
class IAboutDialogView;
class IClosedLoopDialogView;

// The window a view is made inside: the host's parent window for the page, the page's own
// window for its dialogs. Opaque to the logic.
using ParentWindow = void*;

class CEditorViewFactory {
 public:
  // [editor thread] Each makes a new view, or null when it cannot.
  virtual std::unique_ptr<IPageView> CreatePageView(ParentWindow parent) = 0;
  virtual std::unique_ptr<IHexEditDialogView> CreateHexEditDialog(ParentWindow parent) = 0;
  virtual std::unique_ptr<IPrefixEditorView> CreatePrefixEditor(ParentWindow parent) = 0;
  virtual std::unique_ptr<IProgramDialogView> CreateProgramDialog(ParentWindow parent) = 0;
  virtual std::unique_ptr<IControllerDialogView> CreateControllerDialog(ParentWindow parent) = 0;
  virtual std::unique_ptr<IWaitDialogView> CreateWaitDialog(ParentWindow parent) = 0;
  virtual std::unique_ptr<IAboutDialogView> CreateAboutDialog(ParentWindow parent) = 0;
  virtual std::unique_ptr<IClosedLoopDialogView> CreateClosedLoopDialog(ParentWindow parent) = 0;

 protected:
  ~CEditorViewFactory() = default;
};

// [editor thread] The installed factory, or null when headless.
CEditorViewFactory* EditorViews();
// Installs `factory` (null: headless again); returns the one before.
CEditorViewFactory* SetEditorViewFactory(CEditorViewFactory* factory);
