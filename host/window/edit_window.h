// tarn-host's edit window: the rack's instances in a list, the chosen one's property page beside
// it (activated inside a QWidget of this window: on Linux the parent window a page gets is a
// QWidget of the host, in the same process and the same Qt), and below them a monitor of what
// reaches the MIDI ports. Save writes the rack; closing the window saves it when it changed.
#pragma once

#include <QtWidgets/QMainWindow>

#include "host/window/edit_session.h"
#include "host/window/page_site.h"

class QApplication;
class QListWidget;
class QPlainTextEdit;
class QTimer;

// The host's own look: Fusion in the dark of the page's panel, so that a page sits in the window
// as a unit in a rack.
void UseRackLook(QApplication& application);

class CEditWindow final : public QMainWindow {
 public:
  explicit CEditWindow(CEditSession& session);
  ~CEditWindow() override;

  // Shows the page of the instance at `row` of the list, closing the one shown; false (and a
  // line in the status bar) when the instance has no page that opens.
  bool ShowInstance(int row);
  // Saves the rack, saying so in the status bar or, on failure, in a message box.
  bool SaveRack();

  QListWidget& InstanceList() const noexcept { return *m_instances; }
  QWidget& PageHost() const noexcept { return *m_pageHost; }
  QPlainTextEdit& Monitor() const noexcept { return *m_monitor; }
  IPropertyPage* Page() const noexcept { return m_page.Get(); }
  // Takes the monitor's new lines now rather than at its next poll.
  void PollMonitor();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildMenus();
  void ClosePage();

  CEditSession& m_session;
  ComPtr<CPageSite> m_site;
  ComPtr<IPropertyPage> m_page;
  QListWidget* m_instances;
  QWidget* m_pageHost;
  QPlainTextEdit* m_monitor;
  QTimer* m_poll;
};
