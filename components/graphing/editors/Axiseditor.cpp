#include "components/graphing/editors/Axiseditor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <optional>

#include "components/graphing/Datetimeformat.h"
#include "components/graphing/editors/Pickers.h"

namespace {

/// A bound as the user sees it: a date and time on a time axis, a number elsewhere.
QString BoundText(const TAxis& axis, double value) {
  if (axis.GetScale() == TAxis::asTime) {
    const QString time = TypedTime(TDateTime(value));
    if (!time.isEmpty()) return time;
  }
  return QString::number(value, 'g', 15);
}

std::optional<double> BoundValue(const QString& text) {
  bool isNumber = false;
  const double number = text.toDouble(&isNumber);
  if (isNumber) return std::isfinite(number) ? std::optional(number) : std::nullopt;
  const std::optional<TDateTime> time = ScanTypedTime(text);
  return time ? std::optional(time->Days()) : std::nullopt;
}

}  // namespace

TAxisEditor::TAxisEditor(TAxis& axis, QWidget* parent) : QDialog(parent), axis_(axis) {
  setWindowTitle(tr("Axis"));
  before_.Assign(&axis_);

  auto* left = new QVBoxLayout;
  left->addWidget(TitleGroup());
  left->addWidget(RangeGroup());
  left->addWidget(TickGroup(tr("Major ticks"), *axis_.GetMajorTick()));
  left->addStretch();
  auto* right = new QVBoxLayout;
  right->addWidget(LabelGroup());
  right->addWidget(FormatGroup());
  right->addWidget(TickGroup(tr("Minor ticks"), *axis_.GetMinorTick()));
  right->addStretch();
  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 1);
  columns->addLayout(right, 1);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                       QDialogButtonBox::Apply);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TAxisEditor::reject);
  connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          &TAxisEditor::Apply);

  auto* all = new QVBoxLayout(this);
  all->addLayout(columns);
  all->addWidget(buttons);
  Refresh();
}

TAxisEditor::~TAxisEditor() = default;

void TAxisEditor::Apply() {
  if (!IsRangeRefused()) before_.Assign(&axis_);
}

void TAxisEditor::accept() {
  if (!IsRangeRefused()) QDialog::accept();
}

void TAxisEditor::reject() {
  setFocus();  // a bound that is being typed is taken now, and not when the dialog hides
  axis_.Assign(&before_);
  QDialog::reject();
}

void TAxisEditor::Refresh() {
  const QScopedValueRollback<bool> guard(refreshing_, true);
  for (const auto& refresh : refreshers_) refresh();
}

QWidget* TAxisEditor::TitleGroup() {
  TAxisTitle& title = *axis_.GetTitle();
  auto* group = new QGroupBox(tr("Title"));
  auto* form = new QFormLayout(group);
  form->addRow(tr("Caption"),
               Text(
                   QStringLiteral("Title.Caption"), [&title] { return title.GetCaption(); },
                   [&title](const QString& text) { title.SetCaption(text); }));
  AddChoice<TAxisTitle::TTitlePos>(
      form, QStringLiteral("Title.Pos"), tr("Position"),
      {tr("None"), tr("Left (bottom)"), tr("Centre"), tr("Right (top)")},
      [&title] { return title.GetPos(); }, [&title](auto pos) { title.SetPos(pos); });
  AddFont(
      form, QStringLiteral("Title.Font"), [&title] { return title.GetFont(); },
      [&title](const QFont& font) { title.SetFont(font); });
  AddColor(
      form, QStringLiteral("Title.FontColor"), false, [&title] { return title.GetFontColor(); },
      [&title](TColor color) { title.SetFontColor(color); });
  return group;
}

QWidget* TAxisEditor::RangeGroup() {
  auto* group = new QGroupBox(tr("Range"));
  auto* form = new QFormLayout(group);
  AddChoice<TAxis::TAxisScale>(
      form, QStringLiteral("Scale"), tr("Scale"), {tr("Linear"), tr("Logarithmic"), tr("Time")},
      [this] { return axis_.GetScale(); }, [this](auto scale) { axis_.SetScale(scale); });
  minimum_ = new QLineEdit;
  maximum_ = new QLineEdit;
  form->addRow(tr("Minimum"),
               Bound(
                   QStringLiteral("Min"), minimum_, [this] { return axis_.GetMin(); },
                   [this] { return axis_.GetAutoMin(); },
                   [this](bool on) { on ? axis_.SetAutoMin(true) : axis_.HoldMin(); }));
  form->addRow(tr("Maximum"),
               Bound(
                   QStringLiteral("Max"), maximum_, [this] { return axis_.GetMax(); },
                   [this] { return axis_.GetAutoMax(); },
                   [this](bool on) { on ? axis_.SetAutoMax(true) : axis_.HoldMax(); }));
  refusal_ = new QLabel;
  refusal_->setObjectName(QStringLiteral("Refusal"));
  refusal_->setWordWrap(true);
  refusal_->setStyleSheet(QStringLiteral("color: #b00020"));
  refusal_->hide();
  refreshers_.push_back([this] {
    refusal_->clear();
    refusal_->hide();
  });
  form->addRow(refusal_);
  AddColor(
      form, QStringLiteral("LineColor"), true, [this] { return axis_.GetLineColor(); },
      [this](TColor color) { axis_.SetLineColor(color); });
  return group;
}

QWidget* TAxisEditor::TickGroup(const QString& title, TTick& tick) {
  const QString name =
      &tick == axis_.GetMajorTick() ? QStringLiteral("MajorTick") : QStringLiteral("MinorTick");
  auto* group = new QGroupBox(title);
  auto* form = new QFormLayout(group);
  AddChoice<TTick::TTickPos>(
      form, name + QStringLiteral(".Pos"), tr("Position"),
      {tr("None"), tr("Inside"), tr("Across"), tr("Outside")}, [&tick] { return tick.GetPos(); },
      [&tick](auto pos) { tick.SetPos(pos); });
  AddNumber(
      form, name + QStringLiteral(".Size"), tr("Length in pixels"), 0, TTick::kLargestSize,
      [&tick] { return tick.GetSize(); }, [&tick](int size) { tick.SetSize(size); });
  return group;
}

QWidget* TAxisEditor::LabelGroup() {
  TTickLabel& label = *axis_.GetLabel();
  auto* group = new QGroupBox(tr("Labels"));
  auto* form = new QFormLayout(group);
  AddChoice<TTickLabel::TLabelPos>(
      form, QStringLiteral("Label.Pos"), tr("Position"), {tr("None"), tr("Next to the axis")},
      [&label] { return label.GetPos(); }, [&label](auto pos) { label.SetPos(pos); });
  AddChoice<TTickLabel::TLabelSpacing>(
      form, QStringLiteral("Label.Spacing"), tr("Spacing"),
      {tr("Every major tick"), tr("First and last only")}, [&label] { return label.GetSpacing(); },
      [&label](auto spacing) { label.SetSpacing(spacing); });
  AddFont(
      form, QStringLiteral("Label.Font"), [&label] { return label.GetFont(); },
      [&label](const QFont& font) { label.SetFont(font); });
  AddColor(
      form, QStringLiteral("Label.FontColor"), false, [&label] { return label.GetFontColor(); },
      [&label](TColor color) { label.SetFontColor(color); });
  return group;
}

QWidget* TAxisEditor::FormatGroup() {
  TNumberFormat& format = *axis_.GetLabel()->GetNumFormat();
  auto* group = new QGroupBox(tr("Number format"));
  auto* form = new QFormLayout(group);
  AddChoice<TNumberFormat::TFloatFormat>(
      form, QStringLiteral("Label.NumFormat.Format"), tr("Format"),
      {tr("General"), tr("Exponent"), tr("Fixed"), tr("Number"), tr("Currency")},
      [&format] { return format.GetFormat(); }, [&format](auto kind) { format.SetFormat(kind); });
  AddNumber(
      form, QStringLiteral("Label.NumFormat.Precision"), tr("Significant digits"), 1, 15,
      [&format] { return format.GetPrecision(); },
      [&format](int digits) { format.SetPrecision(digits); });
  AddNumber(
      form, QStringLiteral("Label.NumFormat.Digits"), tr("Decimals"), 0, 18,
      [&format] { return format.GetDigits(); },
      [&format](int digits) { format.SetDigits(digits); });
  auto* isTime = new QCheckBox(tr("Date and time"));
  isTime->setObjectName(QStringLiteral("Label.NumFormat.IsTimeFormat"));
  connect(isTime, &QCheckBox::toggled, this, [this, &format](bool on) {
    if (refreshing_) return;
    format.SetIsTimeFormat(on);
    Refresh();
  });
  refreshers_.push_back([isTime, &format] { isTime->setChecked(format.GetIsTimeFormat()); });
  form->addRow(QString(), isTime);
  form->addRow(tr("Pattern"),
               Text(
                   QStringLiteral("Label.NumFormat.TimeFormatStr"),
                   [&format] { return format.GetTimeFormatStr(); },
                   [&format](const QString& text) { format.SetTimeFormatStr(text); }));
  return group;
}

template <typename T>
void TAxisEditor::AddChoice(QFormLayout* form, const QString& name, const QString& caption,
                            const QStringList& choices, const std::function<T()>& get,
                            const std::function<void(T)>& set) {
  auto* box = new QComboBox;
  box->setObjectName(name);
  box->addItems(choices);
  connect(box, &QComboBox::currentIndexChanged, this, [this, set](int index) {
    if (refreshing_) return;
    set(static_cast<T>(index));
    Refresh();
  });
  refreshers_.push_back([box, get] { box->setCurrentIndex(get()); });
  form->addRow(caption, box);
}

void TAxisEditor::AddNumber(QFormLayout* form, const QString& name, const QString& caption,
                            int from, int to, const std::function<int()>& get,
                            const std::function<void(int)>& set) {
  auto* box = new QSpinBox;
  box->setObjectName(name);
  box->setRange(from, to);
  connect(box, &QSpinBox::valueChanged, this, [this, set](int value) {
    if (!refreshing_) set(value);
  });
  refreshers_.push_back([box, get] { box->setValue(get()); });
  form->addRow(caption, box);
}

void TAxisEditor::AddColor(QFormLayout* form, const QString& name, bool noneAllowed,
                           const std::function<TColor()>& get,
                           const std::function<void(TColor)>& set) {
  auto* picker = new TColorPicker(noneAllowed);
  picker->setObjectName(name);
  connect(picker, &TColorPicker::OnPick, this, set);
  refreshers_.push_back([picker, get] { picker->SetColor(get()); });
  form->addRow(tr("Colour"), picker);
}

void TAxisEditor::AddFont(QFormLayout* form, const QString& name, const std::function<QFont()>& get,
                          const std::function<void(const QFont&)>& set) {
  auto* picker = new TFontPicker;
  picker->setObjectName(name);
  connect(picker, &TFontPicker::OnPick, this, set);
  refreshers_.push_back([picker, get] { picker->SetFont(get()); });
  form->addRow(tr("Font"), picker);
}

QLineEdit* TAxisEditor::Text(const QString& name, const std::function<QString()>& get,
                             const std::function<void(const QString&)>& set) {
  auto* edit = new QLineEdit;
  edit->setObjectName(name);
  connect(edit, &QLineEdit::textEdited, this, set);
  refreshers_.push_back([edit, get] {
    if (edit->text() != get()) edit->setText(get());
  });
  return edit;
}

QWidget* TAxisEditor::Bound(const QString& name, QLineEdit* edit,
                            const std::function<double()>& get, const std::function<bool()>& isAuto,
                            const std::function<void(bool)>& setAuto) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  edit->setObjectName(name);
  edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance(TypedTime(TDateTime(0.0))) + 16);
  auto* automatic = new QCheckBox(tr("Automatic"));
  automatic->setObjectName(QStringLiteral("Auto") + name);
  layout->addWidget(edit, 1);
  layout->addWidget(automatic);

  connect(edit, &QLineEdit::editingFinished, this, &TAxisEditor::TakeRange);
  connect(automatic, &QCheckBox::toggled, this, [this, setAuto](bool on) {
    if (refreshing_) return;
    setAuto(on);
    Refresh();
  });
  refreshers_.push_back([this, edit, automatic, get, isAuto] {
    edit->setText(BoundText(axis_, get()));
    edit->setEnabled(!isAuto());
    automatic->setChecked(isAuto());
  });
  return row;
}

void TAxisEditor::TakeRange() {
  if (refreshing_) return;
  const QString refusal = RangeRefusal();
  if (refusal.isEmpty()) Refresh();
  refusal_->setText(refusal);
  refusal_->setVisible(!refusal.isEmpty());
}

QString TAxisEditor::RangeRefusal() {
  double bounds[] = {axis_.GetMin(), axis_.GetMax()};
  for (const bool isMax : {false, true}) {
    const QString text = (isMax ? maximum_ : minimum_)->text();
    // What is shown is rounded: leaving it as it is must not change the bound.
    if (text == BoundText(axis_, bounds[isMax])) continue;
    const std::optional<double> value = BoundValue(text);
    if (!value) {
      return axis_.GetScale() == TAxis::asTime ? tr("\"%1\" is no date and time").arg(text)
                                               : tr("\"%1\" is no number").arg(text);
    }
    bounds[isMax] = *value;
  }
  auto [low, high] = bounds;
  if (low == axis_.GetMin() && high == axis_.GetMax()) return {};
  // The present value of an automatic bound is of no account.
  const bool autoMin = axis_.GetAutoMin();
  if (autoMin) low = std::min(low, high);
  if (axis_.GetAutoMax()) high = std::max(low, high);
  if (low >= high && !autoMin && !axis_.GetAutoMax()) {
    return tr("The minimum must be less than the maximum");
  }
  if (axis_.GetScale() == TAxis::asLog && (autoMin ? high : low) <= 0.0) {
    return tr("A logarithmic axis shows values above 0 only");
  }
  axis_.SetMinMax(low, high);
  return {};
}

/// Takes a bound that is being typed.
bool TAxisEditor::IsRangeRefused() {
  setFocus();
  return !refusal_->text().isEmpty();
}
