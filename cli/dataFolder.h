#pragma once

#include <QString>

/// The folder in which the program keeps this user's data, with its trailing "/": the program's own
/// folder when the application's bundle lies beside it (an unpacked portable archive), else
/// "trakko" below the XDG data home. TRAKKO_DATA_NAME names another folder there, as for the
/// window.
QString defaultDataFolder();

/// Makes the database in this folder (with or without a trailing "/") that of the process.
void setDataFolder(const QString& folder);
