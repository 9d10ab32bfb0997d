// The About box on screen: a dialog around an HTML view of the picture's size, and OK.
#pragma once

#include <QtCore/QPointer>

#include "editor/about_view.h"
#include "ui/modal_dialog.h"

class CQtHtmlView;

class CQtAboutDialogView final : public IAboutDialogView {
 public:
  explicit CQtAboutDialogView(QWidget* parent);
  ~CQtAboutDialogView() override;

  void SetTitle(const std::wstring& title) override;
  void SetHtmlAreaSize(PixelSize size) override;
  IHtmlView* CreateHtmlView() override;
  int RunModal(IModalEvents& events) override;
  void EndDialog(int result) override;


 private:
  QPointer<CModalDialog> m_dialog;
  // Children of the dialog, alive while it is: the placeholder, then the HTML view in its place.
  QWidget* m_area = nullptr;
  CQtHtmlView* m_html = nullptr;
  IModalEvents* m_events = nullptr;
};
