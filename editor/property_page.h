// The property page of an instance: the module's second class. A host asks an instance for its
// pages (ISpecifyPropertyPages), creates this one, gives it a site and the objects to edit, and
// activates it inside a window of its own. The page is a view over the instance: it owns
// nothing of the model, and goes without a trace.
#pragma once

#include <cstdint>
#include <vector>

#include "editor/page_dialog.h"
#include "frame/unknown.h"
#include "interfaces/property_page.h"
#include "platform/com_ptr.h"

class CExternalHardwareProxyDXiPropPage final : public CUnknown, public IPropertyPage {
 public:
  // The page's title and its size in pixels, as GetPageInfo gives them.
  static constexpr const wchar_t* kTitle = L"Tarn";

  // The factory's creation entry: builds a page and answers its non-delegating face, with the
  // construction result in `*phr`; null when the allocation fails.
  static CUnknown* CreateInstance(IUnknown* outer, HRESULT* phr);
  // [any thread] Pages alive in the process.
  static std::int32_t PageCount() noexcept;

  DECLARE_IUNKNOWN
  // IPropertyPage besides the object's own.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  // --- IPropertyPage ---------------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* site) override;
  // Makes the page's window inside `parent` and starts it; E_FAIL when no window can be made
  // (no drawing is installed), E_UNEXPECTED when it is active already.
  HRESULT STDMETHODCALLTYPE Activate(HWND parent, LPCRECT rect, BOOL modal) override;
  HRESULT STDMETHODCALLTYPE Deactivate() override;
  // The title and the skin's size, 657 by 336.
  HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* info) override;
  // Binds the page to the first object that offers media parameters, their info and IMyFilter.
  HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** objects) override;
  HRESULT STDMETHODCALLTYPE Show(UINT command) override;
  HRESULT STDMETHODCALLTYPE Move(LPCRECT rect) override;
  // Every change goes to the instance at once: never dirty, nothing to apply.
  HRESULT STDMETHODCALLTYPE IsPageDirty() override;
  HRESULT STDMETHODCALLTYPE Apply() override;
  // E_NOTIMPL: the page has no help.
  HRESULT STDMETHODCALLTYPE Help(LPCOLESTR helpFolder) override;
  // S_FALSE: the page's window takes its keys itself.
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;

  // The page's logic, for the host's frame and for tests.
  CPageDialog& Dialog() noexcept { return m_dialog; }

 private:
  explicit CExternalHardwareProxyDXiPropPage(IUnknown* outer);
  ~CExternalHardwareProxyDXiPropPage() override;

  ComPtr<IPropertyPageSite> m_site;
  std::vector<ComPtr<IUnknown>> m_objects;
  CPageDialog m_dialog;
};
