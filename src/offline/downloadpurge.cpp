// Letting go of downloads: one collection at a time, or the whole account's folder at once.

#include "downloadstore.h"

#include "filetransfer.h"

#include <QDir>
#include <QFile>

void DownloadStore::purge(const QString &owner)
{
    DownloadManifest next = manifest();
    const QList<ReleasedSongFile> released = next.removeOwner(owner);
    setManifest(std::move(next));
    for (const ReleasedSongFile &file : released)
        QFile::remove(songPath(file.id, file.suffix));
    setProgress(owner, std::nullopt);
    saveNow();
    pruneArtwork();
}

void DownloadStore::removeAll()
{
    // The runs are let go of as they are cancelled: when one resumes and finds itself no longer registered, it
    // leaves the store's records alone.
    const QHash<QString, RunningDownload> running = std::exchange(m_tasks, {});
    if (!running.isEmpty())
        Q_EMIT tasksChanged();
    for (const RunningDownload &download : running)
        download.handle->cancel();
    m_artworkTask.cancel();
    // A queued write of the old manifest must not land in the emptied folder.
    m_lastSave.waitForFinished();
    setActive({});
    setManifest({});

    const QFileInfoList entries =
        QDir(m_directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries)
        removeEntry(entry);
    saveNow();
    pruneArtwork();
}

// Files of transfers that a crash or a kill interrupted.
void DownloadStore::removePartialFiles(const QString &directory)
{
    const QStringList pattern{partialFilePrefix + u'*'};
    const QFileInfoList entries = QDir(directory).entryInfoList(pattern, QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo &entry : entries)
        QFile::remove(entry.filePath());
}

void DownloadStore::removeEntry(const QFileInfo &entry)
{
    // A link is removed as a link: what it points to is not ours.
    if (entry.isDir() && !entry.isSymLink())
        QDir(entry.filePath()).removeRecursively();
    else
        QFile::remove(entry.filePath());
}
