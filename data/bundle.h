#pragma once

#include <QString>

/// The application's bundle: a directory "Trakko.app" that may stand in any folder.
struct Bundle {
  QString
      path;  ///< Absolute path of the bundle directory, without a trailing "/"; links unresolved.
  QString name;  ///< CFBundleName of the bundle's information file.
};

/// The bundle that the program `programPath` (".../Trakko.app/Contents/Trakko") lies in, with the
/// name read from ".../Contents/Info.plist". The path is taken as it stands, so a link to a bundle
/// counts as the bundle. Without a readable name, the name is "Trakko".
Bundle bundleOfProgram(const QString& programPath);

/// The path by which the running program was started: `argv0` made absolute when it leads to this
/// very executable, links unresolved; otherwise the executable's own path.
QString programPath(const QString& argv0);

/// Sets the bundle of this process. Main thread, before other threads start.
void setMainBundle(const Bundle& bundle);

/// The bundle of this process. Any thread.
Bundle mainBundle();

/// The directory beside the bundle, with its trailing "/": the bundle's path cut by the length of
/// its name plus 4 (".app"). Only the length counts; nothing checks that the directory really has
/// that name. Null when the path is too short to be cut.
QString folderBeside(const Bundle& bundle);

/// "gpsData.db3" in the folder beside the bundle; null when there is no such folder text.
QString databasePath(const Bundle& bundle);
