#pragma once

#include "cli/exitCode.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QString>
#include <QStringList>

/// Where a command's words go: results to standard output, messages and progress to standard error.
/// Texts from the database are shown without control characters, which a terminal would obey.
class Output {
 public:
  /// One line of a result; the fields are separated by tabs.
  void row(const QStringList& fields);
  /// One line of a result as comma-separated values (https://www.rfc-editor.org/rfc/rfc4180), with
  /// quotes where a field needs them.
  void csvRow(const QStringList& fields);
  void json(const QJsonDocument& document);
  /// Bytes as they are.
  void bytes(const QByteArray& bytes);

  /// A line for the user.
  void message(const QString& line);
  /// A line that the next one replaces; only where standard error is a terminal.
  void progress(const QString& line);

  /// `code`, or `failed` with a message when the results could not be written.
  ExitCode finish(ExitCode code);

 private:
  void endProgress();

  int writeError_ = 0;  ///< errno of the first write to standard output that failed.
  bool progressShown_ = false;
};
