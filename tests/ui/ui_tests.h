// The test classes of the editor's screens register themselves here, and one main runs each with
// Qt Test inside one application, with the Qt editor installed as the module installs it.
#pragma once

#include <QtCore/QObject>
#include <functional>
#include <memory>

using UiTestMaker = std::function<std::unique_ptr<QObject>()>;
int RegisterUiTest(UiTestMaker maker);

#define TARN_UI_TEST(Class) \
  static const int kRegistered##Class = RegisterUiTest([] { return std::make_unique<Class>(); });
