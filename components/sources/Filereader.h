#pragma once

#include <QFile>
#include <QPointer>
#include <QStringList>

#include "components/sources/Streamprovider.h"

/// Reads the numbers of a text file, or of the files of a list one after the other. Only ordinary
/// files are read: others, such as pipes, could make the program wait.
///
/// A reader that is switched on reads the file that has the name now: one that has taken the place
/// of the former, or was cut short, from its beginning.
class TFileReader : public TStreamProvider {
  Q_OBJECT
  Q_PROPERTY(QString FileName READ GetFileName WRITE SetFileName)
  Q_PROPERTY(bool UseList READ GetUseList WRITE SetUseList)
  Q_PROPERTY(QStringList Files READ GetFiles WRITE SetFiles)
  Q_PROPERTY(TReadMode ReadMode READ GetReadMode WRITE SetReadMode)
  Q_PROPERTY(qlonglong StreamPosition READ GetStoredPosition WRITE SetStreamPosition)
  Q_PROPERTY(int StreamPosPercent READ GetStreamPosPercent STORED false)
  Q_PROPERTY(int ItemIndex READ GetStoredIndex WRITE SetItemIndex)

 public:
  explicit TFileReader(QWidget* parent = nullptr);

  /// The file that is read without a list.
  const QString& GetFileName() const { return fileName_; }
  /// What is no existing file is stored as no name; a file that cannot be opened changes nothing.
  /// Both are reported. Another file is read from its beginning.
  void SetFileName(const QString& name);

  /// Whether the files of the list are read.
  bool GetUseList() const { return useList_; }
  /// Ignored while active.
  void SetUseList(bool use);
  const QStringList& GetFiles() const { return files_; }
  /// Another list is read from its first file on.
  void SetFiles(const QStringList& files);
  /// The file of the list that is being read or was read last; -1 before the first. The next one
  /// follows, unless a position in this one has been set.
  int GetItemIndex() const { return itemIndex_; }
  /// -1 to the number of files, others are ignored.
  void SetItemIndex(int index);
  /// What forms store, for a reader that goes on there: of a file of which nothing has been read
  /// the one before.
  int GetStoredIndex() const;

  void AddWishes(TWishes& wishes) const override;

  /// Goes to the beginning of the file, or with a list to the next file; stops where the mode says.
  void Reset() override;
  void SetActive(bool active) override;
  void Loaded() override;

 signals:
  void OnEndOfFile(QObject* sender);
  /// A file is about to be opened; `name` is empty if there is none.
  void OnNewFile(QObject* sender, const QString& name);

 protected:
  void ProvideStream() override;
  QString GetStreamName() const override { return openName_; }
  int GetStreamsPerRound() const override;

 private:
  QString GetValidFile();
  void LeaveFormerFile();
  void FailOpening(const QString& error);

  QString fileName_;
  QStringList files_;
  int itemIndex_ = -1;
  bool useList_ = false;
  QString openName_;            ///< of the stream
  QPointer<const QFile> file_;  ///< the stream
};
