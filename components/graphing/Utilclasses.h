#pragma once

#include <QString>

#include "components/links/Propclasses.h"

/// How a number or a date-time becomes text.
class TNumberFormat : public TPersistent {
  Q_OBJECT

 public:
  enum TFloatFormat { ffGeneral, ffExponent, ffFixed, ffNumber, ffCurrency };
  Q_ENUM(TFloatFormat)

 private:
  Q_PROPERTY(int Digits READ GetDigits WRITE SetDigits)
  Q_PROPERTY(int Precision READ GetPrecision WRITE SetPrecision)
  Q_PROPERTY(TFloatFormat Format READ GetFormat WRITE SetFormat)
  Q_PROPERTY(bool IsTimeFormat READ GetIsTimeFormat WRITE SetIsTimeFormat)
  Q_PROPERTY(QString TimeFormatStr READ GetTimeFormatStr WRITE SetTimeFormatStr)

 public:
  using TPersistent::TPersistent;

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

  /// The value as text; "Error" if it cannot be shown with this format.
  QString FormatedValue(double value) const;
  /// The format as a printf pattern for text export.
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

/// Interval that an axis or series grows over its data, in the data's own unit.
class TRange : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(double Min READ GetMin WRITE SetMin)
  Q_PROPERTY(double Max READ GetMax WRITE SetMax)
  Q_PROPERTY(bool AutoMin READ GetAutoMin WRITE SetAutoMin)
  Q_PROPERTY(bool AutoMax READ GetAutoMax WRITE SetAutoMax)

 public:
  using TPersistent::TPersistent;

  double GetMin() const { return min_; }
  double GetMax() const { return max_; }
  bool GetAutoMin() const { return autoMin_; }
  bool GetAutoMax() const { return autoMax_; }
  bool GetReset() const { return reset_; }

  /// Moves one bound, swapping the two if they would cross.
  void SetMin(double value);
  void SetMax(double value);
  void SetAutoMin(bool on);
  void SetAutoMax(bool on);
  /// True empties the range: the bounds become 0 and 1 and the next GetBounds replaces them. Silent.
  void SetReset(bool reset);

  /// Widens the range to hold a value or another range; replaces an empty one. Silent, because it
  /// runs once per sample: the owner repaints after the loop.
  void GetBounds(double value);
  void GetBounds(const TRange* other);

  void AssignTo(TPersistent* destination) const override;

 private:
  double min_ = 0.0;
  double max_ = 1.0;
  bool autoMin_ = false;
  bool autoMax_ = false;
  bool reset_ = true;
};
