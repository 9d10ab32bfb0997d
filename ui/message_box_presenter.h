// Message boxes drawn by Qt on the editor's thread. A box asked for on another thread (a state
// loaded by the host's thread that names a missing port) goes to the system presenter instead:
// waiting there for the editor's thread could wait for ever on a thread that waits in turn.
#pragma once

#include "platform/message_box.h"

class CQtMessageBoxPresenter final : public CMessageBoxPresenter {
 public:
  int Present(const std::wstring& text, const std::wstring& caption, unsigned flags) override;
};
