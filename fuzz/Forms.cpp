#include <QApplication>
#include <QMetaEnum>
#include <cstdlib>

#include "components/package/Panel.h"

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

/// What reaches out of the program: files, devices, servers, dialogs.
bool ReachesOut(const QString& name) {
  static const char* const kParts[] = {"Active", "Logging", "Click", "File", "Folder", "Path",
                                       "Dir",    "Host",    "Port",  "URL",  "Link"};
  for (const char* part : kParts) {
    if (name.contains(QLatin1String(part), Qt::CaseInsensitive)) {
      if (!name.startsWith(QLatin1String("GraphLink"))) return true;
    }
  }
  return false;
}

/// The names that the properties of a class may have, some that it has not among them.
const QStringList& PropertyNames(const TComponentClass& component) {
  static QHash<QString, QStringList> known;
  QStringList& names = known[component.Name];
  if (!names.isEmpty()) return names;
  const std::unique_ptr<QWidget> sample(component.Make(nullptr));
  ForEachPublished(*sample, [&](const TPublished& published) {
    if (!ReachesOut(published.Path)) names.append(published.Path);
  });
  names += {"geometry", "minimumSize", "enabled", "nothing", "GraphLink", "..", "", "objectName"};
  return names;
}

QString Value(TChoices& choices) {
  static const QStringList kTexts = {"0",          "1",
                                     "-1",         "3",
                                     "1e308",      "nan",
                                     "inf",        "-1e-300",
                                     "2147483647", "99999999999999999999",
                                     "65536",      "true",
                                     "false",      "a",
                                     "b",          "c",
                                     "a;b;c",      "sin(x)+a",
                                     "1,2,3",      "1;2\n3;4",
                                     "#ff0000",    "none",
                                     "%s%n",       "yyyy-mm-dd hh:nn",
                                     "((((((((",   "coUseLimits|coSkipError",
                                     "asLog"};
  static const QStringList kKinds = {"string", "number", "double", "bool", "enum", "set"};
  const int shape = choices.Below(8);
  if (shape == 0) {
    return QStringLiteral("<rect><x>%1</x><y>0</y><width>%2</width><height>50</height></rect>")
        .arg(kTexts[choices.Below(10)], kTexts[choices.Below(10)]);
  }
  if (shape == 1) {
    return QStringLiteral("<stringlist><string>%1</string><string>%2</string></stringlist>")
        .arg(kTexts[13 + choices.Below(3)], kTexts[13 + choices.Below(3)]);
  }
  const QString text = shape == 2 ? choices.Bytes(choices.Below(40))
                                  : kTexts[choices.Below(static_cast<int>(kTexts.size()))];
  const QString kind = kKinds[choices.Below(static_cast<int>(kKinds.size()))];
  return QStringLiteral("<%1>%2</%1>").arg(kind, text.toHtmlEscaped());
}

/// A form that the bytes choose from the classes and properties that there are.
QString ChosenForm(TChoices& choices) {
  QString form = QStringLiteral("<ui><widget class=\"QWidget\" name=\"Panel\">\n");
  const auto classes = ComponentClasses();
  for (int i = 0; i < 6 && !choices.AtEnd(); ++i) {
    const auto& component =
        classes[static_cast<std::size_t>(choices.Below(static_cast<int>(classes.size())))];
    form += QStringLiteral("<widget class=\"%1\" name=\"%2\">\n")
                .arg(component.Name, QChar('a' + choices.Below(4)));
    const QStringList& names = PropertyNames(component);
    for (int p = choices.Below(8); p > 0; --p) {
      form += QStringLiteral(" <property name=\"%1\">%2</property>\n")
                  .arg(names[choices.Below(static_cast<int>(names.size()))], Value(choices));
    }
    form += QStringLiteral("</widget>\n");
  }
  return form + QStringLiteral("</widget></ui>\n");
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

bool ReachesOut(const TFormFile& form) {
  for (const auto& widget : form.Widgets()) {
    for (const auto& property : widget.Properties) {
      if (ReachesOut(property.Name)) return true;
    }
  }
  return false;
}

/// Empty for a text that is no form.
QString SavedAgain(const QString& text) {
  const auto panel = TPanel::FromText(text, "fuzz.ui", nullptr);
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

  TChoices choices(bytes, size);
  const QString text = choices.Below(4) == 0
                           ? QString::fromUtf8(reinterpret_cast<const char*>(bytes) + 1,
                                               static_cast<qsizetype>(size) - 1)
                           : ChosenForm(choices);
  TFormFile form;
  if (!form.Parse(text, nullptr)) return 0;
  CheckPlaces(form);
  if (ReachesOut(form)) return 0;
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
