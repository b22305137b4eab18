#pragma once

#include "data/dataControl.h"

#include <QCommandLineParser>
#include <QString>

// Options and arguments that several commands share. Everything throws UsageError on what makes no
// sense, and Failure where the store has no answer.
namespace options {

/// --from and --to, days "yyyy-MM-dd".
void addPeriod(QCommandLineParser& parser);

/// First and last day, both included; an empty one leaves that end open.
struct Period {
  QString from;
  QString to;
};

/// True for "yyyy-MM-dd".
bool isDay(const QString& text);
/// What --from and --to say.
Period periodOf(const QCommandLineParser& parser);
/// The runs of the period, newest first in store.runKeyArray.
RunDictionary runsOf(const Period& period, dataControl& store);

/// Throws Failure when a question to the store could not be answered.
void requireAnswer(const dataControl& store);

/// The activity number that a text gives, from 1 to 2^31 - 1.
qint32 runNumber(const QString& argument);

/// The stored run with that number; throws Failure when there is none.
runData storedRun(dataControl& store, qint32 number);

/// Refuses positional arguments.
void noArguments(const QCommandLineParser& parser);

/// The only positional argument.
QString singleArgument(const QCommandLineParser& parser, const QString& missing);

}  // namespace options
