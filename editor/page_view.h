// The property page's drawing, as the page's logic sees it: a passive view. The logic decides
// every text, enable state, menu, row and meter length; the view draws them over the skin and
// reports what the user does through IPageViewEvents. Controls are named by their ids.
//
// Everything here runs on the editor thread.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "editor/view_factory.h"

class CPopupMenu;

// --- controls -------------------------------------------------------------------------------

enum PageControlId : std::uint32_t {
  kDeviceText = 1000,
  kPortText = 1001,
  kDeviceButton = 1002,
  kPrefixButton = 1004,
  kSpareButton = 1005,  // disabled and hidden; its command does nothing
  kRemoveButton = 1006,
  kSendButton = 1007,
  kSyncCheck = 1008,
  kPrefixText = 1009,
  kEditButton = 1010,
  kAddButton = 1011,
  kChannelText = 1012,
  kSendAllButton = 1013,
  kEventList = 1021,
  kPortButton = 1022,
  kChannelButton = 1023,
  kTestButton = 1036,
};

enum class PageControlKind { Static, Button, MenuButton, CheckBox, List };

// Where a control stands on the skin, in skin pixels, and the bitmaps of a button's faces in the
// order normal, pressed, hover (0 for none). The word on a face is in its picture.
struct PageControlPlace {
  std::uint32_t id;
  PageControlKind kind;
  int x, y, width, height;
  std::uint32_t normalFace, pressedFace, hoverFace;
};

// The check box's word, beside it; every other word stands on the skin or on a button's face.
inline constexpr const wchar_t* kSyncCheckText = L"Send MIDI Sync";

// Every control of the page in the order the page sets them up; the check box stands beside
// its word, the spare button nowhere.
std::span<const PageControlPlace> PageControlPlaces();

// The skin: bitmap 204, 657 by 336 pixels, drawn at the origin on background erase.
inline constexpr std::uint32_t kSkinBitmap = 204;
inline constexpr int kSkinWidth = 657;
inline constexpr int kSkinHeight = 336;
// Static texts and the check box are drawn transparent in this colour (red DF, green FE, blue
// FF); it is also the list's text colour and the background of its selected rows.
inline constexpr std::uint32_t kPageTextRed = 0xDF, kPageTextGreen = 0xFE, kPageTextBlue = 0xFF;

// The two activity meters: strips of bitmaps 245 (background) and 248 (lit), 118 by 11.
enum class PageMeter { Input = 0, Output = 1 };
inline constexpr std::uint32_t kMeterBackBitmap = 245;
inline constexpr std::uint32_t kMeterLitBitmap = 248;
inline constexpr int kMeterWidth = 118;
inline constexpr int kMeterHeight = 11;
inline constexpr int kInputMeterX = 520, kInputMeterY = 297;    // word "In"
inline constexpr int kOutputMeterX = 520, kOutputMeterY = 316;  // word "Out"

// A press inside this rectangle, edges included, opens the About box.
inline constexpr int kLogoLeft = 558, kLogoTop = 129, kLogoRight = 647, kLogoBottom = 162;

// --- the event list -------------------------------------------------------------------------

// The texts of one row's four text columns; column 0 is the check box.
struct EventRowTexts {
  std::wstring name;
  std::wstring description;
  std::wstring type;
  std::wstring info;
};

// One column: its header text and its share of the width, in 64ths (see EventListColumnWidths).
struct EventListColumn {
  std::wstring text;
  int share;
};

// The list's columns in order: "Enabled" 5, "Name" 12, "Description" 28, "Type" 10, "Info" 9.
std::span<const EventListColumn> EventListColumns();
// Column widths for a list `clientWidth` pixels wide: each a share in 64ths of the width less
// 22, the last one taking what is left, less 2.
std::vector<int> EventListColumnWidths(int clientWidth);

// The list's row state as the platform reports it: the check box's state image sits in bits 12
// to 15, 1 for unchecked and 2 for checked.
inline constexpr std::uint32_t kRowUncheckedState = 1u << 12;
inline constexpr std::uint32_t kRowCheckedState = 2u << 12;

// The event list control: rows with a check box and four texts, full row selection, several
// rows selectable, row index always equal to the event's index in the instance.
class IEventListView {
 public:
  // Sets up the columns: check boxes, full row selection, label tips.
  virtual void SetColumns(std::span<const EventListColumn> columns) = 0;
  virtual void DeleteAllRows() = 0;
  // Inserts a row before `row` (== RowCount() appends), checked or not, with its texts.
  virtual void InsertRow(int row, bool checked, const EventRowTexts& texts) = 0;
  virtual void DeleteRow(int row) = 0;
  // Columns 1, 2 and 4; the type column stays. The list is redrawn at once.
  virtual void UpdateRow(int row, const std::wstring& name, const std::wstring& description,
                         const std::wstring& info) = 0;
  virtual int RowCount() const = 0;
  virtual bool RowChecked(int row) const = 0;
  virtual EventRowTexts RowTexts(int row) const = 0;
  // The selected rows in ascending order.
  virtual std::vector<int> SelectedRows() const = 0;
  // Selects `row` and gives it the focus, clearing both on every other row.
  virtual void SelectOnly(int row) = 0;
  // Marks `row` as the drop target or clears the mark; row -1 clears the mark on every row.
  virtual void SetDropHighlight(int row, bool on) = 0;
  // A drag begins at the cursor: the view shows a drag image of `row` (hot spot 10, 10),
  // captures the mouse and reports moves and the release through OnListDragMove and
  // OnListDrop until EndDrag.
  virtual void BeginDrag(int row) = 0;
  // Releases the capture and removes the drag image.
  virtual void EndDrag() = 0;

 protected:
  ~IEventListView() = default;
};

// --- what the view reports ------------------------------------------------------------------

class IPageViewEvents {
 public:
  // A button was clicked (its control id, or kSyncCheck after the check box changed), or a
  // command was chosen from a button's menu (the item's command).
  virtual void OnCommand(std::uint32_t id) = 0;
  // A left button press on the page's own surface at `x`, `y` in skin pixels.
  virtual void OnLButtonDown(int x, int y) = 0;
  // The page is painted: the logic answers with DrawMeter for each meter.
  virtual void OnPaint() = 0;
  // A double click in the list; `row` -1 when it hit no row.
  virtual void OnListDoubleClick(int row) = 0;
  // A row's state changed, by the user or by the logic's own row operations: the state bits
  // before and after (kRowCheckedState, kRowUncheckedState, 0 when no state image is set).
  virtual void OnListItemChanged(int row, std::uint32_t oldState, std::uint32_t newState) = 0;
  // The user starts to drag `row`.
  virtual void OnListBeginDrag(int row) = 0;
  // While dragging: the cursor is over the list or elsewhere; `row` is the list's hit test
  // there, -1 for no row or when not over the list.
  virtual void OnListDragMove(bool overList, int row) = 0;
  // The left button went up while dragging, over the list or elsewhere.
  virtual void OnListDrop(bool overList) = 0;
  // The page's window goes away (Deactivate, or its parent closes).
  virtual void OnDestroy() = 0;

 protected:
  ~IPageViewEvents() = default;
};

// --- the page's view ------------------------------------------------------------------------

class IPageView {
 public:
  virtual ~IPageView() = default;

  // Where the view reports; null to stop reporting.
  virtual void SetEvents(IPageViewEvents* events) = 0;
  // The page's own window: the parent of every dialog the page opens.
  virtual ParentWindow Window() = 0;
  // Places the page inside its parent, in the parent's pixels, and shows or hides it.
  virtual void Move(int left, int top, int right, int bottom) = 0;
  virtual void Show(bool shown) = 0;

  // The text of a static. The statics are transparent over the skin, so the view hides the
  // control, sets the text and shows it again, leaving no old letters behind.
  virtual void SetText(std::uint32_t control, const std::wstring& text) = 0;
  virtual void EnableControl(std::uint32_t control, bool enabled) = 0;
  virtual void ShowControl(std::uint32_t control, bool shown) = 0;
  virtual void SetCheck(std::uint32_t control, bool checked) = 0;
  virtual bool IsChecked(std::uint32_t control) const = 0;
  // A button's faces by bitmap number: normal (also used when disabled), pressed, hover.
  virtual void SetButtonFaces(std::uint32_t control, std::uint32_t normal, std::uint32_t pressed,
                              std::uint32_t hover) = 0;
  // Attaches a popup to a button (null detaches). The view's buttons run CDspButton
  // (editor/dsp_button.h): a press opens the menu at the button's lower left corner through
  // TrackPopupMenu, and the command chosen, like a click, comes back through OnCommand.
  virtual void SetButtonMenu(std::uint32_t control, std::shared_ptr<const CPopupMenu> menu) = 0;
  // Draws a meter now, straight to the window and without invalidating the rest: `litPixels`
  // of the lit strip from its origin, the background strip over the rest.
  virtual void DrawMeter(PageMeter meter, int litPixels) = 0;

  virtual IEventListView& EventList() = 0;
};
