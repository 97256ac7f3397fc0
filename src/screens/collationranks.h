#pragma once

// Orders texts as a reader expects, by the user's language with numbers by their value ("Track 2" before
// "Track 10"), fast enough to sort tens of thousands of rows at a click: each text gets a rank among all texts
// seen so far, and a sort compares two integers. Many new texts at once are ranked through collation keys made
// for the occasion and dropped after; a few are placed among the others one by one, so a library arriving in pages
// costs little each time and nothing is kept but the ranks.

#include <QCollator>
#include <QHash>
#include <QString>

#include <vector>

class CollationRanks
{
public:
    // With `shared`, equal texts share one id: for names that many songs repeat.
    explicit CollationRanks(bool shared);

    [[nodiscard]] int idOf(const QString &text);
    // Ranks the texts added since the last call among the others.
    void settle();
    // Equal for texts that collate alike; smaller first.
    [[nodiscard]] int rank(int id) const { return m_ranks[size_t(id)]; }
    [[nodiscard]] int count() const { return int(m_texts.size()); }

private:
    void rankAll();
    void insert(int id);
    void renumber();

    QCollator m_collator;
    bool m_shared;
    QHash<QString, int> m_ids; // only when shared
    std::vector<QString> m_texts; // by id
    std::vector<int> m_order;     // the settled ids, in collation order
    std::vector<bool> m_tiedWithPrevious; // by place in m_order
    std::vector<int> m_ranks;     // by id
};
