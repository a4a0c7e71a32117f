#include "components/graphing/editors/Bineditor.h"

#include <QAbstractTableModel>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <array>
#include <cmath>
#include <optional>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"

namespace {

/// What a user types: the shortest text that reads back to the value.
QString InputText(double value) {
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

/// An edge or a count, without the last digits that rounding makes up.
QString CellText(double value) { return QString::number(value, 'g', 10); }

std::optional<double> InputValue(const QLineEdit& line) {
  bool ok = false;
  const double value = line.text().trimmed().toDouble(&ok);
  if (!ok || !std::isfinite(value)) return {};
  return value;
}

}  // namespace

/// The bins as a table of lower edge, upper edge and count.
class TBinModel : public QAbstractTableModel {
 public:
  TBinModel(const TBinList& bins, QObject* parent) : QAbstractTableModel(parent), bins_(bins) {}

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : rows_;
  }
  int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : 3;
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (role == Qt::TextAlignmentRole) return {Qt::AlignRight | Qt::AlignVCenter};
    const int bin = index.row();
    if (role != Qt::DisplayRole || bin >= bins_.Count()) return {};
    const TCoordinate bar = bins_.Bar(bin);
    const std::array<double, 3> cells = {bar.X - bins_.GetStep(), bar.X, bar.Y};
    return CellText(cells.at(static_cast<std::size_t>(index.column())));
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
    const std::array<QString, 3> titles = {TBinEditor::tr("Above"), TBinEditor::tr("Up to"),
                                           TBinEditor::tr("Count")};
    return titles.at(static_cast<std::size_t>(section));
  }

  /// Shows the bins as they are now; rows keep their place and selection where they can.
  void Update() {
    if (rows_ != bins_.Count()) {
      beginResetModel();
      rows_ = bins_.Count();
      endResetModel();
    } else if (rows_ > 0) {
      emit dataChanged(index(0, 0), index(rows_ - 1, 2));
    }
  }

 private:
  const TBinList& bins_;
  int rows_ = 0;  ///< that the views know of
};

TBinEditor::TBinEditor(TBinList& bins, QWidget* parent)
    : QDialog(parent),
      Reset([this] { bins_.Clear(); }),
      bins_(bins),
      preview_(MakePreview()),
      model_(new TBinModel(bins, this)),
      hint_(new QLabel),
      summary_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                    QDialogButtonBox::Apply | QDialogButtonBox::Reset)) {
  setWindowTitle(tr("Bins"));
  connect(buttons_, &QDialogButtonBox::accepted, this, &TBinEditor::accept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(buttons_->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          &TBinEditor::Apply);
  connect(buttons_->button(QDialogButtonBox::Reset), &QPushButton::clicked, this,
          [this] { Reset(); });
  connect(&bins_, &TBinList::OnChange, this, &TBinEditor::Refresh);

  auto* columns = new QHBoxLayout;
  columns->addWidget(preview_, 1);
  columns->addWidget(MakeColumn());
  auto* all = new QVBoxLayout(this);
  all->addLayout(columns, 1);
  all->addWidget(buttons_);
  resize(sizeHint());

  timer_.SetInterval(10);
  timer_.SetOnTimer(TNotifyEvent(this, &TBinEditor::Tick));
  timer_.SetEnabled(true);
  Refresh();
}

TBinEditor::~TBinEditor() = default;

TKorvalGraph* TBinEditor::MakePreview() {
  auto* graph = new TKorvalGraph;
  graph->setMinimumSize(380, 260);
  graph->GetHorizontalAx()->GetTitle()->SetCaption(tr("Value"));
  graph->GetVerticalAx()->GetTitle()->SetCaption(tr("Count"));
  graph->GetVerticalAx()->SetAutoMin(false);
  graph->GetVerticalAx()->SetMin(0.0);
  TSeries* bars = graph->GetDataPanel()->AddSeries(std::make_unique<TSeries>());
  bars->DataSource = [this](int& index, TCoordinate& point, TCoordinate& extent) {
    if (index >= bins_.Count()) return false;
    point = bins_.Bar(index++);
    extent = bins_.BasePair();
    return true;
  };
  style_ = bars->GetStyle();
  style_->SetLineStyle(TSeriesStyle::psClear);
  style_->SetPointStyle(TSeriesStyle::psXBar);
  style_->SetPointColor(TColor::Blue());
  style_->SetFillColor(TColor::Blue());
  return graph;
}

QWidget* TBinEditor::MakeColumn() {
  form_ = new QFormLayout;
  step_ = AddNumber(QStringLiteral("Step"), tr("Step"), bins_.GetStep());
  anchor_ = AddNumber(QStringLiteral("Anchor"), tr("Anchor"), bins_.GetAnchor());

  hint_->setObjectName(QStringLiteral("Hint"));
  summary_->setObjectName(QStringLiteral("Summary"));

  auto* table = new QTableView;
  table->setObjectName(QStringLiteral("Bins"));
  table->setModel(model_);
  table->setAlternatingRowColors(true);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->verticalHeader()->hide();
  table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);

  auto* column = new QWidget;
  column->setMinimumWidth(340);
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(form_);
  layout->addWidget(hint_);
  layout->addWidget(table, 1);
  layout->addWidget(summary_);
  return column;
}

QLineEdit* TBinEditor::AddNumber(const QString& name, const QString& caption, double value) {
  auto* line = new QLineEdit(InputText(value));
  line->setObjectName(name);
  connect(line, &QLineEdit::textChanged, this, &TBinEditor::CheckInput);
  form_->addRow(caption, line);
  return line;
}

void TBinEditor::SetColors(const TSeriesStyle& style) {
  style_->SetPointColor(style.GetPointColor());
  style_->SetFillColor(style.GetFillColor());
}

void TBinEditor::AddRow(const QString& caption, QWidget* widget) { form_->addRow(caption, widget); }

/// What the user has not touched follows the bins.
void TBinEditor::ShowGrid() {
  if (!step_->isModified()) step_->setText(InputText(bins_.GetStep()));
  if (!anchor_->isModified()) anchor_->setText(InputText(bins_.GetAnchor()));
  CheckInput();
}

/// Says what is wrong with the input, or what taking it will do.
void TBinEditor::CheckInput() {
  const auto step = InputValue(*step_);
  const auto anchor = InputValue(*anchor_);
  const bool isGrid = step && *step > 0.0 && anchor;
  const bool isNew = isGrid && (*step != bins_.GetStep() || *anchor != bins_.GetAnchor());
  if (!isGrid) {
    hint_->setText(step && *step > 0.0 ? tr("The anchor must be a number.")
                                       : tr("The step must be a number above 0."));
  } else {
    hint_->setText(isNew && !bins_.Empty() ? tr("Another grid empties the bins.") : QString());
  }
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(isGrid);
  buttons_->button(QDialogButtonBox::Apply)->setEnabled(isGrid);
}

void TBinEditor::Apply() {
  const auto step = InputValue(*step_);
  const auto anchor = InputValue(*anchor_);
  if (!step || *step <= 0.0 || !anchor) return;
  step_->setModified(false);
  anchor_->setModified(false);
  const QPointer<TBinEditor> self(this);
  bins_.SetStep(*step);
  if (self) bins_.SetAnchor(*anchor);
  if (self) emit OnApply();
  if (self) ShowGrid();
}

void TBinEditor::accept() {
  const QPointer<TBinEditor> self(this);
  Apply();
  if (self) QDialog::accept();
}

TBinEditor::TShown TBinEditor::Present() const {
  if (bins_.Empty()) return {0, 0.0, 0.0, bins_.GetLostCount()};
  return {bins_.Count(), bins_.GetPosition(0), bins_.GetCycleCount(), bins_.GetLostCount()};
}

void TBinEditor::Refresh() {
  shown_ = Present();
  model_->Update();
  preview_->Replay();
  QString text = tr("%1 in %2 bins").arg(CellText(shown_.counted)).arg(shown_.bins);
  if (shown_.lost != 0.0) text += tr(", %1 outside").arg(CellText(shown_.lost));
  summary_->setText(text);
  ShowGrid();
  emit OnRefresh();
}

/// The bins tell their owner of each value; the dialog looks now and then.
void TBinEditor::Tick(QObject*) {
  if (Present() != shown_) Refresh();
}
