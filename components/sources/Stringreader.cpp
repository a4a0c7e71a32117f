#include "components/sources/Stringreader.h"

#include <QBuffer>
#include <QPointer>

TStringReader::TStringReader(QWidget* parent) : TStreamProvider(parent) {
  SetStateImages(QStringLiteral("TextConverterIdle"), QStringLiteral("TextConverterActive"),
                 QStringLiteral("TextConverterDown"));
}

void TStringReader::SetDataStrings(const QStringList& strings) {
  if (strings == dataStrings_) return;
  WhileInactive([this, &strings] {
    DropStream();
    dataStrings_ = strings;
  });
}

void TStringReader::Reset() {
  const QPointer<TStringReader> self(this);
  TStreamProvider::Reset();
  if (self && GetReadMode() == rmUntilEnd) Stop();
}

void TStringReader::ProvideStream() {
  auto text = std::make_unique<QBuffer>();
  QByteArray bytes;
  for (const QString& line : dataStrings_) bytes += line.toUtf8() + '\n';
  text->setData(bytes);
  text->open(QIODevice::ReadOnly);
  OpenStream(std::move(text));
  TStreamProvider::ProvideStream();
}

QString TStringReader::GetStreamName() const {
  return objectName().isEmpty() ? QStringLiteral("the text") : "the text of " + objectName();
}
