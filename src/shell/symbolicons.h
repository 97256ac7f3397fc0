#pragma once

// The one table from the symbol names the screens use to glyphs of the Material Icons font. Views ask by symbol
// name, so a screen reads the same as its description and only this table knows the font.

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class SymbolIcons : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT)

public:
    using QObject::QObject;

    // The glyph as a one-character string; a name missing from the table gives the generic "help" glyph, so a
    // forgotten row shows as a visible question mark rather than nothing.
    Q_INVOKABLE [[nodiscard]] static QString glyph(const QString &symbolName);
    [[nodiscard]] static bool hasGlyph(const QString &symbolName);
    [[nodiscard]] static QString fontFamily();
    // Where Debian's fonts-material-design-icons-iconfont puts the font.
    [[nodiscard]] static QString fontPath();
};
