// Draws the editor's art, each picture under its resource number: the page's skin (204), the
// faces of its keys (205 to 225, 238 to 244), the meter strips (245, 248) and the About picture
// (image 234 as about_234.bmp, whose size sets the About box's, and the same picture as
// ABOUTBOX.jpg, the About page's background). The look is a rack unit's front panel:
// dark anodised metal, recessed display windows, engraved legends in the page's light colour.
// Run by make-art.sh; what it writes is committed beside it, so the build needs none of this.
#include <QtCore/QDir>
#include <QtCore/QRandomGenerator>
#include <QtGui/QFont>
#include <QtGui/QFontMetrics>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>
#include <cstdio>

namespace {

// The page's text colour: statics, list text and the selected rows' background.
const QColor kLegend(0xDF, 0xFE, 0xFF);
const QColor kPanelTop(0x3B, 0x42, 0x4A);
const QColor kPanelBottom(0x26, 0x2B, 0x31);
const QColor kWindowTop(0x07, 0x10, 0x17);
const QColor kWindowBottom(0x0E, 0x1C, 0x26);

QFont LegendFont(int pixels, bool bold = true, qreal spacing = 1.0) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(pixels);
  font.setBold(bold);
  font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
  font.setHintingPreference(QFont::PreferFullHinting);
  return font;
}

// Brushed metal: fine horizontal streaks of random brightness over a vertical gradient.
void PaintBrushedMetal(QPainter& p, const QRect& area, quint32 seed) {
  QLinearGradient base(area.topLeft(), area.bottomLeft());
  base.setColorAt(0.0, kPanelTop);
  base.setColorAt(1.0, kPanelBottom);
  p.fillRect(area, base);
  QRandomGenerator random(seed);
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right();) {
      const int length = 20 + random.bounded(120);
      const int alpha = random.bounded(14);
      const QColor streak =
          random.bounded(2) ? QColor(255, 255, 255, alpha) : QColor(0, 0, 0, alpha);
      p.fillRect(QRect(x, y, length, 1), streak);
      x += length;
    }
  }
}

// A one-pixel bevel: light on the top and left, dark on the bottom and right (raised), or the
// other way round (sunk).
void PaintBevel(QPainter& p, const QRect& r, bool raised) {
  const QColor light(255, 255, 255, 60);
  const QColor dark(0, 0, 0, 140);
  p.fillRect(QRect(r.left(), r.top(), r.width(), 1), raised ? light : dark);
  p.fillRect(QRect(r.left(), r.top(), 1, r.height()), raised ? light : dark);
  p.fillRect(QRect(r.left(), r.bottom(), r.width(), 1), raised ? dark : light);
  p.fillRect(QRect(r.right(), r.top(), 1, r.height()), raised ? dark : light);
}

// A recessed display window in which the page's statics and the list stand.
void PaintWindow(QPainter& p, const QRect& r) {
  QLinearGradient glass(r.topLeft(), r.bottomLeft());
  glass.setColorAt(0.0, kWindowTop);
  glass.setColorAt(1.0, kWindowBottom);
  p.fillRect(r, glass);
  p.fillRect(QRect(r.left() + 1, r.top() + 1, r.width() - 2, 2), QColor(0, 0, 0, 90));
  PaintBevel(p, r, false);
  PaintBevel(p, r.adjusted(-1, -1, 1, 1), false);
}

void PaintEngraved(QPainter& p, const QRect& r, const QString& text, const QFont& font,
                   Qt::Alignment flags = Qt::AlignLeft | Qt::AlignVCenter,
                   QColor colour = kLegend) {
  p.setFont(font);
  p.setPen(QColor(0, 0, 0, 150));
  const int align = static_cast<int>(flags.toInt());
  p.drawText(r.translated(0, 1), align, text);
  p.setPen(colour);
  p.drawText(r, align, text);
}

void PaintScrew(QPainter& p, QPointF centre) {
  QRadialGradient head(centre - QPointF(1.2, 1.2), 5.0);
  head.setColorAt(0.0, QColor(0xC8, 0xCD, 0xD2));
  head.setColorAt(1.0, QColor(0x4A, 0x50, 0x57));
  p.setPen(QPen(QColor(0, 0, 0, 160), 0.8));
  p.setBrush(head);
  p.drawEllipse(centre, 3.6, 3.6);
  p.setPen(QPen(QColor(0x22, 0x26, 0x2A), 1.0));
  p.drawLine(centre + QPointF(-2.2, 1.2), centre + QPointF(2.2, -1.2));
}

// A groove across the panel between two sections.
void PaintGroove(QPainter& p, int y, int left, int right) {
  p.fillRect(QRect(left, y, right - left + 1, 1), QColor(0, 0, 0, 130));
  p.fillRect(QRect(left, y + 1, right - left + 1, 1), QColor(255, 255, 255, 40));
}

// Cooling slots, as on the front of a rack unit.
void PaintVents(QPainter& p, const QRect& area) {
  p.setRenderHint(QPainter::Antialiasing);
  for (int x = area.left(); x + 5 <= area.right(); x += 11) {
    const QRectF slot(x, area.top(), 5, area.height());
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x0B, 0x0E, 0x11));
    p.drawRoundedRect(slot, 2.5, 2.5);
    p.setPen(QPen(QColor(255, 255, 255, 45), 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawLine(QPointF(x + 0.5, area.bottom() + 1.0), QPointF(x + 4.5, area.bottom() + 1.0));
  }
  p.setRenderHint(QPainter::Antialiasing, false);
}

// The maker's mark: a mountain over a small lake, the thing a tarn is.
void PaintMark(QPainter& p, const QRectF& box, QColor colour) {
  p.setRenderHint(QPainter::Antialiasing);
  QPainterPath mountain;
  mountain.moveTo(box.left(), box.top() + box.height() * 0.62);
  mountain.lineTo(box.left() + box.width() * 0.38, box.top());
  mountain.lineTo(box.left() + box.width() * 0.58, box.top() + box.height() * 0.34);
  mountain.lineTo(box.left() + box.width() * 0.72, box.top() + box.height() * 0.18);
  mountain.lineTo(box.right(), box.top() + box.height() * 0.62);
  mountain.closeSubpath();
  p.setPen(Qt::NoPen);
  p.setBrush(colour);
  p.drawPath(mountain);
  QPen wave(QColor(0x6F, 0xD8, 0xF2), box.height() * 0.09, Qt::SolidLine, Qt::RoundCap);
  p.setPen(wave);
  p.setBrush(Qt::NoBrush);
  for (int row = 0; row < 2; ++row) {
    const qreal y = box.top() + box.height() * (0.78 + 0.18 * row);
    QPainterPath ripple;
    ripple.moveTo(box.left() + box.width() * 0.1, y);
    ripple.cubicTo(box.left() + box.width() * 0.3, y - box.height() * 0.1,
                   box.left() + box.width() * 0.5, y + box.height() * 0.1,
                   box.left() + box.width() * 0.9, y);
    p.drawPath(ripple);
  }
  p.setRenderHint(QPainter::Antialiasing, false);
}

// Skin positions of the page's controls, in pixels: the windows sit just around them.
QImage Skin() {
  QImage skin(657, 336, QImage::Format_RGB32);
  QPainter p(&skin);
  PaintBrushedMetal(p, skin.rect(), 204);
  PaintBevel(p, skin.rect(), true);
  PaintBevel(p, skin.rect().adjusted(2, 2, -2, -2), false);
  for (const QPointF screw : {QPointF(7, 7), QPointF(649, 7), QPointF(6, 330), QPointF(650, 330)})
    PaintScrew(p, screw);

  const QFont label = LegendFont(9, true, 0.7);
  // Upper section: device, prefix, port, channel, sync.
  PaintEngraved(p, QRect(14, 21, 80, 16), QStringLiteral("DEVICE"), label);
  PaintWindow(p, QRect(96, 18, 524, 22));
  PaintEngraved(p, QRect(14, 54, 80, 16), QStringLiteral("SYSEX PREFIX"), label);
  PaintWindow(p, QRect(96, 51, 524, 22));
  PaintEngraved(p, QRect(14, 90, 80, 16), QStringLiteral("OUTPUT PORT"), label);
  PaintWindow(p, QRect(96, 87, 203, 22));
  PaintEngraved(p, QRect(356, 90, 110, 16), QStringLiteral("SEND MIDI SYNC"), label);
  PaintEngraved(p, QRect(470, 90, 74, 16), QStringLiteral("CHANNEL"), label,
                Qt::AlignRight | Qt::AlignVCenter);
  PaintWindow(p, QRect(547, 87, 73, 22));
  PaintGroove(p, 121, 8, 648);

  // Middle section: the event keys, a maker's line and the logo plate.
  PaintEngraved(p, QRect(404, 133, 148, 14), QStringLiteral("EXTERNAL MIDI"),
                LegendFont(9, true, 1.5), Qt::AlignRight | Qt::AlignVCenter,
                QColor(0xA9, 0xC4, 0xCC));
  PaintEngraved(p, QRect(404, 147, 148, 14), QStringLiteral("DEVICE PROXY"),
                LegendFont(9, true, 1.5), Qt::AlignRight | Qt::AlignVCenter,
                QColor(0xA9, 0xC4, 0xCC));
  {
    const QRect plate(558, 129, 90, 34);
    QLinearGradient face(plate.topLeft(), plate.bottomLeft());
    face.setColorAt(0.0, QColor(0x1A, 0x1F, 0x24));
    face.setColorAt(1.0, QColor(0x10, 0x14, 0x18));
    p.fillRect(plate, face);
    PaintBevel(p, plate, true);
    PaintMark(p, QRectF(564, 135, 24, 22), kLegend);
    PaintEngraved(p, QRect(590, 129, 56, 34), QStringLiteral("TARN"), LegendFont(17, true, 1.2),
                  Qt::AlignCenter);
  }
  PaintGroove(p, 169, 8, 648);

  // Lower section: the stored events in their window.
  PaintEngraved(p, QRect(20, 180, 200, 14), QStringLiteral("STORED EVENTS"), label);
  PaintEngraved(p, QRect(420, 180, 217, 14), QStringLiteral("SENT ON LOAD, IN THIS ORDER"),
                LegendFont(8, false, 1.0), Qt::AlignRight | Qt::AlignVCenter,
                QColor(0x8F, 0xA6, 0xAE));
  PaintWindow(p, QRect(17, 199, 623, 76));
  PaintGroove(p, 285, 8, 648);

  // Bottom: send all and test, vents, the two activity meters.
  PaintVents(p, QRect(214, 300, 250, 25));
  PaintEngraved(p, QRect(480, 295, 34, 14), QStringLiteral("IN"), LegendFont(9),
                Qt::AlignRight | Qt::AlignVCenter);
  PaintEngraved(p, QRect(480, 314, 34, 14), QStringLiteral("OUT"), LegendFont(9),
                Qt::AlignRight | Qt::AlignVCenter);
  PaintWindow(p, QRect(517, 294, 124, 17));
  PaintWindow(p, QRect(517, 313, 124, 17));
  return skin;
}

enum class FaceState { Normal, Pressed, Hover };

// A key of the panel: rounded, lit from above; pressed it sinks and its legend moves down.
void PaintKey(QPainter& p, const QSize& size, FaceState state) {
  p.setRenderHint(QPainter::Antialiasing);
  const QRectF body(0.5, 0.5, size.width() - 1.0, size.height() - 1.0);
  const qreal radius = size.height() > 20 ? 4.0 : 3.0;
  QLinearGradient fill(body.topLeft(), body.bottomLeft());
  switch (state) {
    case FaceState::Normal:
      fill.setColorAt(0.0, QColor(0x62, 0x6B, 0x75));
      fill.setColorAt(0.5, QColor(0x4A, 0x52, 0x5A));
      fill.setColorAt(1.0, QColor(0x3A, 0x40, 0x47));
      break;
    case FaceState::Hover:
      fill.setColorAt(0.0, QColor(0x72, 0x7D, 0x88));
      fill.setColorAt(0.5, QColor(0x56, 0x5F, 0x69));
      fill.setColorAt(1.0, QColor(0x43, 0x4A, 0x52));
      break;
    case FaceState::Pressed:
      fill.setColorAt(0.0, QColor(0x2A, 0x2F, 0x34));
      fill.setColorAt(1.0, QColor(0x3C, 0x43, 0x4A));
      break;
  }
  p.setPen(QPen(QColor(0x12, 0x15, 0x18), 1.0));
  p.setBrush(fill);
  p.drawRoundedRect(body, radius, radius);
  if (state == FaceState::Pressed) {
    p.setPen(QPen(QColor(0, 0, 0, 110), 1.0));
    p.drawLine(QPointF(radius, 1.5), QPointF(size.width() - radius, 1.5));
  } else {
    p.setPen(QPen(QColor(255, 255, 255, 70), 1.0));
    p.drawLine(QPointF(radius, 1.5), QPointF(size.width() - radius, 1.5));
  }
  if (state == FaceState::Hover) {
    p.setPen(QPen(QColor(0x8F, 0xE9, 0xFF, 150), 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(body.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
  }
  p.setRenderHint(QPainter::Antialiasing, false);
}

QColor LegendFor(FaceState state) {
  return state == FaceState::Hover ? QColor(0xFF, 0xFF, 0xFF) : kLegend;
}

QImage WordFace(const QString& word, FaceState state) {
  const QSize size(93, 27);
  QImage face(size, QImage::Format_ARGB32_Premultiplied);
  face.fill(Qt::transparent);
  QPainter p(&face);
  PaintKey(p, size, state);
  if (!word.isEmpty()) {
    const int shift = state == FaceState::Pressed ? 1 : 0;
    PaintEngraved(p, QRect(0, shift, size.width(), size.height()), word, LegendFont(11, true, 0.8),
                  Qt::AlignCenter, LegendFor(state));
  }
  return face;
}

enum class Glyph { Arrow, Dots };

QImage GlyphFace(Glyph glyph, FaceState state) {
  const QSize size(19, 19);
  QImage face(size, QImage::Format_ARGB32_Premultiplied);
  face.fill(Qt::transparent);
  QPainter p(&face);
  PaintKey(p, size, state);
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(Qt::NoPen);
  p.setBrush(LegendFor(state));
  const qreal shift = state == FaceState::Pressed ? 1.0 : 0.0;
  if (glyph == Glyph::Arrow) {
    QPainterPath arrow;
    arrow.moveTo(5.0, 7.5 + shift);
    arrow.lineTo(14.0, 7.5 + shift);
    arrow.lineTo(9.5, 12.5 + shift);
    arrow.closeSubpath();
    p.drawPath(arrow);
  } else {
    for (const qreal x : {5.5, 9.5, 13.5}) p.drawEllipse(QPointF(x, 12.0 + shift), 1.4, 1.4);
  }
  return face;
}

// LED segments of 7 pixels (6 lit and a gap), green, then amber, then red at the top end.
QImage MeterStrip(bool lit) {
  QImage strip(118, 11, QImage::Format_ARGB32_Premultiplied);
  strip.fill(QColor(0x05, 0x08, 0x0A));
  QPainter p(&strip);
  for (int segment = 0; segment * 7 < strip.width(); ++segment) {
    const QColor hue = segment < 11   ? QColor(0x3C, 0xF0, 0x6A)
                       : segment < 14 ? QColor(0xFF, 0xC8, 0x3C)
                                      : QColor(0xFF, 0x4A, 0x3C);
    const QRect led(segment * 7, 1, 6, 9);
    if (lit) {
      p.fillRect(led, hue);
      p.fillRect(QRect(led.left(), led.top(), led.width(), 2), hue.lighter(150));
    } else {
      p.fillRect(led, hue.darker(560));
    }
  }
  return strip;
}

QImage AboutPicture() {
  QImage picture(400, 300, QImage::Format_RGB32);
  QPainter p(&picture);
  PaintBrushedMetal(p, picture.rect(), 234);
  PaintBevel(p, picture.rect(), true);
  for (const QPointF screw : {QPointF(9, 9), QPointF(390, 9), QPointF(9, 290), QPointF(390, 290)})
    PaintScrew(p, screw);
  // The upper part carries the maker's plate; the About page writes its lines below it.
  const QRect plate(24, 24, 352, 120);
  QLinearGradient face(plate.topLeft(), plate.bottomLeft());
  face.setColorAt(0.0, QColor(0x1A, 0x1F, 0x24));
  face.setColorAt(1.0, QColor(0x0D, 0x11, 0x15));
  p.fillRect(plate, face);
  PaintBevel(p, plate, true);
  PaintMark(p, QRectF(42, 44, 78, 74), kLegend);
  PaintEngraved(p, QRect(134, 36, 236, 60), QStringLiteral("TARN"), LegendFont(50, true, 5.0));
  PaintEngraved(p, QRect(137, 98, 236, 20), QStringLiteral("EXTERNAL MIDI DEVICE PROXY"),
                LegendFont(10, true, 1.6), Qt::AlignLeft | Qt::AlignVCenter,
                QColor(0xA9, 0xC4, 0xCC));
  PaintGroove(p, 164, 20, 379);
  return picture;
}

bool Save(const QImage& image, const QDir& folder, const QString& name) {
  const QString path = folder.filePath(name);
  // Pictures compress fully; the one photograph-like JPEG keeps a high quality.
  const int quality = path.endsWith(QLatin1String(".jpg")) ? 92 : -1;
  if (image.save(path, nullptr, quality)) return true;
  std::fprintf(stderr, "make_art: cannot write %s\n", qPrintable(path));
  return false;
}

struct WordKey {
  const char* word;
  int normal, pressed, hover;
};

}  // namespace

int main(int argc, char** argv) {
  QGuiApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_art FOLDER\n");
    return 2;
  }
  const QDir folder(QString::fromLocal8Bit(argv[1]));
  bool ok = Save(Skin(), folder, QStringLiteral("204.png"));
  const WordKey keys[] = {
      {"Add", 210, 211, 212},    {"Edit", 213, 214, 215}, {"", 216, 217, 218},
      {"Remove", 219, 220, 221}, {"Send", 222, 223, 225}, {"Send All", 238, 239, 240},
      {"Test", 242, 243, 244},
  };
  for (const WordKey& key : keys) {
    const QString word = QString::fromLatin1(key.word);
    ok &= Save(WordFace(word, FaceState::Normal), folder, QStringLiteral("%1.png").arg(key.normal));
    ok &=
        Save(WordFace(word, FaceState::Pressed), folder, QStringLiteral("%1.png").arg(key.pressed));
    ok &= Save(WordFace(word, FaceState::Hover), folder, QStringLiteral("%1.png").arg(key.hover));
  }
  ok &= Save(GlyphFace(Glyph::Arrow, FaceState::Normal), folder, QStringLiteral("207.png"));
  ok &= Save(GlyphFace(Glyph::Arrow, FaceState::Pressed), folder, QStringLiteral("208.png"));
  ok &= Save(GlyphFace(Glyph::Arrow, FaceState::Hover), folder, QStringLiteral("206.png"));
  ok &= Save(GlyphFace(Glyph::Dots, FaceState::Normal), folder, QStringLiteral("205.png"));
  ok &= Save(GlyphFace(Glyph::Dots, FaceState::Pressed), folder, QStringLiteral("224.png"));
  ok &= Save(GlyphFace(Glyph::Dots, FaceState::Hover), folder, QStringLiteral("209.png"));
  ok &= Save(MeterStrip(false), folder, QStringLiteral("245.png"));
  ok &= Save(MeterStrip(true), folder, QStringLiteral("248.png"));
  const QImage about = AboutPicture();
  // A bitmap of 256 colours keeps the module's built-in copy small.
  ok &= Save(about.convertToFormat(QImage::Format_Indexed8), folder,
             QStringLiteral("about_234.bmp"));
  ok &= Save(about, folder, QStringLiteral("ABOUTBOX.jpg"));
  return ok ? 0 : 1;
}
