#include "components/graphing/editors/Serieseditor.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

TSeriesEditor::TSeriesEditor(const TSeriesList& list, QWidget* parent)
    : QDialog(parent), names_(new QListWidget), pages_(new QStackedWidget) {
  setWindowTitle(tr("Series"));
  names_->setObjectName(QStringLiteral("Names"));
  names_->setMaximumWidth(180);
  connect(names_, &QListWidget::currentRowChanged, pages_, &QStackedWidget::setCurrentIndex);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                       QDialogButtonBox::Apply);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TSeriesEditor::reject);
  connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          &TSeriesEditor::Apply);

  auto* columns = new QHBoxLayout;
  columns->addWidget(names_);
  columns->addWidget(pages_, 1);
  auto* all = new QVBoxLayout(this);
  all->addLayout(columns);
  all->addWidget(buttons);

  for (int i = 0; i < list.Count(); ++i) AddSeries(*list.Get(i));
  if (list.Empty()) pages_->addWidget(new QLabel(tr("The graph has no series.")));
  names_->setCurrentRow(0);
}

void TSeriesEditor::AddSeries(TCustomGraphSeries& series) {
  auto* form = new TPropertyForm(series);
  pages_->addWidget(form);
  forms_.push_back(form);

  const int row = names_->count();
  names_->addItem(QString());
  const auto name = [this, row, &series] {
    const QString& label = series.GetLabel();
    names_->item(row)->setText(label.isEmpty() ? tr("Series %1").arg(row + 1) : label);
  };
  connect(&series, &TPersistent::OnChange, this, name);
  connect(&series, &QObject::destroyed, this, [this, row, form] {
    names_->item(row)->setFlags(Qt::NoItemFlags);
    form->setEnabled(false);
  });
  name();
}

void TSeriesEditor::Apply() {
  for (TPropertyForm* form : forms_) form->Commit();
}

void TSeriesEditor::reject() {
  setFocus();  // a text that is being typed is taken now, and not when the dialog hides
  for (TPropertyForm* form : forms_) form->Revert();
  QDialog::reject();
}
