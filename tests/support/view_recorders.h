// Test stand-ins for the editor's drawing: a recorder view per screen, a view factory that hands
// them out, and the host's side of a property page. Each recorder keeps what the logic showed
// and offers the user's actions as calls, so a test drives a screen as a user would and reads
// back what a user would see. All on the test's thread, which plays the editor thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "editor/closed_loop_dialog_view.h"
#include "editor/dsp_button.h"
#include "editor/page_view.h"
#include "editor/ui_control.h"
#include "editor/view_factory.h"
#include "interfaces/property_page.h"
#include "platform/popup_menu.h"
#include "tests/support/dialog_recorders.h"
#include "tests/support/fake_unknown.h"

// --- the page -----------------------------------------------------------------------------------

// The page's view and its event list. Buttons run the real DSPButton logic: a click on a dark
// button does nothing, a button with a menu opens it through TrackPopupMenu (answer it with a
// PopupMenuRecorder). Row operations report check changes as the platform's list does.
class PageViewRecorder final : public IPageView, public IEventListView, private IDspButtonParent {
 public:
  struct Row {
    bool checked = false;
    EventRowTexts texts;
  };

  explicit PageViewRecorder(ParentWindow parent);

  // --- IPageView ---
  void SetEvents(IPageViewEvents* events) override { m_events = events; }
  ParentWindow Window() override { return this; }
  void Move(int left, int top, int right, int bottom) override;
  void Show(bool shown) override { m_visible = shown; }
  void SetText(std::uint32_t control, const std::wstring& text) override;
  void EnableControl(std::uint32_t control, bool enabled) override;
  void ShowControl(std::uint32_t control, bool shown) override;
  void SetCheck(std::uint32_t control, bool checked) override { m_checks[control] = checked; }
  bool IsChecked(std::uint32_t control) const override;
  void SetButtonFaces(std::uint32_t control, std::uint32_t normal, std::uint32_t pressed,
                      std::uint32_t hover) override;
  void SetButtonMenu(std::uint32_t control, std::shared_ptr<const CPopupMenu> menu) override;
  void DrawMeter(PageMeter meter, int litPixels) override;
  IEventListView& EventList() override { return *this; }

  // --- IEventListView ---
  void SetColumns(std::span<const EventListColumn>) override {}
  void DeleteAllRows() override;
  void InsertRow(int row, bool checked, const EventRowTexts& texts) override;
  void DeleteRow(int row) override;
  void UpdateRow(int row, const std::wstring& name, const std::wstring& description,
                 const std::wstring& info) override;
  int RowCount() const override { return static_cast<int>(m_rows.size()); }
  bool RowChecked(int row) const override { return m_rows.at(Index(row)).checked; }
  EventRowTexts RowTexts(int row) const override { return m_rows.at(Index(row)).texts; }
  std::vector<int> SelectedRows() const override;
  void SelectOnly(int row) override;
  void SetDropHighlight(int row, bool on) override;
  void BeginDrag(int row) override { m_dragRow = row; }
  void EndDrag() override { m_dragRow.reset(); }

  // --- what the page shows ---
  ParentWindow Parent() const noexcept { return m_parent; }
  std::wstring Text(std::uint32_t control) const;
  // Controls start enabled and shown, as made.
  bool Enabled(std::uint32_t control) const;
  bool Shown(std::uint32_t control) const;
  bool Visible() const noexcept { return m_visible; }
  std::shared_ptr<const CPopupMenu> Menu(std::uint32_t control) const;
  const CDspButton* Button(std::uint32_t control) const;
  // The last lit length drawn for a meter; nothing before its first draw.
  std::optional<int> MeterLit(PageMeter meter) const;
  int MeterDraws() const noexcept { return m_meterDraws; }
  const std::vector<Row>& Rows() const noexcept { return m_rows; }
  std::set<int> DropHighlights() const { return m_dropHighlights; }
  bool Dragging() const noexcept { return m_dragRow.has_value(); }

  // --- what the user does ---
  // Presses and releases the button over it: a click, or the choice from its menu.
  void Click(std::uint32_t control);
  // A left press on the page's surface, in skin pixels.
  void PressAt(int x, int y);
  void Paint();
  void Select(std::vector<int> rows);
  // Clicks a row's check box.
  void ToggleRowCheck(int row);
  void DoubleClick(int row);
  // Drags `from` onto `onto`, -1 being the blank area under the last row; or drops it outside
  // the list. The press selects `from` alone first unless `keepSelection` (as with Ctrl held).
  void Drag(int from, int onto, bool keepSelection = false);
  void DragOutside(int from);
  // The window goes, as when its parent closes.
  void Close();

 private:
  void OnButtonCommand(std::uint32_t command) override;
  void OnButtonMessage(std::uint32_t, std::int32_t) override {}
  void ClearRadioGroup(const CDspButton&) override {}
  CDspButton& ButtonFor(std::uint32_t control);
  static std::size_t Index(int row) { return static_cast<std::size_t>(row); }

  ParentWindow m_parent;
  IPageViewEvents* m_events = nullptr;
  bool m_visible = true;
  std::map<std::uint32_t, std::wstring> m_texts;
  std::map<std::uint32_t, bool> m_enabled;
  std::map<std::uint32_t, bool> m_shown;
  std::map<std::uint32_t, bool> m_checks;
  std::map<std::uint32_t, std::unique_ptr<CDspButton>> m_buttons;
  std::map<PageMeter, int> m_meters;
  int m_meterDraws = 0;
  std::vector<Row> m_rows;
  std::set<int> m_selected;
  std::set<int> m_dropHighlights;
  std::optional<int> m_dragRow;
};

// --- the closed-loop dialog ---------------------------------------------------------------------

class ClosedLoopDialogRecorder final : public IClosedLoopDialogView {
 public:
  // What the user does while the dialog is open; Close is pressed after it unless it ended it.
  using Script = std::function<void(ClosedLoopDialogRecorder&)>;
  struct Bar {
    std::uint16_t range = 0;
    std::int32_t position = 0;
  };

  explicit ClosedLoopDialogRecorder(Script whileOpen = {});

  void SetEvents(IClosedLoopDialogEvents* events) override { m_events = events; }
  int RunModal() override;
  void EndDialog(int result) override { m_result = result; }
  void SetText(std::uint32_t control, const std::wstring& text) override;
  void EnableControl(std::uint32_t control, bool enabled) override;
  void SetProgress(std::uint32_t control, std::uint16_t range, std::int32_t position) override;

  // A push button; a disabled one does nothing.
  void Press(std::uint32_t id);
  std::wstring Text(std::uint32_t control) const;
  bool Enabled(std::uint32_t control) const;
  Bar Progress(std::uint32_t control) const;

 private:
  Script m_whileOpen;
  IClosedLoopDialogEvents* m_events = nullptr;
  std::optional<int> m_result;
  std::map<std::uint32_t, std::wstring> m_texts;
  std::map<std::uint32_t, bool> m_enabled;
  std::map<std::uint32_t, Bar> m_bars;
};

// --- the factory --------------------------------------------------------------------------------

// Hands out a view per screen, installed for its lifetime. Each screen has a maker a test may
// replace (null: the screen cannot be made, as when headless) and keeps the parent of every
// request. The page and the closed-loop dialog make recorders by default (the last page is
// kept); the other dialogs come from `dialogs`, which plays the scripts queued for them (none
// queued: the dialog is closed at once).
class ViewFactoryRecorder final : public CEditorViewFactory {
 public:
  template <class View>
  struct Screen {
    std::function<std::unique_ptr<View>(ParentWindow)> make;
    std::vector<ParentWindow> parents;

    std::unique_ptr<View> Create(ParentWindow parent) {
      parents.push_back(parent);
      if (!make) return nullptr;
      return make(parent);
    }
  };

  ViewFactoryRecorder();
  ~ViewFactoryRecorder();
  ViewFactoryRecorder(const ViewFactoryRecorder&) = delete;
  ViewFactoryRecorder& operator=(const ViewFactoryRecorder&) = delete;

  std::unique_ptr<IPageView> CreatePageView(ParentWindow p) override { return page.Create(p); }
  std::unique_ptr<IHexEditDialogView> CreateHexEditDialog(ParentWindow p) override {
    return hexEdit.Create(p);
  }
  std::unique_ptr<IPrefixEditorView> CreatePrefixEditor(ParentWindow p) override {
    return prefixEditor.Create(p);
  }
  std::unique_ptr<IProgramDialogView> CreateProgramDialog(ParentWindow p) override {
    return program.Create(p);
  }
  std::unique_ptr<IControllerDialogView> CreateControllerDialog(ParentWindow p) override {
    return controller.Create(p);
  }
  std::unique_ptr<IWaitDialogView> CreateWaitDialog(ParentWindow p) override {
    return wait.Create(p);
  }
  std::unique_ptr<IAboutDialogView> CreateAboutDialog(ParentWindow p) override {
    return about.Create(p);
  }
  std::unique_ptr<IClosedLoopDialogView> CreateClosedLoopDialog(ParentWindow p) override {
    return closedLoop.Create(p);
  }

  Screen<IPageView> page;
  Screen<IHexEditDialogView> hexEdit;
  Screen<IPrefixEditorView> prefixEditor;
  Screen<IProgramDialogView> program;
  Screen<IControllerDialogView> controller;
  Screen<IWaitDialogView> wait;
  Screen<IAboutDialogView> about;
  Screen<IClosedLoopDialogView> closedLoop;

  DialogViewSource dialogs;
  // What the default closed-loop recorder does while open.
  ClosedLoopDialogRecorder::Script closedLoopScript;
  // The last page recorder the default maker made; null before. A view lives as long as its
  // screen keeps it.
  PageViewRecorder* lastPage = nullptr;

 private:
  CEditorViewFactory* m_previous;
};

// --- the host's side of a page ------------------------------------------------------------------

class FakePageSite final : public FakeUnknown<IPropertyPageSite> {
 public:
  HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD flags) override;
  HRESULT STDMETHODCALLTYPE GetLocaleID(LCID* locale) override;
  HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown** container) override;
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;
};

// An object a host might hand a page, answering the interfaces named and IUnknown only; the
// answers are the object itself, so nothing but the page's binding may use them.
class FakePageObject final : public FakeUnknown<IUnknown> {
 public:
  explicit FakePageObject(std::vector<IID> answers) : m_answers(std::move(answers)) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

 private:
  std::vector<IID> m_answers;
};

// The window under windowless controls: records what they draw and ask for.
class ControlHostRecorder final : public IUIControlHost {
 public:
  struct Sent {
    MessageId message;
    WPARAM_T wParam;
    LPARAM_T lParam;
  };

  void SetCapture(CUIControl* control) override { capture = control; }
  std::intptr_t SendToWindow(MessageId message, WPARAM_T wParam, LPARAM_T lParam) override;
  void PostToWindow(MessageId message, WPARAM_T wParam, LPARAM_T lParam) override;
  void ToScreen(int& x, int& y) override;
  void DrawMeter(const CUIMeter& meter, int lit) override;
  void DrawFader(const CUIFader& fader, const std::vector<UIRect>& uncovered,
                 const UIRect& thumb) override;
  void DrawStateButton(const CUIStateButton&) override {}
  void OpenTextBox(const UIRect& area, const std::wstring& text) override;
  void CloseTextBox() override { textBox.reset(); }

  CUIControl* capture = nullptr;
  std::vector<Sent> sent;
  std::vector<Sent> posted;
  // What SendToWindow answers.
  std::intptr_t answer = 0;
  std::vector<int> meterDraws;
  std::vector<UIRect> faderUncovered;
  std::optional<std::wstring> textBox;
};
