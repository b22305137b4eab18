#include "app/singleInstance.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QThread>

#include <sys/socket.h>
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

// Names without a file have no permissions: anybody may connect, and anybody may listen.
bool isOfThisUser(const QLocalSocket& socket) {
  ucred other{};
  socklen_t size = sizeof other;
  return getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &other,
                    &size) == 0 &&
         other.uid == getuid();
}

}  // namespace

SingleInstance::SingleInstance(const QString& folder)
    : lock_(folder), serverName_(serverNameFor(folder)) {
  // The system takes the name back however the process ends; a file would stay.
  server_.setSocketOptions(QLocalServer::AbstractNamespaceOption);
  connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::answer);
}

SingleInstance::Claim SingleInstance::claim() {
  // The other process may have the lock and not listen yet, or be about to end.
  constexpr int tries = 20;
  constexpr int waitMs = 100;
  for (int i = 0; i < tries; ++i) {
    const DatabaseLock::State state = lock_.take();
    if (state != DatabaseLock::State::taken) {
      listen();
      return state == DatabaseLock::State::held ? Claim::granted : Claim::unprotected;
    }
    const Answer answer = askOther();
    if (answer != Answer::nobody) {
      return answer == Answer::given ? Claim::passedOn : Claim::unanswered;
    }
    QThread::msleep(waitMs);
  }
  return Claim::unanswered;
}

void SingleInstance::listen() {
  if (!server_.listen(serverName_)) {
    qCWarning(lcInstance).noquote() << "cannot listen for further starts:" << server_.errorString();
  }
}

// That somebody connects says it all. The answer shows that this process is alive: the system alone
// connects to one that hangs.
void SingleInstance::answer() {
  QLocalSocket* socket = server_.nextPendingConnection();
  connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  const bool isOwn = isOfThisUser(*socket);
  if (isOwn) {
    socket->write("\n");
  }
  socket->disconnectFromServer();
  if (isOwn) {
    Q_EMIT raiseRequested();
  }
}

SingleInstance::Answer SingleInstance::askOther() const {
  constexpr int waitMs = 100;
  constexpr int answerMs = 5000;
  QLocalSocket socket;
  socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
  socket.connectToServer(serverName_);
  if (!socket.waitForConnected(waitMs) || !isOfThisUser(socket)) {
    return Answer::nobody;
  }
  if (socket.waitForReadyRead(answerMs)) {
    return Answer::given;
  }
  // It ended while it was asked, or it hangs.
  return socket.state() == QLocalSocket::UnconnectedState ? Answer::nobody : Answer::none;
}
