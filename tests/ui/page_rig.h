// The property page on screen over a real instance, as a host opens it: the page object made by
// its class's creation entry, given the instance, and activated inside a window of the test's
// (a QWidget, as every Linux host hands one). The instance runs, on the fake host's ports.
#pragma once

#include <QtWidgets/QWidget>
#include <vector>

#include "documents/stored_event.h"
#include "editor/property_page.h"
#include "tests/support/test_instance.h"
#include "ui/page_view.h"

class QMenu;

struct PageRig {
  ConnectedRig host;  // first: the host's objects outlive the page
  QWidget frame;      // the host's window for the page
  ComPtr<IPropertyPage> page;

  // Ports "Out A" and "Out B"; `events` are stored in the instance before the page opens.
  explicit PageRig(const std::vector<CStoredEvent>& events = {});
  ~PageRig();
  PageRig(const PageRig&) = delete;
  PageRig& operator=(const PageRig&) = delete;

  CPageWidget& Page();
  IMyFilter& Filter() { return host.instance.filter(); }
  // The instance's events as they stand, copied.
  std::vector<CStoredEvent> Events();
  // Clicks a menu button of the page and chooses `path` from the menu that opens, saving a
  // picture of it as `screen` when named.
  void ChooseFromButton(std::uint32_t button, const QStringList& path, const QString& screen = {});
  // Clicks a plain button of the page.
  void Press(std::uint32_t button);
};

// A stored event of `kind` under `name`.
CStoredEvent Named(const wchar_t* name, NewEventKind kind);
