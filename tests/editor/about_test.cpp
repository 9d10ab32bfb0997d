// The About box: its size from the pictures, the page beside the host or the built-in one, and
// the version filled in once the page is complete.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "editor/about_dialog.h"
#include "editor/version.h"
#include "tests/support/view_recorders.h"
#include "tests/support/temp_folder.h"

namespace {

// The first bytes of a bitmap file stating its size, as a picture beside the host would.
std::string BitmapHeader(std::int32_t width, std::int32_t height) {
  std::string bytes(54, '\0');
  bytes[0] = 'B';
  bytes[1] = 'M';
  auto put = [&](std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i));
  };
  put(14, 40);
  put(18, static_cast<std::uint32_t>(width));
  put(22, static_cast<std::uint32_t>(height));
  return bytes;
}

struct AboutRun {
  PixelSize htmlArea;
  std::wstring title;
  std::wstring navigatedFile;
  std::string before;  // the page before the document was complete
  std::string after;
};

// Runs the box over `folder` as the host's folder, completes the page and presses OK.
AboutRun RunAbout(const TempFolder& folder, const std::wstring& modulePath = L"no-such-module") {
  ViewFactoryRecorder views;
  AboutRun run;
  views.dialogs.NextAbout({true, {[&](AboutDialogRecorder& view, IModalEvents& events) {
                     run.htmlArea = view.htmlArea.value_or(PixelSize{});
                     run.title = view.title;
                     run.navigatedFile = view.html->navigatedFile;
                     run.before = view.html->document;
                     view.html->FollowAppLink(L"anything");
                     view.html->CompleteDocument();
                     run.after = view.html->document;
                     events.OnOk();
                   }}});
  EXPECT_EQ(CAboutDlg(nullptr, folder.Path().wstring(), modulePath).Run(), kDialogOk);
  return run;
}

TEST(AboutBox, TheBuiltInPageAndPictureShowTheVersionInTheirElement) {
  TempFolder host;
  const AboutRun run = RunAbout(host);
  EXPECT_EQ(run.title, L"About Tarn");
  EXPECT_EQ(run.htmlArea, (PixelSize{404, 304})) << "image 234 is 400 by 300, plus 4";
  EXPECT_TRUE(run.navigatedFile.empty());
  EXPECT_NE(run.before.find("<span id=\"version\">temp</span>"), std::string::npos);
  EXPECT_NE(run.after.find("<td>0.0 build 0</td>"), std::string::npos)
      << "no version record: the numbers stay 0; the element itself is replaced";
}

#if !defined(_WIN32)
// A library of 320 bytes whose version section states 2.4.0.400.
TEST(AboutBox, AModuleOfVersion2Point4Point0Point400Reads2Point4Build0) {
  TempFolder host;
  EXPECT_NE(RunAbout(host, TARN_VERSION_SAMPLE).after.find("<td>2.4 build 0</td>"),
            std::string::npos);
}
#endif

TEST(AboutBox, APictureBesideTheHostResizesTheBoxAndABrokenOneIsPassedOver) {
  TempFolder host;
  host.Write("about.bmp", BitmapHeader(640, -480));
  EXPECT_EQ(RunAbout(host).htmlArea, (PixelSize{644, 484})) << "top-down rows, same size";
  host.Write("about.bmp", "BM not a picture");
  EXPECT_EQ(RunAbout(host).htmlArea, (PixelSize{404, 304}));
}

TEST(AboutBox, APageBesideTheHostReplacesTheBuiltInOneAndGetsTheVersionToo) {
  TempFolder host;
  host.Write("about.htm", "<html><body><p>Ours</p><b id=\"version\">x</b></body></html>");
  const AboutRun run = RunAbout(host);
  EXPECT_EQ(run.navigatedFile, host.File("about.htm"));
  EXPECT_EQ(run.after, "<html><body><p>Ours</p>0.0 build 0</body></html>");
}

TEST(AboutBox, WithoutAnHtmlViewOrAnyViewsItStillCloses) {
  TempFolder host;
  EXPECT_EQ(CAboutDlg(nullptr, host.Path().wstring(), L"").Run(), kDialogCancel);
  ViewFactoryRecorder views;
  views.dialogs.NextAbout({false, {[](AboutDialogRecorder&, IModalEvents& events) { events.OnOk(); }}});
  EXPECT_EQ(CAboutDlg(nullptr, host.Path().wstring(), L"").Run(), kDialogOk);
}

TEST(Version, ShowsTheFirstThreeNumbersSo2Point4Point0Point400Reads2Point4Build0) {
  audio::CVersion version;
  EXPECT_EQ(version.Parse(L"2.4.0.400"), S_OK);
  EXPECT_EQ(version.Number(3), 400u);
  EXPECT_EQ(CAboutDlg::VersionText(version.Number(0), version.Number(1), version.Number(2)),
            L"2.4 build 0");
  EXPECT_EQ(version.Parse(L"3, 1, 7, 2"), S_OK) << "commas when the dots give no four parts";
  EXPECT_EQ(version.Number(2), 7u);
  EXPECT_EQ(version.Text(), L"3, 1, 7, 2");
  EXPECT_EQ(version.Parse(L"1.2.3"), E_FAIL);
  EXPECT_EQ(version.Number(0), 0u);
}

TEST(Version, AFileWithoutARecordGivesZeros) {
  TempFolder folder;
  audio::CVersion version;
  std::uint32_t a = 9, b = 9, c = 9, d = 9;
  EXPECT_EQ(version.GetDLLVersion(folder.File("missing.dll"), a, b, c, d), E_FAIL);
  EXPECT_EQ(a + b + c + d, 0u);
  EXPECT_EQ(version.GetDLLVersion(folder.Write("text.dll", "\x7F" "ELF not really"), a, b, c, d),
            E_FAIL);
}

}  // namespace
