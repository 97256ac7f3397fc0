#pragma once

// Where the user is in the main window, kept across restarts in "location.json": the sidebar selection and the
// stack of pushed screens, tagged with the account it belongs to.

#include "server/records.h"
#include "sidebaritem.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <QString>

#include <optional>
#include <variant>

struct ServerConfig;

// A pushed page of one whole album list.
struct AlbumGridDestination {
    AlbumListType listType = AlbumListType::Newest;
    QString title;

    bool operator==(const AlbumGridDestination &) const = default;
};

// One pushed screen: an album, an artist, or an album grid.
using NavigationEntry = std::variant<Album, Artist, AlbumGridDestination>;

// The sidebar's selection: a fixed item or a playlist by id. Its JSON form is an object of exactly one key,
// "item" or "playlist", holding {"_0": the item's raw value or the id}.
struct SidebarSelection {
    std::variant<SidebarItem, QString> value = SidebarItem::Home;

    [[nodiscard]] static SidebarSelection item(SidebarItem item) { return {item}; }
    [[nodiscard]] static SidebarSelection playlist(QString id) { return {std::move(id)}; }
    [[nodiscard]] const SidebarItem *sidebarItem() const { return std::get_if<SidebarItem>(&value); }
    [[nodiscard]] const QString *playlistId() const { return std::get_if<QString>(&value); }

    static SidebarSelection fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const SidebarSelection &) const = default;
};

struct SavedLocation {
    QString serverKey;
    SidebarSelection selection;
    QList<NavigationEntry> path;

    // Strict: anything but a well-formed location throws Json::DecodeError.
    static SavedLocation fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const SavedLocation &) const = default;
};

// "location.json": read once at first use, written atomically at every change, forgotten at Log Out. One per
// process, made by the application, on the main thread.
class LocationFile : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    // An empty path means "Velto/location.json" in the user's data folder.
    explicit LocationFile(QString path = {}, QObject *parent = nullptr);

    // The saved location of this account; none for another account's, or for anything unreadable.
    [[nodiscard]] std::optional<SavedLocation> restorable(const ServerConfig &config);
    void save(const SidebarSelection &selection, const QList<NavigationEntry> &path, const ServerConfig &config);
    void clear();
    [[nodiscard]] const QString &path() const { return m_path; }

private:
    QString m_path;
    std::optional<QByteArray> m_latest; // read at first use
};
