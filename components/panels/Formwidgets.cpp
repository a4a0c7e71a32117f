#include "components/panels/Formwidgets.h"

#include <QAbstractItemView>
#include <QHash>
#include <QTextBrowser>
#include <QUrl>
#include <algorithm>
#include <climits>

#include "components/graphing/Graph.h"

namespace {

/// Of one with scroll bars, headers and a view port, or with parts of several kinds.
constexpr int kViewCost = 20;
constexpr int kEditorCost = 4;

const QHash<QString, int>& PlainWidgets() {
  static const QHash<QString, int> widgets = {
      {"QWidget", 1},
      {"QFrame", 1},
      {"Line", 1},
      {"QLabel", 1},
      {"QGroupBox", 2},
      {"QPushButton", 1},
      {"QToolButton", 1},
      {"QCommandLinkButton", 1},
      {"QCheckBox", 1},
      {"QRadioButton", 1},
      {"QProgressBar", kEditorCost},
      {"QLCDNumber", kEditorCost},
      {"QSlider", 1},
      {"QScrollBar", 1},
      {"QDial", kEditorCost},
      {"QStackedWidget", 1},
      {"QSplitter", 1},
      {"QLineEdit", kEditorCost},
      {"QSpinBox", kEditorCost},
      {"QDoubleSpinBox", kViewCost},
      {"QDateEdit", kViewCost},
      {"QTimeEdit", kViewCost},
      {"QDateTimeEdit", kViewCost},
      {"QDialogButtonBox", kEditorCost},
      {"QComboBox", kEditorCost},
      {"QTabWidget", kViewCost},
      {"QToolBox", kEditorCost},
      {"QScrollArea", kEditorCost},
      {"QTextEdit", kViewCost},
      {"QPlainTextEdit", kViewCost},
      {"QTextBrowser", kViewCost},
      {"QListWidget", kViewCost},
      {"QTreeWidget", kViewCost},
      {"QTableWidget", kViewCost},
  };
  return widgets;
}

/// TEditor is a QTextEdit.
template <class TEditor>
class TClosedEditor : public TEditor {
 public:
  TClosedEditor(QWidget* parent, const QString& folder) : TEditor(parent), folder_(folder) {}

 protected:
  QVariant loadResource(int type, const QUrl& name) override {
    const QString path = name.scheme() == QLatin1String("qrc") ? ':' + name.path()
                         : name.isLocalFile()                  ? name.toLocalFile()
                                                               : name.toString();
    const bool ours = !folder_.isEmpty() && path.startsWith(folder_ + '/') && !path.contains("..");
    if (path.startsWith(QLatin1String(":/")) || ours) return TEditor::loadResource(type, name);
    return {};
  }

 private:
  const QString folder_;
};

}  // namespace

int PlainWidgetCost(const QString& className, bool isRoot) {
  // What Designer begins a form with; below another widget it would be a window of its own.
  if (isRoot && className == QLatin1String("QDialog")) return 1;
  return PlainWidgets().value(className, 0);
}

int MostChildren(const QString& className) {
  static const char* const kPaged[] = {"QTabWidget", "QToolBox", "QSplitter"};
  const bool isPaged = std::ranges::any_of(
      kPaged, [&](const char* known) { return className == QLatin1String(known); });
  constexpr int kMostPages = 500;
  return isPaged ? kMostPages : INT_MAX;
}

int ComponentCost(const QMetaObject& componentClass) {
  constexpr int kGraphCost = 40;  // and of a sheet
  constexpr int kUsualCost = 4;
  if (componentClass.inherits(&TKorvalGraph::staticMetaObject)) return kGraphCost;
  return componentClass.inherits(&QAbstractItemView::staticMetaObject) ? kGraphCost : kUsualCost;
}

bool IsPlainLayout(const QString& className) {
  static const char* const kLayouts[] = {"QGridLayout", "QHBoxLayout", "QVBoxLayout", "QFormLayout",
                                         "QStackedLayout"};
  return std::ranges::any_of(kLayouts,
                             [&](const char* known) { return className == QLatin1String(known); });
}

QWidget* MakeTextEditor(const QString& className, QWidget* parent, const QString& folder) {
  if (className == QLatin1String("QTextEdit")) return new TClosedEditor<QTextEdit>(parent, folder);
  if (className != QLatin1String("QTextBrowser")) return nullptr;
  auto* browser = new TClosedEditor<QTextBrowser>(parent, folder);
  browser->setOpenLinks(false);
  return browser;
}
