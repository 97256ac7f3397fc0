#include "symbolicons.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {
// Codepoints from the font's own list (scss/_variables.scss in the Debian package).
const QHash<QString, char16_t> &glyphTable()
{
    static const QHash<QString, char16_t> table = {
        {u"music.note.house.fill"_s, 0xe030}, // library_music
        {u"music.note"_s, 0xe405}, // music_note
        {u"music.note.list"_s, 0xe03d}, // queue_music
        {u"music.microphone"_s, 0xe7fd}, // person
        {u"square.stack"_s, 0xe019}, // album
        {u"square.grid.2x2"_s, 0xe9b0}, // grid_view
        {u"list.bullet"_s, 0xe896}, // list
        {u"chart.bar"_s, 0xe26b}, // bar_chart
        {u"play.fill"_s, 0xe037}, // play_arrow
        {u"play.circle"_s, 0xe039}, // play_circle_outline
        {u"pause.fill"_s, 0xe034}, // pause
        {u"forward.fill"_s, 0xe044}, // skip_next
        {u"backward.fill"_s, 0xe045}, // skip_previous
        {u"shuffle"_s, 0xe043},
        {u"repeat"_s, 0xe040},
        {u"repeat.1"_s, 0xe041}, // repeat_one
        {u"heart"_s, 0xe87e}, // favorite_border
        {u"heart.fill"_s, 0xe87d}, // favorite
        {u"speaker.fill"_s, 0xe04e}, // volume_mute
        {u"speaker.slash.fill"_s, 0xe04f}, // volume_off
        {u"speaker.wave.2.fill"_s, 0xe04d}, // volume_down
        {u"speaker.wave.3.fill"_s, 0xe050}, // volume_up
        {u"arrow.down.circle"_s, 0xe2c4}, // file_download
        {u"arrow.down.circle.fill"_s, 0xf091}, // download_done
        {u"arrow.down.circle.dotted"_s, 0xe627}, // sync
        {u"exclamationmark.triangle"_s, 0xe002}, // warning
        {u"exclamationmark.circle.fill"_s, 0xe000}, // error
        {u"wifi.exclamationmark"_s, 0xe648}, // wifi_off
        {u"lock.trianglebadge.exclamationmark"_s, 0xe897}, // lock
        {u"xmark"_s, 0xe5cd}, // close
        {u"trash"_s, 0xe872}, // delete
        {u"plus"_s, 0xe145}, // add
        {u"ellipsis"_s, 0xe5d3}, // more_horiz
        {u"opticaldisc"_s, 0xe019}, // album
        {u"chevron.left"_s, 0xe5cb},
        {u"chevron.right"_s, 0xe5cc},
        {u"chevron.down"_s, 0xe5cf}, // expand_more
        {u"chevron.up"_s, 0xe5ce}, // expand_less
        {u"arrow.clockwise"_s, 0xe5d5}, // refresh
        {u"gearshape"_s, 0xe8b8}, // settings
        {u"person.crop.circle"_s, 0xe853}, // account_circle
        {u"rectangle.portrait.and.arrow.right"_s, 0xe9ba}, // logout
        {u"magnifyingglass"_s, 0xe8b6}, // search
        {u"house"_s, 0xe88a}, // home
        {u"clock"_s, 0xe8b5}, // schedule
        {u"star"_s, 0xe838}, // star
        {u"hifispeaker"_s, 0xe32d}, // speaker
    };
    return table;
}

constexpr char16_t unknownGlyph = 0xe887; // help
}

QString SymbolIcons::glyph(const QString &symbolName)
{
    return QString(QChar(glyphTable().value(symbolName, unknownGlyph)));
}

bool SymbolIcons::hasGlyph(const QString &symbolName)
{
    return glyphTable().contains(symbolName);
}

QString SymbolIcons::fontFamily()
{
    return u"Material Icons"_s;
}

QString SymbolIcons::fontPath()
{
    return u"/usr/share/fonts/truetype/material-design-icons-iconfont/MaterialIcons-Regular.ttf"_s;
}
