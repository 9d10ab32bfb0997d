// The module's page as a host without Qt opens it: loaded by path, the page made through the
// module's factory and activated with no parent window. The module brings its own application
// object, so the page comes up as a window of its own and goes again on Deactivate.
#include <gtest/gtest.h>

#include <cstdlib>

#include "interfaces/class_ids.h"
#include "interfaces/property_page.h"
#include "platform/class_object.h"
#include "platform/com_ptr.h"
#include "tests/module/loaded_module.h"

// The module's application object lives as long as the process, and with it the font
// configuration Qt loaded, which is never handed back: not a leak of ours.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so"; }

namespace {

ComPtr<IUnknown> Create(const LoadedModule& module, REFCLSID clsid) {
  ComPtr<IClassFactory> factory;
  ComPtr<IUnknown> object;
  if (SUCCEEDED(module.GetClassObject(clsid, IID_IClassFactory,
                                      reinterpret_cast<void**>(factory.Receive()))))
    factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(object.Receive()));
  return object;
}

TEST(ModulePage, AHostWithoutQtGetsThePageInAnApplicationOfTheModulesOwn) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);  // no display is needed to make the window
  LoadedModule module;
  ASSERT_TRUE(module.Loaded());
  ComPtr<IUnknown> instance = Create(module, CLSID_TarnFilter);
  ComPtr<IUnknown> object = Create(module, CLSID_TarnPropertyPage);
  ComPtr<IPropertyPage> page;
  ASSERT_TRUE(instance);
  ASSERT_EQ(page.QueryFrom(object.Get(), IID_IPropertyPage), S_OK);
  IUnknown* objects[] = {instance.Get()};
  ASSERT_EQ(page->SetObjects(1, objects), S_OK);
  const RECT rect{0, 0, 657, 336};
  EXPECT_EQ(page->Activate(nullptr, &rect, 0), S_OK) << "a window needs an application object";
  EXPECT_EQ(page->Show(SW_SHOW), S_OK);
  EXPECT_EQ(page->Deactivate(), S_OK);
  EXPECT_EQ(page->SetObjects(0, nullptr), S_OK);
  page.Reset();
  object.Reset();
  instance.Reset();
  EXPECT_EQ(module.CanUnloadNow(), S_OK) << "the page and the instance left nothing behind";
}

}  // namespace
