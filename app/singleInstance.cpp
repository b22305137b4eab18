#include "app/singleInstance.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QThread>

#include <unistd.h>

Q_LOGGING_CATEGORY(lcInstance, "trakko.instance", QtInfoMsg)

namespace {

// Two names of one folder must give one name of the server.
QString serverNameFor(const QString& folder) {
  const QByteArray canonical = QFileInfo(folder).canonicalFilePath().toUtf8();
  const QByteArray hash = QCryptographicHash::hash(canonical, QCryptographicHash::Sha256);
  return QStringLiteral("com.morvel.Trakko-%1-%2")
      .arg(getuid())
      .arg(QString::fromLatin1(hash.toHex().left(16)));
}

}  // namespace

SingleInstance::SingleInstance(const QString& folder)
    : lock_(folder), serverName_(serverNameFor(folder)) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::answer);
}

SingleInstance::Claim SingleInstance::claim() {
  const DatabaseLock::State state = lock_.take();
  if (state == DatabaseLock::State::taken) {
    return askOther() ? Claim::passedOn : Claim::unanswered;
  }
  listen();
  return state == DatabaseLock::State::held ? Claim::granted : Claim::unprotected;
}

void SingleInstance::listen() {
  QLocalServer::removeServer(serverName_);  // left over by a process that was killed
  if (!server_.listen(serverName_)) {
    qCWarning(lcInstance).noquote() << "cannot listen for further starts:" << server_.errorString();
  }
}

// That somebody connects says it all. The answer shows that this process is alive: the system alone
// connects to one that hangs.
void SingleInstance::answer() {
  QLocalSocket* socket = server_.nextPendingConnection();
  connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  socket->write("\n");
  socket->disconnectFromServer();
  Q_EMIT raiseRequested();
}

bool SingleInstance::askOther() const {
  // The other process may have the lock and not listen yet.
  constexpr int tries = 20;
  constexpr int waitMs = 100;
  constexpr int answerMs = 5000;
  for (int i = 0; i < tries; ++i) {
    QLocalSocket socket;
    socket.connectToServer(serverName_);
    if (socket.waitForConnected(waitMs)) {
      return socket.waitForReadyRead(answerMs);
    }
    QThread::msleep(waitMs);
  }
  return false;
}
