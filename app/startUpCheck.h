#pragma once

#include <QString>

/// What keeps the database beside the main bundle from being used, as a message for the user; null
/// when nothing does. Makes the tables where there are none. Any thread but the main one: it may
/// wait a second for a database that is in use.
QString startUpProblem();
