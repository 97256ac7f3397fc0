#include "sidebaritem.h"

#include <array>

namespace {
constexpr std::array<SidebarItemInfo, 12> infos{{
    {SidebarItem::Home, "home", "Home", "house", std::nullopt},
    {SidebarItem::Artists, "artists", "Artists", "music.microphone", std::nullopt},
    {SidebarItem::Albums, "albums", "Albums", "square.stack", AlbumListType::AlphabeticalByName},
    {SidebarItem::Songs, "songs", "Songs", "music.note", std::nullopt},
    {SidebarItem::Downloads, "downloads", "Downloads", "arrow.down.circle", std::nullopt},
    {SidebarItem::RecentlyAdded, "recentlyAdded", "Recently Added", "clock", AlbumListType::Newest},
    {SidebarItem::RecentlyPlayed, "recentlyPlayed", "Recently Played", "play.circle", AlbumListType::Recent},
    {SidebarItem::MostPlayed, "mostPlayed", "Most Played", "chart.bar", AlbumListType::Frequent},
    {SidebarItem::Random, "random", "Random Albums", "shuffle", AlbumListType::Random},
    {SidebarItem::LikedSongs, "likedSongs", "Liked Songs", "heart", std::nullopt},
    {SidebarItem::LikedAlbums, "likedAlbums", "Liked Albums", "heart", std::nullopt},
    {SidebarItem::TopRated, "topRated", "Top Rated", "star", AlbumListType::Highest},
}};

constexpr std::array libraryItems{SidebarItem::Home, SidebarItem::Artists, SidebarItem::Albums, SidebarItem::Songs,
                                  SidebarItem::Downloads};
constexpr std::array presetItems{SidebarItem::RecentlyAdded, SidebarItem::RecentlyPlayed, SidebarItem::MostPlayed,
                                 SidebarItem::LikedSongs,    SidebarItem::LikedAlbums,    SidebarItem::TopRated};
}

const SidebarItemInfo &sidebarItemInfo(SidebarItem item)
{
    return infos[static_cast<size_t>(item)];
}

std::optional<SidebarItem> sidebarItemFromId(QStringView id)
{
    for (const SidebarItemInfo &info : infos) {
        if (id == QLatin1StringView(info.id))
            return info.item;
    }
    return std::nullopt;
}

std::span<const SidebarItem> sidebarLibraryItems()
{
    return libraryItems;
}

std::span<const SidebarItem> sidebarPresetItems()
{
    return presetItems;
}
