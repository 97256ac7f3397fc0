#pragma once

// The audio engine on libmpv. mpv's own playlist mirrors the engine's list: at most two entries, the song
// playing and the one waiting behind it. Played entries are removed as soon as mpv moves past them, so mpv never
// holds more than the two.
//
// libmpv is loaded on a worker thread and mpv started once it is in. Until then the engine keeps its list, the
// pause state and a seek by itself, and hands them to mpv when it starts, so that restoring the last queue at
// start-up neither waits for libmpv nor is lost when the program quits before it came. The engine's item ids
// are its own for that reason; each maps to mpv's playlist entry id once mpv has the item.

#include "audioengine.h"

#include <QTimer>

struct MpvLibrary;
struct mpv_handle;
struct mpv_event;

class MpvAudioEngine : public AudioEngine
{
    Q_OBJECT

public:
    // Where the sound goes. The defaults are the system's output; tests write PCM to a file instead.
    struct Options {
        QString audioOutput;      // mpv's "ao"; empty for mpv's own choice
        QString audioOutputFile;  // "ao-pcm-file" when the output is "pcm"
        QString audioFilter;      // mpv's "af", e.g. "lavfi=[arealtime]" to pace a file output in real time
    };

    explicit MpvAudioEngine(QObject *parent = nullptr);
    explicit MpvAudioEngine(const Options &options, QObject *parent = nullptr);
    ~MpvAudioEngine() override;

    // Starts loading libmpv, and mpv once it is in, unless that has begun; the first item asks for it too.
    void start();
    [[nodiscard]] bool isStarted() const { return m_mpv != nullptr; }

    [[nodiscard]] QList<EngineItemId> items() const override;
    std::optional<EngineItemId> insert(const PlayerItem &item, std::optional<EngineItemId> after) override;
    void remove(EngineItemId item) override;
    void removeAll() override;
    void advance() override;

    void play() override;
    void pause() override;
    void seek(double seconds) override;
    void setVolume(float volume) override;
    void setLoudnessLevelling(LoudnessLevelling levelling) override;

    [[nodiscard]] std::optional<double> currentDuration() const override;

    [[nodiscard]] QList<OutputDevice> outputDevices() const override { return m_outputDevices; }
    [[nodiscard]] QString outputDevice() const override { return m_outputDevice; }
    void setOutputDevice(const QString &name) override;

private:
    struct Entry {
        EngineItemId id = 0;
        QString url;
        std::optional<qint64> mpvId; // once mpv has it
        bool loaded = false; // mpv has opened its file
    };

    void createMpv();
    void becomeUnavailable();
    void loadIntoMpv(Entry &entry);
    void applyVolume(float volume);
    void applyLevelling();
    void applyPause();
    void drainEvents();
    void handleEvent(const mpv_event &event);
    void handleEndFile(qint64 mpvId, int reason);
    void handlePropertyChange(const mpv_event &event);
    void emitTick();
    void forgetPosition();
    [[nodiscard]] std::optional<EngineItemId> idOf(qint64 mpvId) const;
    [[nodiscard]] std::optional<qsizetype> playlistIndexOf(qint64 mpvId) const;
    void removeFromMpv(const Entry &entry);

    Options m_options;
    const MpvLibrary *m_library = nullptr;
    mpv_handle *m_mpv = nullptr;
    bool m_starting = false;
    bool m_unavailable = false;
    bool m_paused = true;
    std::optional<float> m_volume;
    // Levelled by album unless told otherwise, as the setting's own default.
    LoudnessLevelling m_levelling = LoudnessLevelling::ByAlbum;
    QList<Entry> m_entries;
    EngineItemId m_lastId = 0;
    // The entry whose file mpv is opening now.
    std::optional<EngineItemId> m_loadingEntry;
    // A seek asked for before the current entry's file was open.
    std::optional<double> m_seekWhenLoaded;
    // The current entry failed to open and mpv was stopped: nothing more may start behind it.
    bool m_currentFailed = false;
    std::optional<double> m_duration;
    double m_timePos = 0;
    std::optional<double> m_lastTick;
    QTimer m_tick;
    QList<OutputDevice> m_outputDevices;
    QString m_outputDevice;
};
