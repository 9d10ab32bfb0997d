#include "ui/editor_views.h"

#include <dlfcn.h>

#include <QtWidgets/QApplication>

#include "platform/module_path.h"
#include "ui/about_dialog.h"
#include "ui/clipboard_presenter.h"
#include "ui/closed_loop_dialog.h"
#include "ui/event_dialogs.h"
#include "ui/file_dialog_presenter.h"
#include "ui/hex_dialogs.h"
#include "ui/message_box_presenter.h"
#include "ui/page_view.h"
#include "ui/popup_menu_presenter.h"
#include "ui/qt_editor.h"
#include "ui/timer_presenter.h"

namespace {

QWidget* AsWidget(ParentWindow parent) { return static_cast<QWidget*>(parent); }

// A host without Qt gets an application object of the module's own; it lives as long as the
// process, as the module does from then on.
void EnsureApplication() {
  if (QCoreApplication::instance()) return;
  static int argc = 1;
  static char name[] = "tarn";
  static char* argv[] = {name, nullptr};
  static QApplication* application = new QApplication(argc, argv);
  (void)application;
}

// Unloading the module would take Qt's classes and resources of ours away under Qt's feet.
void PinModule() {
  const std::wstring path = ModulePath();
  const QByteArray file = QString::fromStdWString(path).toLocal8Bit();
  if (!path.empty()) dlopen(file.constData(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

void InstallPresenters() {
  static CQtMessageBoxPresenter messageBoxes;
  static CQtFileDialogPresenter fileDialogs;
  static CQtPopupMenuPresenter popupMenus;
  static CQtClipboardPresenter clipboard;
  static CQtTimerPresenter* timers = new CQtTimerPresenter;  // a QObject of the editor thread
  SetMessageBoxPresenter(&messageBoxes);
  SetFileDialogPresenter(&fileDialogs);
  SetPopupMenuPresenter(&popupMenus);
  SetClipboardPresenter(&clipboard);
  SetTimerPresenter(timers);
}

}  // namespace

void EnsureQtRuntime() {
  static const bool started = [] {
    EnsureApplication();
    InstallPresenters();
    PinModule();
    return true;
  }();
  (void)started;
}

void InstallQtEditor() {
  static CQtEditorViewFactory factory;
  SetEditorViewFactory(&factory);
}

std::unique_ptr<IPageView> CQtEditorViewFactory::CreatePageView(ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtPageView>(AsWidget(parent));
}

std::unique_ptr<IHexEditDialogView> CQtEditorViewFactory::CreateHexEditDialog(ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtHexEditDialogView>(AsWidget(parent));
}

std::unique_ptr<IPrefixEditorView> CQtEditorViewFactory::CreatePrefixEditor(ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtPrefixEditorView>(AsWidget(parent));
}

std::unique_ptr<IProgramDialogView> CQtEditorViewFactory::CreateProgramDialog(ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtProgramDialogView>(AsWidget(parent));
}

std::unique_ptr<IControllerDialogView> CQtEditorViewFactory::CreateControllerDialog(
    ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtControllerDialogView>(AsWidget(parent));
}

std::unique_ptr<IWaitDialogView> CQtEditorViewFactory::CreateWaitDialog(ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtWaitDialogView>(AsWidget(parent));
}

std::unique_ptr<IAboutDialogView> CQtEditorViewFactory::CreateAboutDialog(ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtAboutDialogView>(AsWidget(parent));
}

std::unique_ptr<IClosedLoopDialogView> CQtEditorViewFactory::CreateClosedLoopDialog(
    ParentWindow parent) {
  EnsureQtRuntime();
  return std::make_unique<CQtClosedLoopDialogView>(AsWidget(parent));
}
