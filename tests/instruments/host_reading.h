// The host's ways of reading a device's names, for the tests to compare what it would show.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "interfaces/mfx_instrument.h"
#include "platform/com_ptr.h"

// The current device's banks, through GetBanks.
inline std::vector<std::int32_t> Banks(IMfxInstrument& instrument) {
  std::int32_t* array = nullptr;
  std::int32_t count = -1;
  if (FAILED(instrument.GetBanks(&array, &count))) return {};
  std::vector<std::int32_t> banks(array, array + count);
  CoTaskMemFree(array);
  return banks;
}

inline std::string Title(IMfxNameList& list) {
  char title[260];
  list.GetTitle(title, sizeof title);
  return title;
}

// Every entry, by the walk.
inline std::map<std::int32_t, std::string> Walk(IMfxNameList& list) {
  ComPtr<IMfxNameList2> list2;
  list2.QueryFrom(&list, IID_IMfxNameList2);
  std::map<std::int32_t, std::string> names;
  MfxPosition position = 0;
  list2->GetFirstPosition(&position);
  std::int32_t key = 0;
  char name[260];
  while (list2->GetNextEntry(&position, &key, name, sizeof name) == S_OK) names[key] = name;
  return names;
}

// Index 0 to the count less one, as the program-change dialog reads a list.
inline std::vector<std::string> ByIndex(IMfxNameList& list) {
  ComPtr<IMfxNameList2> list2;
  list2.QueryFrom(&list, IID_IMfxNameList2);
  std::int32_t count = 0;
  list2->GetCount(&count);
  std::vector<std::string> names;
  char name[260];
  for (std::int32_t i = 0; i < count; ++i)
    if (list.GetNameAt(i, name, sizeof name) == S_OK) names.emplace_back(name);
  return names;
}

template <class Source>
ComPtr<IMfxNameList> PatchNames(Source& source, std::int32_t bank) {
  ComPtr<IMfxNameList> list;
  source.GetPatchNames(bank, list.Receive());
  return list;
}

template <class Source>
ComPtr<IMfxNameList> ControllerNames(Source& source) {
  ComPtr<IMfxNameList> list;
  source.GetControllerNames(list.Receive());
  return list;
}
