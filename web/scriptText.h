#pragma once

#include <QString>
#include <QStringList>

/// A script that calls a function of the page's window with texts as arguments. Every text arrives
/// as it is and nothing of it is run, whatever characters it holds; half of a surrogate pair
/// arrives as the replacement character.
QString scriptCall(const QString& name, const QStringList& arguments);
