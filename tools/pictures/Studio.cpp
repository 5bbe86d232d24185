#include "Studio.h"

#include "QuellonUI/Kit/Appearance.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>

#include <cstdio>

namespace quellon::Studio {

namespace {

/// Says what Qt says, but for what goes without saying where there is no display.
void report(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    for (const auto& usual : {QStringLiteral("This plugin does not support"), QStringLiteral("QStandardPaths:")})
        if (message.startsWith(usual)) return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

} // namespace

void prepare(double scale)
{
    // A screen with room for every window at every scale: on a smaller one they would shrink.
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" QUELLON_PICTURES "/screen.json");
    qputenv("FONTCONFIG_FILE", QUELLON_PICTURES "/fonts.conf");
    qputenv("QT_FONT_DPI", "96");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    qputenv("LC_ALL", "C.UTF-8");
    for (const char* name : {"QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_SCREEN_SCALE_FACTORS", "LANGUAGE"})
        qunsetenv(name);
    qInstallMessageHandler(report);
}

void furnish()
{
    QFont font{QStringLiteral("Noto Sans")};
    font.setPointSizeF(textSize);
    QApplication::setFont(font);
    // The line where one types does not blink.
    QApplication::setCursorFlashTime(0);
}

QStringList missingFonts()
{
    QStringList missing;
    const QStringList present = QFontDatabase::families();
    for (const auto& family :
         {QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans CJK SC"), QStringLiteral("Noto Color Emoji")})
        if (!present.contains(family)) missing << family;
    return missing;
}

void light(bool dark)
{
    Appearance::apply(dark);
}

} // namespace quellon::Studio
