#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

/// Keeps a second process away from a database: two writers would give the same activity number
/// twice.
///
/// The process that holds the lock listens; every later one asks it to show its window and ends.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  /// `folder` is the one that holds the database, with its trailing "/".
  explicit SingleInstance(const QString& folder);
  ~SingleInstance() override;
  Q_DISABLE_COPY_MOVE(SingleInstance)

  /// True when this process may work on the database: it holds the lock (the kernel gives it back
  /// when the process ends, however it ends), or no lock can be had in that folder at all.
  /// Otherwise the process that holds it has been asked to show its window.
  bool claim();

 Q_SIGNALS:
  /// Another start asks for this process's window.
  void raiseRequested();

 private:
  bool lock();
  void listen();
  void askOther() const;
  void readRequest();

  QString lockPath_;
  QString serverName_;
  int lockFile_ = -1;
  QLocalServer server_;
};
