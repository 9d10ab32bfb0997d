// The page's list of stored events: one row per event of the instance, row index equal to event
// index at all times. Adds the five kinds, edits an event in the dialog its shape calls for,
// removes, enables by check box, and moves a row by drag and drop. The instance owns the events;
// the list only shows them.
//
// Everything here runs on the editor thread.
#pragma once

#include <cstdint>

#include "editor/event_dialogs.h"
#include "editor/page_view.h"

class CStoredEvent;

// The Add menu's commands, in the menu's order: Controller, MIDI, Bank/Program Change, System
// Exclusive, Wait.
enum AddCommand : std::uint32_t {
  kAddSysex = 47000,
  kAddWait = 47001,
  kAddBankProgram = 47002,
  kAddController = 47003,
  kAddMidi = 47004,
};
inline constexpr std::uint32_t kAddFirst = 47000, kAddLast = 47099;

class CEventList {
 public:
  // Over `view`, for the instance behind `filter` (which may be null: then the list stays
  // empty and commands do nothing). `parent` is the window the dialogs open in, `page` where
  // they post UWM_REFRESH.
  CEventList(IMyFilter* filter, IEventListView& view, ParentWindow parent, NotifyHandle page);

  // Sets up the columns.
  void SetUp();
  // Deletes all rows, then adds one for each event. The selection goes.
  void Fill();
  // Inserts the row for event `index`: its check box from the event's flag and its four texts.
  void AddRow(int index);
  // Writes the row's name, description and info anew from `event`.
  void UpdateRow(int row, CStoredEvent& event);
  // Opens the dialog for `event`, first match: a pause the wait dialog; type "Bank/Program
  // Change" the program dialog; type "Control" the controller dialog; anything else the hex
  // dialog. Then writes the row anew. Answers 0.
  int EditEvent(int row, CStoredEvent& event);
  // The hex dialog over the event's bytes, name and description; on OK the bytes become the
  // event again (see BytesToEvent) and the list is refilled.
  void EditBytesEvent(CStoredEvent& event);

  // --- commands ----------------------------------------------------------------------------
  // A new event of the command's kind goes to the end, gets its row, and opens in its dialog;
  // Cancel keeps it with its defaults. Another id does nothing.
  void OnAdd(std::uint32_t command);
  // The first selected row in its dialog.
  void OnEdit();
  void OnDoubleClick(int row);
  // Every selected row and its event, from the last to the first, with no question asked.
  void OnRemove();
  // A check box changed: the event's flag follows at once. Ignored during a drag, whose own row
  // operations report changes too.
  void OnItemChanged(int row, std::uint32_t oldState, std::uint32_t newState);
  void OnBeginDrag(int row);
  void OnDragMove(bool overList, int row);
  // Over the list with one row selected, the dragged event moves to the row it was dropped on,
  // counted as before the move: dragged down it lands behind that row, dragged up in front of it;
  // dropped under the last row, it goes to the end.
  void OnDrop(bool overList);
  bool Dragging() const noexcept { return m_dragging; }

 private:
  // Edits the event of `row`, skipping a row whose event cannot be fetched.
  void EditRow(int row);
  EventEditHost EditHost();
  void ClearDropHighlight();

  IMyFilter* m_filter;
  IEventListView& m_view;
  ParentWindow m_parent;
  NotifyHandle m_page;
  bool m_dragging = false;
  bool m_dropOverList = false;  // the window last under the cursor was the list
  int m_dragIndex = -1;
  int m_dropIndex = -1;
};
