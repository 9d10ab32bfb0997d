// The module as a host meets it: loaded at run time, registered under a private registry root,
// found again through the soft-synth keys, and asked for objects through its exports alone.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/filter.h"
#include "interfaces/my_filter.h"
#include "interfaces/ole_interfaces.h"
#include "platform/class_object.h"
#include "platform/class_registry.h"
#include "platform/filter_mapper.h"
#include "tests/module/loaded_module.h"
#include "tests/support/fake_unknown.h"

#ifndef _WIN32
#include "tests/support/temp_folder.h"
#endif

namespace {

const std::wstring kFilterKey = L"CLSID\\{D8DF3849-A01D-4254-A57D-5515BF9E3886}";
const std::wstring kPageKey = L"CLSID\\{7EE1B0E4-0780-435C-9646-D5AB1F16BAFD}";
const std::wstring kSynthKey = L"MfxSoftSynths\\{D8DF3849-A01D-4254-A57D-5515BF9E3886}";

const LoadedModule& Module() {
  static const LoadedModule module;
  return module;
}

template <class T>
void ReleaseAll(std::initializer_list<T*> objects) {
  for (T* object : objects)
    if (object) object->Release();
}

// Every test starts from an empty private root, for the module and for the test's own reads.
class LoadedModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Module().Loaded());
#ifdef _WIN32
    m_root = L"Software\\TarnModuleTest";
#else
    m_root = m_folder.Path().wstring() + L"/registry";
#endif
    Module().SetRegistryRoot(m_root);
    SetClassRegistryRoot(m_root);
    DeleteRegistryTree(L"CLSID");
    DeleteRegistryTree(L"MfxSoftSynths");
  }
  void TearDown() override {
    Module().Unregister();
    Module().SetRegistryRoot(L"");
    SetClassRegistryRoot(L"");
  }

  IClassFactory* Factory(REFCLSID clsid) {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(Module().GetClassObject(clsid, IID_IClassFactory,
                                      reinterpret_cast<void**>(&factory)),
              S_OK);
    return factory;
  }

#ifndef _WIN32
  TempFolder m_folder;
#endif
  std::wstring m_root;
};

TEST_F(LoadedModuleTest, HostFindsTheRegisteredSynthCreatesItAndTheModuleUnloadsAfter) {
#ifndef _WIN32
  IAMovieSetup* setup = nullptr;
  EXPECT_EQ(CreateRegisteredObject(CLSID_TarnFilter, nullptr, IID_IAMovieSetup,
                                   reinterpret_cast<void**>(&setup)),
            REGDB_E_CLASSNOTREG);
#endif
  ASSERT_EQ(Module().Register(), S_OK);

  // What the host reads to list the soft synths.
  const std::vector<std::wstring> synths = RegistrySubkeys(L"MfxSoftSynths");
  ASSERT_EQ(synths.size(), 1u);
  EXPECT_EQ(ReadRegistryValue(kSynthKey, L"Description"), kSynthKey);
  EXPECT_EQ(ReadRegistryValue(kSynthKey, L"HelpFilePath"), L"");
  EXPECT_EQ(ReadRegistryValue(kSynthKey, L"HelpFileTopic"), L"");
  CLSID clsid{};
  ASSERT_TRUE(GuidFromString(synths[0], clsid));
  EXPECT_EQ(ReadRegistryValue(kFilterKey), L"marrowgate Tarn MIDI Output");
  EXPECT_EQ(ReadRegistryValue(kFilterKey + L"\\InprocServer32"), Module().Path());
  EXPECT_EQ(ReadRegistryValue(kFilterKey + L"\\InprocServer32", L"ThreadingModel"), L"Both");

  IClassFactory* factory = Factory(clsid);
  ASSERT_NE(factory, nullptr);
  IUnknown* filter = nullptr;
  ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&filter)),
            S_OK);
  factory->Release();
  IPersistStream* persist = nullptr;
  ASSERT_EQ(filter->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist)), S_OK);
  CLSID persisted{};
  EXPECT_EQ(persist->GetClassID(&persisted), S_OK);
  EXPECT_EQ(persisted, clsid);
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);

  ReleaseAll<IUnknown>({persist, filter});
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);

#ifndef _WIN32
  // The platform's creation by class finds the module through its class keys, as a graph does.
  ASSERT_EQ(CreateRegisteredObject(clsid, nullptr, IID_IAMovieSetup,
                                   reinterpret_cast<void**>(&setup)),
            S_OK);
  EXPECT_EQ(setup->Register(), S_FALSE);  // the module's registration lists it, not the filter
  setup->Release();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
  EXPECT_EQ(ReadFilterSetup(CLSID_TarnFilter)->merit, 0x200000u) << "the host's mapper sees it";
#endif

  ASSERT_EQ(Module().Unregister(), S_OK);
#ifndef _WIN32
  EXPECT_FALSE(ReadFilterSetup(CLSID_TarnFilter));
#endif
  EXPECT_FALSE(ReadRegistryValue(kFilterKey));
  EXPECT_FALSE(ReadRegistryValue(kPageKey));
  EXPECT_TRUE(RegistrySubkeys(L"MfxSoftSynths").empty());
}

#ifndef _WIN32
TEST_F(LoadedModuleTest, AFailedSoftSynthKeyLeavesTheClassKeysAndStillSucceeds) {
  // A file where the soft-synth folder should be: its key cannot be made.
  std::filesystem::create_directories(m_root);
  m_folder.Write("registry/MfxSoftSynths", "");
  EXPECT_EQ(Module().Register(), S_OK);
  EXPECT_EQ(ReadRegistryValue(kFilterKey), L"marrowgate Tarn MIDI Output");
  EXPECT_EQ(ReadRegistryValue(kPageKey), L"marrowgate Tarn Property Page");
  EXPECT_FALSE(ReadRegistryValue(kSynthKey, L"Description"));
}
#endif

TEST_F(LoadedModuleTest, ClassObjectRequestsAreCheckedInterfaceFirstAndLocksKeepTheModule) {
  const CLSID unknown = MakeGuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11);
  int sentinel = 0;
  void* object = &sentinel;
  EXPECT_EQ(Module().GetClassObject(unknown, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  // The interface is refused before the class is looked for, known or not.
  object = &sentinel;
  EXPECT_EQ(Module().GetClassObject(unknown, IID_IMyFilter, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(Module().GetClassObject(CLSID_TarnFilter, IID_IMyFilter, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  // Each request makes a factory of its own, counted until released.
  IUnknown* first = nullptr;
  IUnknown* second = nullptr;
  ASSERT_EQ(Module().GetClassObject(CLSID_TarnFilter, IID_IUnknown,
                                    reinterpret_cast<void**>(&first)),
            S_OK);
  ASSERT_EQ(Module().GetClassObject(CLSID_TarnFilter, IID_IUnknown,
                                    reinterpret_cast<void**>(&second)),
            S_OK);
  EXPECT_NE(first, second);
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  ReleaseAll<IUnknown>({first, second});
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
  // A server lock outlives its factory.
  IClassFactory* factory = Factory(CLSID_TarnFilter);
  EXPECT_EQ(factory->LockServer(1), S_OK);
  factory->Release();
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  factory = Factory(CLSID_TarnFilter);
  EXPECT_EQ(factory->LockServer(0), S_OK);
  factory->Release();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

TEST_F(LoadedModuleTest, AnAggregatedFilterIsMadeOnlyForIUnknownAndDelegatesToItsOuter) {
  FakeOuterUnknown outer;
  IClassFactory* factory = Factory(CLSID_TarnFilter);
  ASSERT_NE(factory, nullptr);
  void* object = &outer;
  EXPECT_EQ(factory->CreateInstance(&outer, IID_IMyFilter, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IMyFilter, nullptr), E_POINTER);

  IUnknown* inner = nullptr;
  ASSERT_EQ(factory->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(&inner)),
            S_OK);
  factory->Release();
  IMyFilter* myFilter = nullptr;
  ASSERT_EQ(inner->QueryInterface(IID_IMyFilter, reinterpret_cast<void**>(&myFilter)), S_OK);
  EXPECT_EQ(outer.RefCount(), 1);  // the facet's reference belongs to the outer object
  IUnknown* identity = nullptr;
  ASSERT_EQ(myFilter->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)), S_OK);
  EXPECT_EQ(identity, static_cast<IUnknown*>(&outer));
  ReleaseAll<IUnknown>({identity, myFilter});
  EXPECT_EQ(outer.RefCount(), 0);
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  inner->Release();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

// A snapshot of everything registration writes, as text.
std::wstring RegisteredKeys() {
  std::wstring text;
  for (const std::wstring& key : {kFilterKey, kPageKey}) {
    text += key + L"=" + ReadRegistryValue(key).value_or(L"-") + L";";
    text += ReadRegistryValue(key + L"\\InprocServer32").value_or(L"-") + L";";
    text += ReadRegistryValue(key + L"\\InprocServer32", L"ThreadingModel").value_or(L"-") + L";";
    for (const std::wstring& subkey : RegistrySubkeys(key)) text += subkey + L",";
  }
  for (const std::wstring& synth : RegistrySubkeys(L"MfxSoftSynths"))
    text += synth + L"=" +
            ReadRegistryValue(L"MfxSoftSynths\\" + synth, L"Description").value_or(L"-");
  return text;
}

TEST_F(LoadedModuleTest, RegisteringTwiceLeavesTheSameKeysAndThePageHasNoSoftSynthKey) {
  ASSERT_EQ(Module().Register(), S_OK);
  const std::wstring once = RegisteredKeys();
  ASSERT_EQ(Module().Register(), S_OK);
  EXPECT_EQ(RegisteredKeys(), once);
  EXPECT_EQ(ReadRegistryValue(kPageKey + L"\\InprocServer32", L"ThreadingModel"), L"Both");
  EXPECT_EQ(RegistrySubkeys(L"MfxSoftSynths"),
            std::vector<std::wstring>{L"{D8DF3849-A01D-4254-A57D-5515BF9E3886}"});
}

TEST_F(LoadedModuleTest, UnregisteringWhatWasNeverRegisteredSucceedsAndTouchesNothingElse) {
  const std::wstring other = L"CLSID\\{00000000-1111-2222-3333-444444444444}";
  const RegistryValue name[] = {{L"", L"another plug-in"}};
  ASSERT_TRUE(CreateRegistryKey(other, name));
  EXPECT_EQ(Module().Unregister(), S_OK);
  EXPECT_EQ(ReadRegistryValue(other), L"another plug-in");
  DeleteRegistryTree(other);
}

TEST_F(LoadedModuleTest, ThePageIsACountedObjectThatAnswersIUnknownOnly) {
  IClassFactory* factory = Factory(CLSID_TarnPropertyPage);
  ASSERT_NE(factory, nullptr);
  IUnknown* page = nullptr;
  ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&page)),
            S_OK);
  factory->Release();
  void* other = page;
  EXPECT_EQ(page->QueryInterface(IID_IMyFilter, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  page->Release();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

}  // namespace
