#pragma once

// One copy of each text that many songs repeat: an album's name and id, its artist's, its cover's id, the file
// type. A library of tens of thousands of songs repeats them by the thousand; shared, they take the room of one.

#include "server/records.h"

#include <QSet>

class TextPool
{
public:
    // The pooled copy of `text`, which is `text` itself the first time.
    [[nodiscard]] QString shared(const QString &text);
    void share(Song &song);

private:
    void share(std::optional<QString> &text);

    QSet<QString> m_texts;
};
