#include "plurals.h"

using namespace Qt::StringLiterals;

QString inflected(QString translated, int count)
{
    return translated.replace(u"(s)"_s, count == 1 ? QString() : u"s"_s);
}
