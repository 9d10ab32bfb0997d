#include "tests/ui/page_rig.h"

#include <QtWidgets/QMenu>

#include "tests/ui/user.h"
#include "ui/skin_button.h"

CStoredEvent Named(const wchar_t* name, NewEventKind kind) {
  CStoredEvent event = CStoredEvent::MakeNew(kind);
  event.SetName(name);
  return event;
}

PageRig::PageRig(const std::vector<CStoredEvent>& events) {
  host.ports.SetOutputs({L"Out A", L"Out B"});
  host.Start();
  for (std::uint32_t i = 0; i < events.size(); ++i) Filter().InsertEvent(i, &events[i]);
  HRESULT hr = E_FAIL;
  CUnknown* made = CExternalHardwareProxyDXiPropPage::CreateInstance(nullptr, &hr);
  made->NonDelegatingUnknown()->QueryInterface(IID_IPropertyPage,
                                               reinterpret_cast<void**>(page.Receive()));
  IUnknown* objects[] = {static_cast<IMyFilter*>(&Filter())};
  page->SetObjects(1, objects);
  frame.resize(kSkinWidth, kSkinHeight);
  const RECT rect{0, 0, kSkinWidth, kSkinHeight};
  page->Activate(static_cast<QWidget*>(&frame), &rect, 0);
  page->Show(SW_SHOW);
  frame.show();
}

PageRig::~PageRig() {
  host.ports.LoopBackTo({});
  page->Deactivate();
  page->SetObjects(0, nullptr);
  page.Reset();
}

CPageWidget& PageRig::Page() { return *frame.findChild<CPageWidget*>(); }

std::vector<CStoredEvent> PageRig::Events() {
  std::uint32_t count = 0;
  Filter().GetEventCount(&count);
  std::vector<CStoredEvent> events;
  for (std::uint32_t i = 0; i < count; ++i) {
    CStoredEvent* event = nullptr;
    if (SUCCEEDED(Filter().GetEvent(i, &event)) && event) events.push_back(*event);
  }
  return events;
}

void PageRig::ChooseFromButton(std::uint32_t button, const QStringList& path,
                               const QString& screen) {
  user::OnNextMenu([path, screen](QMenu& menu) {
    if (!screen.isEmpty()) user::SaveScreen(menu, screen);
    user::Choose(menu, path);
  });
  user::Click(*Page().Button(button));
}

void PageRig::Press(std::uint32_t button) { user::Click(*Page().Button(button)); }
