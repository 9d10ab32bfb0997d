// A property page over a real instance, as a host opens it: made by its class's creation entry,
// given the instance as its object and activated inside a parent window, with every editor
// presenter recorded and the timers on a manual clock.
#pragma once

#include "editor/property_page.h"
#include "tests/support/editor_recorders.h"
#include "tests/support/test_instance.h"
#include "tests/support/view_recorders.h"

struct PageRig {
  // The host's objects outlive the page; the recorders too, as the page reaches them to its end.
  ConnectedRig host;
  MessageBoxRecorder boxes;
  FileDialogRecorder files;
  PopupMenuRecorder menus;
  ManualTimers timers;
  ViewFactoryRecorder views;
  int parentWindow = 0;  // stands for the host's window
  CExternalHardwareProxyDXiPropPage* object = nullptr;
  ComPtr<IPropertyPage> page;

  // Makes the page and binds it to the instance; `activate` also opens its window.
  explicit PageRig(bool activate = true);
  ~PageRig();
  PageRig(const PageRig&) = delete;
  PageRig& operator=(const PageRig&) = delete;

  HRESULT Activate();
  ParentWindow Parent() { return &parentWindow; }
  PageViewRecorder& view() { return *views.lastPage; }
  CPageDialog& dialog() { return object->Dialog(); }
  IMyFilter& filter() { return host.instance.filter(); }
  // Delivers the activity the instance posted to the page.
  static void Deliver();
  // Appends a stored event to the instance.
  void AddEvent(const CStoredEvent& event);
  // Closes the page as a host does: its window, then its last reference.
  void Close();
};
