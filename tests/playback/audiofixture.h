#pragma once

// Real audio for the engine tests: a continuous tone cut sample-exactly into FLAC files, an engine that writes
// what it plays to a WAV file, and the measure of how far the written sound strays from the tone at each
// boundary between files.

#include "playback/mpvaudioengine.h"

#include <QFile>
#include <QProcess>
#include <QtEndian>

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace AudioFixture {
using namespace Qt::StringLiterals;

constexpr int sampleRate = 44100;

// Runs ffmpeg quietly; false when it failed.
inline bool ffmpeg(const QStringList &arguments)
{
    QProcess process;
    process.start(u"ffmpeg"_s, QStringList{u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-y"_s} + arguments);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

// Mono samples as floats in -1..1, read from a WAV file of 16-bit integers or 32-bit floats.
inline std::vector<float> readWav(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    std::vector<float> samples;
    int format = 0;
    int channels = 1;
    int bits = 16;
    qsizetype at = 12;
    while (at + 8 <= bytes.size()) {
        const QByteArray id = bytes.mid(at, 4);
        qsizetype size = qFromLittleEndian<quint32>(bytes.constData() + at + 4);
        const char *body = bytes.constData() + at + 8;
        if (id == "fmt ") {
            format = qFromLittleEndian<quint16>(body);
            channels = qFromLittleEndian<quint16>(body + 2);
            bits = qFromLittleEndian<quint16>(body + 14);
            // WAVE_FORMAT_EXTENSIBLE carries the real format at the start of its sub-format GUID.
            if (format == 0xFFFE)
                format = qFromLittleEndian<quint16>(body + 24);
        } else if (id == "data") {
            // mpv leaves the size open until it closes the file; read whatever is there.
            if (size == 0 || size == 0xFFFFFFFF || at + 8 + size > bytes.size())
                size = bytes.size() - at - 8;
            const int frameBytes = channels * bits / 8;
            for (qsizetype i = 0; i + frameBytes <= size; i += frameBytes) {
                if (format == 3 && bits == 32)
                    samples.push_back(qFromLittleEndian<float>(body + i));
                else if (format == 1 && bits == 16)
                    samples.push_back(qFromLittleEndian<qint16>(body + i) / 32768.0F);
            }
            break;
        }
        at += 8 + size + (size & 1);
    }
    return samples;
}

// A tone of two sines whose sum repeats only once a second, so that any shift of up to half a second is seen.
struct Tone {
    QString folder;
    qsizetype partSamples = 0;
    std::vector<float> samples; // the whole tone, all parts in order

    [[nodiscard]] QString partPath(int part) const { return folder + u"/part%1.flac"_s.arg(part); }
    [[nodiscard]] std::vector<float> part(int index) const
    {
        const auto begin = samples.begin() + index * partSamples;
        return {begin, begin + partSamples};
    }
};

// Writes `parts` FLAC files of `seconds` each into `folder`, cut from one tone at exact sample offsets.
inline std::optional<Tone> makeTone(const QString &folder, int parts, double seconds)
{
    Tone tone{.folder = folder, .partSamples = qsizetype(std::lround(seconds * sampleRate))};
    const QString whole = folder + u"/tone.wav"_s;
    const QString source = u"aevalsrc=0.35*sin(2*PI*440*t)+0.35*sin(2*PI*173*t):s=%1:d=%2"_s.arg(sampleRate).arg(
        seconds * parts + 0.1);
    if (!ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, source, u"-c:a"_s, u"pcm_s16le"_s, whole}))
        return std::nullopt;
    for (int i = 0; i < parts; ++i) {
        const QString trim =
            u"atrim=start_sample=%1:end_sample=%2"_s.arg(i * tone.partSamples).arg((i + 1) * tone.partSamples);
        if (!ffmpeg({u"-i"_s, whole, u"-af"_s, trim, u"-c:a"_s, u"flac"_s, tone.partPath(i)}))
            return std::nullopt;
    }
    tone.samples = readWav(whole);
    tone.samples.resize(std::size_t(tone.partSamples * parts));
    return tone;
}

// How a stretch of the output lines up with the expected sound.
struct Alignment {
    qsizetype shift = 0; // output position minus expected position, in samples
    float worstError = 1; // the largest difference of one sample at that shift
};

// Finds where `expected[from, from + window)` stands in `output`, looking `reach` samples either side of `guess`.
inline Alignment align(const std::vector<float> &output, const std::vector<float> &expected, qsizetype from,
                       qsizetype guess, qsizetype reach)
{
    constexpr qsizetype window = 4096;
    Alignment best;
    double bestError = std::numeric_limits<double>::max();
    for (qsizetype shift = guess - reach; shift <= guess + reach; ++shift) {
        const bool outside = from + shift < 0 || from + shift + window > qsizetype(output.size())
            || from + window > qsizetype(expected.size());
        if (outside)
            continue;
        double sum = 0;
        float worst = 0;
        for (qsizetype i = 0; i < window && sum < bestError; ++i) {
            const float difference = output[from + shift + i] - expected[from + i];
            sum += double(difference) * difference;
            worst = std::max(worst, std::abs(difference));
        }
        if (sum < bestError) {
            bestError = sum;
            best = Alignment{.shift = shift, .worstError = worst};
        }
    }
    return best;
}

// The samples gained (positive) or lost (negative) at each boundary of `expected`, a sound made of parts of
// `partSamples` each. The output may start late; that lead is not a gap.
struct GapReport {
    qsizetype lead = 0;
    QList<qsizetype> gaps;
    float worstError = 1;
};

inline GapReport measureGaps(const std::vector<float> &output, const std::vector<float> &expected,
                             qsizetype partSamples)
{
    GapReport report;
    const Alignment start = align(output, expected, 0, 0, 4096);
    report.lead = start.shift;
    report.worstError = start.worstError;
    qsizetype shift = start.shift;
    for (qsizetype boundary = partSamples; boundary < qsizetype(expected.size()); boundary += partSamples) {
        const Alignment at = align(output, expected, boundary, shift, sampleRate / 4);
        report.gaps.append(at.shift - shift);
        report.worstError = std::max(report.worstError, at.worstError);
        shift = at.shift;
    }
    return report;
}

inline std::vector<float> concat(const std::vector<std::vector<float>> &parts)
{
    std::vector<float> all;
    for (const auto &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// An engine that writes to `path` at the pace of a real device, so that events arrive as they would.
inline MpvAudioEngine::Options fileOutput(const QString &path)
{
    return {.audioOutput = u"pcm"_s, .audioOutputFile = path, .audioFilter = u"lavfi=[arealtime]"_s};
}

}
