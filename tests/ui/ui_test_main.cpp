#include <QtCore/QFile>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <vector>

#include "tests/ui/ui_tests.h"
#include "ui/qt_editor.h"

namespace {

std::vector<UiTestMaker>& Makers() {
  static std::vector<UiTestMaker> makers;
  return makers;
}

}  // namespace

int RegisterUiTest(UiTestMaker maker) {
  Makers().push_back(std::move(maker));
  return static_cast<int>(Makers().size());
}

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // The instances keep their device store beside the program: each run starts from none.
  QFile::remove(QCoreApplication::applicationDirPath() + QStringLiteral("/devices.xml"));
  InstallQtEditor();
  int failed = 0;
  for (const UiTestMaker& maker : Makers()) {
    const std::unique_ptr<QObject> test = maker();
    failed += QTest::qExec(test.get(), argc, argv);
  }
  return failed == 0 ? 0 : 1;
}
