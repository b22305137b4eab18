// A stranger's database: the bytes are a file where they begin as one does, else statements that
// make one. Whatever lies there, the store answers, writes and ends.

#include "data/dataControl.h"
#include "tests/data/storeFolder.h"
#include "tests/fuzz/fuzz.h"

namespace {

/// Runs the statements, but not for ever and on no other file.
void make(const QString& database, const QByteArray& statements) {
  const Connection made = connectTo(database);
  sqlite3_limit(made.get(), SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_limit(made.get(), SQLITE_LIMIT_LENGTH, 100000);
  int steps = 0;
  sqlite3_progress_handler(
      made.get(), 1000, [](void* count) { return ++*static_cast<int*>(count) > 50 ? 1 : 0; },
      &steps);
  sqlite3_exec(made.get(), statements.constData(), nullptr, nullptr, nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet();
  static const StoreFolder folder;
  for (const char* name : {"", "-journal", "-wal", "-shm"}) {
    QFile::remove(folder.database + name);
  }
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  if (bytes.startsWith("SQLite format 3")) {
    writeBytes(folder.database, bytes);
  } else {
    make(folder.database, bytes);
  }
  {
    dataControl store;
    const RunDictionary runs = store.getRunData("all", {});
    require(store.runKeyArray.size() >= runs.size());
    for (const runData& run : runs) {
      store.getLapData(qint32(run.T_Cnumber));
      store.getTrackData(qint32(run.T_Cnumber));
      store.GetTrackName(run.T_Cnumber);
    }
    store.getRunDataTF("2014-05-01");
    require(store.getMaxCnumber("T_RunData") >= 0);
  }
  Batch batch;
  batch.add(1, "name", 1, 1);
  const qint32 stored = batch.store();
  require(stored == 1 || stored == -1);
  require(stored == -1 || dataControl().checkRecord("2014-05-01 07:30:05") != 0);
  dataControl().deleteOneData(1);
  dataControl().deleteAllData();
  return 0;
}
