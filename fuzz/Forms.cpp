#include <QApplication>
#include <QDir>
#include <QMetaEnum>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdlib>

#include "components/panels/Panel.h"

// Forms: any text is a panel or a fault, what a panel writes is read as the same panel in the end,
// and the places that the parser notes are those of properties.

namespace {

/// The bytes of the fuzzer as a sequence of choices.
class TChoices {
 public:
  TChoices(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), left_(size) {}

  bool AtEnd() const { return left_ == 0; }
  int Below(int limit) { return limit > 0 ? Next() % limit : 0; }
  QString Bytes(int count) {
    QString result;
    while (count-- > 0) result += QChar(Next());
    return result;
  }

 private:
  std::uint8_t Next() {
    if (left_ == 0) return 0;
    --left_;
    return *bytes_++;
  }
  const std::uint8_t* bytes_;
  std::size_t left_;
};

/// The folder of all files that a form may name.
const QString& Scratch() {
  static const QTemporaryDir folder;
  static const QString path = folder.path();
  return path;
}

/// Names of files, folders and hosts; buttons that would wait for a user are no properties.
bool ReachesOut(const QString& name) {
  static const char* const kParts[] = {"File", "Folder", "Path", "Dir",     "Host",
                                       "Peer", "URL",    "Link", "Address", "source"};
  return std::ranges::any_of(kParts, [&](const char* part) {
    return name.contains(QLatin1String(part), Qt::CaseInsensitive);
  });
}

/// The names that the properties of a class may have, some that it has not among them.
const QStringList& PropertyNames(const QString& className) {
  static QHash<QString, QStringList> known;
  QStringList& names = known[className];
  if (!names.isEmpty()) return names;
  if (const TComponentClass* component = FindComponentClass(className)) {
    const std::unique_ptr<QWidget> sample(component->Make(nullptr));
    ForEachPublished(*sample, [&](const TPublished& published) {
      if (!published.Path.contains(QLatin1String("Click"))) names.append(published.Path);
    });
  }
  names += {"geometry",    "minimumSize", "enabled", "nothing", "GraphLink",   "..",     "",
            "objectName",  "text",        "toolTip", "html",    "markdown",    "icon",   "pixmap",
            "styleSheet",  "font",        "maximum", "value",   "prefix",      "source", "rowCount",
            "columnCount", "palette",     "indent",  "title",   "tickPosition"};
  return names;
}

QString Value(TChoices& choices) {
  static const QStringList kTexts = {"0",
                                     "1",
                                     "-1",
                                     "3",
                                     "1e308",
                                     "nan",
                                     "inf",
                                     "-1e-300",
                                     "2147483647",
                                     "99999999999999999999",
                                     "65536",
                                     "true",
                                     "false",
                                     "a",
                                     "b",
                                     "c",
                                     "a;b;c",
                                     "sin(x)+a",
                                     "1,2,3",
                                     "1;2\n3;4",
                                     "#ff0000",
                                     "none",
                                     "%s%n",
                                     "yyyy-mm-dd hh:nn",
                                     "((((((((",
                                     "coUseLimits|coSkipError",
                                     "asLog",
                                     "[{\"Count\":2,\"XMLTag\":\"data\"}]",
                                     "{\"a\":[1,[2,[3]]]}",
                                     "[[[[[[[[",
                                     "10; #ff0000; ; A",
                                     "<img src=\"pipe\">",
                                     "<b>a</b><table><tr><td colspan=9>b</td></tr></table>",
                                     "<body background=\"/dev/zero\">",
                                     "![a](pipe)",
                                     "url(pipe)",
                                     "QLabel { image: url( 'pipe' ) }",
                                     "inside.png",
                                     "../outside",
                                     "pipe",
                                     "127.0.0.1",
                                     "log.txt",
                                     ":/a.png"};
  static const QStringList kKinds = {"string", "number", "double",  "bool", "enum",
                                     "set",    "pixmap", "iconset", "url"};
  const auto text = [&] { return kTexts[choices.Below(static_cast<int>(kTexts.size()))]; };
  switch (choices.Below(10)) {
    case 0:
      return QStringLiteral("<rect><x>%1</x><y>0</y><width>%2</width><height>50</height></rect>")
          .arg(kTexts[choices.Below(10)], kTexts[choices.Below(10)]);
    case 1:
      return QStringLiteral("<stringlist><string>%1</string><string>%2</string></stringlist>")
          .arg(text().toHtmlEscaped(), text().toHtmlEscaped());
    case 2:
      return QStringLiteral("<iconset theme=\"%1\">%2<normaloff>%3</normaloff></iconset>")
          .arg(kTexts[choices.Below(20)], text().toHtmlEscaped(), text().toHtmlEscaped());
    case 3:
      return QStringLiteral("<font><family>%1</family><pointsize>%2</pointsize></font>")
          .arg(text().toHtmlEscaped(), kTexts[choices.Below(10)]);
    default:
      break;
  }
  const QString content = choices.Below(8) == 0 ? choices.Bytes(choices.Below(40)) : text();
  const QString kind = kKinds[choices.Below(static_cast<int>(kKinds.size()))];
  return QStringLiteral("<%1>%2</%1>").arg(kind, content.toHtmlEscaped());
}

QString Properties(TChoices& choices, const QString& className, const char* element) {
  const QStringList& names = PropertyNames(className);
  QString text;
  for (int count = choices.Below(8); count > 0; --count) {
    text += QStringLiteral(" <%1 name=\"%2\">%3</%1>\n")
                .arg(element, names[choices.Below(static_cast<int>(names.size()))], Value(choices));
  }
  return text;
}

/// Rows, columns and items of a list, a tree or a table.
QString Items(TChoices& choices) {
  static const QStringList kElements = {"item", "row", "column"};
  QString text;
  for (int count = choices.Below(4); count > 0; --count) {
    const QString& element = kElements[choices.Below(3)];
    text += QStringLiteral("<%1 row=\"%2\" column=\"%3\">%4</%1>\n")
                .arg(element)
                .arg(choices.Below(3))
                .arg(choices.Below(3))
                .arg(Properties(choices, "QLabel", "property"));
  }
  return text;
}

QString Connection(TChoices& choices) {
  static const QStringList kSignals = {"clicked()",
                                       "toggled(bool)",
                                       "valueChanged(int)",
                                       "OnStatusText(QString)",
                                       "OnChange(QObject*)",
                                       "OnActiveChanged(QObject*)",
                                       "textChanged(QString)",
                                       "destroyed()"};
  static const QStringList kSlots = {"setValue(int)",    "toggle()",      "setText(QString)",
                                     "ResetChannel()",   "Open()",        "Close()",
                                     "SetActive(bool)",  "deleteLater()", "Reset()",
                                     "setEnabled(bool)", "display(int)",  "close()"};
  const QString sender = QChar('a' + choices.Below(4));
  const QString signal = kSignals[choices.Below(static_cast<int>(kSignals.size()))];
  const QString receiver = QChar('a' + choices.Below(4));
  return QStringLiteral(
             "<connection><sender>%1</sender><signal>%2</signal><receiver>%3</receiver>"
             "<slot>%4</slot></connection>\n")
      .arg(sender, signal, receiver, kSlots[choices.Below(static_cast<int>(kSlots.size()))]);
}

/// A form that the bytes choose from the classes and properties that there are.
QString ChosenForm(TChoices& choices) {
  static const QStringList kPlain = {"QLabel",       "QSpinBox",    "QListWidget",  "QTreeWidget",
                                     "QTableWidget", "QTextEdit",   "QTextBrowser", "QTabWidget",
                                     "QSlider",      "QPushButton", "QComboBox",    "QCheckBox",
                                     "QLCDNumber",   "QQuickWidget"};
  QString form = QStringLiteral("<ui><widget class=\"QWidget\" name=\"Panel\">\n");
  const auto classes = ComponentClasses();
  const int count = static_cast<int>(classes.size() + static_cast<std::size_t>(kPlain.size()));
  for (int i = 0; i < 6 && !choices.AtEnd(); ++i) {
    const int choice = choices.Below(count);
    const QString className = choice < kPlain.size()
                                  ? kPlain[choice]
                                  : classes[static_cast<std::size_t>(choice - kPlain.size())].Name;
    form += QStringLiteral("<widget class=\"%1\" name=\"%2\">\n")
                .arg(className, QChar('a' + choices.Below(4)));
    form += Properties(choices, className, "property");
    if (choice < kPlain.size())
      form += Properties(choices, className, "attribute") + Items(choices);
    form += QStringLiteral("</widget>\n");
  }
  form += QStringLiteral("</widget><connections>\n");
  for (int i = choices.Below(5); i > 0; --i) form += Connection(choices);
  return form + QStringLiteral("</connections></ui>\n");
}

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckPlaces(const TFormFile& form) {
  for (const auto& widget : form.Widgets()) {
    Require(form.Text().mid(widget.ContentBegin - 1, 1) == ">");
    for (const auto& property : widget.Properties) {
      const QString text = form.Text().mid(property.Begin, property.End - property.Begin);
      Require(text.startsWith('<') && text.endsWith('>'));
    }
  }
}

/// Whether a name leads out of the scratch folder, or to another computer.
bool LeavesScratch(const TFormFile& form) {
  for (const auto& widget : form.Widgets()) {
    for (const auto& property : widget.Properties) {
      if (!ReachesOut(property.Name)) continue;
      const QString value = property.Value.Text + property.Value.Items.join(' ');
      if (value.contains('/') || value.contains("..")) return true;
    }
  }
  return false;
}

/// Empty for a text that is no form.
QString SavedAgain(const QString& text) {
  const auto panel = TPanel::FromText(text, Scratch() + "/fuzz.ui", nullptr);
  return panel ? panel->Text() : QString();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 1) return 0;
  static int argc = 1;
  static char name[] = "fuzz";
  static char* argv[] = {name, nullptr};
  // Kept to the end: its fonts are found to be in use then, and no leak.
  static const auto* const application = new QApplication(argc, argv);
  Q_UNUSED(application)
  static const auto quiet =
      qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  Q_UNUSED(quiet)
  // What is meant from the current folder stays in it, too.
  static const bool moved = QDir::setCurrent(Scratch());
  Q_UNUSED(moved)

  TChoices choices(bytes, size);
  const QString text = choices.Below(4) == 0
                           ? QString::fromUtf8(reinterpret_cast<const char*>(bytes) + 1,
                                               static_cast<qsizetype>(size) - 1)
                           : ChosenForm(choices);
  TFormFile form;
  if (!form.Parse(text, nullptr)) return 0;
  CheckPlaces(form);
  if (LeavesScratch(form)) return 0;
  QString saved = SavedAgain(text);
  if (saved.isEmpty()) return 0;
  // A property that follows another one may move once more.
  saved = SavedAgain(saved);
  const QString again = SavedAgain(saved);
  if (again != saved) {
    std::fprintf(stderr, "%s\nends as\n%s\nand that as\n%s\n", qPrintable(text), qPrintable(saved),
                 qPrintable(again));
    std::abort();
  }
  return 0;
}
