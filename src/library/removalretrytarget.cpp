#include "removalretrytarget.h"

std::optional<int> removalRetryTarget(int index, const QStringList &before, const QStringList &current)
{
    if (index < 0 || index >= before.size())
        return std::nullopt;
    const QString &id = before.at(index);
    const qsizetype rank = before.mid(0, index).count(id);
    if (current.count(id) < before.count(id))
        return std::nullopt;
    qsizetype seen = 0;
    for (qsizetype i = 0; i < current.size(); ++i) {
        if (current.at(i) == id && seen++ == rank)
            return static_cast<int>(i);
    }
    return std::nullopt;
}
