#include "host/window/page_site.h"

HRESULT CPageSite::OnStatusChange(DWORD) { return S_OK; }

HRESULT CPageSite::GetLocaleID(LCID* locale) {
  if (!locale) return E_POINTER;
  *locale = 0x0400;  // the user's default
  return S_OK;
}

HRESULT CPageSite::GetPageContainer(IUnknown** container) {
  if (container) *container = nullptr;
  return E_NOTIMPL;
}

HRESULT CPageSite::TranslateAccelerator(MSG*) { return S_FALSE; }
