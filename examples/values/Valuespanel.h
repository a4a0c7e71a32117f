#pragma once

#include <QWidget>

#include "model/Timer.h"

class QComboBox;
class QLabel;
class QPushButton;
class QSlider;
class TDataChannel;
class TFFTChannel;
class TFileReader;
class TKorvalGraph;
class TMacro;
class TOccurrenceHistogram;
class TVariable;

/// A record of a pump, played through components in one window:
///
///     "reader" -> "acceleration" -> variable "a" -> macro "excess" -> channel "excesses"
///             |                  -> Fourier channel "spectrum"
///             |                  -> histogram "distribution"
///             -> "pressure"
///
/// Five graphs show the three channels, the spectrum and the histogram. The line in the graph of
/// the acceleration is the slider of the variable "level", which the macro reads too. Components
/// are children and bear these names; so do graphs, as "accelerationGraph".
class TValuesPanel : public QWidget {
  Q_OBJECT

 public:
  enum TSpeed { spRealTime, spTenfold, spUnlimited };

  explicit TValuesPanel(const QString& fileName, QWidget* parent = nullptr);

  /// How fast the file is read from now on. Limited speeds are kept by the timer service: each tick
  /// of the panel has a page of rows read.
  void SetSpeed(TSpeed speed);

  bool IsReading() const { return state_ == TState::kReading; }
  /// Why the file could not be opened or read on; empty if it could.
  const QString& GetError() const { return error_; }
  /// Reads on from where the reader stands.
  void Start();
  void Stop();
  /// Moves the reader half way through the file, reading or not.
  void GoToMiddle();
  /// Moves the reader to the beginning and forgets what was read.
  void StartOver();

  QSize sizeHint() const override { return {1200, 780}; }

 signals:
  /// Reading has ended by itself: at the end of the file, or with an error.
  void OnFinished();

 private:
  enum class TState { kFresh, kReading, kStopped, kFinished, kFailed };

  void MakeReader(const QString& fileName);
  void MakeAcceleration();
  void MakePressure();
  void MakeExcess();
  void MakeSpectrum();
  void MakeHistogram();
  QLayout* MakeControls();
  QLayout* MakeVariables();
  QLayout* MakeGraphs();

  void SetState(TState state, const QString& text);
  void Toggle();
  void Tick(QObject* sender);
  void ReachedEnd();
  void Failed(const QString& text);
  void ShowPosition();

  qint64 fileSize_ = 0;  ///< bytes
  TFileReader* reader_ = nullptr;
  TDataChannel* acceleration_ = nullptr;
  TDataChannel* pressure_ = nullptr;
  TDataChannel* excesses_ = nullptr;
  TVariable* a_ = nullptr;
  TVariable* level_ = nullptr;
  TMacro* excess_ = nullptr;
  TFFTChannel* spectrum_ = nullptr;
  TOccurrenceHistogram* distribution_ = nullptr;

  TKorvalGraph* accelerationGraph_ = nullptr;
  TKorvalGraph* excessGraph_ = nullptr;
  TKorvalGraph* pressureGraph_ = nullptr;
  TKorvalGraph* spectrumGraph_ = nullptr;
  TKorvalGraph* distributionGraph_ = nullptr;
  QPushButton* toggle_ = nullptr;
  QComboBox* speedBox_ = nullptr;
  QSlider* place_ = nullptr;
  QLabel* position_ = nullptr;
  QLabel* status_ = nullptr;

  TState state_ = TState::kFresh;
  QString error_;
  TSpeed speed_ = spRealTime;
  double rowsDue_ = 0.0;  ///< part of a row that is left for the next tick
  TTimerClient timer_;
};
