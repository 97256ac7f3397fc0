#pragma once

// The audio engine on libmpv. mpv's own playlist mirrors the engine's list: at most two entries, the song
// playing and the one waiting behind it, each named by its playlist entry id. Played entries are removed as
// soon as mpv moves past them, so mpv never holds more than the two.

#include "audioengine.h"

#include <QTimer>

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

    // Sets LC_NUMERIC to "C" for mpv; make it after the Qt application, which sets the system's locale.
    explicit MpvAudioEngine(QObject *parent = nullptr);
    explicit MpvAudioEngine(const Options &options, QObject *parent = nullptr);
    ~MpvAudioEngine() override;

    [[nodiscard]] QList<EngineItemId> items() const override;
    std::optional<EngineItemId> insert(const PlayerItem &item, std::optional<EngineItemId> after) override;
    void remove(EngineItemId item) override;
    void removeAll() override;
    void advance() override;

    void play() override;
    void pause() override;
    void seek(double seconds) override;
    void setVolume(float volume) override;

    [[nodiscard]] std::optional<double> currentDuration() const override;

    [[nodiscard]] QList<OutputDevice> outputDevices() const override { return m_outputDevices; }
    [[nodiscard]] QString outputDevice() const override { return m_outputDevice; }
    void setOutputDevice(const QString &name) override;

private:
    void drainEvents();
    void handleEvent(const mpv_event &event);
    void handleEndFile(EngineItemId entry, int reason);
    void handlePropertyChange(const mpv_event &event);
    void emitTick();
    [[nodiscard]] std::optional<qsizetype> playlistIndexOf(EngineItemId entry) const;
    void removeFromMpv(EngineItemId entry);

    mpv_handle *m_mpv = nullptr;
    QList<EngineItemId> m_entries;
    // The entry whose file mpv is opening now, so that "file loaded" can name it.
    std::optional<EngineItemId> m_loadingEntry;
    // The current entry failed to open and mpv was stopped: nothing more may start behind it.
    bool m_currentFailed = false;
    std::optional<double> m_duration;
    double m_timePos = 0;
    std::optional<double> m_lastTick;
    QTimer m_tick;
    QList<OutputDevice> m_outputDevices;
    QString m_outputDevice;
};
