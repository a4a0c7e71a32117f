#pragma once

#include <QString>

#include "components/controls/Compbase.h"
#include "components/sources/Rowsampler.h"
#include "model/Ordinaryfile.h"

/// Writes measured rows to text files: the time and one column per data control, a row whenever the
/// last of its controls notifies, while it is Active. Each row is in the file at once, whole or not
/// at all. A file that cannot be written is reported by the status, and tried again with each row;
/// the status says how many rows are missing. GUI thread only.
///
/// The name of the file is made of FileName, in which %Y %m %d %H %M %S stand for the local time of
/// the first row and %N for a number that makes the name new: "log-%Y%m%d.txt" is one file a day,
/// for a row whose time gives another name begins another file. Rows are appended to a file that
/// exists already.
class TDataLogger : public TStateControl {
  Q_OBJECT
  Q_PROPERTY(TKorvalCompList* Controls READ GetControls WRITE SetControls)
  Q_PROPERTY(QString FileName READ GetFileName WRITE SetFileName)
  /// Between the values of a row: a tab, which is the default, a comma, a semicolon, a blank or a
  /// bar.
  Q_PROPERTY(QString Separator READ GetSeparator WRITE SetSeparator)
  /// Whether a new file begins with a line of column names.
  Q_PROPERTY(bool Header READ GetHeader WRITE SetHeader)
  /// Of the values, 1 to 17.
  Q_PROPERTY(int Digits READ GetDigits WRITE SetDigits)

 public:
  explicit TDataLogger(QWidget* parent = nullptr);

  TKorvalCompList* GetControls() { return sampler_.Controls(); }
  void SetControls(const TKorvalCompList* list) { sampler_.Controls()->Assign(list); }
  const QString& GetFileName() const { return fileName_; }
  void SetFileName(const QString& pattern);
  const QString& GetSeparator() const { return separator_; }
  /// Others are ignored.
  void SetSeparator(const QString& separator);
  bool GetHeader() const { return header_; }
  void SetHeader(bool header) { header_ = header; }
  int GetDigits() const { return digits_; }
  void SetDigits(int digits);

  bool GetActive() const { return TStateControl::GetActive(); }
  void SetActive(bool active) override;
  void AddWishes(TWishes& wishes) const override;
  void Loaded() override;
  void Started() override;

  /// The file that is being written; empty for none.
  QString CurrentFile() const { return file_.isOpen() ? file_.fileName() : QString(); }
  const QString& GetStatusText() const { return status_; }

 signals:
  void OnStatusChanged(QObject* sender);

 private:
  void TakeRow(double time, std::span<const double> values);
  void ShowState();
  QByteArray HeaderLine() const;
  QByteArray RowLine(double time, std::span<const double> values) const;
  bool OpenFor(double time, QString& reason);
  bool Append(double time, std::span<const double> values, QString& reason);
  void SetStatus(const QString& text);

  TRowSampler sampler_{this};
  QString fileName_ = QStringLiteral("log-%Y%m%d.txt");
  QString separator_ = QStringLiteral("\t");
  bool header_ = true;
  int digits_ = 8;
  TOrdinaryFile file_;
  QString openedFor_;   ///< the name, before its number, that file_ was opened for
  qint64 missing_ = 0;  ///< rows that could not be written since it is Active
  QString status_;
};
