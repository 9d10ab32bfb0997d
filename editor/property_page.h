// The property page of an instance: the second class the module serves. For now it is a counted
// object that answers IUnknown only; the page's screens fill it in.
#pragma once

#include "frame/unknown.h"

class CExternalHardwareProxyDXiPropPage final : public CUnknown {
 public:
  // The factory's creation entry: builds a page and answers its non-delegating face, with the
  // construction result in `*phr`; null when the allocation fails.
  static CUnknown* CreateInstance(IUnknown* outer, HRESULT* phr);

 private:
  explicit CExternalHardwareProxyDXiPropPage(IUnknown* outer);
};
