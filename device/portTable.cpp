#include "device/portTable.h"

#include <QFile>

#include <sys/stat.h>

PortTable& PortTable::instance() {
  static auto* table = new PortTable;  // outlives detached threads that still use it at exit
  return *table;
}

bool PortTable::claim(const QString& node, const std::shared_ptr<PortHolder>& holder,
                      const std::shared_ptr<WatchSession>& session) {
  struct stat status {};
  if (::stat(QFile::encodeName(node).constData(), &status) != 0) {
    return true;  // nobody has it: opening it will fail and say why
  }
  const std::lock_guard lock(mutex_);
  Use& use = uses_[status.st_rdev];
  const std::shared_ptr<PortHolder> user = use.holder.lock();
  const std::shared_ptr<WatchSession> conversation = use.session.lock();
  if (user != holder && !(user && user->lineLost())) {
    if (conversation && conversation != session) {
      return false;
    }
    if (user && user->isConversing()) {
      return false;
    }
  }
  if (user && user != holder) {
    user->giveWay();
  }
  use = {holder, session};
  return true;
}

void PortTable::beginCommand(std::atomic<int>& commands) {
  const std::lock_guard lock(mutex_);
  ++commands;
}
