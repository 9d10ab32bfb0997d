// The classes this module makes: one row per class, in a fixed order. The registration, the
// class factory and the load and unload steps all read this one table.
#pragma once

#include <span>

#include "frame/unknown.h"
#include "platform/filter_mapper.h"

// Builds an object aggregated in `outer` (or standing alone when it is null) and answers its
// non-delegating face, with a failure, if any, in `*status`; null when allocation fails.
using CreationEntry = CUnknown* (*)(IUnknown* outer, HRESULT* status);
// Called with true at module load and false at unload.
using InitRoutine = void (*)(bool loading, const CLSID* clsid);

struct CFactoryTemplate {
  const wchar_t* m_name;
  const CLSID* m_clsid;
  CreationEntry m_create;
  InitRoutine m_init;        // none in this module's rows
  const FilterSetup* m_setup;  // what the filter mapper lists; null for a class that is no filter

  bool IsClassId(REFCLSID clsid) const noexcept { return *m_clsid == clsid; }
};

// The module's two rows: the filter ("marrowgate Tarn MIDI Output", with its setup data) and
// its property page ("marrowgate Tarn Property Page", without).
std::span<const CFactoryTemplate> ClassTable();

// The filter's setup data: merit 0x200000, an "Input" and an "Output" pin, each connecting to
// the other, each taking audio of any subtype, neither rendered, one instance of each.
const FilterSetup& TarnFilterSetup();
