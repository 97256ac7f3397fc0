#pragma once

// The fixed places of the sidebar, each with its title, symbol and what the detail column shows for it. The
// raw value is also the id kept in saved locations.

#include "server/records.h"

#include <QString>

#include <optional>
#include <span>

enum class SidebarItem {
    Home,
    Artists,
    Albums,
    Songs,
    Downloads,
    RecentlyAdded,
    RecentlyPlayed,
    MostPlayed,
    Random,
    LikedSongs,
    LikedAlbums,
    TopRated,
};

struct SidebarItemInfo {
    SidebarItem item;
    const char *id;
    const char *title;
    const char *icon;
    // The album list a grid destination shows; none for the other screens.
    std::optional<AlbumListType> listType;
};

[[nodiscard]] const SidebarItemInfo &sidebarItemInfo(SidebarItem item);
[[nodiscard]] std::optional<SidebarItem> sidebarItemFromId(QStringView id);

// The sidebar's first section, without a header, and the "Presets" section. Random Albums is a destination of
// its own but stands in neither.
[[nodiscard]] std::span<const SidebarItem> sidebarLibraryItems();
[[nodiscard]] std::span<const SidebarItem> sidebarPresetItems();
