#pragma once

#include "device/blockReader.h"
#include "device/downloadDecoder.h"

#include <array>

/// The text of a value that mostly stays the same from point to point; equal neighbours share it.
template <typename Value>
class RepeatingText {
 public:
  template <typename Format>
  const QString& text(const Value& value, Format format) {
    if (text_.isNull() || value != value_) {
      value_ = value;
      text_ = format(value);
    }
    return text_;
  }

 private:
  Value value_{};
  QString text_;
};

/// Decodes the track point lines of a download, after its runs are known.
///
/// The header of a track names its run by an index into the runs of this batch. The watch counts
/// its own runs, so when runs that are stored already were skipped, the points of a later run get
/// the activity number of another one; the key of a point still comes from its own line.
class PointDecoder {
 public:
  /// `result` must outlive the decoder; its runs are read, points go into it. `runKey` is the run
  /// key in hand, `currentRun` the run that points before any header belong to (null: none).
  PointDecoder(DecodedDownload& result, const QString& runKey, const QString& currentRun);

  /// Takes the next line.
  void take(const Block& line);

 private:
  void takeHeader(const Block& line);
  void takePoint(const Block& line);
  void setCurrentRun(const QString& key);

  DecodedDownload& result_;
  QString runKey_;
  bool hasRun_ = false;
  qint64 number_ = 0;  // activity number of the current run
  RepeatingText<quint64> longitudeSign_;
  RepeatingText<quint64> latitudeSign_;
  RepeatingText<quint64> heartRate_;
  RepeatingText<quint64> altitude_;
  RepeatingText<std::array<quint64, 3>> timeZone_;
};
