#include "editor/page_view.h"

namespace {

constexpr PageControlPlace kPlaces[] = {
    {kDeviceText, PageControlKind::Static, 100, 21, 520, 16, 0, 0, 0},
    {kDeviceButton, PageControlKind::MenuButton, 623, 17, 19, 19, 207, 208, 206},
    {kPrefixText, PageControlKind::Static, 100, 54, 520, 16, 0, 0, 0},
    {kPrefixButton, PageControlKind::Button, 623, 52, 19, 19, 205, 224, 209},
    {kPortText, PageControlKind::Static, 100, 90, 205, 16, 0, 0, 0},
    {kPortButton, PageControlKind::MenuButton, 302, 87, 19, 19, 207, 208, 206},
    {kChannelText, PageControlKind::Static, 550, 90, 75, 16, 0, 0, 0},
    {kChannelButton, PageControlKind::MenuButton, 623, 87, 19, 19, 207, 208, 206},
    {kSyncCheck, PageControlKind::CheckBox, 0, 0, 0, 0, 0, 0, 0},
    {kAddButton, PageControlKind::MenuButton, 10, 134, 93, 27, 210, 211, 212},
    {kRemoveButton, PageControlKind::Button, 107, 134, 93, 27, 219, 220, 221},
    {kEditButton, PageControlKind::Button, 204, 134, 93, 27, 213, 214, 215},
    {kSendButton, PageControlKind::Button, 301, 134, 93, 27, 222, 223, 225},
    {kEventList, PageControlKind::List, 20, 202, 617, 70, 0, 0, 0},
    {kSendAllButton, PageControlKind::Button, 10, 299, 93, 27, 238, 239, 240},
    {kTestButton, PageControlKind::Button, 107, 299, 93, 27, 242, 243, 244},
    {kSpareButton, PageControlKind::Button, 0, 0, 0, 0, 0, 0, 0},
};

const EventListColumn kColumns[] = {
    {L"Enabled", 5}, {L"Name", 12}, {L"Description", 28}, {L"Type", 10}, {L"Info", 9},
};

}  // namespace

std::span<const PageControlPlace> PageControlPlaces() { return kPlaces; }

std::span<const EventListColumn> EventListColumns() { return kColumns; }

std::vector<int> EventListColumnWidths(int clientWidth) {
  const int usable = clientWidth - 22;
  std::vector<int> widths;
  int used = 0;
  for (std::size_t i = 0; i + 1 < std::size(kColumns); ++i) {
    widths.push_back(usable * kColumns[i].share / 64);
    used += widths.back();
  }
  widths.push_back(usable - used - 2);
  return widths;
}
