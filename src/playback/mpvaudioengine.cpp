#include "mpvaudioengine.h"

#include "mpvnode.h"

#include <mpv/client.h>

#include <QMetaObject>

#include <algorithm>
#include <clocale>
#include <cmath>

namespace {
// The product's position tick; mpv reports time-pos about ten times a second.
constexpr int tickIntervalMs = 500;

mpv_handle *createMpv()
{
    // mpv refuses to start under any numeric locale but "C", and QCoreApplication sets the system's one.
    std::setlocale(LC_NUMERIC, "C");
    return mpv_create();
}

void setOption(mpv_handle *mpv, const char *name, const QString &value)
{
    mpv_set_option_string(mpv, name, value.toUtf8().constData());
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
    , m_mpv(createMpv())
{
    // Without a handle nothing can play; failing here is better than a player that silently never sounds.
    Q_ASSERT(m_mpv);
    setOption(m_mpv, "config", QStringLiteral("no"));
    setOption(m_mpv, "terminal", QStringLiteral("no"));
    setOption(m_mpv, "input-default-bindings", QStringLiteral("no"));
    setOption(m_mpv, "input-vo-keyboard", QStringLiteral("no"));
    setOption(m_mpv, "load-scripts", QStringLiteral("no"));
    setOption(m_mpv, "ytdl", QStringLiteral("no"));
    setOption(m_mpv, "video", QStringLiteral("no"));
    setOption(m_mpv, "vo", QStringLiteral("null"));
    // Embedded cover art would otherwise count as a video track.
    setOption(m_mpv, "audio-display", QStringLiteral("no"));
    setOption(m_mpv, "idle", QStringLiteral("yes"));
    setOption(m_mpv, "gapless-audio", QStringLiteral("yes"));
    setOption(m_mpv, "prefetch-playlist", QStringLiteral("yes"));
    setOption(m_mpv, "audio-client-name", QStringLiteral("Velto"));
    if (!options.audioOutput.isEmpty())
        setOption(m_mpv, "ao", options.audioOutput);
    if (!options.audioOutputFile.isEmpty())
        setOption(m_mpv, "ao-pcm-file", options.audioOutputFile);
    if (!options.audioFilter.isEmpty())
        setOption(m_mpv, "af", options.audioFilter);
    mpv_initialize(m_mpv);

    mpv_observe_property(m_mpv, 0, "time-pos", MPV_FORMAT_DOUBLE);
    mpv_observe_property(m_mpv, 0, "duration", MPV_FORMAT_DOUBLE);
    mpv_observe_property(m_mpv, 0, "audio-device-list", MPV_FORMAT_NODE);
    mpv_observe_property(m_mpv, 0, "audio-device", MPV_FORMAT_STRING);

    // mpv calls this on a thread of its own: only post to the main thread, and read the events there.
    mpv_set_wakeup_callback(
        m_mpv,
        [](void *context) {
            QMetaObject::invokeMethod(static_cast<MpvAudioEngine *>(context), &MpvAudioEngine::drainEvents,
                                      Qt::QueuedConnection);
        },
        this);

    m_tick.setInterval(tickIntervalMs);
    connect(&m_tick, &QTimer::timeout, this, &MpvAudioEngine::emitTick);
    m_tick.start();
}

MpvAudioEngine::~MpvAudioEngine()
{
    mpv_set_wakeup_callback(m_mpv, nullptr, nullptr);
    // Joins mpv's threads; drains already posted are dropped with this object.
    mpv_terminate_destroy(m_mpv);
}

QList<EngineItemId> MpvAudioEngine::items() const
{
    return m_entries;
}

std::optional<EngineItemId> MpvAudioEngine::insert(const PlayerItem &item, std::optional<EngineItemId> after)
{
    const bool intoEmpty = !after && m_entries.isEmpty();
    const bool behindCurrent = after && m_entries.size() == 1 && m_entries.first() == *after && !m_currentFailed;
    if (!intoEmpty && !behindCurrent)
        return std::nullopt;
    // "append-play" also for the second entry: should the first have ended a moment ago, an idle mpv would
    // leave a plain "append" waiting forever.
    const QString url = item.url.isLocalFile() ? item.url.toLocalFile() : item.url.toString(QUrl::FullyEncoded);
    mpv_node result{};
    if (MpvNode::Command("loadfile").arg("url", url).arg("flags", QStringLiteral("append-play")).run(m_mpv, &result)
        < 0)
        return std::nullopt;
    const mpv_node *idNode = MpvNode::find(result, "playlist_entry_id");
    const std::optional<qint64> id = idNode ? MpvNode::intValue(*idNode) : std::nullopt;
    mpv_free_node_contents(&result);
    if (!id)
        return std::nullopt;
    if (intoEmpty) {
        m_duration.reset();
        m_lastTick.reset();
        m_timePos = 0;
    }
    m_entries.append(*id);
    return *id;
}

void MpvAudioEngine::remove(EngineItemId item)
{
    if (!m_entries.removeOne(item))
        return;
    removeFromMpv(item);
}

void MpvAudioEngine::removeAll()
{
    m_entries.clear();
    m_loadingEntry.reset();
    m_currentFailed = false;
    m_duration.reset();
    m_lastTick.reset();
    m_timePos = 0;
    // "stop" empties mpv's playlist; with idle on, mpv waits for the next file.
    MpvNode::Command("stop").run(m_mpv);
}

void MpvAudioEngine::advance()
{
    if (m_entries.size() < 2)
        return;
    const EngineItemId old = m_entries.takeFirst();
    m_currentFailed = false;
    m_duration.reset();
    m_lastTick.reset();
    m_timePos = 0;
    MpvNode::Command("playlist-next").run(m_mpv);
    removeFromMpv(old);
}

void MpvAudioEngine::play()
{
    int flag = 0;
    mpv_set_property(m_mpv, "pause", MPV_FORMAT_FLAG, &flag);
}

void MpvAudioEngine::pause()
{
    int flag = 1;
    mpv_set_property(m_mpv, "pause", MPV_FORMAT_FLAG, &flag);
}

void MpvAudioEngine::seek(double seconds)
{
    MpvNode::Command("seek").arg("target", seconds).arg("flags", QStringLiteral("absolute+exact")).run(m_mpv);
    m_timePos = std::max(seconds, 0.0);
    m_lastTick = m_timePos;
}

void MpvAudioEngine::setVolume(float volume)
{
    // mpv's volume is a percentage on a cubic curve, which already follows loudness as people hear it.
    double percent = std::clamp(double(volume), 0.0, 1.0) * 100.0;
    mpv_set_property(m_mpv, "volume", MPV_FORMAT_DOUBLE, &percent);
}

std::optional<double> MpvAudioEngine::currentDuration() const
{
    if (m_entries.isEmpty())
        return std::nullopt;
    return m_duration;
}

void MpvAudioEngine::setOutputDevice(const QString &name)
{
    const QByteArray value = name.toUtf8();
    mpv_set_property_string(m_mpv, "audio-device", value.constData());
}

void MpvAudioEngine::drainEvents()
{
    while (m_mpv) {
        const mpv_event *event = mpv_wait_event(m_mpv, 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        handleEvent(*event);
    }
}

void MpvAudioEngine::handleEvent(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        m_loadingEntry = static_cast<const mpv_event_start_file *>(event.data)->playlist_entry_id;
        // The new entry's time-pos starts unknown, and is briefly negative at a gapless boundary.
        m_lastTick.reset();
        m_timePos = 0;
        m_duration.reset();
        break;
    case MPV_EVENT_FILE_LOADED:
        if (m_loadingEntry && m_entries.contains(*m_loadingEntry))
            Q_EMIT itemReady(*m_loadingEntry);
        break;
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

void MpvAudioEngine::handleEndFile(EngineItemId entry, int reason)
{
    // Only the current entry can end by itself; anything else was removed or replaced and says nothing.
    if (m_entries.isEmpty() || m_entries.first() != entry)
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
    m_entries.removeFirst();
    removeFromMpv(entry);
    Q_EMIT itemEnded(entry);
}

void MpvAudioEngine::handlePropertyChange(const mpv_event &event)
{
    const auto *property = static_cast<const mpv_event_property *>(event.data);
    const QByteArray name(property->name);
    if (name == "time-pos") {
        if (property->format == MPV_FORMAT_DOUBLE)
            m_timePos = std::max(*static_cast<const double *>(property->data), 0.0);
    } else if (name == "duration") {
        if (property->format == MPV_FORMAT_DOUBLE)
            m_duration = *static_cast<const double *>(property->data);
        else
            m_duration.reset();
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

std::optional<qsizetype> MpvAudioEngine::playlistIndexOf(EngineItemId entry) const
{
    mpv_node playlist{};
    if (mpv_get_property(m_mpv, "playlist", MPV_FORMAT_NODE, &playlist) < 0)
        return std::nullopt;
    std::optional<qsizetype> index;
    const QList<const mpv_node *> entries = MpvNode::elements(playlist);
    for (qsizetype i = 0; i < entries.size() && !index; ++i) {
        const mpv_node *id = MpvNode::find(*entries[i], "id");
        if (id && MpvNode::intValue(*id) == entry)
            index = i;
    }
    mpv_free_node_contents(&playlist);
    return index;
}

void MpvAudioEngine::removeFromMpv(EngineItemId entry)
{
    if (const std::optional<qsizetype> index = playlistIndexOf(entry))
        MpvNode::Command("playlist-remove").arg("index", qint64(*index)).run(m_mpv);
}
