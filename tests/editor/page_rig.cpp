#include "tests/editor/page_rig.h"

#include "documents/stored_event.h"

PageRig::PageRig(bool activate) {
  HRESULT hr = E_FAIL;
  CUnknown* made = CExternalHardwareProxyDXiPropPage::CreateInstance(nullptr, &hr);
  object = static_cast<CExternalHardwareProxyDXiPropPage*>(made);
  made->NonDelegatingUnknown()->QueryInterface(IID_IPropertyPage,
                                               reinterpret_cast<void**>(page.Receive()));
  IUnknown* objects[] = {static_cast<IMyFilter*>(&filter())};
  page->SetObjects(1, objects);
  if (activate) Activate();
}

PageRig::~PageRig() { Close(); }

HRESULT PageRig::Activate() {
  const RECT rect{0, 0, 657, 336};
  return page->Activate(static_cast<HWND>(Parent()), &rect, 0);
}

void PageRig::Deliver() { DeliverQueuedNotifications(); }

void PageRig::AddEvent(const CStoredEvent& event) {
  std::uint32_t count = 0;
  filter().GetEventCount(&count);
  filter().InsertEvent(count, &event);
}

void PageRig::Close() {
  if (!page) return;
  page->Deactivate();
  page.Reset();
  object = nullptr;
}
