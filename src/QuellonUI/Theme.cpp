#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QFontInfo>
#include <QStringList>

namespace quellon {

namespace {

const Theme& light()
{
    static const Theme theme{
        .background = QColor{0xf7, 0xf7, 0xf9},
        .card = Qt::white,
        .text = QColor{0x1c, 0x1c, 0x1e},
        .secondaryText = QColor{0x62, 0x62, 0x6a},
        .faintText = QColor{0x7c, 0x7c, 0x85},
        .separator = QColor{0, 0, 0, 26},
        .track = QColor{0, 0, 0, 24},
        .hover = QColor{0, 0, 0, 14},
        .accent = QColor{0x0a, 0x7a, 0xff},
        .good = QColor{0x2f, 0xb4, 0x57},
        .warning = QColor{0xf2, 0x9d, 0x0b},
        .bad = QColor{0xe5, 0x48, 0x4d},
    };
    return theme;
}

const Theme& dark()
{
    static const Theme theme{
        .background = QColor{0x24, 0x24, 0x27},
        .card = QColor{0x30, 0x30, 0x34},
        .text = QColor{0xf4, 0xf4, 0xf6},
        .secondaryText = QColor{0xa8, 0xa8, 0xb1},
        .faintText = QColor{0x8b, 0x8b, 0x94},
        .separator = QColor{255, 255, 255, 26},
        .track = QColor{255, 255, 255, 30},
        .hover = QColor{255, 255, 255, 18},
        .accent = QColor{0x3b, 0x94, 0xff},
        .good = QColor{0x35, 0xc4, 0x63},
        .warning = QColor{0xff, 0xb0, 0x2e},
        .bad = QColor{0xff, 0x61, 0x66},
    };
    return theme;
}

QFont scaled(double factor, QFont::Weight weight = QFont::Normal)
{
    QFont font = Fonts::body();
    font.setPointSizeF(QFontInfo{font}.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

} // namespace

const Theme& Theme::of(const QPalette& palette)
{
    constexpr int middle = 128;
    return palette.color(QPalette::Window).lightness() < middle ? dark() : light();
}

QPalette Theme::palette() const
{
    QPalette result{background};
    result.setColor(QPalette::Window, background);
    result.setColor(QPalette::Base, background);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) result.setColor(role, text);
    result.setColor(QPalette::Highlight, accent);
    return result;
}

QColor Theme::tone(MenuPresentation::Tone tone) const
{
    switch (tone) {
    case MenuPresentation::Tone::off:
        return faintText;
    case MenuPresentation::Tone::standby:
        return warning;
    case MenuPresentation::Tone::active:
        break;
    }
    return good;
}

namespace Fonts {

QFont body()
{
    QFont font = QApplication::font();
    // The resolved family first: a generic one would take quotation marks from the Chinese font.
    font.setFamilies(
        {QFontInfo{font}.family(), QStringLiteral("Noto Sans CJK SC"), QStringLiteral("Noto Color Emoji")});
    return font;
}

QFont title()
{
    return scaled(1.2, QFont::DemiBold);
}

QFont caption()
{
    return scaled(0.9);
}

QFont section()
{
    QFont font = scaled(0.85, QFont::DemiBold);
    font.setCapitalization(QFont::AllUppercase);
    font.setLetterSpacing(QFont::PercentageSpacing, 104);
    return font;
}

} // namespace Fonts

} // namespace quellon
