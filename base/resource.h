#pragma once

#include <QByteArray>
#include <QString>

/// The bytes of a file that is built into the program, such as ":/map/pages/google.html". Ends the
/// program when it was built without that file. Any thread.
QByteArray resource(const QString& path);
