// A client of the system's component runtime, run between Wine's own "regsvr32 Tarn.dll" and
// "regsvr32 /u Tarn.dll": it knows the filter only by its class identifier.
//   com_client_tests --gtest_filter=Registered.*    after registration
//   com_client_tests --gtest_filter=Unregistered.*  after unregistration
#include <gtest/gtest.h>

#include <string>

#include "interfaces/mfx_interfaces.h"
#include "interfaces/my_filter.h"
#include "interfaces/ole_interfaces.h"
#include "platform/windows/system.h"

namespace {

// The class identifier alone: the instance's header would pull its inline operations in, and
// with them the plug-in's libraries, which this client never links.
constexpr CLSID CLSID_TarnFilter =
    MakeGuid(0xD8DF3849, 0xA01D, 0x4254, 0xA5, 0x7D, 0x55, 0x15, 0xBF, 0x9E, 0x38, 0x86);

const wchar_t kFilterKey[] = L"CLSID\\{D8DF3849-A01D-4254-A57D-5515BF9E3886}";
const wchar_t kPageKey[] = L"CLSID\\{7EE1B0E4-0780-435C-9646-D5AB1F16BAFD}";
const wchar_t kSynthKey[] = L"MfxSoftSynths\\{D8DF3849-A01D-4254-A57D-5515BF9E3886}";
const wchar_t kListingKey[] =
    L"CLSID\\{083863F1-70DE-11D0-BD40-00A0C911CE86}\\Instance\\"
    L"{D8DF3849-A01D-4254-A57D-5515BF9E3886}";

// A value of HKEY_CLASSES_ROOT exactly as stored: its bytes, or nothing.
struct StoredValue {
  bool found = false;
  DWORD bytes = 0;
  std::wstring text;
};

StoredValue Read(const wchar_t* key, const wchar_t* name) {
  StoredValue value;
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key, 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS)
    return value;
  wchar_t data[512] = {};
  DWORD bytes = sizeof(data) - sizeof(wchar_t);
  DWORD type = 0;
  if (RegQueryValueExW(opened, name, nullptr, &type, reinterpret_cast<BYTE*>(data), &bytes) ==
          ERROR_SUCCESS &&
      type == REG_SZ) {
    value.found = true;
    value.bytes = bytes;
    value.text = data;
  }
  RegCloseKey(opened);
  return value;
}

bool KeyExists(const wchar_t* key) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key, 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

class ComScope {
 public:
  ComScope() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~ComScope() { CoUninitialize(); }
};

TEST(Registered, ClassAndSoftSynthKeysAreWrittenAsHostsReadThem) {
  EXPECT_EQ(Read(kFilterKey, nullptr).text, L"marrowgate Tarn MIDI Output");
  EXPECT_EQ(Read(kPageKey, nullptr).text, L"marrowgate Tarn Property Page");
  const std::wstring server = std::wstring(kFilterKey) + L"\\InprocServer32";
  EXPECT_NE(Read(server.c_str(), nullptr).text.find(L"Tarn.dll"), std::wstring::npos);
  EXPECT_EQ(Read(server.c_str(), L"ThreadingModel").text, L"Both");

  // The description is the key path, given without its terminator, which the system then counts
  // because it follows in the buffer. The help values are one byte each.
  const StoredValue description = Read(kSynthKey, L"Description");
  EXPECT_EQ(description.text, kSynthKey);
  EXPECT_EQ(description.bytes, 2 * (std::wstring(kSynthKey).size() + 1));
  EXPECT_EQ(Read(kSynthKey, L"HelpFilePath").bytes, 1u);
  EXPECT_EQ(Read(kSynthKey, L"HelpFileTopic").bytes, 1u);
  EXPECT_FALSE(KeyExists(L"MfxSoftSynths\\{7EE1B0E4-0780-435C-9646-D5AB1F16BAFD}"));

  EXPECT_EQ(Read(kListingKey, L"FriendlyName").text, L"marrowgate Tarn MIDI Output");
}

TEST(Registered, TheFilterIsCreatedByClassIdentifierAndAnswersItsInterfaces) {
  ComScope com;
  IUnknown* filter = nullptr;
  ASSERT_EQ(CoCreateInstance(CLSID_TarnFilter, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&filter)),
            S_OK);
  IMfxSoftSynth2* synth = nullptr;
  IMyFilter* myFilter = nullptr;
  IExternalDeviceProxy3* proxy = nullptr;
  IPersistStream* persist = nullptr;
  EXPECT_EQ(filter->QueryInterface(IID_IMfxSoftSynth2, reinterpret_cast<void**>(&synth)), S_OK);
  EXPECT_EQ(filter->QueryInterface(IID_IMyFilter, reinterpret_cast<void**>(&myFilter)), S_OK);
  EXPECT_EQ(filter->QueryInterface(IID_IExternalDeviceProxy3, reinterpret_cast<void**>(&proxy)),
            S_OK);
  ASSERT_EQ(filter->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist)), S_OK);

  // Saved state is not served yet: both directions say so, through a real stream.
  IStream* stream = nullptr;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
  EXPECT_EQ(persist->Save(stream, TRUE), E_NOTIMPL);
  EXPECT_EQ(persist->Load(stream), E_NOTIMPL);
  stream->Release();

  for (IUnknown* face : {static_cast<IUnknown*>(synth), static_cast<IUnknown*>(myFilter),
                         static_cast<IUnknown*>(proxy), static_cast<IUnknown*>(persist), filter})
    if (face) face->Release();
}

TEST(Unregistered, EveryKeyIsGoneAndTheClassCannotBeCreated) {
  EXPECT_FALSE(KeyExists(kFilterKey));
  EXPECT_FALSE(KeyExists(kPageKey));
  EXPECT_FALSE(KeyExists(kSynthKey));
  EXPECT_FALSE(KeyExists(kListingKey));
  ComScope com;
  IUnknown* filter = nullptr;
  EXPECT_EQ(CoCreateInstance(CLSID_TarnFilter, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&filter)),
            REGDB_E_CLASSNOTREG);
}

}  // namespace
