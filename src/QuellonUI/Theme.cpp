#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QFontInfo>
#include <QStringList>

namespace quellon {

namespace {

QFont scaled(double factor, QFont::Weight weight = QFont::Normal)
{
    QFont font = Fonts::body();
    font.setPointSizeF(QFontInfo{font}.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

QColor withAlpha(QColor colour, int alpha)
{
    colour.setAlpha(alpha);
    return colour;
}

} // namespace

const Theme& Theme::light()
{
    static const Theme theme{
        .background = QColor{0xf7, 0xf7, 0xf9},
        .card = Qt::white,
        .text = QColor{0x1c, 0x1c, 0x1e},
        .secondaryText = QColor{0x62, 0x62, 0x6a},
        .faintText = QColor{0x7c, 0x7c, 0x85},
        .separator = QColor{0, 0, 0, 26},
        .border = QColor{0, 0, 0, 46},
        .control = QColor{0, 0, 0, 20},
        .track = QColor{0, 0, 0, 24},
        .switchOff = QColor{0xc6, 0xc6, 0xcc},
        .hover = QColor{0, 0, 0, 14},
        .pressed = QColor{0, 0, 0, 28},
        .accent = QColor{0x0a, 0x7a, 0xff},
        .accentFill = QColor{0x0a, 0x6f, 0xe8},
        .good = QColor{0x2f, 0xb4, 0x57},
        .caution = QColor{0xf0, 0xb4, 0x00},
        .warning = QColor{0xf0, 0x86, 0x0b},
        .bad = QColor{0xe5, 0x48, 0x4d},
        .accentText = QColor{0x06, 0x65, 0xd8},
        .goodText = QColor{0x17, 0x7a, 0x3a},
        .cautionText = QColor{0x85, 0x5f, 0x00},
        .warningText = QColor{0xa8, 0x55, 0x00},
        .badText = QColor{0xc6, 0x2c, 0x32},
    };
    return theme;
}

const Theme& Theme::dark()
{
    static const Theme theme{
        .background = QColor{0x24, 0x24, 0x27},
        .card = QColor{0x30, 0x30, 0x34},
        .text = QColor{0xf4, 0xf4, 0xf6},
        .secondaryText = QColor{0xa8, 0xa8, 0xb1},
        .faintText = QColor{0x8b, 0x8b, 0x94},
        .separator = QColor{255, 255, 255, 26},
        .border = QColor{255, 255, 255, 46},
        .control = QColor{255, 255, 255, 30},
        .track = QColor{255, 255, 255, 30},
        .switchOff = QColor{0x5a, 0x5a, 0x62},
        .hover = QColor{255, 255, 255, 18},
        .pressed = QColor{255, 255, 255, 34},
        .accent = QColor{0x3b, 0x94, 0xff},
        .accentFill = QColor{0x1f, 0x78, 0xe6},
        .good = QColor{0x35, 0xc4, 0x63},
        .caution = QColor{0xff, 0xcf, 0x33},
        .warning = QColor{0xff, 0x9f, 0x2e},
        .bad = QColor{0xff, 0x61, 0x66},
        .accentText = QColor{0x5e, 0xa8, 0xff},
        .goodText = QColor{0x4c, 0xd0, 0x78},
        .cautionText = QColor{0xff, 0xd6, 0x57},
        .warningText = QColor{0xff, 0xac, 0x4a},
        .badText = QColor{0xff, 0x7a, 0x7e},
    };
    return theme;
}

const Theme& Theme::of(const QPalette& palette)
{
    constexpr int middle = 128;
    return palette.color(QPalette::Window).lightness() < middle ? dark() : light();
}

QPalette Theme::palette() const
{
    constexpr int disabledAlpha = 110;
    QPalette result{background};
    result.setColor(QPalette::Window, background);
    result.setColor(QPalette::Base, card);
    result.setColor(QPalette::AlternateBase, background);
    result.setColor(QPalette::Button, card);
    result.setColor(QPalette::ToolTipBase, card);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText, QPalette::ToolTipText}) {
        result.setColor(role, text);
        result.setColor(QPalette::Disabled, role, withAlpha(text, disabledAlpha));
    }
    result.setColor(QPalette::PlaceholderText, faintText);
    result.setColor(QPalette::Highlight, accent);
    result.setColor(QPalette::HighlightedText, Qt::white);
    result.setColor(QPalette::Link, accentText);
    result.setColor(QPalette::LinkVisited, accentText);
    return result;
}

QColor Theme::tone(MenuPresentation::Tone tone) const
{
    switch (tone) {
    case MenuPresentation::Tone::off:
        return secondaryText;
    case MenuPresentation::Tone::standby:
        return warning;
    case MenuPresentation::Tone::active:
        break;
    }
    return good;
}

QColor Theme::tint(Tint tint) const
{
    switch (tint) {
    case Tint::primary:
        break;
    case Tint::secondary:
        return secondaryText;
    case Tint::green:
        return good;
    case Tint::yellow:
        return caution;
    case Tint::orange:
        return warning;
    case Tint::red:
        return bad;
    case Tint::blue:
        return accent;
    }
    return text;
}

QColor Theme::textTint(Tint tint) const
{
    switch (tint) {
    case Tint::primary:
        break;
    case Tint::secondary:
        return secondaryText;
    case Tint::green:
        return goodText;
    case Tint::yellow:
        return cautionText;
    case Tint::orange:
        return warningText;
    case Tint::red:
        return badText;
    case Tint::blue:
        return accentText;
    }
    return text;
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

QFont subheadline()
{
    return scaled(1.0, QFont::Medium);
}

QFont callout()
{
    return scaled(1.0);
}

QFont caption()
{
    return scaled(0.92);
}

QFont caption2()
{
    return scaled(0.87);
}

QFont section()
{
    QFont font = scaled(0.85, QFont::DemiBold);
    font.setCapitalization(QFont::AllUppercase);
    font.setLetterSpacing(QFont::PercentageSpacing, 104);
    return font;
}

QFont medium(QFont font)
{
    font.setWeight(QFont::Medium);
    return font;
}

} // namespace Fonts

} // namespace quellon
