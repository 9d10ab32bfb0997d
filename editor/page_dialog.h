// The property page's logic: everything the page shows and does, over the instance's IMyFilter,
// apart from its drawing (IPageView). It lives as long as the page object; its window exists
// between Create (the host's Activate) and Destroy. Once started it tells the instance where to
// post MIDI activity, and its two meters rise on those messages and fall on a 10 ms timer.
//
// Everything here runs on the editor thread; activity messages arrive on its queue.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "editor/event_list.h"
#include "editor/page_view.h"
#include "editor/ui_meter.h"
#include "interfaces/my_filter.h"
#include "platform/com_ptr.h"
#include "platform/notify.h"
#include "platform/popup_menu.h"
#include "platform/timer.h"

// Menu command ranges.
inline constexpr std::uint32_t kPortNone = 45000;  // "none"; port i is 45001 + i
inline constexpr std::uint32_t kPortLast = 45999;
inline constexpr std::uint32_t kDeviceImport = 46000;
inline constexpr std::uint32_t kDeviceClear = 46001;
inline constexpr std::uint32_t kDeviceGeneric = 46002;  // device i of the list is 46003 + i
inline constexpr std::uint32_t kDeviceLast = 46999;
inline constexpr std::uint32_t kChannelBypass = 2000;  // channel n is 2000 + n
inline constexpr std::uint32_t kChannelLast = 2016;
// The meters' timer.
inline constexpr std::uint32_t kMeterTimer = 2112;
inline constexpr std::uint32_t kMeterPeriodMs = 10;

class CPageDialog final : private IPageViewEvents,
                          private IEditorWindow,
                          private CNotifyTarget,
                          private ITimerClient,
                          private IUIControlHost {
 public:
  CPageDialog();
  // Tells the instance first that activity has nowhere to go, then closes the window if it is
  // still there and lets go of the objects.
  ~CPageDialog();
  CPageDialog(const CPageDialog&) = delete;
  CPageDialog& operator=(const CPageDialog&) = delete;

  // [editor thread] Binds the page to the first object that offers media parameters and their
  // info: its IMyFilter becomes the page's instance (null when it has none).
  void OnObjectsChanged(std::span<IUnknown* const> objects);
  IMyFilter* Filter() const noexcept { return m_filter.Get(); }

  // [editor thread] Makes the page's view inside `parent` and starts the page: meter timer,
  // faces, list, menus, the whole model shown, and the instance's activity directed here last.
  // E_FAIL when no view can be made; E_UNEXPECTED when the window exists already.
  HRESULT Create(ParentWindow parent);
  // [editor thread] The window goes: the meter timer stops first.
  void Destroy();
  IPageView* View() const noexcept { return m_view.get(); }

  // [editor thread] Shows the whole model: device, port (the three sending buttons go dark and
  // output off when none is chosen), prefix, channel, events and sync. Nothing without a window.
  void RefreshPage();
  void ShowSysexPrefix();
  void BuildDeviceMenu();
  void BuildOutputPortMenu();

  // The page's popups as they stand.
  std::shared_ptr<const CPopupMenu> PortMenu() const { return m_portMenu; }
  std::shared_ptr<const CPopupMenu> DeviceMenu() const { return m_deviceMenu; }
  std::shared_ptr<const CPopupMenu> ChannelMenu() const { return m_channelMenu; }
  std::shared_ptr<const CPopupMenu> AddMenu() const { return m_addMenu; }
  const CUIMeter& InputMeter() const noexcept { return m_inputMeter; }
  const CUIMeter& OutputMeter() const noexcept { return m_outputMeter; }
  // Where the instance posts activity, while the page runs; 0 before.
  NotifyHandle WindowHandle() const override { return m_handle; }

 private:
  // IPageViewEvents
  void OnCommand(std::uint32_t id) override;
  void OnLButtonDown(int x, int y) override;
  void OnPaint() override;
  void OnListDoubleClick(int row) override;
  void OnListItemChanged(int row, std::uint32_t oldState, std::uint32_t newState) override;
  void OnListBeginDrag(int row) override;
  void OnListDragMove(bool overList, int row) override;
  void OnListDrop(bool overList) override;
  void OnDestroy() override;
  // IEditorWindow: a load changed the model under the page. The page shows it the next time it
  // opens; the refresh it posts itself is a seam and does nothing.
  void ReloadLists() override;
  // CNotifyTarget: activity and refresh.
  void OnPosted(MessageId message, WPARAM_T wParam, LPARAM_T lParam) override;
  // ITimerClient: the meters fall.
  void OnTimer(std::uint32_t id) override;
  // IUIControlHost: the meters draw through the view.
  void SetCapture(CUIControl*) override {}
  std::intptr_t SendToWindow(MessageId, WPARAM_T, LPARAM_T) override { return 0; }
  void PostToWindow(MessageId, WPARAM_T, LPARAM_T) override {}
  void ToScreen(int&, int&) override {}
  void DrawMeter(const CUIMeter& meter, int lit) override;
  void DrawFader(const CUIFader&, const std::vector<UIRect>&, const UIRect&) override {}
  void DrawStateButton(const CUIStateButton&) override {}
  void OpenTextBox(const UIRect&, const std::wstring&) override {}
  void CloseTextBox() override {}

  void OnInitDialog();
  void PlaceControls();
  void SetUpMeters();
  void BuildChannelMenu();
  void BuildAddMenu();
  void SetText(std::uint32_t control, const std::wstring& text);
  void EnableSending(bool enabled);
  std::wstring DeviceName() const;
  CInstrument* Instrument() const;
  void ShowChannel();
  void OnPortCommand(std::uint32_t id);
  void OnChannelCommand(std::uint32_t id);
  void OnDeviceCommand(std::uint32_t id);
  void ImportDevices();
  void ClearDevices();
  void EditPrefix();
  // Send and Send All: nothing without a list, a chosen port and a handle for it.
  bool CanSend() const;
  void SendSelected();
  void SendAllEnabled();
  void OpenClosedLoopTest();
  void SetEditorWindowOnFilter();

  ComPtr<IUnknown> m_mediaParams;
  ComPtr<IUnknown> m_paramInfo;
  ComPtr<IMyFilter> m_filter;
  bool m_editorSet = false;  // the instance posts activity here
  NotifyHandle m_handle = 0;
  std::unique_ptr<IPageView> m_view;
  std::unique_ptr<IPageView> m_closedView;  // a view whose window went, kept until Destroy
  std::unique_ptr<CEventList> m_eventList;
  CUIControlList m_controls;
  CUIMeter m_inputMeter;
  CUIMeter m_outputMeter;
  std::shared_ptr<CPopupMenu> m_portMenu;
  std::shared_ptr<CPopupMenu> m_deviceMenu;
  std::shared_ptr<CPopupMenu> m_channelMenu;
  std::shared_ptr<CPopupMenu> m_addMenu;
};
