// The page's face to its host: the property page contract, which object it binds to, and its
// window's life.
#include <gtest/gtest.h>

#include "interfaces/media_params.h"
#include "tests/editor/page_rig.h"

namespace {

TEST(PropertyPage, TellsItsTitleAndTheSkinsSize) {
  PageRig rig(false);
  PROPPAGEINFO info{};
  EXPECT_EQ(rig.page->GetPageInfo(nullptr), E_POINTER);
  ASSERT_EQ(rig.page->GetPageInfo(&info), S_OK);
  EXPECT_EQ(info.cb, sizeof(PROPPAGEINFO));
  EXPECT_STREQ(info.pszTitle, L"Tarn");
  EXPECT_EQ(info.size.cx, 657);
  EXPECT_EQ(info.size.cy, 336);
  EXPECT_EQ(info.pszHelpFile, nullptr);
  CoTaskMemFree(info.pszTitle);
}

TEST(PropertyPage, BindsToTheFirstObjectWithMediaParametersAndTheirInfo) {
  PageRig rig(false);
  IUnknown* instance = static_cast<IMyFilter*>(&rig.filter());
  FakePageObject bare({});
  FakePageObject paramsOnly({IID_IMediaParams});
  IUnknown* skipped[] = {&bare, &paramsOnly, instance};
  ASSERT_EQ(rig.page->SetObjects(3, skipped), S_OK);
  EXPECT_EQ(rig.dialog().Filter(), &rig.filter());

  // Both media interfaces but no IMyFilter: the search stops there, unbound.
  FakePageObject mediaOnly({IID_IMediaParams, IID_IMediaParamInfo});
  IUnknown* stopping[] = {&mediaOnly, instance};
  rig.page->SetObjects(2, stopping);
  EXPECT_EQ(rig.dialog().Filter(), nullptr);
  EXPECT_EQ(mediaOnly.RefCount(), 3) << "in the object array and in both bound references";

  EXPECT_EQ(rig.page->SetObjects(1, nullptr), E_POINTER);
  rig.page->SetObjects(0, nullptr);
  EXPECT_EQ(mediaOnly.RefCount(), 0) << "unbinding lets go of everything";
}

TEST(PropertyPage, AnUnboundPageOpensEmptyAndItsCommandsDoNothing) {
  PageRig rig(false);
  rig.page->SetObjects(0, nullptr);
  ASSERT_EQ(rig.Activate(), S_OK);
  PageViewRecorder& view = rig.view();
  EXPECT_EQ(view.Text(kPortText), L"none");
  EXPECT_EQ(view.RowCount(), 0);
  rig.menus.AnswerNext(47000);
  view.Click(kAddButton);
  rig.menus.AnswerNext(2005);
  view.Click(kChannelButton);
  EXPECT_EQ(view.RowCount(), 0);
  EXPECT_EQ(view.Text(kChannelText), L"Bypass");
}

TEST(PropertyPage, ActivatesOnceShowsMovesAndDeactivates) {
  PageRig rig(false);
  ASSERT_EQ(rig.Activate(), S_OK);
  EXPECT_EQ(rig.Activate(), E_UNEXPECTED);
  EXPECT_EQ(rig.page->Show(SW_HIDE), S_OK);
  EXPECT_FALSE(rig.view().Visible());
  const RECT rect{10, 10, 600, 300};
  EXPECT_EQ(rig.page->Move(&rect), S_OK);
  EXPECT_EQ(rig.page->Move(nullptr), E_POINTER);
  EXPECT_EQ(rig.page->IsPageDirty(), S_FALSE);
  EXPECT_EQ(rig.page->Apply(), S_OK);
  EXPECT_EQ(rig.page->Help(L""), E_NOTIMPL);
  EXPECT_EQ(rig.page->TranslateAccelerator(nullptr), S_FALSE);
  ASSERT_EQ(rig.page->Deactivate(), S_OK);
  EXPECT_EQ(rig.page->Show(SW_SHOW), E_UNEXPECTED);
  EXPECT_EQ(rig.page->Move(&rect), E_UNEXPECTED);
  EXPECT_EQ(rig.Activate(), S_OK) << "a host may open the page again";
  EXPECT_EQ(rig.views.page.parents.size(), 2u);
}

TEST(PropertyPage, KeepsItsSiteUntilToldOtherwise) {
  FakePageSite site;
  {
    PageRig rig(false);
    rig.page->SetPageSite(&site);
    EXPECT_EQ(site.RefCount(), 1);
    rig.page->SetPageSite(nullptr);
    EXPECT_EQ(site.RefCount(), 0);
    rig.page->SetPageSite(&site);
  }
  EXPECT_EQ(site.RefCount(), 0) << "released with the page";
}

TEST(PropertyPage, AWindowThatGoesByItselfStopsTheMetersAndThePageLivesOn) {
  PageRig rig;
  rig.view().Close();
  EXPECT_EQ(rig.timers.RunningCount(), 0u);
  rig.view().Click(kTestButton);
  EXPECT_TRUE(rig.views.closedLoop.parents.empty()) << "a page without a window does nothing";
  EXPECT_EQ(rig.page->Deactivate(), S_OK);
  EXPECT_EQ(rig.Activate(), S_OK);
}

}  // namespace
