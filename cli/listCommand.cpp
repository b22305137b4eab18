#include "cli/command.h"
#include "cli/options.h"
#include "cli/runFields.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

class ListCommand : public Command {
 public:
  QString name() const override { return u"list"_s; }
  QString summary() const override { return u"保存されているランを新しい順に一覧します。"_s; }
  Needs needs() const override { return Needs::toRead; }

  void declare(QCommandLineParser& parser) const override { options::addPeriod(parser); }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    options::noArguments(parser);
    const options::Period period = options::periodOf(parser);
    dataControl store;
    const RunDictionary runs = options::runsOf(period, store);
    options::requireAnswer(store);
    if (parser.isSet(u"json"_s)) {
      QJsonArray array;
      for (const QString& key : std::as_const(store.runKeyArray)) {
        array.append(runObject(runs.value(key)));
      }
      output.json(QJsonDocument(array));
      return ExitCode::done;
    }
    output.row(runTitles());
    for (const QString& key : std::as_const(store.runKeyArray)) {
      output.row(runRow(runs.value(key)));
    }
    return ExitCode::done;
  }
};

}  // namespace

std::unique_ptr<Command> makeListCommand() {
  return std::make_unique<ListCommand>();
}
