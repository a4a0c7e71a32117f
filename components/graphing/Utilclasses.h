#pragma once

#include <QString>
#include <cmath>

#include "components/links/Propclasses.h"

/// How a number or a date-time becomes text. The decimal point is always a full stop; thousands
/// separators, the currency symbol and the names of months and days are those of the system's
/// locale.
class TNumberFormat : public TPersistent {
  Q_OBJECT

 public:
  enum TFloatFormat : int { ffGeneral, ffExponent, ffFixed, ffNumber, ffCurrency };
  Q_ENUM(TFloatFormat)

 private:
  Q_PROPERTY(int Digits READ GetDigits WRITE SetDigits)
  Q_PROPERTY(int Precision READ GetPrecision WRITE SetPrecision)
  Q_PROPERTY(TFloatFormat Format READ GetFormat WRITE SetFormat)
  Q_PROPERTY(bool IsTimeFormat READ GetIsTimeFormat WRITE SetIsTimeFormat)
  Q_PROPERTY(QString TimeFormatStr READ GetTimeFormatStr WRITE SetTimeFormatStr)

 public:
  Q_INVOKABLE explicit TNumberFormat(QObject* owner = nullptr) : TPersistent(owner) {}

  int GetDigits() const { return digits_; }
  int GetPrecision() const { return precision_; }
  TFloatFormat GetFormat() const { return format_; }
  bool GetIsTimeFormat() const { return isTimeFormat_; }
  const QString& GetTimeFormatStr() const { return timeFormatStr_; }

  void SetDigits(int digits);        ///< 0 to 18
  void SetPrecision(int precision);  ///< 1 to 15
  void SetFormat(TFloatFormat format);
  void SetIsTimeFormat(bool isTime);
  void SetTimeFormatStr(const QString& pattern);

  /// The value as text: a number, or a date-time (days since 30 December 1899) if IsTimeFormat is
  /// set, where the pattern "i" stands for the milliseconds 0 to 999. "Error" for a value that is
  /// no valid date-time.
  QString FormatedValue(double value) const;
  /// The format as a printf pattern for text export, such as "%0.2lf".
  QString GetFormatStr() const;

  /// Fires this object's own OnChange at the end, beside the destination's.
  void AssignTo(TPersistent* destination) const override;
  /// Compares Digits, Format and Precision; the time settings do not count, on purpose.
  bool SameAs(const TPersistent* other) const override;

 private:
  int digits_ = 2;
  int precision_ = 5;
  TFloatFormat format_ = ffGeneral;
  QString timeFormatStr_;
  bool isTimeFormat_ = false;
};

/// Interval that an axis or series grows over its data, in the data's own unit. NaN is no value of
/// an interval and is ignored everywhere.
class TRange : public TPersistent {
  Q_OBJECT
  // A copy takes them in this order: a new Min above the old Max makes that old Max its Min, and so
  // stays in the result. Reset is not copied.
  Q_PROPERTY(double Min READ GetMin WRITE SetMin)
  Q_PROPERTY(double Max READ GetMax WRITE SetMax)
  Q_PROPERTY(bool AutoMin READ GetAutoMin WRITE SetAutoMin)
  Q_PROPERTY(bool AutoMax READ GetAutoMax WRITE SetAutoMax)

 public:
  Q_INVOKABLE explicit TRange(QObject* owner = nullptr) : TPersistent(owner) {}

  double GetMin() const { return min_; }
  double GetMax() const { return max_; }
  bool GetAutoMin() const { return autoMin_; }
  bool GetAutoMax() const { return autoMax_; }
  bool GetReset() const { return reset_; }
  /// The least positive value that the range was widened by, where a logarithmic axis can begin; 0
  /// if there was none.
  double LeastPositive() const { return leastPositive_; }

  /// Moves one bound, swapping the two if they would cross.
  void SetMin(double value);
  void SetMax(double value);
  void SetAutoMin(bool on);
  void SetAutoMax(bool on);
  /// True empties the range: the bounds become 0 and 1 and the next GetBounds replaces them.
  /// Silent.
  void SetReset(bool reset);

  /// Widens the range to hold a value or another range; replaces an empty one. Silent, because it
  /// runs once per sample: the owner repaints after the loop.
  void GetBounds(double value) {
    if (std::isnan(value)) return;
    if (reset_) min_ = max_ = value;
    reset_ = false;
    if (value < min_) min_ = value;
    if (value > max_) max_ = value;
    AddPositive(value);
  }
  void GetBounds(const TRange* other);

 private:
  void AddPositive(double value) {
    if (value > 0.0 && !(value >= leastPositive_ && leastPositive_ > 0.0)) leastPositive_ = value;
  }

  double min_ = 0.0;
  double max_ = 1.0;
  double leastPositive_ = 0.0;
  bool autoMin_ = false;
  bool autoMax_ = false;
  bool reset_ = true;
};
