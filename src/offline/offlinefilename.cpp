#include "offlinefilename.h"

#include <QCryptographicHash>

QString offlineFileName(QStringView text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex());
}
