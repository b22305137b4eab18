#include "cli/command.h"
#include "cli/options.h"
#include "device/udevRegistry.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 watchVendor = 4292;
constexpr quint16 watchProducts[] = {60000, 60001};

/// A watch as detection sees it: a bridge, and the serial port that belongs to it.
struct SeenWatch {
  quint16 product = 0;
  QString name;
  QString node;  ///< Null without a serial port.
};

QList<SeenWatch> seenWatches(const UsbRegistry& registry) {
  const QList<SerialClient> clients = registry.serialClients();
  QList<SeenWatch> seen;
  for (const quint16 product : watchProducts) {
    const auto devices = registry.devices(watchVendor, product);
    if (!devices) {
      throw Failure{ExitCode::failed, u"USBデバイスの一覧を取得できません。"_s};
    }
    for (const UsbDevice& device : *devices) {
      SeenWatch watch{product, device.name, {}};
      for (const SerialClient& client : clients) {
        if (samePhysicalDevice(device.path, client.path)) {
          watch.node = client.node;
        }
      }
      seen.append(watch);
    }
  }
  return seen;
}

bool isUsable(const QString& node) {
  return ::access(QFile::encodeName(node).constData(), R_OK | W_OK) == 0;
}

/// What keeps a watch from being used; null when nothing does.
QString obstacleOf(const SeenWatch& watch) {
  if (watch.node.isNull()) {
    return u"シリアルポートがありません。接続し直して下さい。"_s;
  }
  return isUsable(watch.node)
             ? QString()
             : u"%1 を使う権限がありません。ユーザーを dialout グループに追加して下さい。"_s.arg(
                   watch.node);
}

QJsonObject watchObject(const SeenWatch& watch) {
  const QString obstacle = obstacleOf(watch);
  return {{u"vendor"_s, watchVendor},
          {u"product"_s, watch.product},
          {u"name"_s, watch.name},
          {u"node"_s, watch.node.isNull() ? QJsonValue() : QJsonValue(watch.node)},
          {u"usable"_s, obstacle.isNull()},
          {u"obstacle"_s, obstacle.isNull() ? QJsonValue() : QJsonValue(obstacle)}};
}

class DevicesCommand : public Command {
 public:
  QString name() const override { return u"devices"_s; }
  QString summary() const override {
    return u"接続されている時計と、使えない場合はその原因を表示します。"_s;
  }
  Needs needs() const override { return Needs::nothing; }
  void declare(QCommandLineParser& /*parser*/) const override {}

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    options::noArguments(parser);
    const QList<SeenWatch> watches = seenWatches(UdevRegistry());
    if (parser.isSet(u"json"_s)) {
      QJsonArray array;
      for (const SeenWatch& watch : watches) {
        array.append(watchObject(watch));
      }
      output.json(QJsonDocument(array));
    }
    bool anyUsable = false;
    for (const SeenWatch& watch : watches) {
      const QString obstacle = obstacleOf(watch);
      anyUsable = anyUsable || obstacle.isNull();
      if (!parser.isSet(u"json"_s)) {
        output.row({u"%1:%2"_s.arg(watchVendor, 4, 16, QLatin1Char('0'))
                        .arg(watch.product, 4, 16, QLatin1Char('0')),
                    watch.name, watch.node.isNull() ? u"-"_s : watch.node,
                    obstacle.isNull() ? u"使用できます"_s : obstacle});
      }
    }
    if (watches.isEmpty()) {
      output.message(u"時計のUSBデバイスが見つかりません。ケーブルの接続を確認して下さい。"_s);
    }
    return anyUsable ? ExitCode::done : ExitCode::noWatch;
  }
};

}  // namespace

std::unique_ptr<Command> makeDevicesCommand() {
  return std::make_unique<DevicesCommand>();
}
