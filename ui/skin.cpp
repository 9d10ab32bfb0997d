#include "ui/skin.h"

// The pictures are compiled into this static library; naming its initialiser keeps the linker
// from dropping them from the module. Outside any namespace, as the initialiser's name is global.
static void EnsureResources() {
  static const bool registered = [] {
    Q_INIT_RESOURCE(editor);
    return true;
  }();
  (void)registered;
}

namespace {

QString Hex(const QColor& colour) { return colour.name(QColor::HexRgb); }

}  // namespace

QPixmap SkinPicture(int number) {
  EnsureResources();
  return QPixmap(QStringLiteral(":/tarn/%1.png").arg(number));
}

QString SkinMenuStyleSheet() {
  return QStringLiteral(
             "QMenu { background: %1; color: %2; border: 1px solid #59626b; padding: 2px; }"
             "QMenu::item { padding: 3px 18px 3px 12px; }"
             "QMenu::item:selected { background: %2; color: %3; }"
             "QMenu::item:disabled { color: #6c7a80; }"
             "QMenu::separator { height: 1px; background: #3c444c; margin: 3px 6px; }")
      .arg(Hex(PanelColour()), Hex(LegendColour()), Hex(SelectedTextColour()));
}
