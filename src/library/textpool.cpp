#include "textpool.h"

QString TextPool::shared(const QString &text)
{
    const auto found = m_texts.constFind(text);
    if (found != m_texts.constEnd())
        return *found;
    m_texts.insert(text);
    return text;
}

void TextPool::share(std::optional<QString> &text)
{
    if (text)
        text = shared(*text);
}

void TextPool::share(Song &song)
{
    for (std::optional<QString> *text : {&song.album, &song.albumId, &song.artist, &song.artistId, &song.contentType,
                                         &song.suffix, &song.coverArt})
        share(*text);
}
