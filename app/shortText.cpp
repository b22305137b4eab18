#include "app/shortText.h"

QString shortened(const QString& text, qsizetype longest) {
  if (text.size() <= longest) {
    return text;
  }
  const bool splitsPair = longest > 0 && text.at(longest - 1).isHighSurrogate();
  return text.left(splitsPair ? longest - 1 : longest) + u'…';
}
