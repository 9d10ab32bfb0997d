// The byte grid and the two hex editor dialogs: what reaches the caller, .syx files in and out,
// the question on Cancel, and the messages of a grid that cannot be made.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "editor/hex_edit_dialog.h"
#include "editor/prefix_editor_dialog.h"
#include "tests/support/view_recorders.h"
#include "tests/support/editor_recorders.h"
#include "tests/support/recorders.h"
#include "tests/support/temp_folder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using HexAction = HexEditDialogRecorder::Action;

std::string AsText(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

HexAction Press(void (IHexEditDialogEvents::*button)()) {
  return [button](HexEditDialogRecorder&, IHexEditDialogEvents& events) { (events.*button)(); };
}

HexAction Edit(std::size_t index, std::uint8_t value) {
  return [=](HexEditDialogRecorder& view, IHexEditDialogEvents&) {
    view.Grid().Overwrite(index, value);
  };
}

struct CountingObserver final : IHexGridObserver {
  int changes = 0;
  void OnGridDataChanged() override { ++changes; }
};

TEST(HexGrid, EditsTheArrayInPlaceAndMarksItModified) {
  Bytes array{0xF0, 0x41, 0xF7};
  CHexGrid grid;
  CountingObserver observer;
  grid.SetObserver(&observer);
  EXPECT_FALSE(grid.Overwrite(0, 1)) << "no array yet";
  grid.SetData(&array);
  EXPECT_FALSE(grid.Modified());
  EXPECT_TRUE(grid.Overwrite(1, 0x42));
  EXPECT_TRUE(grid.Overwrite(3, 0x00)) << "overwriting at the end appends";
  EXPECT_TRUE(grid.Insert(1, Bytes{0x10, 0x20}));
  EXPECT_TRUE(grid.Erase(0, 1));
  EXPECT_EQ(array, (Bytes{0x10, 0x20, 0x42, 0xF7, 0x00}));
  EXPECT_FALSE(grid.Overwrite(6, 0)) << "past the end";
  EXPECT_FALSE(grid.Insert(6, Bytes{1}));
  EXPECT_FALSE(grid.Erase(4, 2));
  EXPECT_EQ(array.size(), 5u);
  EXPECT_TRUE(grid.Modified());
  EXPECT_EQ(observer.changes, 5);
}

TEST(HexEditDialog, StartsWithACopyOkHandsBackEverythingAndResetEmpties) {
  ViewFactoryRecorder views;
  Bytes event{0xF0, 0x41, 0xF7};
  std::wstring name = L"Reset", description = L"GS reset";
  views.dialogs.NextHexEdit({{}, {[&](HexEditDialogRecorder& view, IHexEditDialogEvents& events) {
                             CHexGrid& grid = view.Grid();
                             EXPECT_EQ(view.name, L"Reset");
                             EXPECT_EQ(view.description, L"GS reset");
                             grid.Overwrite(1, 0x43);
                             EXPECT_EQ(event[1], 0x41) << "the dialog works on a copy";
                             view.name = L"Renamed";
                             events.OnOk();
                           }}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, &name, &description), kDialogOk);
  EXPECT_EQ(event, (Bytes{0xF0, 0x43, 0xF7}));
  EXPECT_EQ(name, L"Renamed");
  EXPECT_EQ(description, L"GS reset");

  views.dialogs.NextHexEdit(
      {{}, {Press(&IHexEditDialogEvents::OnReset), Press(&IHexEditDialogEvents::OnOk)}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogOk);
  EXPECT_TRUE(event.empty()) << "Reset then OK gives an empty array";
}

TEST(HexEditDialog, ImportTakesAnyFileWholeWithNoLimit) {
  TempFolder folder;
  FileDialogRecorder files;
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  std::string big(70000, '\0');
  for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i * 7);
  files.AnswerNext(folder.Write("big.syx", big));
  files.AnswerNext(folder.Write("empty.syx", ""));
  files.AnswerNext(folder.File("missing.syx"));
  Bytes event{0xF0, 0xF7}, empty{1}, missing{2};
  for (int run = 0; run < 3; ++run)
    views.dialogs.NextHexEdit(
        {{}, {Press(&IHexEditDialogEvents::OnImport), Press(&IHexEditDialogEvents::OnOk)}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogOk);
  EXPECT_EQ(AsText(event), big) << "no length test, no framing test";
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&empty, nullptr, nullptr), kDialogOk);
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&missing, nullptr, nullptr), kDialogOk);
  EXPECT_TRUE(missing.empty()) << "a missing file is made, empty";
  EXPECT_TRUE(std::filesystem::exists(folder.Path() / "missing.syx"));
  EXPECT_TRUE(boxes.Boxes().empty());
  ASSERT_EQ(files.Requests().size(), 3u);
  EXPECT_EQ(files.Requests()[0].mode, FileDialogMode::Open);
  EXPECT_EQ(files.Requests()[0].defaultExtension, L"syx");
  EXPECT_EQ(files.Requests()[0].filter, L"SysEx MIDI File (*.syx)|*.syx||");
}

TEST(HexEditDialog, ExportAsksOnceThenWritesSilentlyAndCancelThenAsksNothing) {
  TempFolder folder;
  FileDialogRecorder files;
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  const std::wstring target = folder.File("out.syx");
  files.AnswerNext(target);
  Bytes event{0xF0, 0x01, 0xF7};
  views.dialogs.NextHexEdit({{},
                     {Edit(1, 0x02), Press(&IHexEditDialogEvents::OnExport),
                      [&](HexEditDialogRecorder& view, IHexEditDialogEvents&) {
                        EXPECT_FALSE(view.Grid().Modified());
                        EXPECT_EQ(folder.Read("out.syx"), "\xF0\x02\xF7");
                      },
                      Edit(1, 0x03), Press(&IHexEditDialogEvents::OnExport),
                      Press(&IHexEditDialogEvents::OnCancel)}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogCancel);
  ASSERT_EQ(files.Requests().size(), 1u) << "the second export wrote without asking";
  EXPECT_EQ(files.Requests()[0].mode, FileDialogMode::Save);
  EXPECT_EQ(files.Requests()[0].filter, L"SysEx MIDI File  (*.syx)|*.syx||");
  EXPECT_EQ(folder.Read("out.syx"), "\xF0\x03\xF7");
  EXPECT_TRUE(boxes.Boxes().empty()) << "nothing left to save after the export";
  EXPECT_EQ(event, (Bytes{0xF0, 0x01, 0xF7}));
}

TEST(HexEditDialog, ExportCancelledWritesNothingAndKeepsTheGridModified) {
  FileDialogRecorder files;
  ViewFactoryRecorder views;
  Bytes event{0xF0, 0xF7};
  views.dialogs.NextHexEdit({{},
                     {Edit(0, 0xF1), Press(&IHexEditDialogEvents::OnExport),
                      [](HexEditDialogRecorder& view, IHexEditDialogEvents&) {
                        EXPECT_TRUE(view.Grid().Modified());
                      },
                      Press(&IHexEditDialogEvents::OnClose)}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogCancel);
  EXPECT_EQ(files.Requests().size(), 1u);
}

// A Yes copies into the caller's variables, yet the dialog answers Cancel, so an editor that
// applies only an OK leaves the stored event as it was.
TEST(HexEditDialog, CancelOfAChangeAsksAndAnswersCancelWhateverTheAnswer) {
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  Bytes yes{0xF0, 0x01, 0xF7}, no = yes;
  std::wstring name = L"Old";
  boxes.AnswerNext(ID_YES_ANSWER);
  boxes.AnswerNext(ID_NO_ANSWER);
  auto renameAndCancel = [](HexEditDialogRecorder& view, IHexEditDialogEvents& events) {
    view.name = L"New";
    events.OnCancel();
  };
  views.dialogs.NextHexEdit({{}, {Edit(1, 0x09), renameAndCancel}});
  views.dialogs.NextHexEdit({{}, {Edit(1, 0x09), renameAndCancel}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&yes, &name, nullptr), kDialogCancel);
  EXPECT_EQ(yes, (Bytes{0xF0, 0x09, 0xF7}));
  EXPECT_EQ(name, L"New");
  name = L"Old";
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&no, &name, nullptr), kDialogCancel);
  EXPECT_EQ(no, (Bytes{0xF0, 0x01, 0xF7}));
  EXPECT_EQ(name, L"Old");
  const auto shown = boxes.Boxes();
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_EQ(shown[0].text, L"Do you want to save changes?");
  EXPECT_EQ(shown[0].flags, MB_YESNO_FLAG | MB_ICONQUESTION_FLAG);
}

TEST(HexEditDialog, TheCloseBoxAndAnUnchangedCancelAskNothing) {
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  Bytes event{0xF0, 0xF7};
  views.dialogs.NextHexEdit({{}, {Edit(0, 0xF1), Press(&IHexEditDialogEvents::OnClose)}});
  views.dialogs.NextHexEdit({{}, {Press(&IHexEditDialogEvents::OnCancel)}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogCancel);
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogCancel);
  EXPECT_TRUE(boxes.Boxes().empty());
  EXPECT_EQ(event, (Bytes{0xF0, 0xF7}));
}

TEST(HexEditDialog, WithoutACallersArrayOkExportsAChangedGrid) {
  TempFolder folder;
  FileDialogRecorder files;
  ViewFactoryRecorder views;
  files.AnswerNext(folder.File("new.syx"));
  views.dialogs.NextHexEdit({{},
                     {[](HexEditDialogRecorder& view, IHexEditDialogEvents& events) {
                       EXPECT_EQ(view.Grid().Size(), 0u) << "started by Reset";
                       view.Grid().Insert(0, Bytes{0xF0, 0x7F, 0xF7});
                       events.OnOk();
                     }}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(nullptr, nullptr, nullptr), kDialogOk);
  EXPECT_EQ(folder.Read("new.syx"), "\xF0\x7F\xF7");
}

TEST(HexEditDialog, AGridThatCannotBeMadeIsReportedAndTheDialogOpensAnyway) {
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  Bytes event{0xF0, 0xF7};
  bool opened = false;
  auto open = [&](HexEditDialogRecorder&, IHexEditDialogEvents& events) {
    opened = true;
    events.OnOk();
  };
  views.dialogs.NextHexEdit({{GridAttachment::Status::CannotLoad}, {open}});
  views.dialogs.NextHexEdit({{GridAttachment::Status::RegisterFailed, E_FAIL}, {open}});
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogOk);
  EXPECT_TRUE(opened);
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogOk);
  const auto shown = boxes.Boxes();
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_EQ(shown[0].text.rfind(L"Error:  detected unregistered HexEditor.dll.  Could not "
                                L"LoadLibrary on '", 0),
            0u);
  EXPECT_NE(shown[0].text.find(L"HexEdit.dll'.  Please report this to support."),
            std::wstring::npos);
  EXPECT_NE(shown[1].text.find(L"' succeeded, but DllRegisterServer failed with code 80004005."
                               L"  Please report this to support."),
            std::wstring::npos);
}

TEST(HexEditDialog, WithNoViewsItAnswersCancelAtOnce) {
  MessageBoxRecorder boxes;
  Bytes event{0xF0, 0xF7};
  EXPECT_EQ(CHexEditDlgDlg(nullptr).Run(&event, nullptr, nullptr), kDialogCancel);
  EXPECT_EQ(CPrefixEditorDlg(nullptr).Run(&event), kDialogCancel);
  EXPECT_EQ(event, (Bytes{0xF0, 0xF7}));
  EXPECT_TRUE(boxes.Boxes().empty());
}

TEST(PrefixEditor, EditsACopyAndCancelAsksTheSameQuestion) {
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  Bytes prefix{0xF0, 0x41, 0x10};
  auto change = [](PrefixEditorRecorder& view, IByteDialogEvents&) {
    CHexGrid& grid = view.Grid();
    EXPECT_EQ(grid.AddressDigits(), 4) << "address mode 0 with a small array";
    grid.Erase(grid.Size() - 1, 1);
  };
  auto press = [](void (IByteDialogEvents::*button)()) {
    return [button](PrefixEditorRecorder&, IByteDialogEvents& events) { (events.*button)(); };
  };
  views.dialogs.NextPrefixEditor({{}, {change, press(&IByteDialogEvents::OnOk)}});
  views.dialogs.NextPrefixEditor({{}, {change, press(&IByteDialogEvents::OnCancel)}});
  views.dialogs.NextPrefixEditor({{}, {press(&IByteDialogEvents::OnReset), press(&IByteDialogEvents::OnOk)}});
  EXPECT_EQ(CPrefixEditorDlg(nullptr).Run(&prefix), kDialogOk);
  EXPECT_EQ(prefix, (Bytes{0xF0, 0x41}));
  boxes.AnswerNext(ID_YES_ANSWER);
  EXPECT_EQ(CPrefixEditorDlg(nullptr).Run(&prefix), kDialogCancel);
  EXPECT_EQ(prefix, (Bytes{0xF0})) << "Yes copies, the answer is still Cancel";
  EXPECT_EQ(CPrefixEditorDlg(nullptr).Run(&prefix), kDialogOk);
  EXPECT_TRUE(prefix.empty());
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_EQ(boxes.Boxes()[0].text, L"Do you want to save changes?");
}

}  // namespace
