#pragma once

// The audio engine on libmpv. mpv's own playlist mirrors the engine's list: at most two entries, the song
// playing and the one waiting behind it, each named by its playlist entry id. Played entries are removed as
// soon as mpv moves past them, so mpv never holds more than the two.

#include "audioengine.h"

#include <QFuture>
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

    // mpv itself starts at the first call that needs it, and then sets LC_NUMERIC to "C" for itself.
    explicit MpvAudioEngine(QObject *parent = nullptr);
    explicit MpvAudioEngine(const Options &options, QObject *parent = nullptr);
    ~MpvAudioEngine() override;

    // Loads libmpv on a worker thread, so that the first song need not wait for it.
    static QFuture<void> loadLibrary();
    // Starts mpv now rather than at the first song, so that the outputs are known before anything plays.
    void start() { mpv(); }

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
    mpv_handle *mpv();
    void createMpv();
    void applyVolume(float volume);
    void drainEvents();
    void handleEvent(const mpv_event &event);
    void handleEndFile(EngineItemId entry, int reason);
    void handlePropertyChange(const mpv_event &event);
    void emitTick();
    [[nodiscard]] std::optional<qsizetype> playlistIndexOf(EngineItemId entry) const;
    void removeFromMpv(EngineItemId entry);

    Options m_options;
    const MpvLibrary *m_library = nullptr;
    mpv_handle *m_mpv = nullptr;
    bool m_unavailable = false;
    std::optional<float> m_volume;
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
