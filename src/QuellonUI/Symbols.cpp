#include "QuellonUI/Symbols.h"

#include <QChar>
#include <QGlyphRun>
#include <QHash>
#include <QTextLayout>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

/// Whether some font of the system has a picture for this character.
bool isDrawable(char32_t character, const QFont& font)
{
    static QHash<std::pair<QString, char32_t>, bool> known;
    const std::pair key{font.key(), character};
    const auto found = known.constFind(key);
    if (found != known.constEnd()) return *found;
    QTextLayout layout{QString::fromUcs4(&character, 1), font};
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    bool drawable = true;
    for (const QGlyphRun& run : layout.glyphRuns()) {
        const auto glyphs = run.glyphIndexes();
        drawable = drawable && std::none_of(glyphs.begin(), glyphs.end(), [](quint32 glyph) { return glyph == 0; });
    }
    known.insert(key, drawable);
    return drawable;
}

} // namespace

QString withDrawableSymbols(const QString& text, const QFont& font)
{
    QString result;
    bool dropped = false;
    for (const char32_t character : text.toStdU32String()) {
        const bool blankBehind = dropped && character == U' ';
        dropped = QChar::category(character) == QChar::Symbol_Other && !isDrawable(character, font);
        if (!dropped && !blankBehind) result += QString::fromUcs4(&character, 1);
    }
    return result;
}

} // namespace quellon
