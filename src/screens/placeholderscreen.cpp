#include "placeholderscreen.h"

#include "library/cachedcontent.h"
#include "library/librarystore.h"

LibraryStore *PlaceholderScreen::library() const
{
    return m_library;
}

void PlaceholderScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library)
        onCachedContentChange(library, this, [this] { update(); });
    update();
    Q_EMIT libraryChanged();
}

void PlaceholderScreen::update()
{
    const bool empty = !m_library || !m_library->hasCachedContent();
    if (empty == m_isEmpty)
        return;
    m_isEmpty = empty;
    Q_EMIT isEmptyChanged();
}
