// The About box: a dialog sized to a picture, showing an HTML page with the module's version
// filled in. A picture "about.bmp" beside the host's program resizes it, and a page "about.htm"
// there replaces the built-in one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "editor/about_view.h"
#include "editor/view_factory.h"

class CAboutDlg final : private IModalEvents, private IHtmlViewEvents {
 public:
  static constexpr const wchar_t* kTitle = L"About Tarn";
  static constexpr PixelSize kStartingSize{600, 800};
  // The built-in picture, a resource of the type "IMAGE".
  static constexpr int kImageId = 234;

  // Looks beside the running program for the overrides and reads the version of this module.
  explicit CAboutDlg(ParentWindow parent);
  // The same with the folder to look in and the module to read the version of given.
  CAboutDlg(ParentWindow parent, std::wstring hostFolder, std::wstring modulePath);

  // [editor thread] Shows the box until OK (kDialogOk) or the close box (kDialogCancel);
  // kDialogCancel at once when no view can be made.
  int Run();

  // The text the box shows for a version: "%d.%d build %d" of the first three numbers.
  static std::wstring VersionText(std::uint32_t major, std::uint32_t minor, std::uint32_t build);

 private:
  PixelSize PictureSize() const;
  void ShowPage(IHtmlView& html);
  // IModalEvents
  void OnOk() override;
  void OnCancel() override;
  // IHtmlViewEvents
  void OnDocumentComplete() override;
  void OnAppCommand(const std::wstring& command) override;

  ParentWindow m_parent;
  std::wstring m_hostFolder;
  std::wstring m_modulePath;
  std::unique_ptr<IAboutDialogView> m_view;
  IHtmlView* m_html = nullptr;
};
