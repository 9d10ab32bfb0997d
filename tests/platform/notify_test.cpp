#include <gtest/gtest.h>

#include "platform/message_box.h"
#include "platform/notify.h"
#include "tests/support/recorders.h"

namespace {

TEST(Notify, PostsReachTheTargetUntilItUnregisters) {
  NotifyHandle stale = 0;
  {
    NotifyRecorder target;
    stale = target.Handle();
    EXPECT_TRUE(PostNotify(stale, 0xC001, 42, 0));
    ASSERT_EQ(target.Messages().size(), 1u);
    EXPECT_EQ(target.Messages()[0].wParam, 42u);
  }
  EXPECT_FALSE(PostNotify(stale, 0xC001, 1, 0)) << "a gone target must be a dead handle";
  EXPECT_FALSE(PostNotify(0, 0xC001, 1, 0));
}

TEST(MessageBox, RecorderSeesTheExactTextAndRestoresThePrevious) {
  {
    MessageBoxRecorder outer;
    {
      MessageBoxRecorder inner;
      EXPECT_EQ(ShowMessageBox(L"hello", L"Tarn", MB_ICONWARNING_FLAG), ID_OK_ANSWER);
      ASSERT_EQ(inner.Boxes().size(), 1u);
      EXPECT_EQ(inner.Boxes()[0].text, L"hello");
    }
    ShowMessageBox(L"second", L"Tarn", MB_OK_FLAG);
    ASSERT_EQ(outer.Boxes().size(), 1u);
    EXPECT_EQ(outer.Boxes()[0].text, L"second");
  }
}

}  // namespace
