#include "viewer/Modellist.h"

#include <QCloseEvent>
#include <QItemSelection>
#include <QKeyEvent>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <vector>

#include "viewer/scene/Frametext.h"

namespace {

constexpr int kSmallestSide = 158;
constexpr QSize kFirstLegend(190, 280);

/// The list of data sets. It keeps the space bar, which shows or hides the current one, from the
/// main window, where it starts the animation; the other keys are the main window's.
class TLabels : public QListWidget {
 public:
  using QListWidget::QListWidget;

 protected:
  bool event(QEvent* event) override {
    const bool keeps = event->type() == QEvent::ShortcutOverride &&
                       static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
    if (keeps) event->accept();
    return keeps || QListWidget::event(event);
  }
};

QListWidget* MakeLabels(QWidget* parent) {
  auto* labels = new TLabels(parent);
  labels->setObjectName(QStringLiteral("Labels"));
  labels->setSelectionMode(QAbstractItemView::MultiSelection);
  labels->setUniformItemSizes(true);
  labels->setFrameShape(QFrame::NoFrame);
  labels->setToolTip(TModelListWnd::tr("Click a data set to show or hide it"));
  QPalette colors = labels->palette();
  colors.setColor(QPalette::Base, Qt::black);
  colors.setColor(QPalette::Text, Qt::white);
  colors.setColor(QPalette::Highlight, QColor(38, 110, 200));
  colors.setColor(QPalette::HighlightedText, Qt::white);
  labels->setPalette(colors);
  return labels;
}

/// The toolkit takes a text with tags for a rich one, which may name files.
QString AsPlainTip(const QString& text) {
  return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped());
}

}  // namespace

TModelListWnd::TModelListWnd(QWidget* parent)
    : QWidget(parent, Qt::Tool), labels_(MakeLabels(this)) {
  setWindowTitle(QStringLiteral("Legend"));
  setMinimumSize(kSmallestSide, kSmallestSide);
  resize(kFirstLegend);
  setAttribute(Qt::WA_ShowWithoutActivating);  // the keys stay with the main window
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(labels_);
  connect(labels_, &QListWidget::itemSelectionChanged, this, &TModelListWnd::ShowHideData);
}

TLoadReport TModelListWnd::LoadFromFile(const QString& fileName, TModel& model,
                                        const TLoadProgress& progress) {
  TLoadReport report = Data.LoadFromFile(fileName, model, progress);
  if (!report.Cancelled()) FillLabels();
  return report;
}

TLoadReport TModelListWnd::LoadFromMemory(std::string_view text, TModel& model,
                                          const TLoadProgress& progress) {
  TLoadReport report = Data.LoadFromMemory(text, model, progress);
  if (!report.Cancelled()) FillLabels();
  return report;
}

void TModelListWnd::Clear() {
  Data.Clear();
  FillLabels();
}

void TModelListWnd::FillLabels() {
  const QSignalBlocker blocker(labels_);
  QStringList names;
  for (const TDataNodeList* list : Data.All) names << NameOf(*list);
  labels_->clear();
  labels_->addItems(names);
  for (int i = 0; i < labels_->count(); ++i) {
    const QString remark = RemarkOf(*Data.All.Get(static_cast<std::size_t>(i)));
    if (!remark.isEmpty()) labels_->item(i)->setToolTip(AsPlainTip(remark));
  }
  // Neighbours are selected as one range: with thousands of data sets that counts.
  QItemSelection shown;
  const int count = static_cast<int>(Data.All.Count());
  for (int first = 0; first < count;) {
    const bool visible = Data.All.Get(first)->GetVisible();
    int next = first + 1;
    while (next < count && Data.All.Get(next)->GetVisible() == visible) ++next;
    if (visible) {
      const QAbstractItemModel* items = labels_->model();
      shown.append(QItemSelectionRange(items->index(first, 0), items->index(next - 1, 0)));
    }
    first = next;
  }
  labels_->selectionModel()->select(shown, QItemSelectionModel::ClearAndSelect);
}

void TModelListWnd::ShowHideData() {
  std::vector<bool> shown(Data.All.Count());
  for (const QItemSelectionRange& range : labels_->selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) shown[row] = true;
  }
  const bool changed = Data.Show(shown);
  emit OnShowHide(this, changed);
}

void TModelListWnd::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  emit OnClose(this);
}
