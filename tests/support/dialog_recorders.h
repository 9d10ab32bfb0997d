// Test stand-ins for the views of the editor's dialogs, and the source that makes them.
// Each modal recorder plays a script during RunModal: a list of user actions, each given the
// view (to type into its boxes or look at them) and the dialog's events (to press buttons).
// When the script runs out with the dialog still open, the recorder closes it as the window's
// close box would, so a test never hangs.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editor/about_view.h"
#include "editor/event_dialog_views.h"
#include "editor/hex_dialog_views.h"
#include "editor/text_box_view.h"
#include "platform/html_view.h"

// A one-line edit box as a user meets it: typed characters go through the logic's filter and
// land at the selection, backspace deletes, editing keys ask first, commands use the clipboard
// presenter, and every change of the text is reported. One undo step, as an edit box keeps.
class TextBoxRecorder final : public ITextBoxView {
 public:
  void SetEvents(ITextBoxEvents* events) override { m_events = events; }
  std::wstring Text() const override { return m_text; }
  void SetText(const std::wstring& text) override;
  TextSelection Selection() const override { return m_selection; }
  void SetSelection(TextSelection selection) override;
  bool CanUndo() const override { return m_undo.has_value(); }
  bool IsReadOnly() const override { return readOnly; }
  void TakeFocus() override { focused = true; }
  void Redraw() override {}
  void Undo() override;
  void Cut() override;
  void Copy() override;
  void Paste() override;
  void DeleteSelection() override;

  // --- what a user does ---------------------------------------------------------------------
  // Types each character in turn, as the keyboard sends them ('\b' for backspace).
  void Type(std::wstring_view keys);
  // Presses an editing key; false when the logic swallowed it.
  bool Press(EditKey key);
  void RightClick(int x = 0, int y = 0);
  void Select(int start, int end) { SetSelection({start, end}); }

  bool readOnly = false;
  bool focused = false;

 private:
  void ReplaceSelection(const std::wstring& text);
  void Changed(std::wstring before);

  ITextBoxEvents* m_events = nullptr;
  std::wstring m_text;
  TextSelection m_selection;
  std::optional<std::wstring> m_undo;
};

// An HTML view holding the page as text: ReplaceElement edits the text, and the test says when
// the document is complete.
class HtmlViewRecorder final : public IHtmlView {
 public:
  void SetEvents(IHtmlViewEvents* events) override { m_events = events; }
  bool NavigateToFile(const std::wstring& path) override;
  void LoadHtml(const std::string& html, const std::wstring& baseFolder) override;
  bool ReplaceElement(const std::wstring& id, const std::wstring& text) override;

  // Reports the document complete, as the view does once a page has loaded.
  void CompleteDocument();
  void FollowAppLink(const std::wstring& command);

  std::wstring navigatedFile;  // empty when the page came from LoadHtml
  std::string document;  // the page as it stands, UTF-8

 private:
  IHtmlViewEvents* m_events = nullptr;
};

// What modal recorders share: EndDialog, and playing the script.
template <class ViewInterface>
class ModalRecorder : public ViewInterface {
 public:
  void EndDialog(int result) override {
    m_result = result;
    m_ended = true;
  }
  bool Ended() const { return m_ended; }

 protected:
  template <class Self, class Events, class Close>
  int Play(Self& self, Events& events, std::vector<std::function<void(Self&, Events&)>>& script,
           Close close) {
    for (auto& action : script) {
      if (m_ended) break;
      action(self, events);
    }
    if (!m_ended) (events.*close)();
    return m_ended ? m_result : kDialogCancel;
  }

 private:
  bool m_ended = false;
  int m_result = kDialogCancel;
};

class HexEditDialogRecorder final : public ModalRecorder<IHexEditDialogView> {
 public:
  using Action = std::function<void(HexEditDialogRecorder&, IHexEditDialogEvents&)>;
  struct Script {
    GridAttachment attachment;
    std::vector<Action> actions;
  };
  explicit HexEditDialogRecorder(Script script) : m_script(std::move(script)) {}

  GridAttachment AttachGrid(CHexGrid& grid) override;
  void SetName(const std::wstring& text) override { name = text; }
  std::wstring Name() const override { return name; }
  void SetDescription(const std::wstring& text) override { description = text; }
  std::wstring Description() const override { return description; }
  int RunModal(IHexEditDialogEvents& events) override;

  CHexGrid& Grid() { return *m_grid; }
  std::wstring name;
  std::wstring description;

 private:
  Script m_script;
  CHexGrid* m_grid = nullptr;
};

class PrefixEditorRecorder final : public ModalRecorder<IPrefixEditorView> {
 public:
  using Action = std::function<void(PrefixEditorRecorder&, IByteDialogEvents&)>;
  struct Script {
    GridAttachment attachment;
    std::vector<Action> actions;
  };
  explicit PrefixEditorRecorder(Script script) : m_script(std::move(script)) {}

  GridAttachment AttachGrid(CHexGrid& grid) override;
  int RunModal(IByteDialogEvents& events) override;

  CHexGrid& Grid() { return *m_grid; }

 private:
  Script m_script;
  CHexGrid* m_grid = nullptr;
};

// The boxes of an event dialog by id, and the box last focused after a refusal.
template <class ViewInterface>
class EventDialogRecorder : public ModalRecorder<ViewInterface> {
 public:
  void SetItemText(int control, const std::wstring& text) override { items[control] = text; }
  std::wstring ItemText(int control) const override {
    const auto found = items.find(control);
    return found == items.end() ? std::wstring() : found->second;
  }
  void FocusItem(int control) override { focusedItem = control; }

  std::map<int, std::wstring> items;
  std::optional<int> focusedItem;
};

class ProgramDialogRecorder final : public EventDialogRecorder<IProgramDialogView> {
 public:
  using Action = std::function<void(ProgramDialogRecorder&, IProgramDialogEvents&)>;
  explicit ProgramDialogRecorder(std::vector<Action> script) : m_script(std::move(script)) {}

  void SetItemText(int control, const std::wstring& text) override;
  std::wstring ItemText(int control) const override;
  ITextBoxView& BankBox(int control) override { return Box(control); }
  ScreenPoint PresetButtonCorner() const override { return corner; }
  int RunModal(IProgramDialogEvents& events) override;

  // The MSB (1027) or LSB (1028) box.
  TextBoxRecorder& Box(int control);
  ScreenPoint corner{120, 240};

 private:
  std::vector<Action> m_script;
  TextBoxRecorder m_msb;
  TextBoxRecorder m_lsb;
};

class ControllerDialogRecorder final : public EventDialogRecorder<IControllerDialogView> {
 public:
  using Action = std::function<void(ControllerDialogRecorder&, IModalEvents&)>;
  explicit ControllerDialogRecorder(std::vector<Action> script) : m_script(std::move(script)) {}
  int RunModal(IModalEvents& events) override;

 private:
  std::vector<Action> m_script;
};

class WaitDialogRecorder final : public EventDialogRecorder<IWaitDialogView> {
 public:
  using Action = std::function<void(WaitDialogRecorder&, IModalEvents&)>;
  explicit WaitDialogRecorder(std::vector<Action> script) : m_script(std::move(script)) {}
  int RunModal(IModalEvents& events) override;

 private:
  std::vector<Action> m_script;
};

class AboutDialogRecorder final : public ModalRecorder<IAboutDialogView> {
 public:
  using Action = std::function<void(AboutDialogRecorder&, IModalEvents&)>;
  struct Script {
    bool canMakeHtmlView = true;
    std::vector<Action> actions;
  };
  explicit AboutDialogRecorder(Script script) : m_script(std::move(script)) {}

  void SetTitle(const std::wstring& text) override { title = text; }
  void SetHtmlAreaSize(PixelSize size) override { htmlArea = size; }
  IHtmlView* CreateHtmlView() override;
  int RunModal(IModalEvents& events) override;

  std::wstring title;
  std::optional<PixelSize> htmlArea;
  std::unique_ptr<HtmlViewRecorder> html;

 private:
  Script m_script;
};

// Makes the dialogs' recorders from scripts queued per kind, in order; a dialog with nothing
// queued gets an empty script and is closed at once. Counts what it made. The view factory
// recorder (view_recorders.h) serves its dialogs from one of these.
class DialogViewSource {
 public:
  void NextHexEdit(HexEditDialogRecorder::Script script) { m_hexEdit.push_back(std::move(script)); }
  void NextPrefixEditor(PrefixEditorRecorder::Script script) {
    m_prefix.push_back(std::move(script));
  }
  void NextProgram(std::vector<ProgramDialogRecorder::Action> script) {
    m_program.push_back(std::move(script));
  }
  void NextController(std::vector<ControllerDialogRecorder::Action> script) {
    m_controller.push_back(std::move(script));
  }
  void NextWait(std::vector<WaitDialogRecorder::Action> script) {
    m_wait.push_back(std::move(script));
  }
  void NextAbout(AboutDialogRecorder::Script script) { m_about.push_back(std::move(script)); }

  std::unique_ptr<IHexEditDialogView> CreateHexEditDialog() {
    return std::make_unique<HexEditDialogRecorder>(Take(m_hexEdit));
  }
  std::unique_ptr<IPrefixEditorView> CreatePrefixEditor() {
    return std::make_unique<PrefixEditorRecorder>(Take(m_prefix));
  }
  std::unique_ptr<IProgramDialogView> CreateProgramDialog() {
    return std::make_unique<ProgramDialogRecorder>(Take(m_program));
  }
  std::unique_ptr<IControllerDialogView> CreateControllerDialog() {
    return std::make_unique<ControllerDialogRecorder>(Take(m_controller));
  }
  std::unique_ptr<IWaitDialogView> CreateWaitDialog() {
    return std::make_unique<WaitDialogRecorder>(Take(m_wait));
  }
  std::unique_ptr<IAboutDialogView> CreateAboutDialog() {
    return std::make_unique<AboutDialogRecorder>(Take(m_about));
  }

  // How many views of all kinds were made.
  int Made() const { return m_made; }

 private:
  template <class Script>
  Script Take(std::deque<Script>& queue) {
    ++m_made;
    if (queue.empty()) return {};
    Script script = std::move(queue.front());
    queue.pop_front();
    return script;
  }

  std::deque<HexEditDialogRecorder::Script> m_hexEdit;
  std::deque<PrefixEditorRecorder::Script> m_prefix;
  std::deque<std::vector<ProgramDialogRecorder::Action>> m_program;
  std::deque<std::vector<ControllerDialogRecorder::Action>> m_controller;
  std::deque<std::vector<WaitDialogRecorder::Action>> m_wait;
  std::deque<AboutDialogRecorder::Script> m_about;
  int m_made = 0;
};
