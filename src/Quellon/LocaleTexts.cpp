#include "Quellon/LocaleTexts.h"

#include <QRegularExpression>
#include <QString>

namespace quellon::LocaleTexts {

namespace {

/// The part of a long date format that runs from the month to the day, or from the day to the month, with what belongs
/// to the day behind it ("d." or "d日"): "MMMM d", "d. MMMM", "M月d日". Empty when it has no such part.
QString monthAndDayFormat(const QString& longFormat)
{
    static const QRegularExpression monthFirst{QStringLiteral(R"(M+.*?d{1,2}(?!d)[^\s,\w]?)")};
    static const QRegularExpression dayFirst{QStringLiteral(R"((?<!d)d{1,2}(?!d).*?M+)")};
    for (const auto* const pattern : {&dayFirst, &monthFirst}) {
        const auto match = pattern->match(longFormat);
        if (match.hasMatch() && !match.captured().contains(u'y')) return match.captured();
    }
    return {};
}

/// The format with the letters of its quoted words out of the way of those that stand for something, and back.
constexpr char16_t elsewhere = 0xe000; // for private use
constexpr char16_t ascii = 0x80;
QString withHiddenWords(const QString& format)
{
    QString result;
    bool quoted = false;
    for (const QChar each : format) {
        if (each == u'\'')
            quoted = !quoted;
        else
            result += quoted && each.unicode() < ascii ? QChar(char16_t(each.unicode() + elsewhere)) : each;
    }
    return result;
}
QString withShownWords(QString format)
{
    for (QChar& each : format) {
        if (each.unicode() >= elsewhere && each.unicode() < elsewhere + ascii)
            each = QChar(char16_t(each.unicode() - elsewhere));
    }
    return format;
}

/// A format with a written month becomes a pattern; one with the month's number does so where the number and the sign
/// behind it are the month's abbreviated name, as "M月" in Chinese.
QString toPattern(QString format, const QString& january)
{
    static const QRegularExpression written{QStringLiteral("M{3,4}")};
    static const QRegularExpression number{QStringLiteral(R"(M{1,2}(\D)?)")};
    static const QRegularExpression day{QStringLiteral("d{1,2}")};
    if (format.contains(written)) {
        format.replace(written, QStringLiteral("{month}"));
    } else {
        const auto match = number.match(format);
        if (!january.endsWith(match.captured(1)) || match.captured(1).isEmpty()) return {};
        format.replace(match.capturedStart(), match.capturedLength(), QStringLiteral("{month}"));
    }
    format.replace(day, QStringLiteral("{day}")); // No "d" is in "{month}".
    return withShownWords(format).trimmed();
}

} // namespace

DateTexts dates(const QLocale& locale)
{
    DateTexts texts;
    if (locale.language() == QLocale::C) return texts;
    const QString pattern = toPattern(monthAndDayFormat(withHiddenWords(locale.dateFormat(QLocale::LongFormat))),
                                      locale.monthName(1, QLocale::ShortFormat));
    if (pattern.isEmpty()) return texts;
    for (std::size_t i = 0; i < texts.months.size(); ++i) {
        const QString name = locale.monthName(static_cast<int>(i) + 1, QLocale::ShortFormat);
        if (name.isEmpty()) return {};
        texts.months[i] = name.toStdString();
    }
    texts.pattern = pattern.toStdString();
    return texts;
}

} // namespace quellon::LocaleTexts
