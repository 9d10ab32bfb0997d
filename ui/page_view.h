// The property page on screen: the skin at the origin, the statics in the skin's light colour
// over it, the DSPButtons with their faces and menus, the check box beside its word, the event
// list and the two meters, each at its place on the skin. The view belongs to the page's logic;
// its window is a child of the window the host gave and may go away with it first, which the
// logic hears as OnDestroy.
#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>
#include <map>

#include "editor/dsp_button.h"
#include "editor/page_view.h"

class QCheckBox;
class QLabel;
class QTimer;
class CSkinButton;
class CEventListWidget;
class CMeterWidget;

// The page's window, named "tarn-page"; each control carries its id as its object name, the
// meters "meter-in" and "meter-out".
class CPageWidget final : public QWidget {
 public:
  explicit CPageWidget(QWidget* parent);

  void SetEvents(IPageViewEvents* events);

  QWidget* Control(std::uint32_t id) const;
  CSkinButton* Button(std::uint32_t id) const;
  QLabel* Static(std::uint32_t id) const;
  QCheckBox& CheckBox() const noexcept { return *m_sync; }
  CEventListWidget& List() const noexcept { return *m_list; }
  CMeterWidget& Meter(PageMeter meter) const noexcept { return *m_meters[static_cast<int>(meter)]; }
  void AddButton(std::uint32_t id, CSkinButton* button);
  void NameControls();

  QSize sizeHint() const override { return QSize(kSkinWidth, kSkinHeight); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void PlaceControls();
  QRect StaticRect(const PageControlPlace& place) const;

  IPageViewEvents* m_events = nullptr;
  std::map<std::uint32_t, QWidget*> m_controls;
  QCheckBox* m_sync = nullptr;
  CEventListWidget* m_list = nullptr;
  CMeterWidget* m_meters[2] = {nullptr, nullptr};
  QTimer* m_deliver = nullptr;
};

class CQtPageView final : public IPageView, private IDspButtonParent {
 public:
  // `parent` is the host's window for the page, a QWidget.
  explicit CQtPageView(QWidget* parent);
  ~CQtPageView() override;

  void SetEvents(IPageViewEvents* events) override;
  ParentWindow Window() override;
  void Move(int left, int top, int right, int bottom) override;
  void Show(bool shown) override;
  void SetText(std::uint32_t control, const std::wstring& text) override;
  void EnableControl(std::uint32_t control, bool enabled) override;
  void ShowControl(std::uint32_t control, bool shown) override;
  void SetCheck(std::uint32_t control, bool checked) override;
  bool IsChecked(std::uint32_t control) const override;
  void SetButtonFaces(std::uint32_t control, std::uint32_t normal, std::uint32_t pressed,
                      std::uint32_t hover) override;
  void SetButtonMenu(std::uint32_t control, std::shared_ptr<const CPopupMenu> menu) override;
  void DrawMeter(PageMeter meter, int litPixels) override;
  IEventListView& EventList() override;

 private:
  void OnButtonCommand(std::uint32_t command) override;
  void OnButtonMessage(std::uint32_t message, std::int32_t lParam) override;
  void ClearRadioGroup(const CDspButton& set) override;

  // What the logic is handed once the window has gone: rows of nothing.
  class CNoEventList final : public IEventListView {
   public:
    void SetColumns(std::span<const EventListColumn>) override {}
    void DeleteAllRows() override {}
    void InsertRow(int, bool, const EventRowTexts&) override {}
    void DeleteRow(int) override {}
    void UpdateRow(int, const std::wstring&, const std::wstring&, const std::wstring&) override {}
    int RowCount() const override { return 0; }
    bool RowChecked(int) const override { return false; }
    EventRowTexts RowTexts(int) const override { return {}; }
    std::vector<int> SelectedRows() const override { return {}; }
    void SelectOnly(int) override {}
    void SetDropHighlight(int, bool) override {}
    void BeginDrag(int) override {}
    void EndDrag() override {}
  };

  QPointer<CPageWidget> m_widget;
  IPageViewEvents* m_events = nullptr;
  CNoEventList m_noList;
};
