#pragma once

#include "data/databaseLock.h"

#include <QLocalServer>
#include <QObject>
#include <QString>

/// Keeps a second process of the program away from a database. The process that holds the lock
/// listens; every later one asks it to show its window and ends.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  enum class Claim {
    granted,      ///< This process may work on the database.
    unprotected,  ///< It may, but nothing keeps a second one away.
    passedOn,     ///< Another process works on it and has been asked to show its window.
    unanswered,   ///< Another process works on it and does not answer.
  };

  /// `folder` is the one that holds the database, with its trailing "/".
  explicit SingleInstance(const QString& folder);

  /// Waits up to nine seconds for the answer of another process.
  Claim claim();

 Q_SIGNALS:
  /// Another start asks for this process's window.
  void raiseRequested();

 private:
  enum class Answer { given, none, nobody };

  void listen();
  void answer();
  Answer askOther() const;

  DatabaseLock lock_;
  QString serverName_;
  QLocalServer server_;
};
