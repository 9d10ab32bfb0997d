// CStringMap: one name list for the host, a title and a sparse map from a number to a name.
// The device store builds one per bank of the current device and one for its controllers; it
// fills a list completely before handing it out and never changes it afterwards.
//
// Threads: building on one thread; once handed out, reads from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "interfaces/mfx_instrument.h"
#include "platform/com_ptr.h"

class CStringMap final : public CUnknownImpl<IMfxNameList2> {
 public:
  // An empty list with no references; a null title leaves the title empty.
  explicit CStringMap(const char* title);


  // --- IMfxNameList, IMfxNameList2 (documented there) ------------------------------------------
  HRESULT STDMETHODCALLTYPE GetTitle(char* title, std::int32_t length) override;
  HRESULT STDMETHODCALLTYPE GetMaxCount(std::int32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetNameAt(std::int32_t index, char* name,
                                      std::uint32_t length) override;
  HRESULT STDMETHODCALLTYPE GetCount(std::int32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetFirstPosition(MfxPosition* position) override;
  HRESULT STDMETHODCALLTYPE GetNextEntry(MfxPosition* position, std::int32_t* key, char* name,
                                         std::int32_t length) override;
  HRESULT STDMETHODCALLTYPE LookupName(std::int32_t key, char* name, std::int32_t length) override;

  // [building thread] Stores `text` under `key`, replacing a name already there. S_OK.
  HRESULT SetName(std::int32_t key, std::string_view text);

 private:
  using Entry = std::pair<std::int32_t, std::string>;

  ~CStringMap() = default;
  const Entry* Find(std::int32_t key) const noexcept;

  std::vector<Entry> m_names;  // ascending by key; a position is an index plus one
  std::string m_title;
  std::int32_t m_maxCount = 128;
};

// Makes a list titled `title` into an empty `*target`, which then holds its one reference.
// E_POINTER for a null target, E_OUTOFMEMORY; S_OK, doing nothing, when `*target` already
// holds a list.
HRESULT CreateNameList(ComPtr<CStringMap>* target, const char* title);
