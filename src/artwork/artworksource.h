#pragma once

// What a cover view asks the image provider for: the cover at the pixel size of its bucket, so that the whole
// application makes few variants of one image. No cover, no source: the view shows its placeholder.

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class ArtworkSource : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString coverArt READ coverArt WRITE setCoverArt NOTIFY changed)
    Q_PROPERTY(qreal requestSize READ requestSize WRITE setRequestSize NOTIFY changed)
    Q_PROPERTY(qreal cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY changed)
    Q_PROPERTY(QUrl source READ source NOTIFY changed)
    // The cover blurred into a backdrop; its size does not follow requestSize.
    Q_PROPERTY(QUrl backdrop READ backdrop NOTIFY changed)

public:
    using QObject::QObject;

    [[nodiscard]] const QString &coverArt() const { return m_coverArt; }
    void setCoverArt(const QString &coverArt);
    [[nodiscard]] qreal requestSize() const { return m_requestSize; }
    void setRequestSize(qreal size);
    [[nodiscard]] qreal cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(qreal radius);
    [[nodiscard]] QUrl source() const;
    [[nodiscard]] QUrl backdrop() const;

Q_SIGNALS:
    void changed();

private:
    QString m_coverArt;
    qreal m_requestSize = 0;
    qreal m_cornerRadius = 0;
};

// A collection of songs drawn as one cover: the first album's, or a mosaic of the first four albums' covers
// once there are four.
class CoverCollage : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QStringList songCovers WRITE setSongCovers READ covers NOTIFY changed)
    Q_PROPERTY(QStringList covers READ covers NOTIFY changed)
    Q_PROPERTY(bool isMosaic READ isMosaic NOTIFY changed)

public:
    using QObject::QObject;

    // One cover id per album, in order, as albumCovers() gives them.
    void setSongCovers(const QStringList &covers);
    [[nodiscard]] const QStringList &covers() const { return m_covers; }
    [[nodiscard]] bool isMosaic() const;

Q_SIGNALS:
    void changed();

private:
    QStringList m_covers;
};
