// The views of the two hex editor dialogs: "Edit Sysex Event" (a grid, the event's name and
// description, Import, Export, Reset) and "Prefix Editor" (a grid and Reset). The logic owns the
// grid's model and hands it to the view, which draws it and lets the user edit it.
#pragma once

#include <string>

#include "editor/hex_grid.h"
#include "editor/modal_view.h"
#include "platform/com.h"

namespace hex_edit_dialog {
inline constexpr const wchar_t* kTitle = L"Edit Sysex Event";
inline constexpr int kWidthDlu = 321, kHeightDlu = 286;  // dialog units
// Controls by id, with their texts.
inline constexpr int kOk = 1, kImport = 1012, kReset = 1013, kExport = 1014, kCancel = 1015;
inline constexpr int kGrid = 1016, kNameBox = 1019, kDescriptionBox = 1020;
inline constexpr const wchar_t* kOkText = L"OK";
inline constexpr const wchar_t* kImportText = L"&Import";
inline constexpr const wchar_t* kResetText = L"&Reset";
inline constexpr const wchar_t* kExportText = L"&Export";
inline constexpr const wchar_t* kCancelText = L"Cancel";
inline constexpr const wchar_t* kNameLabel = L"Name:";
inline constexpr const wchar_t* kDescriptionLabel = L"Description:";
inline constexpr const wchar_t* kHeading =
    L"Edit midi short messages or system exclusive in hexadecimal format";
inline constexpr const wchar_t* kHelp =
    L"Use this screen to enter data for the selected event.  Enter either MIDI message data "
    L"bytes or System Exclusive data bytes";
}  // namespace hex_edit_dialog

namespace prefix_editor {
inline constexpr const wchar_t* kTitle = L"Prefix Editor";
inline constexpr int kWidthDlu = 321, kHeightDlu = 98;
inline constexpr int kOk = 1, kReset = 1013, kCancel = 1015, kGrid = 1016;
}  // namespace prefix_editor

// Whether the view could make its grid. The two failures are those of a grid control that lives
// in a library of its own and must be registered before use; a view that draws its own grid
// always answers Ready.
struct GridAttachment {
  enum class Status { Ready, CannotLoad, RegisterFailed };
  Status status = Status::Ready;
  HRESULT registerResult = S_OK;  // the registration's failure, for RegisterFailed
};

// The buttons of both dialogs. OnCancel is the Cancel button (1015), which may ask whether to
// save; OnClose is the window's close box and Escape, which end the dialog with Cancel at once.
class IByteDialogEvents : public IModalEvents {
 public:
  // [editor thread, inside RunModal]
  virtual void OnReset() = 0;
  virtual void OnClose() = 0;

 protected:
  ~IByteDialogEvents() = default;
};

class IHexEditDialogEvents : public IByteDialogEvents {
 public:
  // [editor thread, inside RunModal]
  virtual void OnImport() = 0;
  virtual void OnExport() = 0;

 protected:
  ~IHexEditDialogEvents() = default;
};

class IByteDialogView : public IModalView {
 public:
  // [editor thread, before RunModal] Makes the drawn grid over `grid`, which outlives the view,
  // and says whether that worked. The view observes the grid for repaints.
  virtual GridAttachment AttachGrid(CHexGrid& grid) = 0;
};

class IPrefixEditorView : public IByteDialogView {
 public:
  // [editor thread] Shows the dialog until EndDialog; answers its result.
  virtual int RunModal(IByteDialogEvents& events) = 0;
};

class IHexEditDialogView : public IByteDialogView {
 public:
  // [editor thread] The name (1019) and description (1020) boxes.
  virtual void SetName(const std::wstring& text) = 0;
  virtual std::wstring Name() const = 0;
  virtual void SetDescription(const std::wstring& text) = 0;
  virtual std::wstring Description() const = 0;
  // [editor thread] Shows the dialog until EndDialog; answers its result.
  virtual int RunModal(IHexEditDialogEvents& events) = 0;
};
