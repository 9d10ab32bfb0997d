#include "editor/property_page.h"

#include <atomic>
#include <cstring>
#include <new>
#include <string_view>

namespace {

std::atomic<std::int32_t> g_pageCount{0};

LPOLESTR CopyToTaskMemory(std::wstring_view text) {
  auto* copy = static_cast<OLECHAR*>(CoTaskMemAlloc((text.size() + 1) * sizeof(OLECHAR)));
  if (!copy) return nullptr;
  std::memcpy(copy, text.data(), text.size() * sizeof(OLECHAR));
  copy[text.size()] = 0;
  return copy;
}

}  // namespace

CUnknown* CExternalHardwareProxyDXiPropPage::CreateInstance(IUnknown* outer, HRESULT* phr) {
  auto* page = new (std::nothrow) CExternalHardwareProxyDXiPropPage(outer);
  if (phr) *phr = page ? S_OK : E_OUTOFMEMORY;
  return page;
}

std::int32_t CExternalHardwareProxyDXiPropPage::PageCount() noexcept { return g_pageCount; }

CExternalHardwareProxyDXiPropPage::CExternalHardwareProxyDXiPropPage(IUnknown* outer)
    : CUnknown(L"Tarn property page", outer) {
  ++g_pageCount;
}

CExternalHardwareProxyDXiPropPage::~CExternalHardwareProxyDXiPropPage() { --g_pageCount; }

HRESULT CExternalHardwareProxyDXiPropPage::NonDelegatingQueryInterface(REFIID iid,
                                                                       void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IPropertyPage) return GetInterface(static_cast<IPropertyPage*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

HRESULT CExternalHardwareProxyDXiPropPage::SetPageSite(IPropertyPageSite* site) {
  m_site = ComPtr<IPropertyPageSite>(site);
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::Activate(HWND parent, LPCRECT rect, BOOL) {
  const HRESULT hr = m_dialog.Create(parent);
  if (FAILED(hr)) return hr;
  if (rect) Move(rect);
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::Deactivate() {
  m_dialog.Destroy();
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::GetPageInfo(PROPPAGEINFO* info) {
  if (!info) return E_POINTER;
  *info = {};
  info->cb = sizeof(PROPPAGEINFO);
  info->pszTitle = CopyToTaskMemory(kTitle);
  if (!info->pszTitle) return E_OUTOFMEMORY;
  info->size = {kSkinWidth, kSkinHeight};
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::SetObjects(ULONG count, IUnknown** objects) {
  if (count > 0 && !objects) return E_POINTER;
  m_objects.clear();
  for (ULONG i = 0; i < count; ++i) m_objects.emplace_back(objects[i]);
  m_dialog.OnObjectsChanged({objects, count});
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::Show(UINT command) {
  IPageView* view = m_dialog.View();
  if (!view) return E_UNEXPECTED;
  view->Show(command != SW_HIDE);
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::Move(LPCRECT rect) {
  if (!rect) return E_POINTER;
  IPageView* view = m_dialog.View();
  if (!view) return E_UNEXPECTED;
  view->Move(rect->left, rect->top, rect->right, rect->bottom);
  return S_OK;
}

HRESULT CExternalHardwareProxyDXiPropPage::IsPageDirty() { return S_FALSE; }

HRESULT CExternalHardwareProxyDXiPropPage::Apply() { return S_OK; }

HRESULT CExternalHardwareProxyDXiPropPage::Help(LPCOLESTR) { return E_NOTIMPL; }

HRESULT CExternalHardwareProxyDXiPropPage::TranslateAccelerator(MSG*) { return S_FALSE; }
