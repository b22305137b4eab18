#include "app/singleInstance.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
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

constexpr char activationToken[] = "XDG_ACTIVATION_TOKEN";

}  // namespace

SingleInstance::SingleInstance(const QString& folder)
    : lockPath_(folder + QStringLiteral("gpsData.lock")), serverName_(serverNameFor(folder)) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::readRequest);
}

SingleInstance::~SingleInstance() {
  if (lockFile_ >= 0) {
    close(lockFile_);
  }
}

bool SingleInstance::claim() {
  if (!lock()) {
    askOther();
    return false;
  }
  listen();
  return true;
}

bool SingleInstance::lock() {
  const QByteArray path = QFile::encodeName(lockPath_);
  lockFile_ = open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (lockFile_ < 0 && errno == EACCES) {
    // Made by another user, perhaps. The lock needs no right to write.
    lockFile_ = open(path.constData(), O_RDONLY | O_CLOEXEC);
  }
  if (lockFile_ < 0) {
    qCWarning(lcInstance, "no lock at %s: %s", qUtf8Printable(lockPath_),
              qUtf8Printable(qt_error_string(errno)));
    return true;
  }
  return flock(lockFile_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void SingleInstance::listen() {
  QLocalServer::removeServer(serverName_);  // left over by a process that was killed
  if (!server_.listen(serverName_)) {
    qCWarning(lcInstance).noquote() << "cannot listen for further starts:" << server_.errorString();
  }
}

void SingleInstance::askOther() const {
  // The other process may have the lock and not listen yet.
  constexpr int tries = 20;
  constexpr int waitMs = 100;
  for (int i = 0; i < tries; ++i) {
    QLocalSocket socket;
    socket.connectToServer(serverName_);
    if (socket.waitForConnected(waitMs)) {
      socket.write(qgetenv(activationToken) + '\n');
      socket.waitForBytesWritten(waitMs);
      socket.disconnectFromServer();
      return;
    }
    QThread::msleep(waitMs);
  }
  qCWarning(lcInstance, "another process works on the database but does not answer");
}

void SingleInstance::readRequest() {
  QLocalSocket* socket = server_.nextPendingConnection();
  connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
    if (!socket->canReadLine()) {
      return;
    }
    const QByteArray token = socket->readLine(4096).trimmed();
    if (!token.isEmpty()) {
      qputenv(activationToken, token);
    }
    Q_EMIT raiseRequested();
  });
}
