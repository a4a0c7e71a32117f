#pragma once

#include <QStringList>

#include "components/sources/Streamprovider.h"

/// Reads the numbers of lines of text that the component holds.
class TStringReader : public TStreamProvider {
  Q_OBJECT
  Q_PROPERTY(QStringList DataStrings READ GetDataStrings WRITE SetDataStrings)
  Q_PROPERTY(TReadMode ReadMode READ GetReadMode WRITE SetReadMode)

 public:
  explicit TStringReader(QWidget* parent = nullptr);

  const QStringList& GetDataStrings() const { return dataStrings_; }
  /// Other lines are read from the first on.
  void SetDataStrings(const QStringList& strings);

  /// Goes to the first line, and stops there if that is the mode.
  void Reset() override;

 protected:
  void ProvideStream() override;
  QString GetStreamName() const override;

 private:
  QStringList dataStrings_;
};
