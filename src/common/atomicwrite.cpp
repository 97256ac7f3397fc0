#include "common/atomicwrite.h"

#include <QSaveFile>

bool writeAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        file.commit(); // only removes the temporary file
        return false;
    }
    return file.commit();
}
