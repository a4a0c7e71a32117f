#include "viewer/Animatorabout.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>

#include "viewer/Imagebutton.h"
#include "viewer/window/Buttonfaces.h"

const char kProgramVersion[] = VELMORA_VERSION;

namespace {

QLabel* AddLine(QGridLayout* layout, int row, const QString& text) {
  auto* label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(label, row, 1);
  return label;
}

}  // namespace

TAnimatorAbout::TAnimatorAbout(const QString& renderer, QWidget* parent) : QDialog(parent) {
  setWindowTitle(tr("About %1").arg(QLatin1String(kProgramTitle)));
  auto* layout = new QGridLayout(this);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->setHorizontalSpacing(18);

  auto* picture = new QLabel(this);
  picture->setPixmap(MakeButtonFaces(this)->Image(bfView3D, devicePixelRatioF()));
  layout->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);

  QLabel* title = AddLine(layout, 0, QLatin1String(kProgramTitle));
  QFont font = title->font();
  font.setBold(true);
  font.setPointSizeF(font.pointSizeF() * 1.5);
  title->setFont(font);
  AddLine(layout, 1, tr("Version %1").arg(QLatin1String(kProgramVersion)));
  AddLine(layout, 2, tr("Shows a structure move with its measured vibration."));
  AddLine(layout, 3, tr("OpenGL: %1").arg(renderer.isEmpty() ? tr("none") : renderer));
  AddLine(layout, 4, tr("Qt: %1").arg(QLatin1String(qVersion())));

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  layout->addWidget(buttons, 5, 0, 1, 2);
}
