#include "exchange/Universalfunctions.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "model/Animmodel.h"
#include "model/Oneline.h"

namespace {

/// The present line with its blanks: columns are those of characters, whatever the encoding.
QString ColumnsOf(std::string_view line) {
  constexpr std::size_t kWidest = 200;
  return FromBytes(line.substr(0, kWidest));
}

QString TextAt(const QString& line, qsizetype column, qsizetype width) {
  return line.mid(column, width).trimmed();
}

/// A whole number in its column, 0 for a blank; false for anything else.
bool IntAt(const QString& line, qsizetype column, qsizetype width, int& value) {
  const QString text = TextAt(line, column, width);
  bool good = true;
  value = text.isEmpty() ? 0 : text.toInt(&good);
  return good;
}

bool DegreeAt(const QString& line, qsizetype column, TDegreeOfFreedom& degree) {
  degree.Entity = TextAt(line, column, 10);
  return IntAt(line, column + 10, 10, degree.Node) && IntAt(line, column + 20, 4, degree.Direction);
}

/// "2(I5,I10),2(1X,A10,I10,I4)", by the columns.
bool ReadPlacesByColumns(const QString& line, TMeasuredFunction& function) {
  int number = 0;
  return IntAt(line, 0, 5, function.KindNumber) && IntAt(line, 5, 10, number) &&
         IntAt(line, 15, 5, number) && IntAt(line, 20, 10, function.LoadCase) &&
         DegreeAt(line, 31, function.Response) && DegreeAt(line, 56, function.Reference);
}

/// The same by the blanks between: the entities may be missing.
bool ReadPlacesByBlanks(const QString& line, TMeasuredFunction& function) {
  const QStringList words = line.split(' ', Qt::SkipEmptyParts);
  const bool named = words.size() == 10;
  if (!named && words.size() != 8) return false;
  bool good = true;
  const auto intAt = [&](qsizetype at) {
    bool isInt = false;
    const int value = words[at].toInt(&isInt);
    good &= isInt;
    return value;
  };
  const auto degreeAt = [&](qsizetype at) {
    const QString entity = named ? words[at++] : QString();
    return TDegreeOfFreedom{entity, intAt(at), intAt(at + 1)};
  };
  function.KindNumber = intAt(0);
  function.LoadCase = intAt(3);
  function.Response = degreeAt(4);
  function.Reference = degreeAt(named ? 7 : 6);
  return good;
}

void ReadPlaces(TUniversalReading& reading, TMeasuredFunction& function) {
  if (!reading.Next()) return;
  const QString line = ColumnsOf(reading.Line());
  if (!ReadPlacesByColumns(line, function) && !ReadPlacesByBlanks(line, function)) {
    function.Response = function.Reference = {};
    reading.Warn(QStringLiteral("the line does not say where the function was measured"));
  }
  const int kind = function.KindNumber;
  const bool known = (kind >= 1 && kind <= 6) || kind == 9 || kind == 12;
  function.Kind = known ? static_cast<TFunctionKind>(kind) : TFunctionKind::Unknown;
}

/// "I10,3I5,2(1X,A20)".
void ReadAxis(TUniversalReading& reading, TFunctionAxis& axis) {
  if (!reading.Next()) return;
  const QString line = ColumnsOf(reading.Line());
  if (!IntAt(line, 0, 10, axis.Quantity) || !IntAt(line, 10, 5, axis.LengthExponent) ||
      !IntAt(line, 15, 5, axis.ForceExponent) || !IntAt(line, 20, 5, axis.TemperatureExponent)) {
    axis = {};
    reading.Warn(QStringLiteral("the line does not say what an axis of the function measures"));
    return;
  }
  axis.Label = TextAt(line, 26, 20);
  axis.Unit = TextAt(line, 47, 20);
}

/// How the values of a function are stored.
struct TValueForm {
  bool IsComplex = false;
  bool IsDouble = false;
  bool IsEven = false;
  std::size_t Count = 0;  ///< as the file announces it

  std::size_t Parts() const { return IsComplex ? 2 : 1; }
  /// Numbers per value, the abscissa included.
  std::size_t Numbers() const { return Parts() + (IsEven ? 0 : 1); }
  std::size_t PartBytes() const { return IsDouble ? 8 : 4; }
};

/// "3I10,3E13.5"; false if the values cannot be read.
bool ReadForm(TUniversalReading& reading, TMeasuredFunction& function, TValueForm& form) {
  std::array<std::int32_t, 3> ints = {};
  std::array<double, 3> reals = {};
  if (!reading.Next() ||
      ReadColumns(reading.Line(), {.Ints = 3, .Reals = 3}, ints.data(), reals.data()) < 3) {
    reading.LeaveOut(QStringLiteral("it does not say how its values are stored"));
    return false;
  }
  const std::int32_t type = ints[0];
  if (type != 2 && type != 4 && type != 5 && type != 6) {
    reading.LeaveOut(QStringLiteral("its data type %1 is not known").arg(type));
    return false;
  }
  function.IsComplex = type > 4;
  function.First = reals[0];
  function.Step = reals[1];
  form = {.IsComplex = type > 4,
          .IsDouble = type == 4 || type == 6,
          .IsEven = ints[2] != 0,
          .Count = static_cast<std::size_t>(std::max(ints[1], 0))};
  return true;
}

bool ReadFunctionHead(TUniversalReading& reading, TMeasuredFunction& function, TValueForm& form) {
  for (QString& line : function.Lines) line = reading.ReadText();
  ReadPlaces(reading, function);
  if (!ReadForm(reading, function, form)) return false;
  ReadAxis(reading, function.Abscissa);
  ReadAxis(reading, function.Ordinate);
  ReadAxis(reading, function.Denominator);
  TFunctionAxis unused;  // of waterfalls
  ReadAxis(reading, unused);
  return true;
}

/// Takes numbers as the text gives them.
class TValueTaker {
 public:
  TValueTaker(const TValueForm& form, TMeasuredFunction& function)
      : form_(form), function_(function) {}

  void Reserve(std::size_t count) {
    if (!form_.IsEven) function_.Abscissas.reserve(count);
    if (form_.IsDouble) {
      function_.Double.reserve(count * form_.Parts());
    } else {
      function_.Single.reserve(count * form_.Parts());
    }
  }

  void Take(double value) {
    const std::size_t at = taken_++ % form_.Numbers();
    if (!form_.IsEven && at == 0) {
      function_.Abscissas.push_back(value);
    } else if (form_.IsDouble) {
      function_.Double.push_back(value);
    } else {
      function_.Single.push_back(static_cast<float>(value));
    }
  }

  /// Drops what is left of a value that is not whole; returns the number of values.
  std::size_t Finish() {
    const std::size_t count = taken_ / form_.Numbers();
    if (!form_.IsEven) function_.Abscissas.resize(count);
    if (form_.IsDouble) {
      function_.Double.resize(count * form_.Parts());
    } else {
      function_.Single.resize(count * form_.Parts());
    }
    return count;
  }

 private:
  const TValueForm& form_;
  TMeasuredFunction& function_;
  std::size_t taken_ = 0;
};

void ReadTextValues(TUniversalReading& reading, const TValueForm& form,
                    TMeasuredFunction& function) {
  constexpr std::size_t kNarrowest = 13;
  // Abscissas of doubles have narrower columns than the values, with blanks between.
  const int width = !form.IsDouble ? 13 : form.IsEven ? 20 : kAnyWidth;
  const std::size_t perLine = !form.IsDouble ? 6 : form.IsEven || !form.IsComplex ? 4 : 3;
  const std::size_t all = form.Count * form.Numbers();
  TValueTaker taker(form, function);
  taker.Reserve(std::min(form.Count, reading.Rest().size() / (kNarrowest * form.Numbers()) + 1));
  std::array<double, 6> reals;
  std::size_t count = 0;
  while (count < all && reading.Next()) {
    const int wanted = static_cast<int>(std::min(perLine, all - count));
    const int found =
        ReadColumns(reading.Line(), {.Reals = wanted, .RealWidth = width}, nullptr, reals.data());
    if (found == 0) reading.LeaveOutStray(QStringLiteral("value"));
    for (int i = 0; i < found; ++i) taker.Take(reals[static_cast<std::size_t>(i)]);
    count += static_cast<std::size_t>(found);
  }
  const std::size_t whole = taker.Finish();
  if (whole < form.Count) {
    reading.WarnOfSet(
        QStringLiteral("it announces %1 values and holds %2").arg(form.Count).arg(whole));
  } else if (reading.Next() && !Trimmed(reading.Line()).empty()) {
    reading.LeaveOutLine(QStringLiteral("it goes on behind the %1 that it announces")
                             .arg(Counted(form.Count, QStringLiteral("value"))));
  }
}

/// "I6,A1,I6,I6,I12,I12,I6,I6,I12,I12" behind the type: how the bytes are to be read.
struct TBinaryForm {
  std::int32_t ByteOrder = 0;  ///< 1 little, 2 big
  std::int32_t FloatForm = 0;  ///< 2 IEEE
  std::int32_t TextLines = 0;
  std::int32_t ByteCount = -1;

  bool IsTurned() const { return (ByteOrder == 2) != (std::endian::native == std::endian::big); }
};

TBinaryForm ReadBinaryForm(std::string_view line) {
  line = Trimmed(line);
  std::array<std::int32_t, 4> ints = {0, 0, 0, -1};
  ReadColumns(line.substr(std::min<std::size_t>(line.size(), 3)),
              {.Ints = 4, .IntWidth = kAnyWidth}, ints.data(), nullptr);
  return {ints[0], ints[1], ints[2], ints[3]};
}

/// Whether the mark that ends the data set stands there, perhaps on a line of its own.
bool IsMarkAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kLongestLine = 200;
  if (at >= text.size()) return false;
  std::string_view line = text.substr(at, kLongestLine);
  if (line.front() == '\r') line.remove_prefix(1);
  if (!line.empty() && line.front() == '\n') line.remove_prefix(1);
  return IsMark(line.substr(0, line.find_first_of("\r\n")));
}

/// Where the line that ends the data set begins; the end of the text if there is none.
std::size_t FindMark(std::string_view text) {
  std::size_t at = 0;
  while ((at = text.find("    -1", at)) != text.npos && !IsMarkAt(text, at)) ++at;
  return std::min(at, text.size());
}

/// A transfer as text inserts a carriage return before each line feed.
std::size_t CountInserted(std::string_view bytes) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = bytes.find("\r\n", at)) != bytes.npos; ++at) ++count;
  return count;
}

std::string WithoutInserted(std::string_view bytes) {
  std::string original;
  original.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes.substr(i, 2) != "\r\n") original += bytes[i];
  }
  return original;
}

/// How many bytes of values stand before the mark: as announced if the mark is there, else up to
/// wherever it is.
std::size_t FindBinaryEnd(TUniversalReading& reading, std::int32_t announced) {
  const std::string_view rest = reading.Rest();
  const auto count = static_cast<std::size_t>(std::max(announced, 0));
  if (announced >= 0 && (IsMarkAt(rest, count) || count == rest.size())) return count;
  return FindMark(rest);
}

template <class TBits>
TBits Turned(TBits bits) {
  TBits turned = 0;
  for (std::size_t i = 0; i < sizeof bits; ++i) {
    turned = static_cast<TBits>(turned << 8) | ((bits >> (8 * i)) & 0xff);
  }
  return turned;
}

template <class T>
T Turn(T value) {
  using TBits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
  return std::bit_cast<T>(Turned(std::bit_cast<TBits>(value)));
}

template <class T>
T NumberAt(const char* bytes, bool turned) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return turned ? Turn(value) : value;
}

/// Fills a vector with the numbers of evenly spaced values, block by block, so that its memory is
/// written but once.
template <class T>
void TakeEven(std::string_view bytes, bool turned, std::vector<T>& values) {
  std::array<T, 2048> block = {};
  values.reserve(bytes.size() / sizeof(T));
  while (!bytes.empty()) {
    const std::size_t count = std::min(block.size(), bytes.size() / sizeof(T));
    std::memcpy(block.data(), bytes.data(), count * sizeof(T));
    if (turned) std::transform(block.begin(), block.end(), block.begin(), Turn<T>);
    values.insert(values.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    bytes.remove_prefix(count * sizeof(T));
  }
}

/// An abscissa of four or eight bytes stands before each value.
template <class T>
void TakeUneven(std::string_view bytes, bool turned, std::size_t parts, std::size_t abscissaBytes,
                TMeasuredFunction& function, std::vector<T>& values) {
  const std::size_t step = abscissaBytes + parts * sizeof(T);
  const std::size_t count = bytes.size() / step;
  function.Abscissas.reserve(count);
  values.reserve(count * parts);
  for (std::size_t at = 0; at + step <= bytes.size(); at += step) {
    const char* const place = bytes.data() + at;
    function.Abscissas.push_back(abscissaBytes == 8 ? NumberAt<double>(place, turned)
                                                    : NumberAt<float>(place, turned));
    for (std::size_t i = 0; i < parts; ++i) {
      values.push_back(NumberAt<T>(place + abscissaBytes + i * sizeof(T), turned));
    }
  }
}

template <class T>
void TakeBinary(std::string_view bytes, bool turned, const TValueForm& form,
                std::size_t abscissaBytes, TMeasuredFunction& function, std::vector<T>& values) {
  if (form.IsEven) {
    TakeEven(bytes, turned, values);
  } else {
    TakeUneven(bytes, turned, form.Parts(), abscissaBytes, function, values);
  }
}

/// A line end may stand behind binary values.
constexpr std::size_t kLineEnd = 2;

/// Takes out what a transfer as text has inserted, if the length shows that it has. `original`
/// holds the result.
std::string_view Repaired(TUniversalReading& reading, std::string_view bytes, std::size_t announced,
                          std::string& original) {
  if (announced == 0 || bytes.size() <= announced) return bytes;
  const std::size_t inserted = CountInserted(bytes);
  const std::size_t least = announced + inserted;
  if (inserted == 0 || bytes.size() < least || bytes.size() - least > kLineEnd) return bytes;
  reading.WarnOfSet(QStringLiteral("%1 that a transfer has inserted were taken out")
                        .arg(Counted(inserted, QStringLiteral("carriage return"))));
  return original = WithoutInserted(bytes);
}

/// Takes as many whole values as there are, up to those announced.
void TakeValues(TUniversalReading& reading, std::string_view bytes, bool turned,
                const TValueForm& form, TMeasuredFunction& function) {
  // Abscissas of doubles are single in the files of some writers, as they are in text.
  const std::size_t narrow = form.Count * (4 + form.Parts() * form.PartBytes());
  const bool isNarrow = bytes.size() >= narrow && bytes.size() - narrow <= kLineEnd;
  const std::size_t abscissaBytes = isNarrow ? 4 : form.PartBytes();
  const std::size_t each = form.Parts() * form.PartBytes() + (form.IsEven ? 0 : abscissaBytes);
  const std::size_t count = std::min(form.Count, bytes.size() / each);
  if (count < form.Count) {
    reading.WarnOfSet(
        QStringLiteral("it announces %1 values and holds %2").arg(form.Count).arg(count));
  }
  bytes = bytes.substr(0, count * each);
  if (form.IsDouble) {
    TakeBinary(bytes, turned, form, abscissaBytes, function, function.Double);
  } else {
    TakeBinary(bytes, turned, form, abscissaBytes, function, function.Single);
  }
}

/// Reads the values, and goes on at the mark behind them.
void ReadBinaryValues(TUniversalReading& reading, const TBinaryForm& binary, const TValueForm& form,
                      TMeasuredFunction& function) {
  const std::size_t announced = form.Count * form.Numbers() * form.PartBytes();
  const std::size_t length = FindBinaryEnd(reading, binary.ByteCount);
  const std::string_view bytes = reading.Rest().substr(0, length);
  std::string original;
  const std::string_view repaired = Repaired(reading, bytes, announced, original);
  if (repaired.size() == length && binary.ByteCount != static_cast<qint64>(length)) {
    reading.WarnOfSet(
        QStringLiteral("it announces %1 bytes and holds %2").arg(binary.ByteCount).arg(length));
  }
  TakeValues(reading, repaired, binary.IsTurned(), form, function);
  reading.Skip(length);
}

bool IsSaid(const QString& text) { return !text.isEmpty() && text != "NONE"; }

/// "12 +Z"; empty if nothing is known.
QString Described(const TDegreeOfFreedom& degree) {
  static const char* const kAxes[] = {"", "X", "Y", "Z", "RX", "RY", "RZ"};
  QStringList words;
  if (IsSaid(degree.Entity)) words << degree.Entity;
  if (degree.Node != 0) words << QString::number(degree.Node);
  const int axis = std::abs(degree.Direction);
  if (axis > 0 && axis <= 6) {
    words << (degree.Direction < 0 ? '-' : '+') + QLatin1StringView(kAxes[axis]);
  }
  return words.join(' ');
}

QString Described(TFunctionKind kind) {
  switch (kind) {
    case TFunctionKind::TimeResponse:
      return QStringLiteral("time response");
    case TFunctionKind::AutoSpectrum:
      return QStringLiteral("auto spectrum");
    case TFunctionKind::CrossSpectrum:
      return QStringLiteral("cross spectrum");
    case TFunctionKind::FrequencyResponse:
      return QStringLiteral("frequency response");
    case TFunctionKind::Transmissibility:
      return QStringLiteral("transmissibility");
    case TFunctionKind::Coherence:
      return QStringLiteral("coherence");
    case TFunctionKind::PowerSpectralDensity:
      return QStringLiteral("power spectral density");
    case TFunctionKind::Spectrum:
      return QStringLiteral("spectrum");
    case TFunctionKind::Unknown:
      break;
  }
  return QStringLiteral("of a kind that is not known");
}

/// "function 12 +Z / 3 +X, frequency response, m/s2/N, 1601 points".
QString Described(const TMeasuredFunction& function) {
  QString place = Described(function.Response);
  const QString reference = Described(function.Reference);
  if (!reference.isEmpty()) place += QStringLiteral(" / ") + reference;
  QString unit = IsSaid(function.Ordinate.Unit) ? function.Ordinate.Unit : QString();
  if (IsSaid(function.Denominator.Unit)) unit += '/' + function.Denominator.Unit;
  QStringList parts{QStringLiteral("function ") + place, Described(function.Kind)};
  if (!unit.isEmpty()) parts << unit;
  parts << Counted(function.Count(), QStringLiteral("point"));
  return parts.join(QStringLiteral(", "));
}

void AddFunction(TUniversalReading& reading, TMeasuredFunction function) {
  if (function.Count() == 0) return reading.LeaveOut(QStringLiteral("it has no values"));
  if (reading.Job.Functions.size() == kMostDataSets || !reading.HasRoom()) {
    return reading.LeaveOut(QStringLiteral("there are too many"));
  }
  reading.Use(Described(function));
  reading.Job.Functions.push_back(std::move(function));
}

}  // namespace

void ReadFunction58(TUniversalReading& reading) {
  TMeasuredFunction function;
  TValueForm form;
  if (!ReadFunctionHead(reading, function, form)) return;
  ReadTextValues(reading, form, function);
  AddFunction(reading, std::move(function));
}

void ReadFunction58b(TUniversalReading& reading) {
  const TBinaryForm binary = ReadBinaryForm(reading.Line());
  TMeasuredFunction function;
  TValueForm form;
  if (!ReadFunctionHead(reading, function, form)) return;
  if (binary.FloatForm == 1 || binary.FloatForm == 3) {
    reading.LeaveOut(binary.FloatForm == 1
                         ? QStringLiteral("its values are in VAX floating point")
                         : QStringLiteral("its values are in hexadecimal floating point"));
    return reading.Skip(FindBinaryEnd(reading, binary.ByteCount));
  }
  ReadBinaryValues(reading, binary, form, function);
  AddFunction(reading, std::move(function));
}
