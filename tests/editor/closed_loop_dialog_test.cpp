// The closed-loop test's dialog over real instances whose outputs are looped back: what it
// shows at each step of a run, the bars' 16-bit ranges, and its end.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "editor/closed_loop_dialog.h"
#include "tests/editor/page_rig.h"

namespace {

// Instances with running workers and enabled output, each looped back to itself.
class ClosedLoopDialog : public ::testing::Test {
 protected:
  ~ClosedLoopDialog() override {
    for (auto& rig : rigs) {
      rig->ports.LoopBackTo({});
      rig->Stop();
    }
  }
  ConnectedRig& AddInstance(bool loop = true) {
    rigs.push_back(std::make_unique<ConnectedRig>());
    ConnectedRig& rig = *rigs.back();
    rig.EnableOutput();
    rig.Start();
    if (loop) rig.ports.LoopBackTo({&rig.instance.filter()});
    return rig;
  }
  int Run(ClosedLoopDialogRecorder::Script script) {
    views.closedLoopScript = std::move(script);
    return CMidiClosedLoopTestDlg(&rigs.front()->instance.filter(), &parentWindow).DoModal();
  }

  ManualTimers timers;
  ViewFactoryRecorder views;
  std::vector<std::unique_ptr<ConnectedRig>> rigs;
  int parentWindow = 0;
};

TEST_F(ClosedLoopDialog, OpensIdleWithItsNumbersAndClosesWithEveryTimerStopped) {
  AddInstance();
  const int result = Run([](ClosedLoopDialogRecorder& dialog) {
    EXPECT_EQ(dialog.Text(kClosedLoopStatus), L"");
    EXPECT_TRUE(dialog.Enabled(kClosedLoopStart));
    EXPECT_FALSE(dialog.Enabled(kClosedLoopStop));
    EXPECT_EQ(dialog.Text(kClosedLoopInstances), L"1");
    EXPECT_EQ(dialog.Text(kClosedLoopDifference), L"0");
    EXPECT_EQ(dialog.Progress(kClosedLoopOutputBar).range, 640);
    EXPECT_EQ(dialog.Progress(kClosedLoopInputBar).range, 640);
    dialog.Press(kClosedLoopStop);  // disabled: nothing happens
    dialog.Press(kClosedLoopStart);
    EXPECT_EQ(dialog.Text(kClosedLoopStatus), L"Waiting for quiescence MIDI input...");
    EXPECT_FALSE(dialog.Enabled(kClosedLoopStart));
    EXPECT_TRUE(dialog.Enabled(kClosedLoopStop));
  });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(views.closedLoop.parents, std::vector<ParentWindow>{&parentWindow});
  EXPECT_EQ(timers.RunningCount(), 0u) << "no tick reaches a test that has gone";
}

TEST_F(ClosedLoopDialog, TheBarsRangesWrapInSixteenBitsForVeryManyInstances) {
  for (int i = 0; i < 103; ++i) AddInstance(false);
  Run([](ClosedLoopDialogRecorder& dialog) {
    EXPECT_EQ(dialog.Text(kClosedLoopInstances), L"103");
    EXPECT_EQ(dialog.Progress(kClosedLoopOutputBar).range, (640 * 103) & 0xFFFF);
    EXPECT_EQ(dialog.Progress(kClosedLoopInputBar).range, (640 * 103 * 103) & 0xFFFF);
  });
}

TEST_F(ClosedLoopDialog, WithoutADrawingItAnswersCancelAtOnce) {
  AddInstance();
  views.closedLoop.make = nullptr;
  EXPECT_EQ(Run({}), 2);
  EXPECT_EQ(timers.RunningCount(), 0u);
}

TEST(ClosedLoopDialogOnThePage, TestOpensItOverThePageAndClosingReturnsToThePage) {
  PageRig rig(false);
  rig.host.EnableOutput();
  rig.Activate();
  rig.view().Click(kTestButton);
  ASSERT_EQ(rig.views.closedLoop.parents.size(), 1u);
  EXPECT_EQ(rig.views.closedLoop.parents[0], rig.view().Window());
  EXPECT_EQ(rig.timers.RunningCount(), 1u) << "the page's meter timer alone";
}

}  // namespace
