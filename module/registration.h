// What the module writes into the class registry and the filter mapper, and takes out again.
//
// Per row: "CLSID\{class}" with the display name as default value, and below it
// "InprocServer32" with the module's full path and "ThreadingModel" = "Both". For a row with
// filter setup data also the mapper's listing, and "MfxSoftSynths\{class}", by which a host
// finds its soft synths, with "Description" (which holds that key path itself: the form hosts
// have always read), "HelpFilePath" and "HelpFileTopic" (empty, stored with a length of one
// byte).
#pragma once

#include <span>
#include <string>

#include "module/class_table.h"

// [host thread, inside a CComScope] Writes the class keys of every row and lists every filter
// with the mapper; a failure there stops and is the answer. Then per filter row: asks a new
// object through the platform's creation to register itself (the answer is not looked at) and
// writes its soft-synth key; a failure there stops quietly, and the answer stays 0.
HRESULT RegisterServer(std::span<const CFactoryTemplate> table, const std::wstring& modulePath);

// [host thread, inside a CComScope] Removes every filter's listing and every class key; a
// failure there stops and is the answer. Then per row: asks a new object to unregister itself
// (which normally fails, the class keys being gone) and deletes "MfxSoftSynths\{class}" with all
// below it, an absent key being no failure. Then 0.
HRESULT UnregisterServer(std::span<const CFactoryTemplate> table);

// "MfxSoftSynths\{class}", the braced identifier in upper case.
std::wstring SoftSynthKey(REFCLSID clsid);
