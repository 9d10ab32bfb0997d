#include "editor/property_page.h"

#include <new>

CUnknown* CExternalHardwareProxyDXiPropPage::CreateInstance(IUnknown* outer, HRESULT*) {
  return new (std::nothrow) CExternalHardwareProxyDXiPropPage(outer);
}

CExternalHardwareProxyDXiPropPage::CExternalHardwareProxyDXiPropPage(IUnknown* outer)
    : CUnknown(L"Tarn property page", outer) {}
