#include "ui/page_view.h"

#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>

#include "platform/notify.h"
#include "ui/event_list_widget.h"
#include "ui/meter_widget.h"
#include "ui/skin.h"
#include "ui/skin_button.h"

namespace {

// The check box's place: beside its word "SEND MIDI SYNC" on the skin.
constexpr QRect kSyncPlace(338, 90, 15, 15);
// Posts from the instance's threads (the meters' activity) wait in this thread's queue until
// delivered; this often they are.
constexpr int kDeliverMs = 5;
// Space kept between a static and a button it would otherwise run under.
constexpr int kStaticGap = 3;

QString CheckBoxStyle() {
  return QStringLiteral(
             "QCheckBox { background: transparent; }"
             "QCheckBox::indicator { width: 11px; height: 11px; border: 1px solid %1;"
             " background: #0b161e; }"
             "QCheckBox::indicator:checked { background: %1; border: 1px solid %1;"
             " image: none; }"
             "QCheckBox::indicator:checked:hover, QCheckBox::indicator:hover {"
             " border: 1px solid #ffffff; }")
      .arg(LegendColour().name());
}

}  // namespace

CPageWidget::CPageWidget(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("tarn-page"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  resize(kSkinWidth, kSkinHeight);
  PlaceControls();
  m_deliver = new QTimer(this);
  connect(m_deliver, &QTimer::timeout, this, [] { DeliverQueuedNotifications(); });
  m_deliver->start(kDeliverMs);
}

// The statics of the port and the channel would run a few pixels under their arrow buttons at
// their full width: they end short of them, so that no control lies over another.
QRect CPageWidget::StaticRect(const PageControlPlace& place) const {
  QRect rect(place.x, place.y, place.width, place.height);
  for (const PageControlPlace& other : PageControlPlaces()) {
    if (other.kind != PageControlKind::Button && other.kind != PageControlKind::MenuButton)
      continue;
    const QRect button(other.x, other.y, other.width, other.height);
    if (button.intersects(rect) && button.left() > rect.left())
      rect.setRight(button.left() - kStaticGap - 1);
  }
  return rect;
}

void CPageWidget::PlaceControls() {
  QFont text = font();
  text.setPixelSize(12);
  for (const PageControlPlace& place : PageControlPlaces()) {
    switch (place.kind) {
      case PageControlKind::Static: {
        auto* label = new QLabel(this);
        label->setGeometry(StaticRect(place));
        label->setFont(text);
        label->setStyleSheet(QStringLiteral("QLabel { background: transparent; color: %1; }")
                                 .arg(LegendColour().name()));
        label->setTextFormat(Qt::PlainText);
        m_controls[place.id] = label;
        break;
      }
      case PageControlKind::CheckBox:
        m_sync = new QCheckBox(this);
        m_sync->setGeometry(kSyncPlace);
        m_sync->setStyleSheet(CheckBoxStyle());
        m_sync->setFocusPolicy(Qt::NoFocus);
        m_sync->setAccessibleName(
            QString::fromWCharArray(kSyncCheckText));  // its word is the skin's
        connect(m_sync, &QCheckBox::clicked, this, [this] {
          if (m_events) m_events->OnCommand(kSyncCheck);
        });
        m_controls[place.id] = m_sync;
        break;
      case PageControlKind::List:
        m_list = new CEventListWidget(this);
        m_list->setGeometry(place.x, place.y, place.width, place.height);
        m_controls[place.id] = m_list;
        break;
      case PageControlKind::Button:
      case PageControlKind::MenuButton:
        break;  // made by the view, which is their parent for commands
    }
  }
  const QPixmap back = SkinPicture(kMeterBackBitmap);
  const QPixmap lit = SkinPicture(kMeterLitBitmap);
  m_meters[0] = new CMeterWidget(back, lit, this);
  m_meters[0]->setObjectName(QStringLiteral("meter-in"));
  m_meters[0]->move(kInputMeterX, kInputMeterY);
  m_meters[1] = new CMeterWidget(back, lit, this);
  m_meters[1]->setObjectName(QStringLiteral("meter-out"));
  m_meters[1]->move(kOutputMeterX, kOutputMeterY);
}

void CPageWidget::AddButton(std::uint32_t id, CSkinButton* button) { m_controls[id] = button; }

// Each control is found by its id as its object name, by a host's tests as by ours.
void CPageWidget::NameControls() {
  for (const auto& [id, control] : m_controls) control->setObjectName(QString::number(id));
}

void CPageWidget::SetEvents(IPageViewEvents* events) {
  m_events = events;
  m_list->SetEvents(events);
}

QWidget* CPageWidget::Control(std::uint32_t id) const {
  const auto it = m_controls.find(id);
  return it == m_controls.end() ? nullptr : it->second;
}

CSkinButton* CPageWidget::Button(std::uint32_t id) const {
  return dynamic_cast<CSkinButton*>(Control(id));
}

QLabel* CPageWidget::Static(std::uint32_t id) const { return dynamic_cast<QLabel*>(Control(id)); }

void CPageWidget::paintEvent(QPaintEvent*) {
  {
    QPainter painter(this);
    painter.fillRect(rect(), PanelColour());
    painter.drawPixmap(0, 0, SkinPicture(kSkinBitmap));
  }
  if (m_events) m_events->OnPaint();
}

void CPageWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && m_events) {
    const QPoint at = event->position().toPoint();
    m_events->OnLButtonDown(at.x(), at.y());
  }
  QWidget::mousePressEvent(event);
}

CQtPageView::CQtPageView(QWidget* parent) : m_widget(new CPageWidget(parent)) {
  for (const PageControlPlace& place : PageControlPlaces()) {
    if (place.kind != PageControlKind::Button && place.kind != PageControlKind::MenuButton)
      continue;
    auto* button = new CSkinButton(place.id, *this, m_widget);
    button->setGeometry(place.x, place.y, place.width, place.height);
    m_widget->AddButton(place.id, button);
  }
  m_widget->NameControls();
  // The window may go before the view, with the host's window that holds it.
  QObject::connect(m_widget, &QObject::destroyed, [this] {
    if (m_events) m_events->OnDestroy();
  });
}

// The logic lets its view go: it hears nothing more from it.
CQtPageView::~CQtPageView() {
  m_events = nullptr;
  if (m_widget) {
    m_widget->SetEvents(nullptr);
    delete m_widget.data();
  }
}

void CQtPageView::SetEvents(IPageViewEvents* events) {
  m_events = events;
  if (CPageWidget* widget = m_widget.data()) widget->SetEvents(events);
}

ParentWindow CQtPageView::Window() { return static_cast<QWidget*>(m_widget.data()); }

void CQtPageView::Move(int left, int top, int right, int bottom) {
  if (CPageWidget* widget = m_widget.data())
    widget->setGeometry(left, top, right - left, bottom - top);
}

void CQtPageView::Show(bool shown) {
  if (CPageWidget* widget = m_widget.data()) widget->setVisible(shown);
}

// Hidden, set and shown again, as the statics are transparent over the skin.
void CQtPageView::SetText(std::uint32_t control, const std::wstring& text) {
  CPageWidget* widget = m_widget.data();
  QLabel* label = widget ? widget->Static(control) : nullptr;
  if (!label) return;
  label->hide();
  label->setText(QString::fromStdWString(text));
  label->show();
}

void CQtPageView::EnableControl(std::uint32_t control, bool enabled) {
  CPageWidget* widget = m_widget.data();
  if (!widget) return;
  if (CSkinButton* button = widget->Button(control))
    button->SetEnabled(enabled);
  else if (QWidget* other = widget->Control(control))
    other->setEnabled(enabled);
}

void CQtPageView::ShowControl(std::uint32_t control, bool shown) {
  CPageWidget* widget = m_widget.data();
  if (QWidget* shownControl = widget ? widget->Control(control) : nullptr)
    shownControl->setVisible(shown);
}

void CQtPageView::SetCheck(std::uint32_t control, bool checked) {
  CPageWidget* widget = m_widget.data();
  if (!widget) return;
  if (control == kSyncCheck)
    widget->CheckBox().setChecked(checked);
  else if (CSkinButton* button = widget->Button(control))
    button->State().SetChecked(checked);
}

bool CQtPageView::IsChecked(std::uint32_t control) const {
  const CPageWidget* widget = m_widget.data();
  if (!widget) return false;
  if (control == kSyncCheck) return widget->CheckBox().isChecked();
  const CSkinButton* button = widget->Button(control);
  return button && button->State().IsChecked();
}

void CQtPageView::SetButtonFaces(std::uint32_t control, std::uint32_t normal, std::uint32_t pressed,
                                 std::uint32_t hover) {
  CPageWidget* widget = m_widget.data();
  if (CSkinButton* button = widget ? widget->Button(control) : nullptr) {
    button->State().SetFaces(normal, pressed, hover);
    button->update();
  }
}

void CQtPageView::SetButtonMenu(std::uint32_t control, std::shared_ptr<const CPopupMenu> menu) {
  CPageWidget* widget = m_widget.data();
  if (CSkinButton* button = widget ? widget->Button(control) : nullptr)
    button->State().SetMenu(std::move(menu));
}

void CQtPageView::DrawMeter(PageMeter meter, int litPixels) {
  if (CPageWidget* widget = m_widget.data()) widget->Meter(meter).SetLit(litPixels);
}

// A window gone with its parent leaves a list that holds nothing.
IEventListView& CQtPageView::EventList() {
  CPageWidget* widget = m_widget.data();
  return widget ? static_cast<IEventListView&>(widget->List()) : m_noList;
}

void CQtPageView::OnButtonCommand(std::uint32_t command) {
  if (m_events) m_events->OnCommand(command);
}

// The page's buttons carry no menu messages and no radio groups.
void CQtPageView::OnButtonMessage(std::uint32_t, std::int32_t) {}
void CQtPageView::ClearRadioGroup(const CDspButton&) {}
