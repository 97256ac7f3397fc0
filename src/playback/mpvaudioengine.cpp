#include "mpvaudioengine.h"

#include "mpvlibrary.h"
#include "mpvnode.h"

#include <mpv/client.h>

#include <QFutureWatcher>
#include <QMetaObject>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstring>
#include <utility>

namespace {
// The product's position tick; mpv reports time-pos about ten times a second.
constexpr int tickIntervalMs = 500;

// No configuration of the user's own mpv, no terminal or input of its own, sound only, gapless.
constexpr std::pair<const char *, const char *> fixedOptions[] = {
    {"config", "no"},
    {"terminal", "no"},
    {"input-default-bindings", "no"},
    {"input-vo-keyboard", "no"},
    {"load-scripts", "no"},
    {"ytdl", "no"},
    {"video", "no"},
    {"vo", "null"},
    {"audio-display", "no"}, // embedded cover art would otherwise count as a video track
    {"idle", "yes"},
    {"gapless-audio", "yes"},
    {"prefetch-playlist", "yes"},
    // Gains come from the files' tags; a file without them plays as it is. A gain that would clip is lowered to
    // the file's peak: in libmpv 0.35 that is "clip" off, whatever its manual says.
    {"replaygain-preamp", "0"},
    {"replaygain-fallback", "0"},
    {"replaygain-clip", "no"},
    {"audio-client-name", "Velto"},
};

void setOption(const MpvLibrary &mpv, mpv_handle *handle, const char *name, const QString &value)
{
    mpv.setOptionString(handle, name, value.toUtf8().constData());
}

QList<OutputDevice> readDevices(const mpv_node &list)
{
    QList<OutputDevice> devices;
    for (const mpv_node *entry : MpvNode::elements(list)) {
        const mpv_node *name = MpvNode::find(*entry, "name");
        const mpv_node *description = MpvNode::find(*entry, "description");
        if (!name)
            continue;
        devices.append(OutputDevice{
            .name = MpvNode::stringValue(*name).value_or(QString()),
            .description = description ? MpvNode::stringValue(*description).value_or(QString()) : QString(),
        });
    }
    return devices;
}
}

MpvAudioEngine::MpvAudioEngine(QObject *parent)
    : MpvAudioEngine(Options{}, parent)
{
}

MpvAudioEngine::MpvAudioEngine(const Options &options, QObject *parent)
    : AudioEngine(parent)
    , m_options(options)
{
    m_tick.setInterval(tickIntervalMs);
    connect(&m_tick, &QTimer::timeout, this, &MpvAudioEngine::emitTick);
}

MpvAudioEngine::~MpvAudioEngine()
{
    if (!m_mpv)
        return;
    m_library->setWakeupCallback(m_mpv, nullptr, nullptr);
    // Joins mpv's threads; drains already posted are dropped with this object.
    m_library->terminateDestroy(m_mpv);
}

void MpvAudioEngine::start()
{
    if (m_starting || m_mpv || m_unavailable)
        return;
    m_starting = true;
    // The watcher dies with the engine, and with it the call to an engine that is gone.
    auto *loading = new QFutureWatcher<const MpvLibrary *>(this);
    connect(loading, &QFutureWatcherBase::finished, this, [this, loading] {
        loading->deleteLater();
        m_library = loading->result();
        createMpv();
    });
    loading->setFuture(MpvLibrary::load());
}

void MpvAudioEngine::createMpv()
{
    // mpv refuses to start under any numeric locale but "C", and QCoreApplication sets the system's one.
    // Programs set it right after making their application object; a late call here is the fallback.
    if (std::strcmp(std::setlocale(LC_NUMERIC, nullptr), "C") != 0)
        std::setlocale(LC_NUMERIC, "C");
    m_mpv = m_library ? m_library->create() : nullptr;
    if (!m_mpv) {
        becomeUnavailable();
        return;
    }
    const MpvLibrary &lib = *m_library;
    for (const auto &[name, value] : fixedOptions)
        lib.setOptionString(m_mpv, name, value);
    if (!m_options.audioOutput.isEmpty())
        setOption(lib, m_mpv, "ao", m_options.audioOutput);
    if (!m_options.audioOutputFile.isEmpty())
        setOption(lib, m_mpv, "ao-pcm-file", m_options.audioOutputFile);
    if (!m_options.audioFilter.isEmpty())
        setOption(lib, m_mpv, "af", m_options.audioFilter);
    if (lib.initialize(m_mpv) < 0) {
        lib.terminateDestroy(m_mpv);
        m_mpv = nullptr;
        becomeUnavailable();
        return;
    }

    lib.observeProperty(m_mpv, 0, "time-pos", MPV_FORMAT_DOUBLE);
    lib.observeProperty(m_mpv, 0, "duration", MPV_FORMAT_DOUBLE);
    lib.observeProperty(m_mpv, 0, "audio-device-list", MPV_FORMAT_NODE);
    lib.observeProperty(m_mpv, 0, "audio-device", MPV_FORMAT_STRING);

    // mpv calls this on a thread of its own: only post to the main thread, and read the events there.
    lib.setWakeupCallback(
        m_mpv,
        [](void *context) {
            QMetaObject::invokeMethod(static_cast<MpvAudioEngine *>(context), &MpvAudioEngine::drainEvents,
                                      Qt::QueuedConnection);
        },
        this);
    if (m_volume)
        applyVolume(*m_volume);
    applyLevelling();
    if (!m_outputDevice.isEmpty())
        lib.setPropertyString(m_mpv, "audio-device", m_outputDevice.toUtf8().constData());
    // What was asked for while mpv was away, in the order it was asked. A current item mpv refuses stays, silent,
    // as one whose file would not open; a refused waiting item is dropped.
    applyPause();
    for (Entry &entry : m_entries)
        loadIntoMpv(entry);
    if (!m_entries.isEmpty() && !m_entries.first().mpvId)
        m_currentFailed = true;
    if (m_entries.size() > 1 && !m_entries.last().mpvId)
        m_entries.removeLast();
    m_tick.start();
}

// Nothing will sound, but the rest of Velto works: browsing, downloads, the queue. Items already handed over
// stay current and silent, like a song whose file would not open.
void MpvAudioEngine::becomeUnavailable()
{
    m_unavailable = true;
    m_currentFailed = !m_entries.isEmpty();
    qWarning("Velto cannot play audio: libmpv could not be started");
}

QList<EngineItemId> MpvAudioEngine::items() const
{
    QList<EngineItemId> ids;
    ids.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        ids.append(entry.id);
    return ids;
}

std::optional<EngineItemId> MpvAudioEngine::insert(const PlayerItem &item, std::optional<EngineItemId> after)
{
    const bool intoEmpty = !after && m_entries.isEmpty();
    const bool behindCurrent = after && m_entries.size() == 1 && m_entries.first().id == *after && !m_currentFailed;
    if (!intoEmpty && !behindCurrent)
        return std::nullopt;
    if (m_unavailable)
        return std::nullopt;
    Entry entry{
        .id = ++m_lastId,
        .url = item.url.isLocalFile() ? item.url.toLocalFile() : item.url.toString(QUrl::FullyEncoded),
    };
    if (intoEmpty)
        forgetPosition();
    if (m_mpv) {
        loadIntoMpv(entry);
        if (!entry.mpvId)
            return std::nullopt;
    } else {
        start();
    }
    m_entries.append(entry);
    return entry.id;
}

void MpvAudioEngine::loadIntoMpv(Entry &entry)
{
    // "append-play" also for the second entry: should the first have ended a moment ago, an idle mpv would
    // leave a plain "append" waiting forever.
    mpv_node result{};
    if (MpvNode::Command("loadfile").arg("url", entry.url).arg("flags", QStringLiteral("append-play")).run(m_mpv, &result)
        < 0)
        return;
    const mpv_node *idNode = MpvNode::find(result, "playlist_entry_id");
    entry.mpvId = idNode ? MpvNode::intValue(*idNode) : std::nullopt;
    m_library->freeNodeContents(&result);
}

void MpvAudioEngine::remove(EngineItemId item)
{
    const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(), [item](const Entry &e) { return e.id == item; });
    if (found == m_entries.cend())
        return;
    const Entry entry = *found;
    m_entries.erase(found);
    removeFromMpv(entry);
}

void MpvAudioEngine::removeAll()
{
    m_entries.clear();
    m_loadingEntry.reset();
    m_currentFailed = false;
    forgetPosition();
    // "stop" empties mpv's playlist; with idle on, mpv waits for the next file.
    if (m_mpv)
        MpvNode::Command("stop").run(m_mpv);
}

void MpvAudioEngine::advance()
{
    if (m_entries.size() < 2)
        return;
    const Entry old = m_entries.takeFirst();
    m_currentFailed = false;
    forgetPosition();
    if (m_mpv)
        MpvNode::Command("playlist-next").run(m_mpv);
    removeFromMpv(old);
}

void MpvAudioEngine::play()
{
    m_paused = false;
    applyPause();
}

void MpvAudioEngine::pause()
{
    m_paused = true;
    applyPause();
}

void MpvAudioEngine::applyPause()
{
    int flag = m_paused ? 1 : 0;
    if (m_mpv)
        m_library->setProperty(m_mpv, "pause", MPV_FORMAT_FLAG, &flag);
}

void MpvAudioEngine::seek(double seconds)
{
    m_timePos = std::max(seconds, 0.0);
    m_lastTick = m_timePos;
    // mpv refuses a seek before the file is open; it is made when the file is.
    if (m_entries.isEmpty() || !m_entries.first().loaded) {
        m_seekWhenLoaded = seconds;
        return;
    }
    MpvNode::Command("seek").arg("target", seconds).arg("flags", QStringLiteral("absolute+exact")).run(m_mpv);
}

// Kept until mpv starts, so that setting the saved volume at start-up does not load mpv early.
void MpvAudioEngine::setVolume(float volume)
{
    m_volume = volume;
    if (m_mpv)
        applyVolume(volume);
}

void MpvAudioEngine::applyVolume(float volume)
{
    // mpv's volume is a percentage on a cubic curve, which already follows loudness as people hear it.
    double percent = std::clamp(double(volume), 0.0, 1.0) * 100.0;
    m_library->setProperty(m_mpv, "volume", MPV_FORMAT_DOUBLE, &percent);
}

void MpvAudioEngine::setLoudnessLevelling(LoudnessLevelling levelling)
{
    m_levelling = levelling;
    if (m_mpv)
        applyLevelling();
}

// mpv recomputes the gain of the playing file when the mode changes.
void MpvAudioEngine::applyLevelling()
{
    const char *mode = m_levelling == LoudnessLevelling::ByTrack ? "track"
        : m_levelling == LoudnessLevelling::ByAlbum                ? "album"
                                                                   : "no";
    m_library->setPropertyString(m_mpv, "replaygain", mode);
}

std::optional<double> MpvAudioEngine::currentDuration() const
{
    if (m_entries.isEmpty())
        return std::nullopt;
    return m_duration;
}

void MpvAudioEngine::setOutputDevice(const QString &name)
{
    if (m_mpv) {
        m_library->setPropertyString(m_mpv, "audio-device", name.toUtf8().constData());
    } else if (name != m_outputDevice) {
        m_outputDevice = name; // handed to mpv when it starts
        Q_EMIT outputDevicesChanged();
    }
}

// A new current item starts with no position and no length, whatever the last one had. Only a length that
// becomes known is news: whoever follows the current item reads it again anyway.
void MpvAudioEngine::forgetPosition()
{
    m_seekWhenLoaded.reset();
    m_lastTick.reset();
    m_timePos = 0;
    m_duration.reset();
}

void MpvAudioEngine::drainEvents()
{
    while (m_mpv) {
        const mpv_event *event = m_library->waitEvent(m_mpv, 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        handleEvent(*event);
    }
}

void MpvAudioEngine::handleEvent(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        m_loadingEntry = idOf(static_cast<const mpv_event_start_file *>(event.data)->playlist_entry_id);
        // The new entry's time-pos starts unknown, and is briefly negative at a gapless boundary.
        m_lastTick.reset();
        m_timePos = 0;
        break;
    case MPV_EVENT_FILE_LOADED: {
        const auto loading = std::find_if(m_entries.begin(), m_entries.end(),
                                          [this](const Entry &entry) { return entry.id == m_loadingEntry; });
        if (loading == m_entries.end())
            break;
        loading->loaded = true;
        if (loading == m_entries.begin()) {
            if (const std::optional<double> target = std::exchange(m_seekWhenLoaded, std::nullopt))
                seek(*target);
        }
        Q_EMIT itemReady(loading->id);
        break;
    }
    case MPV_EVENT_END_FILE: {
        const auto *end = static_cast<const mpv_event_end_file *>(event.data);
        handleEndFile(end->playlist_entry_id, end->reason);
        break;
    }
    case MPV_EVENT_PROPERTY_CHANGE:
        handlePropertyChange(event);
        break;
    default:
        break;
    }
}

void MpvAudioEngine::handleEndFile(qint64 mpvId, int reason)
{
    // Only the current entry can end by itself; anything else was removed or replaced and says nothing.
    if (m_entries.isEmpty() || m_entries.first().mpvId != mpvId)
        return;
    if (reason == MPV_END_FILE_REASON_ERROR) {
        // A broken stream or a missing file is not followed up: the song stays current and silent until the
        // user moves on. Stopping mpv keeps it from starting the waiting entry by itself.
        m_currentFailed = true;
        MpvNode::Command("stop").run(m_mpv);
        return;
    }
    if (reason != MPV_END_FILE_REASON_EOF)
        return;
    // mpv has already moved on to the waiting entry, if there is one.
    const Entry ended = m_entries.takeFirst();
    removeFromMpv(ended);
    forgetPosition();
    Q_EMIT itemEnded(ended.id);
}

void MpvAudioEngine::handlePropertyChange(const mpv_event &event)
{
    const auto *property = static_cast<const mpv_event_property *>(event.data);
    const QByteArray name(property->name);
    if (name == "time-pos") {
        if (property->format == MPV_FORMAT_DOUBLE)
            m_timePos = std::max(*static_cast<const double *>(property->data), 0.0);
    } else if (name == "duration") {
        const std::optional<double> duration = property->format == MPV_FORMAT_DOUBLE
            ? std::optional(*static_cast<const double *>(property->data))
            : std::nullopt;
        if (duration != m_duration) {
            m_duration = duration;
            Q_EMIT durationChanged();
        }
    } else if (name == "audio-device-list") {
        if (property->format == MPV_FORMAT_NODE) {
            m_outputDevices = readDevices(*static_cast<const mpv_node *>(property->data));
            Q_EMIT outputDevicesChanged();
        }
    } else if (name == "audio-device") {
        if (property->format == MPV_FORMAT_STRING) {
            m_outputDevice = QString::fromUtf8(*static_cast<char *const *>(property->data));
            Q_EMIT outputDevicesChanged();
        }
    }
}

void MpvAudioEngine::emitTick()
{
    if (m_entries.isEmpty() || m_currentFailed || !std::isfinite(m_timePos))
        return;
    if (m_lastTick == m_timePos)
        return;
    m_lastTick = m_timePos;
    Q_EMIT positionTicked(m_timePos);
}

std::optional<EngineItemId> MpvAudioEngine::idOf(qint64 mpvId) const
{
    for (const Entry &entry : m_entries) {
        if (entry.mpvId == mpvId)
            return entry.id;
    }
    return std::nullopt;
}

std::optional<qsizetype> MpvAudioEngine::playlistIndexOf(qint64 mpvId) const
{
    mpv_node playlist{};
    if (!m_mpv || m_library->getProperty(m_mpv, "playlist", MPV_FORMAT_NODE, &playlist) < 0)
        return std::nullopt;
    std::optional<qsizetype> index;
    const QList<const mpv_node *> entries = MpvNode::elements(playlist);
    for (qsizetype i = 0; i < entries.size() && !index; ++i) {
        const mpv_node *id = MpvNode::find(*entries[i], "id");
        if (id && MpvNode::intValue(*id) == mpvId)
            index = i;
    }
    m_library->freeNodeContents(&playlist);
    return index;
}

void MpvAudioEngine::removeFromMpv(const Entry &entry)
{
    if (!entry.mpvId)
        return;
    if (const std::optional<qsizetype> index = playlistIndexOf(*entry.mpvId))
        MpvNode::Command("playlist-remove").arg("index", qint64(*index)).run(m_mpv);
}
