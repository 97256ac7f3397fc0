#pragma once

// The update feed: a small JSON document naming the newest release.
//   {"version": "0.2.0", "notes": "What changed", "url": "https://example.org/velto/0.2.0"}

#include <QByteArray>
#include <QUrl>
#include <QVersionNumber>

struct UpdateOffer {
    QVersionNumber version;
    QString notes;
    QUrl pageURL; // where the user reads about and downloads the release

    // Throws Json::DecodeError for anything but the document above with a dotted version and an http(s) page.
    static UpdateOffer fromJson(const QByteArray &document);
    bool operator==(const UpdateOffer &) const = default;
};
