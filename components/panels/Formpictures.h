#pragma once

#include <QHash>
#include <QString>
#include <memory>

class QTemporaryDir;

/// The gate for the pictures of a form: the toolkit gets copies of its own of them, so that it
/// never opens what the form has named. The copies last as long as this.
class TFormPictures {
 public:
  /// Of a form in this folder; `anywhere`: it may show pictures from outside, too.
  explicit TFormPictures(const QString& folder, bool anywhere = false);
  ~TFormPictures();

  /// The name under which the toolkit finds the picture; empty, and why, if it must not be shown.
  /// Pictures that the program brings itself, ":/...", keep their names.
  QString Take(const QString& name, QString* why);
  /// Where the copies lie; empty while there is none.
  QString Folder() const;

 private:
  struct TCopy {
    QString Name;
    QString Why;
    qint64 Pixels = 0;
  };
  TCopy Copy(const QString& name);

  static constexpr qint64 kMaxPixels = 1 << 24;  ///< of all that are shown together

  const QString folder_;
  const bool anywhere_;
  std::unique_ptr<QTemporaryDir> copies_;
  QHash<QString, TCopy> known_;
  qint64 pixels_ = 0;
};
