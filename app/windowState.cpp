#include "app/windowState.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

std::vector<int> numbersIn(const QJsonValue& value) {
  std::vector<int> numbers;
  for (const auto& number : value.toArray()) {
    numbers.push_back(number.toInt());
  }
  return numbers;
}

template <typename Numbers>
QJsonArray arrayOf(const Numbers& numbers) {
  QJsonArray array;
  for (const int number : numbers) {
    array.append(number);
  }
  return array;
}

/// A place that a window can have; null when the numbers are none.
QRect placeOf(const std::vector<int>& numbers) {
  constexpr int farthest = 100000;
  const bool isSane = numbers.size() == 4 && numbers[2] > 0 && numbers[3] > 0 &&
                      std::all_of(numbers.begin(), numbers.end(), [](int number) {
                        return number > -farthest && number < farthest;
                      });
  return isSane ? QRect(numbers[0], numbers[1], numbers[2], numbers[3]) : QRect();
}

}  // namespace

QString windowStatePath() {
  QString home = qEnvironmentVariable("XDG_STATE_HOME");
  if (!QDir::isAbsolutePath(home)) {
    home = QDir::homePath() + u"/.local/state"_s;  // a relative one is to be ignored
  }
  return home + u"/trakko/window.json"_s;
}

WindowState readWindowState(const QString& path) {
  constexpr qint64 longest = 100000;
  QFile file(path);
  // Only a plain file: opening a pipe would wait for its other end.
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
    return {};
  }
  const QJsonObject root = QJsonDocument::fromJson(file.read(longest)).object();
  WindowState state;
  state.place = placeOf(numbersIn(root.value(u"place"_s)));
  state.maximised = root.value(u"maximised"_s).toBool();
  const QJsonObject sizes = root.value(u"sizes"_s).toObject();
  for (auto entry = sizes.begin(); entry != sizes.end(); ++entry) {
    state.sizes.insert(entry.key(), numbersIn(entry.value()));
  }
  return state;
}

void writeWindowState(const QString& path, const WindowState& state) {
  QJsonObject sizes;
  for (auto entry = state.sizes.begin(); entry != state.sizes.end(); ++entry) {
    sizes.insert(entry.key(), arrayOf(entry.value()));
  }
  const QRect& place = state.place;
  const QJsonObject root{
      {u"place"_s, arrayOf(std::vector{place.x(), place.y(), place.width(), place.height()})},
      {u"maximised"_s, state.maximised},
      {u"sizes"_s, sizes}};
  QSaveFile file(path);
  if (QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)) {
    file.write(QJsonDocument(root).toJson());
    file.commit();
  }
}

QRect placeWithin(const QRect& wanted, const QRect& available) {
  QRect place(wanted.topLeft(), wanted.size().boundedTo(available.size()));
  place.moveLeft(std::clamp(place.left(), available.left(),
                            available.left() + available.width() - place.width()));
  place.moveTop(std::clamp(place.top(), available.top(),
                           available.top() + available.height() - place.height()));
  return place;
}
