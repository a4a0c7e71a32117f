#include "components/graphing/editors/Propertyform.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QMetaEnum>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <climits>

#include "components/graphing/editors/Pickers.h"
#include "components/links/Properties.h"
#include "model/Color.h"

namespace {

/// "LineWeight" as "Line weight"; the lower-case prefix of an enumeration value is left out.
QString Words(QString name, bool hasPrefix) {
  qsizetype start = 0;
  while (hasPrefix && start < name.size() && name[start].isLower()) ++start;
  name.remove(0, start);
  QString words;
  for (qsizetype i = 0; i < name.size(); ++i) {
    const bool isWord = i > 0 && name[i].isUpper() && name[i - 1].isLower();
    if (isWord) words += QLatin1Char(' ');
    words += isWord && i + 1 < name.size() ? name[i].toLower() : name[i];
  }
  return words;
}

}  // namespace

TPropertyForm::TPropertyForm(TPersistent& object, QWidget* parent) : QWidget(parent) {
  AddRows(*new QFormLayout(this), object);
  Refresh();
}

void TPropertyForm::AddRows(QFormLayout& form, TPersistent& object) {
  connect(&object, &TPersistent::OnChange, this, &TPropertyForm::Refresh);
  ForEachOwnProperty(object, [&](const QMetaProperty& property) {
    if (TPersistent* sub = SubObject(object, property)) {
      AddRows(form, *sub);
    } else if (QWidget* editor = MakeEditor({&object, property})) {
      editor->setObjectName(QLatin1String(property.name()));
      form.addRow(Words(QLatin1String(property.name()), false), editor);
    }
  });
}

template <class TShow>
void TPropertyForm::Show(const TField& field, TShow show) {
  shows_.push_back([field, show] {
    if (field.object) show(field.property.read(field.object));
  });
}

/// Null for a kind of property that has no editor.
QWidget* TPropertyForm::MakeEditor(const TField& field) {
  if (field.property.isFlagType()) return MakeSet(field);
  if (field.property.isEnumType()) return MakeChoice(field);
  if (field.property.metaType() == QMetaType::fromType<TColor>()) {
    auto* picker = new TColorPicker(true);
    connect(picker, &TColorPicker::OnPick, this,
            [this, field](TColor color) { Write(field, QVariant::fromValue(color)); });
    Show(field, [picker](const QVariant& value) { picker->SetColor(value.value<TColor>()); });
    return picker;
  }
  switch (field.property.typeId()) {
    case QMetaType::Bool: {
      auto* box = new QCheckBox;
      connect(box, &QCheckBox::toggled, this, [this, field](bool on) { Write(field, on); });
      Show(field, [box](const QVariant& value) { box->setChecked(value.toBool()); });
      return box;
    }
    case QMetaType::Int: {
      auto* box = new QSpinBox;
      box->setRange(INT_MIN, INT_MAX);
      box->setKeyboardTracking(false);
      connect(box, &QSpinBox::valueChanged, this, [this, field](int n) { Write(field, n); });
      Show(field, [box](const QVariant& value) { box->setValue(value.toInt()); });
      return box;
    }
    case QMetaType::Double:
    case QMetaType::QString:
      return MakeText(field);
    default:
      return nullptr;
  }
}

QWidget* TPropertyForm::MakeChoice(const TField& field) {
  auto* box = new QComboBox;
  const QMetaEnum choices = field.property.enumerator();
  for (int i = 0; i < choices.keyCount(); ++i) {
    box->addItem(Words(QLatin1String(choices.key(i)), true), choices.value(i));
  }
  connect(box, &QComboBox::currentIndexChanged, this,
          [this, field, box](int index) { Write(field, box->itemData(index)); });
  Show(field, [box](const QVariant& value) { box->setCurrentIndex(box->findData(value.toInt())); });
  return box;
}

/// A box for each member of the set, which bears its name.
QWidget* TPropertyForm::MakeSet(const TField& field) {
  auto* boxes = new QWidget;
  auto* layout = new QVBoxLayout(boxes);
  layout->setContentsMargins(0, 0, 0, 0);
  const QMetaEnum members = field.property.enumerator();
  for (int i = 0; i < members.keyCount(); ++i) {
    const int member = members.value(i);
    auto* box = new QCheckBox(Words(QLatin1String(members.key(i)), true));
    box->setObjectName(QLatin1String(members.key(i)));
    layout->addWidget(box);
    connect(box, &QCheckBox::toggled, this, [this, field, member](bool on) {
      if (!field.object) return;
      const int set = field.property.read(field.object).toInt();
      Write(field, on ? set | member : set & ~member);
    });
    Show(field, [box, member](const QVariant& value) {
      box->setChecked((value.toInt() & member) == member);
    });
  }
  return boxes;
}

QWidget* TPropertyForm::MakeText(const TField& field) {
  auto* line = new QLineEdit;
  const bool isNumber = field.property.typeId() == QMetaType::Double;
  connect(line, &QLineEdit::editingFinished, this, [this, field, line, isNumber] {
    bool valid = true;
    const QVariant value =
        isNumber ? QVariant(line->text().toDouble(&valid)) : QVariant(line->text());
    if (valid) {
      Write(field, value);
    } else {
      Refresh();
    }
  });
  Show(field, [line, isNumber](const QVariant& value) {
    const QString text = isNumber ? QString::number(value.toDouble(), 'g', 15) : value.toString();
    if (line->text() != text) line->setText(text);
  });
  return line;
}

void TPropertyForm::Write(const TField& field, const QVariant& value) {
  if (refreshing_ || !field.object) return;
  const QVariant before = field.property.read(field.object);
  const bool isKnown = std::any_of(edits_.begin(), edits_.end(), [&](const TEdit& edit) {
    return edit.field.object == field.object &&
           edit.field.property.propertyIndex() == field.property.propertyIndex();
  });
  if (!isKnown) edits_.push_back({field, before});
  field.property.write(field.object, value);
  Refresh();
}

void TPropertyForm::Revert() {
  for (const TEdit& edit : edits_) {
    if (edit.field.object) edit.field.property.write(edit.field.object, edit.before);
  }
  edits_.clear();
}

void TPropertyForm::Refresh() {
  if (refreshing_) return;
  const QScopedValueRollback<bool> guard(refreshing_, true);
  for (const auto& show : shows_) show();
}
