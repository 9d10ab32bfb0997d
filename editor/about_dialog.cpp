#include "editor/about_dialog.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <system_error>
#include <vector>

#include "editor/version.h"
#include "platform/module_path.h"
#include "resources/resources.h"

namespace {

namespace fs = std::filesystem;

// The size a bitmap file states in its header; nothing when the bytes are no bitmap or state
// no size. Rows stored top-down give a negative height.
std::optional<PixelSize> BitmapSize(std::span<const std::uint8_t> bytes) {
  auto load = [&](std::size_t at, auto value) {
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
  };
  if (bytes.size() < 26 || bytes[0] != 'B' || bytes[1] != 'M') return std::nullopt;
  const auto headerSize = load(14, std::uint32_t{});
  PixelSize size;
  if (headerSize == 12) {  // the old core header: 16-bit sides
    size = {load(18, std::uint16_t{}), load(20, std::uint16_t{})};
  } else if (headerSize >= 40) {
    const auto width = load(18, std::int32_t{});
    const auto height = load(22, std::int32_t{});
    if (height == INT32_MIN) return std::nullopt;
    size = {width, std::abs(height)};
  } else {
    return std::nullopt;
  }
  if (size.width <= 0 || size.height <= 0) return std::nullopt;
  return size;
}

// The first bytes of a file, enough for a bitmap's headers; empty when it cannot be read.
std::vector<std::uint8_t> FileStart(const fs::path& path) {
  std::vector<std::uint8_t> bytes(64);
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

std::wstring FolderOf(const std::wstring& path) {
  return fs::path(path).parent_path().wstring();
}

}  // namespace

CAboutDlg::CAboutDlg(ParentWindow parent)
    : CAboutDlg(parent, FolderOf(ProgramPath()), ModulePath()) {}

CAboutDlg::CAboutDlg(ParentWindow parent, std::wstring hostFolder, std::wstring modulePath)
    : m_parent(parent), m_hostFolder(std::move(hostFolder)), m_modulePath(std::move(modulePath)) {}

int CAboutDlg::Run() {
  CEditorViewFactory* views = EditorViews();
  if (views) m_view = views->CreateAboutDialog(m_parent);
  if (!m_view) return kDialogCancel;
  const PixelSize picture = PictureSize();
  m_view->SetTitle(kTitle);
  m_view->SetHtmlAreaSize({picture.width + 4, picture.height + 4});
  m_html = m_view->CreateHtmlView();
  if (m_html) {
    m_html->SetEvents(this);
    ShowPage(*m_html);
  }
  const int result = m_view->RunModal(*this);
  if (m_html) m_html->SetEvents(nullptr);
  m_html = nullptr;
  m_view.reset();
  return result;
}

// The built-in picture sets the size, and a picture beside the host sets it again.
PixelSize CAboutDlg::PictureSize() const {
  PixelSize size = kStartingSize;
  if (const auto image = BuiltInResource("IMAGE", std::to_string(kImageId)))
    if (const auto stated = BitmapSize(*image)) size = *stated;
  if (const auto stated = BitmapSize(FileStart(fs::path(m_hostFolder) / L"about.bmp")))
    size = *stated;
  return size;
}

// A page beside the host replaces the built-in one.
void CAboutDlg::ShowPage(IHtmlView& html) {
  const fs::path page = fs::path(m_hostFolder) / L"about.htm";
  std::error_code error;
  if (fs::is_regular_file(page, error) && html.NavigateToFile(page.wstring())) return;
  if (const auto builtIn = BuiltInResource("HTML", "about.htm"))
    html.LoadHtml(std::string(builtIn->begin(), builtIn->end()), m_hostFolder);
}

void CAboutDlg::OnOk() { m_view->EndDialog(kDialogOk); }

void CAboutDlg::OnCancel() { m_view->EndDialog(kDialogCancel); }

void CAboutDlg::OnDocumentComplete() {
  audio::CVersion version;
  std::uint32_t a = 0, b = 0, c = 0, d = 0;
  version.GetDLLVersion(m_modulePath, a, b, c, d);
  if (m_html) m_html->ReplaceElement(L"version", VersionText(a, b, c));
}

// The page has no commands; a followed "app:" link only stays where it is.
void CAboutDlg::OnAppCommand(const std::wstring&) {}

std::wstring CAboutDlg::VersionText(std::uint32_t major, std::uint32_t minor,
                                    std::uint32_t build) {
  wchar_t text[64];
  std::swprintf(text, 64, L"%d.%d build %d", static_cast<int>(major), static_cast<int>(minor),
                static_cast<int>(build));
  return text;
}
