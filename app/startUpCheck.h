#pragma once

#include "data/bundle.h"

#include <QString>

/// What keeps the database beside the bundle from being used, as a message for the user; null when
/// nothing does. Reads the file's first bytes only and changes nothing.
QString startUpProblem(const Bundle& bundle);
