#include "viewer/scene/Overlay.h"

#include <qopengl.h>

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <bit>
#include <cmath>

namespace {

constexpr int kMargin = 8;         ///< user's pixels between the text and the picture's corner
constexpr int kEdge = 2;           ///< width of the letters' edge, user's pixels
constexpr int kLongestLine = 200;  ///< characters
constexpr int kMostLines = 40;
constexpr int kLargestSide = 4096;  ///< device pixels; every OpenGL has textures this large

/// Black or white, whichever makes more contrast: relative luminances decide, of which 0.179 is as
/// far from the one as from the other.
QColor EdgeColor(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  const double luminance = 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
                           0.0722 * linear(color.blueF());
  return luminance > 0.179 ? Qt::black : Qt::white;
}

QStringList FitLines(const QStringList& lines, const QFontMetrics& metrics, int room) {
  QStringList fit;
  for (const QString& line : lines.first(qMin<qsizetype>(lines.size(), kMostLines))) {
    fit << metrics.elidedText(line.left(kLongestLine), Qt::ElideRight, room);
  }
  return fit;
}

/// The lines with an empty rim of kEdge around them, which the edges of the letters reach into.
QImage DrawText(const QStringList& allLines, const QColor& color, QSize pixels, double pixelRatio) {
  const QFont font = QGuiApplication::font();
  const QFontMetrics metrics(font);
  const int room = static_cast<int>(pixels.width() / pixelRatio) - 2 * kMargin;
  const QStringList lines = FitLines(allLines, metrics, room);
  int width = 0;
  for (const QString& line : lines) width = qMax(width, metrics.horizontalAdvance(line) + 1);
  const double height = static_cast<double>(lines.size()) * metrics.lineSpacing();
  const QSizeF text(width + 2 * kEdge, height + 2 * kEdge);
  const QSize size = (text * pixelRatio).toSize();
  QImage image(size.boundedTo({kLargestSide, kLargestSide}), QImage::Format_RGBA8888_Premultiplied);
  if (image.isNull()) return image;
  image.setDevicePixelRatio(pixelRatio);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(font);
  const QPen edge(EdgeColor(color), 2 * kEdge, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
  for (qsizetype i = 0; i < lines.size(); ++i) {
    const QPointF place(kEdge, kEdge + metrics.ascent() + i * metrics.lineSpacing());
    QPainterPath letters;
    letters.addText(place, font, lines[i]);
    painter.strokePath(letters, edge);
    painter.setPen(color);
    painter.drawText(place, lines[i]);
  }
  return image;
}

int PowerOfTwo(int side) { return static_cast<int>(std::bit_ceil(static_cast<unsigned>(side))); }

/// Coordinates become device pixels, counted from the picture's top left corner.
class TPixelCoordinates {
 public:
  explicit TPixelCoordinates(QSize pixels) {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0.0, pixels.width(), pixels.height(), 0.0, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
  }
  ~TPixelCoordinates() {
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
  }
  Q_DISABLE_COPY_MOVE(TPixelCoordinates)
};

}  // namespace

void TOverlay::SetLines(const QStringList& lines) {
  if (lines == lines_) return;
  lines_ = lines;
  image_ = {};
}

void TOverlay::SetColor(const QColor& color) {
  if (color == color_) return;
  color_ = color;
  image_ = {};
}

void TOverlay::Init() {
  name_ = 0;
  texture_ = {};
  uploaded_ = false;
}

void TOverlay::Draw(QSize pixels, double pixelRatio) {
  if (lines_.isEmpty() || !qGuiApp) return;
  if (image_.isNull() || pixels != pixels_ || pixelRatio != pixelRatio_) {
    image_ = DrawText(lines_, color_, pixels, pixelRatio);
    pixels_ = pixels;
    pixelRatio_ = pixelRatio;
    uploaded_ = false;
  }
  if (image_.isNull()) return;
  glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT | GL_CURRENT_BIT);
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  glEnable(GL_BLEND);
  glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  glEnable(GL_TEXTURE_2D);
  Upload();
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
  {
    const TPixelCoordinates coordinates(pixels);
    const int x = qRound((kMargin - kEdge) * pixelRatio), y = x;
    const int width = image_.width(), height = image_.height();
    const float right = static_cast<float>(width) / static_cast<float>(texture_.width());
    const float bottom = static_cast<float>(height) / static_cast<float>(texture_.height());
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f), glVertex2i(x, y);
    glTexCoord2f(0.0f, bottom), glVertex2i(x, y + height);
    glTexCoord2f(right, bottom), glVertex2i(x + width, y + height);
    glTexCoord2f(right, 0.0f), glVertex2i(x + width, y);
    glEnd();
  }
  glBindTexture(GL_TEXTURE_2D, 0);
  glPopAttrib();
}

void TOverlay::Upload() {
  if (!name_) glGenTextures(1, &name_);
  glBindTexture(GL_TEXTURE_2D, name_);
  if (uploaded_) return;
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  const QSize needed(PowerOfTwo(image_.width()), PowerOfTwo(image_.height()));
  if (needed != texture_) {
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, needed.width(), needed.height(), 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, nullptr);
    texture_ = needed;
  }
  glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, image_.width(), image_.height(), GL_RGBA,
                  GL_UNSIGNED_BYTE, image_.constBits());
  uploaded_ = true;
}
