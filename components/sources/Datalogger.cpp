#include "components/sources/Datalogger.h"

#include <QFileInfo>

#include "components/controls/Plaintip.h"
#include "components/links/Outside.h"
#include "model/Datetime.h"
#include "model/Growingfile.h"
#include "model/Ordinaryfile.h"

namespace {

constexpr int kMaxNumber = 9999;
const QString kNumber = QStringLiteral("%N");

/// The pattern with the time put in; %N stays.
QString NameAt(QString pattern, double time) {
  const TDateTime::TClock clock = TDateTime(time).Clock();
  const std::pair<const char*, int> parts[] = {
      {"%Y", clock.date.year()}, {"%m", clock.date.month()},  {"%d", clock.date.day()},
      {"%H", clock.time.hour()}, {"%M", clock.time.minute()}, {"%S", clock.time.second()}};
  for (const auto& [code, value] : parts) {
    pattern.replace(QLatin1String(code), QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0')));
  }
  return pattern;
}

/// The first number whose file does not exist.
QString NumberedName(const QString& name) {
  if (!name.contains(kNumber)) return name;
  QString numbered;
  for (int number = 1; number <= kMaxNumber; ++number) {
    numbered =
        QString(name).replace(kNumber, QStringLiteral("%1").arg(number, 4, 10, QLatin1Char('0')));
    if (!QFileInfo::exists(numbered)) break;
  }
  return numbered;
}

}  // namespace

TDataLogger::TDataLogger(QWidget* parent) : TStateControl(parent) {
  SetStateImages(QStringLiteral("DataLoggerIdle"), QStringLiteral("DataLoggerActive"),
                 QStringLiteral("DataLoggerDown"));
  sampler_.OnRow = [this](double time, std::span<const double> values) { TakeRow(time, values); };
}

void TDataLogger::SetFileName(const QString& pattern) { fileName_ = pattern; }

void TDataLogger::SetSeparator(const QString& separator) {
  static const QStringList known = {"\t", ",", ";", " ", "|"};
  if (known.contains(separator)) separator_ = separator;
}

void TDataLogger::SetDigits(int digits) {
  if (digits >= 1 && digits <= 17) digits_ = digits;
}

void TDataLogger::SetActive(bool active) {
  if (active == GetActive()) return;
  TStateControl::SetActive(active);
  file_.close();
  openedFor_.clear();
  missing_ = 0;
  ShowState();
}

void TDataLogger::ShowState() {
  SetStatus(!GetActive()     ? QStringLiteral("Stopped")
            : IsAtRest(this) ? QStringLiteral("Not started")
                             : QStringLiteral("Waiting for a row"));
}

void TDataLogger::AddWishes(TWishes& wishes) const {
  constexpr bool kIsPattern = true;
  AddWriteWish(wishes, this, fileName_, kIsPattern);
}

void TDataLogger::Loaded() {
  sampler_.Controls()->GetComponentsByNames();
  TStateControl::Loaded();
}

void TDataLogger::Started() {
  if (GetActive()) ShowState();
}

void TDataLogger::SetStatus(const QString& text) {
  if (text == status_) return;
  status_ = text;
  setToolTip(PlainTip(text));
  emit OnStatusChanged(this);
}

QByteArray TDataLogger::HeaderLine() const {
  QStringList names(QStringLiteral("Time"));
  const TKorvalCompList& controls = *sampler_.Controls();
  for (int i = 0; i < controls.Count(); ++i) {
    const QObject* control = controls.Get(i);
    names.append(control ? control->objectName() : QString());
  }
  // A name is one column of one line, whatever a form calls its components.
  for (QString& name : names) {
    for (QChar& letter : name) {
      if (separator_.contains(letter) || !letter.isPrint()) letter = '_';
    }
  }
  return names.join(separator_).toUtf8() + '\n';
}

QByteArray TDataLogger::RowLine(double time, std::span<const double> values) const {
  const TDateTime::TClock clock = TDateTime(time).Clock();
  QByteArray line = clock.date.toString(Qt::ISODate).toLatin1() + ' ' +
                    clock.time.toString(Qt::ISODateWithMs).toLatin1();
  const QByteArray separator = separator_.toUtf8();
  for (const double value : values) line += separator + QByteArray::number(value, 'g', digits_);
  return line + '\n';
}

bool TDataLogger::OpenFor(double time, QString& reason) {
  const QString name = FormPath(this, NameAt(fileName_, time));
  if (file_.isOpen() && name == openedFor_) return true;
  file_.close();
  // A file that could not be written for a while keeps its number.
  if (name != openedFor_) file_.SetName(NumberedName(name));
  reason = WriteRefusal(this, Wishes(), file_.fileName());
  if (!reason.isEmpty()) return false;
  if (!file_.Open(kGrowing, &reason)) return false;
  openedFor_ = name;
  return true;
}

/// False, with a reason, if the row cannot be written.
bool TDataLogger::Append(double time, std::span<const double> values, QString& reason) {
  if (!OpenFor(time, reason)) return false;
  QByteArray lines = RowLine(time, values);
  if (header_ && file_.size() == 0) lines.prepend(HeaderLine());
  if (AppendLines(file_, lines, reason)) return true;
  file_.close();
  return false;
}

void TDataLogger::TakeRow(double time, std::span<const double> values) {
  if (!GetActive() || IsWaiting()) return;
  QString reason;
  const bool written = Append(time, values, reason);
  QString status = written ? QStringLiteral("Writing %1").arg(file_.fileName())
                           : QStringLiteral("Cannot write %1: %2").arg(file_.fileName(), reason);
  if (!written) ++missing_;
  if (missing_ == 1) status += QStringLiteral("; 1 row is missing");
  if (missing_ > 1) status += QStringLiteral("; %1 rows are missing").arg(missing_);
  SetStatus(status);
}
