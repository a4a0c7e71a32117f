#include "model/Loadreport.h"

#include "model/Oneline.h"

void TLoadReport::Add(std::size_t line, const QString& what) {
  if (count_++ > 0) return;
  first_ = what;
  line_ = line;
}

void TLoadReport::Fail(const QString& why) {
  first_ = why;
  line_ = 0;
  count_ = 1;
  failed_ = true;
}

QString TLoadReport::Sentence(const QString& fileName) const {
  if (Ok() || cancelled_) return {};
  const QString name = ShownFileName(fileName);
  if (failed_) return QStringLiteral("Cannot read ") + name + QStringLiteral(": ") + first_ + '.';

  QString sentence = name;
  if (line_ > 0) sentence += QStringLiteral(", line ") + QString::number(line_);
  sentence += QStringLiteral(": ") + first_;
  if (count_ == 2) sentence += QStringLiteral(", and 1 more fault followed");
  if (count_ > 2) {
    sentence += QStringLiteral(", and ") + QString::number(count_ - 1) +
                QStringLiteral(" more faults followed");
  }
  return sentence + '.';
}
