#include "savedlocation.h"

#include "common/atomicwrite.h"
#include "server/json.h"
#include "server/serverconfig.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {
QJsonObject gridToJson(const AlbumGridDestination &grid)
{
    return {{"listType"_L1, albumListTypeName(grid.listType)}, {"title"_L1, grid.title}};
}

AlbumGridDestination gridFromJson(const QJsonObject &o)
{
    const std::optional<AlbumListType> type = albumListTypeFromName(Json::requiredString(o, "listType"_L1));
    if (!type)
        throw Json::DecodeError{};
    return {*type, Json::requiredString(o, "title"_L1)};
}

QJsonObject entryToJson(const NavigationEntry &entry)
{
    if (const auto *album = std::get_if<Album>(&entry))
        return {{"kind"_L1, "album"_L1}, {"record"_L1, album->toJson()}};
    if (const auto *artist = std::get_if<Artist>(&entry))
        return {{"kind"_L1, "artist"_L1}, {"record"_L1, artist->toJson()}};
    return {{"kind"_L1, "grid"_L1}, {"record"_L1, gridToJson(std::get<AlbumGridDestination>(entry))}};
}

NavigationEntry entryFromJson(const QJsonObject &o)
{
    const QString kind = Json::requiredString(o, "kind"_L1);
    const QJsonObject record = Json::requiredObject(o, "record"_L1);
    if (kind == "album"_L1)
        return Album::fromJson(record);
    if (kind == "artist"_L1)
        return Artist::fromJson(record);
    if (kind == "grid"_L1)
        return gridFromJson(record);
    throw Json::DecodeError{};
}

QString defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Velto/location.json"_L1;
}
}

SidebarSelection SidebarSelection::fromJson(const QJsonObject &o)
{
    if (o.size() != 1)
        throw Json::DecodeError{};
    const QString value = Json::requiredString(Json::asObject(o.begin().value()), "_0"_L1);
    if (o.begin().key() == "playlist"_L1)
        return playlist(value);
    const std::optional<SidebarItem> found = sidebarItemFromId(value);
    if (o.begin().key() != "item"_L1 || !found)
        throw Json::DecodeError{};
    return item(*found);
}

QJsonObject SidebarSelection::toJson() const
{
    if (const QString *id = playlistId())
        return {{"playlist"_L1, QJsonObject{{"_0"_L1, *id}}}};
    const QString id = QLatin1StringView(sidebarItemInfo(*sidebarItem()).id);
    return {{"item"_L1, QJsonObject{{"_0"_L1, id}}}};
}

SavedLocation SavedLocation::fromJson(const QJsonObject &o)
{
    SavedLocation location{
        .serverKey = Json::requiredString(o, "serverKey"_L1),
        .selection = SidebarSelection::fromJson(Json::requiredObject(o, "selection"_L1)),
    };
    const QJsonValue path = o.value("path"_L1);
    if (!path.isArray())
        throw Json::DecodeError{};
    for (const QJsonValue &entry : path.toArray())
        location.path.append(entryFromJson(Json::asObject(entry)));
    return location;
}

QJsonObject SavedLocation::toJson() const
{
    QJsonArray entries;
    for (const NavigationEntry &entry : path)
        entries.append(entryToJson(entry));
    return {{"serverKey"_L1, serverKey}, {"selection"_L1, selection.toJson()}, {"path"_L1, entries}};
}

LocationFile::LocationFile(QString path, QObject *parent)
    : QObject(parent)
    , m_path(path.isEmpty() ? defaultPath() : std::move(path))
{
}

std::optional<SavedLocation> LocationFile::restorable(const ServerConfig &config)
{
    if (!m_latest) {
        QFile file(m_path);
        m_latest = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    const QJsonDocument document = QJsonDocument::fromJson(*m_latest);
    if (!document.isObject())
        return std::nullopt;
    try {
        SavedLocation location = SavedLocation::fromJson(document.object());
        if (location.serverKey != serverKey(config))
            return std::nullopt;
        return location;
    } catch (const Json::DecodeError &) {
        return std::nullopt;
    }
}

// Every change is written at once: a location is a few hundred bytes.
void LocationFile::save(const SidebarSelection &selection, const QList<NavigationEntry> &path,
                        const ServerConfig &config)
{
    const SavedLocation location{serverKey(config), selection, path};
    m_latest = QJsonDocument(location.toJson()).toJson(QJsonDocument::Compact);
    QDir().mkpath(QFileInfo(m_path).path());
    writeAtomically(m_path, *m_latest);
}

void LocationFile::clear()
{
    m_latest = QByteArray();
    QFile::remove(m_path);
}
