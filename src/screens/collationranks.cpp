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

CollationRanks::CollationRanks(bool shared) : m_collator(collationLocale()), m_shared(shared)
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

int CollationRanks::idOf(const QString &text)
{
    if (m_shared) {
        if (const auto found = m_ids.constFind(text); found != m_ids.constEnd())
            return *found;
    }
    const int id = int(m_texts.size());
    if (m_shared)
        m_ids.insert(text, id);
    m_texts.push_back(text);
    m_ranks.push_back(0);
    return id;
}

void CollationRanks::settle()
{
    const size_t settled = m_order.size();
    const size_t added = m_texts.size() - settled;
    if (added == 0)
        return;
    // Placing one text costs a few comparisons among the others; ranking all anew, one key each.
    if (added * 16 > settled) {
        rankAll();
        return;
    }
    for (size_t id = settled; id < m_texts.size(); ++id)
        insert(int(id));
    renumber();
}

void CollationRanks::rankAll()
{
    std::vector<QCollatorSortKey> keys;
    keys.reserve(m_texts.size());
    for (const QString &text : m_texts)
        keys.push_back(m_collator.sortKey(text));
    m_order.resize(m_texts.size());
    for (size_t id = 0; id < m_order.size(); ++id)
        m_order[id] = int(id);
    std::sort(m_order.begin(), m_order.end(),
              [&keys](int a, int b) { return keys[size_t(a)].compare(keys[size_t(b)]) < 0; });
    m_tiedWithPrevious.assign(m_order.size(), false);
    for (size_t place = 1; place < m_order.size(); ++place)
        m_tiedWithPrevious[place] = keys[size_t(m_order[place - 1])].compare(keys[size_t(m_order[place])]) == 0;
    renumber();
}

void CollationRanks::insert(int id)
{
    const QString &text = m_texts[size_t(id)];
    const auto place = std::upper_bound(m_order.begin(), m_order.end(), id, [this](int a, int b) {
        return m_collator.compare(m_texts[size_t(a)], m_texts[size_t(b)]) < 0;
    });
    const size_t at = size_t(place - m_order.begin());
    m_order.insert(place, id);
    m_tiedWithPrevious.insert(m_tiedWithPrevious.begin() + qsizetype(at),
                              at > 0 && m_collator.compare(m_texts[size_t(m_order[at - 1])], text) == 0);
    if (at + 1 < m_order.size())
        m_tiedWithPrevious[at + 1] = m_collator.compare(text, m_texts[size_t(m_order[at + 1])]) == 0;
}

void CollationRanks::renumber()
{
    int rank = 0;
    for (size_t place = 0; place < m_order.size(); ++place) {
        if (place > 0 && !m_tiedWithPrevious[place])
            ++rank;
        m_ranks[size_t(m_order[place])] = rank;
    }
}
