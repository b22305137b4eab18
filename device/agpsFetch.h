#pragma once

#include <QByteArray>
#include <QUrl>

#include <chrono>

namespace agps {

/// Where the AssistNow Offline file is: "current_14d.alp" on the server that the environment
/// variable TRAKKO_AGPS_HOST names, else on the one given when the program was built. A server is
/// "host", "host:port" (asked by https) or either with "http://" or "https://" in front; a user
/// name or password in it is dropped. Invalid when no server is known.
QUrl assistanceUrl();

/// The body that a GET of an http or https address brings, waiting at most `limit` for the whole of
/// it (a server that floods headers can hold it longer). Empty when none came, it was cut short or
/// is larger than 16 MB. The answer's status does not count: the body of an error answer is
/// answered, too. Any thread; runs an event loop of its own meanwhile.
QByteArray fetch(const QUrl& url, std::chrono::milliseconds limit);

}  // namespace agps
