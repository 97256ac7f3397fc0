#pragma once

// Where downloads lie: one folder per account under "$XDG_DATA_HOME/Velto/Downloads", holding "manifest.json",
// one audio file per song and the folder "artwork". Every name below the root is a hash or a filtered suffix,
// never raw server text, so no answer from the server can name a path outside its account's folder.

#include "server/records.h"
#include "server/serverconfig.h"

#include <QString>
#include <QUrl>

#include <optional>

class DownloadLayout
{
public:
    // `root` holds every account's folder.
    explicit DownloadLayout(QString root);
    // "Velto/Downloads" in the user's data folder, created when missing. Stops the process if the platform
    // has no data folder at all.
    [[nodiscard]] static DownloadLayout standard();

    [[nodiscard]] const QString &root() const { return m_root; }

    // The account's folder, named by the hash of its serverKey; the password does not enter. Not created here.
    [[nodiscard]] QString directory(const ServerConfig &config) const;
    // Where the song's file lies, judged from the disk alone: the player asks without a store or manifest.
    [[nodiscard]] std::optional<QUrl> localFileURL(const Song &song, const ServerConfig &config) const;

    [[nodiscard]] static QString artworkDirectory(const QString &serverDirectory);
    [[nodiscard]] static QString manifestPath(const QString &serverDirectory);
    [[nodiscard]] static QString songFileName(const QString &songId, const QString &suffix);
    [[nodiscard]] static QString coverFileName(const QString &coverArt);
    // The suffix a file is stored and looked for under: the server's when it is a short run of ASCII letters
    // and digits, "audio" for anything else, absent and empty included.
    [[nodiscard]] static QString storedSuffix(const std::optional<QString> &suffix);

    static constexpr qsizetype maxSuffixLength = 10;

private:
    QString m_root;
};
