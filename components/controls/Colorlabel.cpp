#include "components/controls/Colorlabel.h"

#include <utility>

TColorLabel::TColorLabel(QWidget* parent) : TCustomTextControl(parent) {
  SetCaption(QStringLiteral("{value}"));
  SetAlignment(taCenter);
  connect(&input_, &TInputData::OnChange, this, &TColorLabel::ValueChanged);
  connect(&levels_, &TColorLevels::OnChange, this, &TColorLabel::LevelsChanged);
  connect(&format_, &TNumberFormat::OnChange, this, &TColorLabel::TextChanged);
}

void TColorLabel::SetUnits(const QString& units) {
  if (units == units_) return;
  units_ = units;
  TextChanged();
}

/// A text for every value would cost more than the eye can follow: it is made when it is painted.
void TColorLabel::ValueChanged() {
  if (!std::exchange(textIsOld_, true)) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          textIsOld_ = false;
          TextChanged();
        },
        Qt::QueuedConnection);
  }
  FindLevel(level_);
}

/// The memory of the level that was left belongs to the old limits.
void TColorLabel::LevelsChanged() {
  const int none = -1;
  level_ = std::min(level_, levels_.Count() - 1);
  FindLevel(none);
  TextChanged();
}

void TColorLabel::FindLevel(int last) {
  const int level = levels_.LevelOf(input_.GetValue(), last);
  if (level == level_) return;
  level_ = level;
  emit OnLevelChanged(this);
}

TColor TColorLabel::TextColor() const {
  const TColorLevel* level = Present();
  return level && !level->FontColor.IsNone() ? level->FontColor : GetFontColor();
}

TColor TColorLabel::BackColor() const {
  const TColorLevel* level = Present();
  return level && !level->Color.IsNone() ? level->Color : GetColor();
}

QString TColorLabel::Text() const {
  const TColorLevel* level = Present();
  QString text = level && !level->Text.isEmpty() ? level->Text : GetCaption();
  const QString value = format_.FormatedValue(input_.GetValue());
  return text.replace(QStringLiteral("{value}"), units_.isEmpty() ? value : value + ' ' + units_);
}

void TColorLabel::Loaded() {
  input_.Loaded();
  TCustomTextControl::Loaded();
}
