#pragma once

#include "device/blockReader.h"
#include "device/downloadDecoder.h"

#include <QDateTime>

#include <optional>

/// Decodes the run and lap lines of a download, in the order in which they came.
///
/// A run has no line that ends it: it is completed by the header of the next run, from the line
/// just before that header, or by the last line of all. So a run without any lap at the end of a
/// download never appears.
class RunDecoder {
 public:
  /// `context` and `result` must outlive the decoder; runs and laps go into `result`.
  RunDecoder(const DecodeContext& context, DecodedDownload& result);

  /// Takes the next line. `isLast` marks the last line of the download that belongs to a run.
  void take(const Block& line, bool isLast);

  /// The run key in hand: that of the last header.
  QString runKey;
  /// Key of the run that the last completion brought, when a header caused it; null otherwise.
  QString completedAtHeader;

 private:
  /// What a run's header tells; the rest of the run comes from its last lap.
  struct Header {
    QString startTime;
    QDateTime start;  // invalid when the header holds no existing date and time
    qint32 laps = 0;
    QString maxSpeed;
    QString avgSpeed;
    QString maxHR;
    QString avgHR;
    QString minHR;
    qint64 trackPoints = 0;
    QString name;
    QString ascent;
    QString descent;
  };
  /// Cumulative counters of the lap before, and the lap's duration in parts.
  struct Counters {
    quint64 distance = 0;
    quint64 calories = 0;
    quint64 hrSum = 0;
    quint64 hrSamples = 0;
    qint64 time = 0;  // seconds
    bool hasLap = false;
  };
  struct Duration {
    qint64 hours = 0;
    qint64 minutes = 0;
    qint64 seconds = 0;
    qint64 hundredths = 0;
  };

  void takeHeader(const Block& line);
  void takeLap(const Block& line, bool isLast);
  void complete(const Block& line, const QString& key);
  Header readHeader(const Block& line) const;
  Duration lapDuration(const Block& line);
  QString lapAverageHR(const Block& line);
  QString lapTimeZone(const Block& line, const Duration& duration);

  const DecodeContext& context_;
  DecodedDownload& result_;
  bool altitudeRecorded_;
  std::optional<Header> open_;     // the run whose laps are coming in; none while laps are skipped
  std::optional<Block> previous_;  // the line before
  Counters before_;
};
