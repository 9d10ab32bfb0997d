// A property page and the host side of it: the host gives the page a site, the objects it is
// to edit, and a parent window to show itself in. On Windows everything here comes from the
// system headers; elsewhere it is declared with the same layout and operation order.
#pragma once

#include <cstdint>

#include "platform/com.h"
#include "platform/unknown_impl.h"

#ifdef _WIN32
#include <ocidl.h>
#else

#include "platform/dispatch.h"  // LCID
#include "platform/stream.h"    // DWORD

using BOOL = std::int32_t;
using UINT = std::uint32_t;
using OLECHAR = wchar_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
// A window of the host's, opaque to the page: the parent it activates in.
using HWND = void*;

struct RECT {
  std::int32_t left, top, right, bottom;
};
using LPCRECT = const RECT*;
struct POINT {
  std::int32_t x, y;
};
struct SIZE {
  std::int32_t cx, cy;
};
// A window message, as a host hands one to a page's accelerators.
struct MSG {
  HWND hwnd;
  UINT message;
  std::uintptr_t wParam;
  std::intptr_t lParam;
  DWORD time;
  POINT pt;
};

// What a page tells its host about itself; the strings come from CoTaskMemAlloc and the host
// frees them.
struct PROPPAGEINFO {
  ULONG cb;
  LPOLESTR pszTitle;
  SIZE size;
  LPOLESTR pszDocString;
  LPOLESTR pszHelpFile;
  DWORD dwHelpContext;
};

inline constexpr DWORD PROPPAGESTATUS_DIRTY = 0x1;
inline constexpr DWORD PROPPAGESTATUS_VALIDATE = 0x2;
inline constexpr DWORD PROPPAGESTATUS_CLEAN = 0x4;
inline constexpr UINT SW_HIDE = 0;
inline constexpr UINT SW_SHOW = 5;
inline constexpr UINT SW_SHOWNORMAL = 1;

// {B196B28C-BAB4-101A-B69C-00AA00341D07}
inline constexpr IID IID_IPropertyPageSite =
    MakeGuid(0xB196B28C, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07);
// The host's side of one page.
struct IPropertyPageSite : IUnknown {
  // [editor thread] The page's state changed: PROPPAGESTATUS_DIRTY, _VALIDATE, _CLEAN.
  virtual HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD flags) = 0;
  // [editor thread] The host's locale.
  virtual HRESULT STDMETHODCALLTYPE GetLocaleID(LCID* locale) = 0;
  // [editor thread] The host's frame around its pages; E_NOTIMPL where there is none.
  virtual HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown** container) = 0;
  // [editor thread] A key the page did not use, for the host's accelerators; S_FALSE when the
  // host does not use it either.
  virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) = 0;
};

// {B196B28D-BAB4-101A-B69C-00AA00341D07}
inline constexpr IID IID_IPropertyPage =
    MakeGuid(0xB196B28D, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07);
// A page as its host drives it: site, objects, then Activate into a parent window, Show, Move,
// and Deactivate when the host's frame closes.
struct IPropertyPage : IUnknown {
  // [editor thread] The host's site, or null before the page goes; the page keeps a reference.
  virtual HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* site) = 0;
  // [editor thread] Makes the page's window inside `parent` over `rect`.
  virtual HRESULT STDMETHODCALLTYPE Activate(HWND parent, LPCRECT rect, BOOL modal) = 0;
  // [editor thread] Destroys the page's window.
  virtual HRESULT STDMETHODCALLTYPE Deactivate() = 0;
  // [editor thread] The page's title and size.
  virtual HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* info) = 0;
  // [editor thread] The objects the page edits; 0 and null unbind it.
  virtual HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** objects) = 0;
  // [editor thread] SW_SHOW, SW_SHOWNORMAL or SW_HIDE.
  virtual HRESULT STDMETHODCALLTYPE Show(UINT command) = 0;
  // [editor thread] Moves the window to `rect` in the parent's pixels.
  virtual HRESULT STDMETHODCALLTYPE Move(LPCRECT rect) = 0;
  // [editor thread] S_OK when changes wait for Apply, else S_FALSE.
  virtual HRESULT STDMETHODCALLTYPE IsPageDirty() = 0;
  // [editor thread] Hands waiting changes to the objects.
  virtual HRESULT STDMETHODCALLTYPE Apply() = 0;
  // [editor thread] Shows help from `helpFolder`; E_NOTIMPL when the page has none.
  virtual HRESULT STDMETHODCALLTYPE Help(LPCOLESTR helpFolder) = 0;
  // [editor thread] S_OK when the page used the key, else S_FALSE.
  virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) = 0;
};

#endif  // _WIN32

TARN_INTERFACE_ID(IPropertyPageSite, IID_IPropertyPageSite, IUnknown);
TARN_INTERFACE_ID(IPropertyPage, IID_IPropertyPage, IUnknown);

static_assert(sizeof(RECT) == 16);
static_assert(sizeof(PROPPAGEINFO) == (sizeof(void*) == 8 ? 48 : 28));
static_assert(sizeof(MSG) == (sizeof(void*) == 8 ? 48 : 28));
