// CInstrument: an instance's store of device definitions and the names it hands the host.
//
// Per device the store keeps its banks (bank number to the name of a patch table) and the name
// of its controller table. Patch and controller tables live in maps of their own, keyed by
// table name, so banks of different devices that name the same table share its entries. One
// device is current: "Generic Device", the built-in empty one, at first. Selecting a device
// builds the name lists the host reads: one per bank, and one for the controllers.
//
// The store is read from "devices.xml" when the object is made, and written back when it is
// destroyed, but only if an import or a clear changed it: of two instances that changed their
// stores, the one destroyed last decides what the file holds. "Generic Device" is never written.
// Writing goes to "devices.xml.saving" and replaces the file only once complete, so a failed
// write never leaves a broken file where a good one was; a file that was there but could not be
// read (broken, cut short, not a store) is kept as "devices.xml.unread" when replaced.
// Devices that arrive through a saved state change the store in memory only.
//
// Threads: the host calls the IMfxInstrument operations from its threads, under the instance
// lock; the editor and the load path call the rest. Every operation takes the store's own
// re-entrant lock, the innermost lock of the instance.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "interfaces/mfx_instrument.h"
#include "instruments/string_map.h"
#include "platform/com_ptr.h"
#include "platform/lock.h"

class TiXmlNode;

class CInstrument final : public CUnknownImpl<IMfxInstrument> {
 public:
  // The name of the built-in empty device.
  static constexpr const char* kGenericDevice = "Generic Device";

  // "devices.xml" in the folder of the module file.
  static std::wstring DefaultDevicesFile();

  // An object with no references whose store is read from `devicesFile`; a missing or broken
  // file gives an empty store. Nothing is selected: "Generic Device" is current, with no lists.
  explicit CInstrument(std::wstring devicesFile = DefaultDevicesFile());

  // --- IMfxInstrument (documented there) -------------------------------------------------------
  HRESULT STDMETHODCALLTYPE GetInstrumentName(char* name, std::uint32_t capacity) override;
  // Asking for the banks of a device the store lacks adds that device, empty.
  HRESULT STDMETHODCALLTYPE GetBanks(std::int32_t** banks, std::int32_t* count) override;
  HRESULT STDMETHODCALLTYPE QueryPatchFalse(std::int32_t bank, std::int32_t patch) override;
  HRESULT STDMETHODCALLTYPE QueryPatchTrue(std::int32_t bank, std::int32_t patch) override;
  // A list left by an earlier device for a bank that the current one lacks is still answered.
  HRESULT STDMETHODCALLTYPE GetPatchNames(std::int32_t bank, IMfxNameList** names) override;
  HRESULT STDMETHODCALLTYPE ReservedQuery(std::int32_t a, std::int32_t b, void* c) override;
  HRESULT STDMETHODCALLTYPE GetControllerNames(IMfxNameList** names) override;
  HRESULT STDMETHODCALLTYPE ReservedListA(void* a) override;
  HRESULT STDMETHODCALLTYPE ReservedListB(void* a) override;

 private:
  // The class's own virtual operations follow the interface's, destructor first: the order is
  // part of the object's binary layout. Writes the store to its file when it changed.
  virtual ~CInstrument();

 public:
  // [any thread] Replaces the bank's list with a new one, titled "<device> Patches", from the
  // table that the current device names for the bank (a bank it lacks is added, empty).
  // E_OUTOFMEMORY.
  virtual HRESULT BuildPatchList(std::int32_t bank);
  // E_NOTIMPL.
  virtual HRESULT ReservedBuild(void* a);
  // [any thread] Replaces the controller list with a new one, titled "<device> Controllers".
  virtual HRESULT BuildControllerList();
  // E_NOTIMPL.
  virtual HRESULT ReservedBuildA();
  virtual HRESULT ReservedBuildB();

  // --- the store, for the settings and the editor ---------------------------------------------
  // [editor or load] Appends an "Instrument" element for the current device to `parent`.
  void WriteCurrentDevice(TiXmlNode& parent);
  // [editor or load] Appends an "Instrument" element for the device `name` ("Type", its "CC"
  // children, then its "Bank" children with their "Patch" elements, each in number order). A
  // device the store lacks is added, empty.
  void WriteDevice(TiXmlNode& parent, const std::wstring& name);
  // [editor or load] Merges every "Instrument" child of `parent` into the store and appends
  // their names to `names`. A device read this way keeps its controllers in the table of its
  // own name, replaced, and its banks replaced; the patch tables they name are merged into.
  // Elements without a readable "Type" and lines without a readable "Num" are skipped.
  void ReadDevices(const TiXmlNode& parent, std::vector<std::wstring>& names);
  // [any thread] The devices' names in order.
  std::vector<std::wstring> GetDeviceNames() const;
  // [editor or load] Makes `name` current (adding it, empty, if the store lacks it) and builds
  // its lists; the changed mark is set. E_FAIL, with nothing changed, while the store is empty.
  // Lists of banks that the new device lacks stay until a device with those banks is selected.
  HRESULT SelectDevice(const std::wstring& name);
  // [editor] Makes "Generic Device" current, as SelectDevice does, also with an empty store.
  HRESULT ResetToGenericDevice();
  // [editor] Imports a file by its extension, in any case: ".xml" that starts with "<?xml" is
  // merged as a devices file (S_OK even when it does not parse), ".ins" is parsed as
  // instrument definitions (E_FAIL when the store is still empty afterwards). Other files:
  // E_FAIL. Success marks the store for writing. Nothing is selected.
  HRESULT ImportDefinitions(const std::wstring& path);
  // [editor] Forgets every device and patch table and marks the store for writing. Controller
  // tables stay, out of sight, and merge with a later import of the same name. The caller then
  // resets to "Generic Device".
  void RemoveAllDevices();
  // [editor] Merges the instrument definitions in the file at `path` into the store (see
  // ParseDefinitionText). An unreadable file merges nothing. True when the store holds any
  // device afterwards, whatever this file held.
  bool ParseDefinitionFile(const std::wstring& path);
  // [editor] Merges instrument definition text: ".Patch Names" and ".Controller Names" tables
  // (lines "number=name" under "[table]"), and ".Instrument Definitions" (under "[device]":
  // "Patch[n]=table" banks, "Control=table", "BankSelMethod=1" for banks counted by their
  // select MSB in later lines). Lines are read as a C runtime reads them with a 260-byte
  // buffer: a line of more than 259 bytes goes on as a new line, and a last line without an
  // ending is lost. Other sections and malformed lines are ignored. True as above.
  bool ParseDefinitionText(std::string_view text);
  // [any thread] Whether the current device changed since the last call; clears the mark.
  bool ConsumeChanged() noexcept { return m_changed.exchange(false); }

 private:
  using NameTable = std::map<std::int32_t, std::wstring>;
  struct DeviceEntry {
    std::wstring controllerTable;
    std::map<std::int32_t, std::wstring> banks;  // bank number to patch table name
    std::int32_t bankSelMethod = 0;              // used during one import only, not saved
  };
  struct DefinitionParse;

  std::vector<std::int32_t> CurrentBanks();
  HRESULT MakeCurrent(const char* name);
  void ReadDevice(const TiXmlNode& instrument, std::vector<std::wstring>& names);
  void SaveFile();
  void ParseLine(DefinitionParse& parse, std::wstring_view line);
  void ParseDefinitionLine(const std::wstring& device, std::wstring_view key,
                           std::wstring_view value);

  std::atomic<bool> m_changed{true};
  mutable CCritSec m_lock;
  std::string m_currentName = kGenericDevice;
  ComPtr<CStringMap> m_controllerList;
  std::map<std::int32_t, ComPtr<CStringMap>> m_patchLists;
  std::map<std::wstring, NameTable> m_patchTables;
  std::map<std::wstring, NameTable> m_controllerTables;
  std::map<std::wstring, DeviceEntry> m_devices;
  std::wstring m_devicesFile;
  bool m_dirty = false;
  bool m_unreadFile = false;  // a file stood there at start that gave no store
};
