// "Edit Controller Event": channel, controller number and value of one controller message.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "editor/event_dialog_views.h"
#include "editor/view_factory.h"

class CCCDialog final : private IModalEvents {
 public:
  explicit CCCDialog(ParentWindow parent);

  // [editor thread] Runs the dialog over the caller's values. Answers kDialogOk or
  // kDialogCancel, at once when no view can be made. OK is refused, with a message naming the
  // limits, while the value or the controller lies outside 0 to 127 or the channel outside 1
  // to 16 (checked in that order); the variables are written before the check.
  int Run(std::int32_t& channel, std::int32_t& controller, std::int32_t& value,
          std::wstring& name, std::wstring& description);

 private:
  // IModalEvents
  void OnOk() override;
  void OnCancel() override;

  ParentWindow m_parent;
  std::unique_ptr<IControllerDialogView> m_view;
  std::int32_t* m_channel = nullptr;
  std::int32_t* m_controller = nullptr;
  std::int32_t* m_value = nullptr;
  std::wstring* m_name = nullptr;
  std::wstring* m_description = nullptr;
};
