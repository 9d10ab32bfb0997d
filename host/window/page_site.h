// The host's side of one property page: the page reports status changes here and asks for the
// locale. The page is never dirty (each change goes to its instance at once), so a status
// change asks nothing of the window.
#pragma once

#include "interfaces/property_page.h"

class CPageSite final : public CUnknownImpl<IPropertyPageSite> {
 public:
  CPageSite() = default;

  HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD flags) override;
  // The user's default locale.
  HRESULT STDMETHODCALLTYPE GetLocaleID(LCID* locale) override;
  // E_NOTIMPL: the window is no page frame of the platform's.
  HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown** container) override;
  // S_FALSE: the window's own shortcuts go through Qt.
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;
};
