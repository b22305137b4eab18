#pragma once

#include <QString>
#include <QWebEngineProfile>

#include <memory>

/// Settles for the whole process how the engine runs: all pages live in one process, since a second
/// one costs memory, and nothing that asks no rules for requests sends datagrams: WebRTC does not,
/// and there is no WebTransport. Main thread, before the application object exists.
void setUpWebEngine();

/// What the pages of the program have in common in the web engine: their cache, who they say they
/// are, and that nothing they offer is saved as a file. Nothing is kept on disk when `cacheFolder`
/// is null. Pages that share one may share a process. Main thread.
std::shared_ptr<QWebEngineProfile> makeWebEngine(const QString& cacheFolder);
