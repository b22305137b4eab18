#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <initializer_list>

/// The type of a received line, as its last two characters tell it.
enum class LineKind {
  run,       ///< "FD": a run's header or one of its laps.
  point,     ///< "FA": the header of a track or one of its points.
  other,     ///< Anything else.
  tooShort,  ///< Does not hold the common frame, whatever its end.
};

/// One received line without its blanks, seen as consecutive two-character pieces: piece k is the
/// text of byte k. Takes any text; what a line lacks reads as not hexadecimal.
class Block {
 public:
  /// Pieces a line must have at least: the payload (0-31), the sequence number (32-33) and the run
  /// key (34). The line type behind them is the last two characters, wherever they stand.
  static constexpr int pieceCount = 35;

  /// Tells where a line belongs without reading all of it.
  static LineKind kind(QStringView line);

  explicit Block(QStringView line);

  /// The pieces from `first` on, as they stand.
  QStringView text(int first, int count = 1) const;
  /// The pieces joined in the given order and read as one hexadecimal number, up to the first
  /// character that is no hexadecimal digit. At most eight pieces.
  quint64 value(std::initializer_list<int> pieces) const;
  /// The same for single digits; digit 2k is the first one of piece k.
  quint64 digits(int first, int count) const;
  /// True when the pieces are decimal digits only.
  bool isDecimal(int first, int count) const;

  /// True for the first line of a run or of a track, which carries the sequence number "0000".
  bool isHeader() const { return text(32, 2) == u"0000"; }
  /// Number of the lap within its run, or of the point within its track, from 1.
  qint32 sequence() const { return static_cast<qint32>(value({32, 33})); }
  /// Names the run that the line belongs to; the header of a track has an index instead.
  QStringView runKey() const { return text(34); }

 private:
  static constexpr int digitCount = 2 * pieceCount;
  std::array<char16_t, digitCount> characters_{};
  std::array<quint8, digitCount> values_{};  // of the digits; noDigit for other characters
};
