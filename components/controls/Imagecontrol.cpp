#include "components/controls/Imagecontrol.h"

#include <QPainter>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <utility>

#include "components/controls/Designmode.h"
#include "components/controls/Iconimages.h"
#include "components/controls/Korvaltools.h"
#include "components/controls/Picturefile.h"
#include "components/controls/Plaintip.h"
#include "components/links/Outside.h"

namespace {

constexpr QSize kDefaultSize(81, 81);

/// A sentence. To lay out a name that no file has takes minutes.
QString FaultOf(const QString& fileName, const QString& why) {
  constexpr qsizetype kMost = 500;
  const QString shown =
      fileName.size() <= kMost ? fileName : fileName.left(kMost) + QLatin1String("...");
  return QStringLiteral("Cannot read %1: %2").arg(shown, why);
}

/// The picture without the pixels that have the colour of its lower left corner.
QImage WithoutBackground(const QImage& picture) {
  QImage image = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  if (picture.hasAlphaChannel() || image.isNull()) return image;
  const QRgb background = image.pixel(0, image.height() - 1);
  for (int y = 0; y < image.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    std::replace(row, row + image.width(), background, qRgba(0, 0, 0, 0));
  }
  return image;
}

}  // namespace

TCustomImageControl::TCustomImageControl(QWidget* parent) : TComponentControl(parent) {
  resize(kDefaultSize);
  SetFace(true);
}

void TCustomImageControl::SetImageFile(const QString& fileName) {
  if (fileName == imageFile_) return;
  imageFile_ = fileName;
  ReadImage();
}

void TCustomImageControl::AddWishes(TWishes& wishes) const {
  AddReadWish(wishes, this, imageFile_);
}

void TCustomImageControl::Started() {
  if (!Wishes().empty()) ReadImage();
}

void TCustomImageControl::ReadImage() {
  const QString oldFault = std::exchange(fault_, QString());
  const QString path = FormPath(this, imageFile_);
  picture_ = QImage();
  QString why = ReadRefusal(this, path);
  if (why.isEmpty() && !path.isEmpty()) picture_ = ReadPictureFile(path, &why);
  if (!why.isEmpty()) fault_ = FaultOf(path, why);
  if (toolTip() == PlainTip(oldFault)) setToolTip(PlainTip(fault_));
  updateGeometry();
  MakeShown();
}

void TCustomImageControl::SetShowImage(bool show) {
  if (show == showImage_) return;
  showImage_ = show;
  update();
}

void TCustomImageControl::SetTransparent(bool transparent) {
  if (transparent == transparent_) return;
  transparent_ = transparent;
  MakeShown();
}

void TCustomImageControl::SetFit(TImageFit fit) {
  if (fit == fit_ || fit < ifFit || fit > ifActual) return;
  fit_ = fit;
  update();
}

void TCustomImageControl::MakeShown() {
  shown_ = transparent_ ? WithoutBackground(picture_) : picture_;
  scaled_ = QPixmap();
  update();
}

QSize TCustomImageControl::sizeHint() const {
  constexpr QSize kLargest(640, 480);
  if (picture_.isNull()) return kDefaultSize;
  const QSize size = picture_.size();
  return size.boundedTo(kLargest) == size ? size : size.scaled(kLargest, Qt::KeepAspectRatio);
}

void TCustomImageControl::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  QPainter painter(this);
  constexpr double kPale = 0.4;
  if (!isEnabled()) painter.setOpacity(kPale);
  Paint(painter);
}

void TCustomImageControl::Paint(QPainter& painter) {
  if (!transparent_) painter.fillRect(rect(), palette().window());
  if (!showImage_) return;
  if (!fault_.isEmpty()) DrawFault(painter);
  if (!shown_.isNull()) DrawPicture(painter);
}

QRectF TCustomImageControl::PictureRect() const {
  if (fit_ == ifStretch) return rect();
  const QSizeF size =
      fit_ == ifActual ? QSizeF(picture_.size())
                       : QSizeF(picture_.size()).scaled(QSizeF(this->size()), Qt::KeepAspectRatio);
  QRectF result(QPointF(), size);
  if (fit_ == ifFit) result.moveCenter(QRectF(rect()).center());
  return result;
}

/// The picture is scaled once to whole device pixels, with every pixel of it taking part. Where the
/// result would be larger than any screen, only what can be seen is scaled, each time.
void TCustomImageControl::DrawPicture(QPainter& painter) {
  const double ratio = painter.device()->devicePixelRatioF();
  const QRectF place = PictureRect();
  const QSize pixels = (place.size() * ratio).toSize().expandedTo(QSize(1, 1));
  if (qint64{pixels.width()} * pixels.height() > kMaxPicturePixels / 2) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, shown_);
    return;
  }
  if (scaled_.size() != pixels) {
    scaled_ =
        QPixmap::fromImage(shown_.size() == pixels ? shown_
                                                   : shown_.scaled(pixels, Qt::IgnoreAspectRatio,
                                                                   Qt::SmoothTransformation));
  }
  scaled_.setDevicePixelRatio(ratio);
  const QPointF corner = place.topLeft() * ratio;
  painter.drawPixmap(QPointF(std::round(corner.x()), std::round(corner.y())) / ratio, scaled_);
}

void TCustomImageControl::DrawFault(QPainter& painter) const {
  const QColor ink(170, 20, 20);
  painter.fillRect(rect(), QColor(255, 240, 240));
  painter.setPen(ink);
  QTextOption option(Qt::AlignCenter);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  const QRectF room = QRectF(rect()).adjusted(3, 3, -3, -3);
  // As large as there is room for it; the tool tip shows what no room is left for.
  QFont font = painter.font();
  for (const double scale : {1.0, 0.85, 0.7}) {
    font.setPointSizeF(QFontInfo(this->font()).pointSizeF() * scale);
    painter.setFont(font);
    if (painter.boundingRect(room, fault_, option).height() <= room.height()) break;
  }
  painter.drawText(room, fault_, option);
}

void TImageControl::Paint(QPainter& painter) {
  TCustomImageControl::Paint(painter);
  if (!GetImageFile().isEmpty() || !IsDesignMode(this)) return;
  DrawDashedFrame(painter, rect());
  DrawIconImage(painter, QRectF(rect()).adjusted(4, 4, -4, -4), QStringLiteral("TImageControl"));
}
