#include "collationranks.h"

#include <QLocale>

#include <algorithm>

namespace {
// The C locale has no collation of its own to speak of: English stands in for it.
QLocale collationLocale()
{
    return QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale();
}
}

CollationRanks::CollationRanks() : m_collator(collationLocale())
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

int CollationRanks::idOf(const QString &text)
{
    const auto found = m_ids.constFind(text);
    if (found != m_ids.constEnd())
        return *found;
    const int id = int(m_keys.size());
    m_ids.insert(text, id);
    m_keys.push_back(m_collator.sortKey(text));
    m_ranks.push_back(0);
    return id;
}

void CollationRanks::settle()
{
    const size_t settled = m_order.size();
    if (settled == m_keys.size())
        return;
    const auto before = [this](int a, int b) { return m_keys[size_t(a)].compare(m_keys[size_t(b)]) < 0; };
    std::vector<int> added(m_keys.size() - settled);
    for (size_t i = 0; i < added.size(); ++i)
        added[i] = int(settled + i);
    std::sort(added.begin(), added.end(), before);
    std::vector<int> merged;
    merged.reserve(m_keys.size());
    std::merge(m_order.begin(), m_order.end(), added.begin(), added.end(), std::back_inserter(merged), before);
    m_order = std::move(merged);
    int rank = 0;
    for (size_t i = 0; i < m_order.size(); ++i) {
        if (i > 0 && before(m_order[i - 1], m_order[i]))
            ++rank;
        m_ranks[size_t(m_order[i])] = rank;
    }
}
