// The page's event list on screen: five columns (a check box, then name, description, type and
// info), full row selection in the skin's colours over a transparent background, several rows
// selectable. It reports to the page's logic and lets the logic run the drag: a press and a move
// past the drag distance begin it, then moves and the release are reported until EndDrag.
#pragma once

#include <QtCore/QEvent>
#include <QtCore/QPointer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QTreeWidget>

#include "editor/page_view.h"

class CEventListWidget final : public QTreeWidget, public IEventListView {
 public:
  explicit CEventListWidget(QWidget* parent);
  ~CEventListWidget() override;

  // Where the list reports; null to stop.
  void SetEvents(IPageViewEvents* events) noexcept { m_events = events; }
  bool IsDragging() const noexcept { return m_dragging; }
  bool IsDropHighlighted(int row) const;

  void SetColumns(std::span<const EventListColumn> columns) override;
  void DeleteAllRows() override;
  void InsertRow(int row, bool checked, const EventRowTexts& texts) override;
  void DeleteRow(int row) override;
  void UpdateRow(int row, const std::wstring& name, const std::wstring& description,
                 const std::wstring& info) override;
  int RowCount() const override { return topLevelItemCount(); }
  bool RowChecked(int row) const override;
  EventRowTexts RowTexts(int row) const override;
  std::vector<int> SelectedRows() const override;
  void SelectOnly(int row) override;
  void SetDropHighlight(int row, bool on) override;
  void BeginDrag(int row) override;
  void EndDrag() override;

 protected:
  bool viewportEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  static constexpr int kCheckedRole = Qt::UserRole + 1;  // the check state last reported

  void OnItemChanged(QTreeWidgetItem* item, int column);
  bool OnMouse(QEvent::Type type, const QMouseEvent& event);
  void MoveDragImage(QPoint viewportPosition);
  void FitColumns();
  static std::uint32_t StateBits(Qt::CheckState state);

  IPageViewEvents* m_events = nullptr;
  int m_pressRow = -1;
  QPoint m_pressAt;
  bool m_dragging = false;
  QPointer<QLabel> m_dragImage;
};
