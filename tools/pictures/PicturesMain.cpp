#include "Comparison.h"
#include "Picture.h"
#include "Studio.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTextStream>

namespace {

using namespace quellon;

QTextStream& say()
{
    static QTextStream stream{stderr};
    return stream;
}

bool save(const QImage& image, const QDir& folder, const QString& name)
{
    if (image.save(folder.filePath(name))) return true;
    say() << folder.filePath(name) << ": can't be written\n";
    return false;
}

/// Draws everything light and dark; only what is compared with when `goldens`.
bool drawAll(const QDir& folder, double scale, const QString& only, bool goldens)
{
    int count = 0;
    bool allWell = true;
    for (const bool dark : {false, true}) {
        Studio::light(dark);
        for (const Picture& picture : pictures()) {
            if (goldens && !picture.isGolden) continue;
            if (!only.isEmpty() && !picture.name.startsWith(only)) continue;
            allWell = save(picture.draw(), folder, fileName(picture, dark, scale)) && allWell;
            ++count;
        }
    }
    say() << count << " pictures in " << folder.path() << '\n';
    return allWell && count > 0;
}

/// Draws the pictures of the documents, which are light and dark in one.
bool drawReadme(const QDir& folder)
{
    bool allWell = true;
    for (const Picture& picture : readmePictures())
        allWell = save(picture.draw(), folder, picture.name + QStringLiteral(".png")) && allWell;
    return allWell;
}

/// The scale has to be known before there is an application.
double scaleOf(int argc, char** argv)
{
    for (int i = 1; i + 1 < argc; ++i)
        if (QByteArray{argv[i]} == "--scale") return QByteArray{argv[i + 1]}.toDouble();
    return 1.0;
}

} // namespace

int main(int argc, char** argv)
{
    const double scale = scaleOf(argc, argv);
    if (scale < 1.0 || scale > 4.0) {
        say() << "--scale: a number from 1 to 4\n";
        return 2;
    }
    Studio::prepare(scale);
    QApplication application{argc, argv};
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Makes pictures of every window, light and dark, without a display."));
    parser.addHelpOption();
    parser.addOption(
        {QStringLiteral("scale"), QStringLiteral("Pixels a point."), QStringLiteral("N"), QStringLiteral("1")});
    parser.addOption({QStringLiteral("only"), QStringLiteral("Only what begins with this."), QStringLiteral("NAME")});
    parser.addOption({QStringLiteral("goldens"), QStringLiteral("Only what the tests compare with.")});
    parser.addOption({QStringLiteral("readme"), QStringLiteral("The pictures of the documents.")});
    parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("Where the pictures go."));
    parser.process(application);
    if (parser.positionalArguments().size() != 1) parser.showHelp(2);
    Studio::furnish();
    if (const QStringList missing = Studio::missingFonts(); !missing.isEmpty()) {
        say() << "these fonts are missing: " << missing.join(QStringLiteral(", ")) << '\n';
        return 1;
    }
    QDir folder{parser.positionalArguments().constFirst()};
    if (!folder.mkpath(QStringLiteral("."))) {
        say() << folder.path() << ": can't be made\n";
        return 1;
    }
    const bool allWell =
        parser.isSet(QStringLiteral("readme"))
            ? drawReadme(folder)
            : drawAll(folder, scale, parser.value(QStringLiteral("only")), parser.isSet(QStringLiteral("goldens")));
    return allWell ? 0 : 1;
}
