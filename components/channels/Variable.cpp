#include "components/channels/Variable.h"

TCustomVariable::TCustomVariable(QWidget* parent) : TServerDataControl(parent) {
  SetIconImage(QStringLiteral("VariableImage"));
  SetImageSize(QSize(17, 17));
  SetCaptionPos(cpRight);
  SetFace(true);
  connect(&valueFormat_, &TNumberFormat::OnChange, this, &TCustomVariable::FormatChanged);
  connect(this, &QObject::objectNameChanged, this, [this] { SetCaption(); });
  SetCaption();
}

void TCustomVariable::SetValue(double value) {
  if (!TakeValue(value)) return;
  if (!showValue_ || captionIsOld_) return;
  captionIsOld_ = true;
  QMetaObject::invokeMethod(
      this, [this] { GetCaption(); }, Qt::QueuedConnection);
}

void TCustomVariable::SetShowValue(bool show) {
  if (show == showValue_) return;
  showValue_ = show;
  SetCaption();
}

void TCustomVariable::SetShowName(bool show) {
  if (show == showName_) return;
  showName_ = show;
  SetCaption();
}

const QString& TCustomVariable::GetCaption() const {
  if (captionIsOld_) const_cast<TCustomVariable*>(this)->SetCaption();
  return TServerDataControl::GetCaption();
}

void TCustomVariable::SetCaption() {
  captionIsOld_ = false;
  SetCaption(CaptionText());
  if (!showName_ && !showValue_) SetShowIcon(true);
}

QString TCustomVariable::CaptionText() const {
  const QString value = showValue_ ? ValueText() : QString();
  if (!showName_) return value;
  return showValue_ ? objectName() + '=' + value : objectName();
}

/// A form may hold the caption that the variable had when it was saved.
void TCustomVariable::Loaded() {
  TServerDataControl::Loaded();
  SetCaption();
}
