#include "ui/event_list_widget.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <algorithm>

#include "ui/skin.h"

namespace {

QString Q(const std::wstring& text) { return QString::fromStdWString(text); }

// The drop target is marked as the platform marks it: like a selection, a little fainter.
QBrush DropBrush() {
  QColor colour = LegendColour();
  colour.setAlpha(110);
  return colour;
}

constexpr QPoint kDragHotSpot(10, 10);

}  // namespace

CEventListWidget::CEventListWidget(QWidget* parent) : QTreeWidget(parent) {
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setItemsExpandable(false);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setAllColumnsShowFocus(true);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFrameShape(QFrame::NoFrame);
  viewport()->setAutoFillBackground(false);
  QFont small = font();
  small.setPixelSize(11);
  setFont(small);
  // The check boxes are the panel's: a lit square for an enabled event, as on the page.
  setStyleSheet(QStringLiteral(
                    "QTreeWidget { background: transparent; color: %1; border: none; }"
                    "QTreeWidget::item { padding: 0px 2px; }"
                    "QTreeWidget::item:selected { background: %1; color: %2; }"
                    "QTreeWidget::indicator { width: 9px; height: 9px; border: 1px solid #8fa6ae;"
                    " background: #0b161e; }"
                    "QTreeWidget::indicator:checked { background: %1; border: 1px solid #0b161e; }")
                    .arg(LegendColour().name(), SelectedTextColour().name()));
  QFont headerFont = small;
  headerFont.setPixelSize(10);  // so that "Enabled" fits its narrow column
  header()->setFont(headerFont);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::Interactive);
  connect(this, &QTreeWidget::itemChanged, this, &CEventListWidget::OnItemChanged);
}

CEventListWidget::~CEventListWidget() {
  m_events = nullptr;
  delete m_dragImage;
}

void CEventListWidget::SetColumns(std::span<const EventListColumn> columns) {
  QStringList labels;
  for (const EventListColumn& column : columns) labels.append(Q(column.text));
  setColumnCount(static_cast<int>(labels.size()));
  setHeaderLabels(labels);
  FitColumns();
}

void CEventListWidget::FitColumns() {
  const std::vector<int> widths = EventListColumnWidths(viewport()->width());
  for (int i = 0; i < columnCount() && i < static_cast<int>(widths.size()); ++i)
    setColumnWidth(i, std::max(0, widths[static_cast<std::size_t>(i)]));
}

void CEventListWidget::resizeEvent(QResizeEvent* event) {
  QTreeWidget::resizeEvent(event);
  FitColumns();
}

std::uint32_t CEventListWidget::StateBits(Qt::CheckState state) {
  return state == Qt::Checked ? kRowCheckedState : kRowUncheckedState;
}

void CEventListWidget::DeleteAllRows() {
  const QSignalBlocker quiet(this);
  clear();
}

// A new row starts unchecked and is then checked, each step reported, as the platform's list
// reports it; the logic tells its own steps from the user's.
void CEventListWidget::InsertRow(int row, bool checked, const EventRowTexts& texts) {
  auto* item = new QTreeWidgetItem;
  item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
  const QString cells[] = {QString(), Q(texts.name), Q(texts.description), Q(texts.type),
                           Q(texts.info)};
  for (int column = 1; column < 5; ++column) {
    item->setText(column, cells[column]);
    item->setToolTip(column, cells[column]);
  }
  {
    const QSignalBlocker quiet(this);
    item->setCheckState(0, Qt::Unchecked);
    item->setData(0, kCheckedRole, Qt::Unchecked);
    insertTopLevelItem(std::clamp(row, 0, topLevelItemCount()), item);
  }
  const int at = indexOfTopLevelItem(item);
  if (m_events) m_events->OnListItemChanged(at, 0, kRowUncheckedState);
  if (checked) item->setCheckState(0, Qt::Checked);  // reported by OnItemChanged
}

void CEventListWidget::DeleteRow(int row) {
  const QSignalBlocker quiet(this);
  delete takeTopLevelItem(row);
}

void CEventListWidget::UpdateRow(int row, const std::wstring& name, const std::wstring& description,
                                 const std::wstring& info) {
  QTreeWidgetItem* item = topLevelItem(row);
  if (!item) return;
  const QSignalBlocker quiet(this);
  const std::pair<int, QString> cells[] = {{1, Q(name)}, {2, Q(description)}, {4, Q(info)}};
  for (const auto& [column, text] : cells) {
    item->setText(column, text);
    item->setToolTip(column, text);
  }
  viewport()->repaint();
}

bool CEventListWidget::RowChecked(int row) const {
  const QTreeWidgetItem* item = topLevelItem(row);
  return item && item->checkState(0) == Qt::Checked;
}

EventRowTexts CEventListWidget::RowTexts(int row) const {
  const QTreeWidgetItem* item = topLevelItem(row);
  if (!item) return {};
  return {item->text(1).toStdWString(), item->text(2).toStdWString(), item->text(3).toStdWString(),
          item->text(4).toStdWString()};
}

std::vector<int> CEventListWidget::SelectedRows() const {
  std::vector<int> rows;
  for (QTreeWidgetItem* item : selectedItems()) rows.push_back(indexOfTopLevelItem(item));
  std::sort(rows.begin(), rows.end());
  return rows;
}

void CEventListWidget::SelectOnly(int row) {
  QTreeWidgetItem* item = topLevelItem(row);
  clearSelection();
  if (!item) return;
  setCurrentItem(item);
  item->setSelected(true);
}

bool CEventListWidget::IsDropHighlighted(int row) const {
  const QTreeWidgetItem* item = topLevelItem(row);
  return item && item->background(1).style() != Qt::NoBrush;
}

void CEventListWidget::SetDropHighlight(int row, bool on) {
  const QSignalBlocker quiet(this);
  const int first = row < 0 ? 0 : row;
  const int last = row < 0 ? topLevelItemCount() - 1 : row;
  for (int r = first; r <= last; ++r) {
    QTreeWidgetItem* item = topLevelItem(r);
    if (!item) continue;
    for (int column = 0; column < columnCount(); ++column)
      item->setBackground(column, on && row >= 0 ? DropBrush() : QBrush());
  }
}

void CEventListWidget::OnItemChanged(QTreeWidgetItem* item, int column) {
  if (column != 0) return;
  const auto old = static_cast<Qt::CheckState>(item->data(0, kCheckedRole).toInt());
  const Qt::CheckState now = item->checkState(0);
  if (old == now) return;
  {
    const QSignalBlocker quiet(this);
    item->setData(0, kCheckedRole, now);
  }
  if (m_events)
    m_events->OnListItemChanged(indexOfTopLevelItem(item), StateBits(old), StateBits(now));
}

// The image of the dragged row follows the cursor over the page, its hot spot at 10, 10.
void CEventListWidget::BeginDrag(int row) {
  QTreeWidgetItem* item = topLevelItem(row);
  m_dragging = true;
  delete m_dragImage;
  if (item) {
    QRect rowRect = visualItemRect(item);
    rowRect.setLeft(0);
    rowRect.setRight(viewport()->width() - 1);
    // Grabbed from the window, so that the row is seen over the skin, then made translucent.
    const QPixmap snapshot =
        window()->grab(QRect(viewport()->mapTo(window(), rowRect.topLeft()), rowRect.size()));
    QPixmap faint(snapshot.size());
    faint.fill(Qt::transparent);
    {
      QPainter painter(&faint);
      painter.setOpacity(0.7);
      painter.drawPixmap(0, 0, snapshot);
      painter.setOpacity(1.0);
      painter.setPen(LegendColour());
      painter.drawRect(faint.rect().adjusted(0, 0, -1, -1));
    }
    m_dragImage = new QLabel(window());
    m_dragImage->setPixmap(faint);
    m_dragImage->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_dragImage->adjustSize();
    m_dragImage->show();
    m_dragImage->raise();
    MoveDragImage(viewport()->mapFromGlobal(QCursor::pos()));
  }
  viewport()->grabMouse();
}

void CEventListWidget::EndDrag() {
  viewport()->releaseMouse();
  delete m_dragImage;
  m_dragging = false;
  m_pressRow = -1;
}

void CEventListWidget::MoveDragImage(QPoint viewportPosition) {
  if (!m_dragImage) return;
  const QPoint inWindow = viewport()->mapTo(window(), viewportPosition);
  m_dragImage->move(inWindow - kDragHotSpot);
}

bool CEventListWidget::viewportEvent(QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
      if (OnMouse(event->type(), static_cast<const QMouseEvent&>(*event))) return true;
      break;
    default: break;
  }
  return QTreeWidget::viewportEvent(event);
}

// True when the event is the drag's, which the list's own selection must not see.
bool CEventListWidget::OnMouse(QEvent::Type type, const QMouseEvent& event) {
  const QPoint at = event.position().toPoint();
  const QModelIndex hit = indexAt(at);
  const int row = hit.isValid() ? hit.row() : -1;
  if (type == QEvent::MouseButtonDblClick) {
    if (event.button() == Qt::LeftButton && m_events) m_events->OnListDoubleClick(row);
    return false;
  }
  if (type == QEvent::MouseButtonPress) {
    m_pressRow = event.button() == Qt::LeftButton ? row : -1;
    m_pressAt = at;
    return false;
  }
  if (m_dragging) {
    const bool overList = viewport()->rect().contains(at);
    if (type == QEvent::MouseMove) {
      MoveDragImage(at);
      if (m_events) m_events->OnListDragMove(overList, overList ? row : -1);
    } else if (event.button() == Qt::LeftButton && m_events) {
      m_events->OnListDrop(overList);
    }
    return true;
  }
  if (type == QEvent::MouseMove && (event.buttons() & Qt::LeftButton) && m_pressRow >= 0 &&
      (at - m_pressAt).manhattanLength() >= QApplication::startDragDistance()) {
    const int dragged = m_pressRow;
    m_pressRow = -1;
    if (m_events) m_events->OnListBeginDrag(dragged);
    return true;
  }
  if (type == QEvent::MouseButtonRelease) m_pressRow = -1;
  return false;
}
