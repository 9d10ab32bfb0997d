// The system's clipboard through Qt: its text, as 8-bit text of the locale.
#pragma once

#include "platform/clipboard.h"

class CQtClipboardPresenter final : public CClipboardPresenter {
 public:
  std::optional<std::string> Text() override;
  void SetText(const std::string& text) override;
};
