// The page's look, shared by every screen of the editor: its pictures by resource number, its
// colours, and the style of its menus.
#pragma once

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QPixmap>

// The light colour of the page's text, of the list's text and of its selected rows' background.
inline QColor LegendColour() { return QColor(0xDF, 0xFE, 0xFF); }
// The text of a selected row, over the legend colour.
inline QColor SelectedTextColour() { return QColor(0, 0, 0); }
// The dark of the panel's display windows, behind menus.
inline QColor PanelColour() { return QColor(0x1B, 0x20, 0x26); }

// [editor thread] The picture with this resource number (":/tarn/<number>.png"); a null pixmap
// when there is none.
QPixmap SkinPicture(int number);
// A style sheet that draws menus in the skin's colours: light text on the panel's dark, the
// selected item in the colours of a selected row.
QString SkinMenuStyleSheet();
