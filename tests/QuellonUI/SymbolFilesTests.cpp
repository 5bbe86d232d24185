#include "QuellonCore/Presentation/LogTabModel.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PanelSymbols.h"
#include "QuellonCore/Presentation/SettingsSymbols.h"
#include "QuellonCore/Presentation/SettingsTab.h"
#include "QuellonCore/Presentation/ToastPresenter.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <QSvgRenderer>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <iterator>
#include <set>
#include <string>

namespace quellon {

namespace {

using namespace std::chrono_literals;

const QString dataFolder = QStringLiteral(TEST_DATA "/../../data");
constexpr double grid = 24.0;

/// Every symbol of the menu bar, whatever the state of the guard.
std::set<std::string> menuBarNames()
{
    const Date now{Seconds{800'000'000.0}};
    std::set<std::string> names;
    for (unsigned bits = 0; bits < 32; ++bits) {
        for (const auto& age : {-1s, 10s, 100s}) {
            MenuPresentation::MenuBarState state;
            state.isRunning = (bits & 1) != 0;
            state.isMetered = (bits & 2) != 0;
            state.meteredOnly = (bits & 4) != 0;
            state.idleTether = (bits & 8) != 0;
            state.suspendedCount = (bits & 16) != 0 ? 1 : 0;
            if (age >= 0s) state.alert = MenuPresentation::AlertBadge{"app", 1, now - age, true};
            names.insert(MenuPresentation::menuBar(state, now).symbol);
        }
    }
    return names;
}

/// Every name that a model can give.
std::set<std::string> modelNames()
{
    std::set<std::string> names = menuBarNames();
    names.insert(PanelSymbols::all.begin(), PanelSymbols::all.end());
    names.insert(SettingsSymbols::all.begin(), SettingsSymbols::all.end());
    for (const auto& tab : settingsTabs.rows) names.emplace(symbol(tab.value));
    for (const auto kind : {GuardEvent::Kind::info, GuardEvent::Kind::warning, GuardEvent::Kind::enforced})
        names.emplace(LogTabModel::symbol(kind));
    for (const auto style : {NotificationStyle::transient, NotificationStyle::persistent}) {
        NotificationPlan plan;
        plan.style = style;
        names.insert(ToastModel::of(plan, 1).symbol);
    }
    names.emplace(ToastModel::closeSymbol);
    return names;
}

QByteArray contents(const QString& path)
{
    QFile file{path};
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
}

QByteArray symbolFile(const std::string& name)
{
    return contents(dataFolder + QStringLiteral("/symbols/%1.svg").arg(QString::fromStdString(name)));
}

QString symbolicPath(const std::string& name)
{
    const QString words = QString::fromStdString(name).replace(QLatin1Char{'.'}, QLatin1Char{'-'});
    return dataFolder + QStringLiteral("/icons/hicolor/scalable/status/quellon-%1-symbolic.svg").arg(words);
}

QImage drawn(const QByteArray& svg, int size)
{
    QImage image{size, size, QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::transparent);
    QSvgRenderer renderer{svg};
    QPainter painter{&image};
    renderer.render(&painter, QRectF{0, 0, double(size), double(size)});
    return image;
}

/// The share of the picture that is covered, 0 to 1.
double coverage(const QImage& image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) sum += image.pixelColor(x, y).alphaF();
    return sum / (image.width() * image.height());
}

/// The mean difference of how much each pixel is covered, 0 to 1.
double difference(const QImage& left, const QImage& right)
{
    double sum = 0;
    for (int y = 0; y < left.height(); ++y)
        for (int x = 0; x < left.width(); ++x)
            sum += std::abs(left.pixelColor(x, y).alphaF() - right.pixelColor(x, y).alphaF());
    return sum / (left.width() * left.height());
}

/// All values of an attribute within a picture, in the order of the file.
QStringList attributes(const QByteArray& svg, const QString& name)
{
    QStringList values;
    QXmlStreamReader reader{svg};
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.attributes().hasAttribute(name))
            values << reader.attributes().value(name).toString();
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return values;
}

} // namespace

TEST(SymbolFiles, everyNameOfAModelHasAFile)
{
    const auto names = modelNames();
    EXPECT_EQ(menuBarNames().size(), 7U);
    for (const std::string& name : names) EXPECT_FALSE(symbolFile(name).isEmpty()) << name;
}

TEST(SymbolFiles, noFileIsWithoutUse)
{
    const auto names = modelNames();
    for (const QString& file : QDir{dataFolder + QStringLiteral("/symbols")}.entryList(QDir::Files)) {
        ASSERT_TRUE(file.endsWith(QStringLiteral(".svg"))) << file.toStdString();
        EXPECT_EQ(names.count(file.chopped(4).toStdString()), 1U) << file.toStdString();
    }
}

TEST(SymbolFiles, allStandOnOneGridWithOnePenInTheTextColour)
{
    const auto once = [](const char* text) { return QStringList{QString::fromLatin1(text)}; };
    for (const std::string& name : modelNames()) {
        SCOPED_TRACE(name);
        const QByteArray svg = symbolFile(name);
        EXPECT_EQ(attributes(svg, QStringLiteral("viewBox")), once("0 0 24 24"));
        EXPECT_EQ(attributes(svg, QStringLiteral("stroke-width")), once("1.8"));
        EXPECT_EQ(attributes(svg, QStringLiteral("stroke-linecap")), once("round"));
        EXPECT_EQ(attributes(svg, QStringLiteral("stroke-linejoin")), once("round"));
        for (const auto& paint : {QStringLiteral("fill"), QStringLiteral("stroke")})
            for (const QString& colour : attributes(svg, paint))
                EXPECT_TRUE(colour == QStringLiteral("currentColor") || colour == QStringLiteral("none"))
                    << colour.toStdString();
        for (const char* other : {"style", "class", "opacity", "fill-opacity", "stroke-opacity", "transform"})
            EXPECT_EQ(attributes(svg, QString::fromLatin1(other)), QStringList{}) << other;
    }
}

TEST(SymbolFiles, allAreDrawnAndNoneIsCutOff)
{
    constexpr int scale = 4;
    constexpr int size = int(grid) * scale;
    for (const std::string& name : modelNames()) {
        SCOPED_TRACE(name);
        const QImage image = drawn(symbolFile(name), size);
        EXPECT_GT(coverage(image), 0.04);
        EXPECT_LT(coverage(image), 0.7);
        // Nothing within half a unit of the edge.
        const QImage inner = image.copy(scale / 2, scale / 2, size - scale, size - scale);
        EXPECT_NEAR(coverage(inner) * inner.width() * inner.height(), coverage(image) * size * size, 1e-6);
    }
}

TEST(SymbolFiles, noTwoLookAlike)
{
    const auto names = modelNames();
    for (auto left = names.begin(); left != names.end(); ++left)
        for (auto right = std::next(left); right != names.end(); ++right)
            EXPECT_GT(difference(drawn(symbolFile(*left), 16), drawn(symbolFile(*right), 16)), 0.02)
                << *left << " and " << *right;
}

TEST(SymbolFiles, theRecolouredIconsShowTheSymbolsOfTheMenuBar)
{
    // Panels recolour fillings alone; a pen would stay black.
    for (const std::string& name : menuBarNames()) {
        SCOPED_TRACE(name);
        const QByteArray svg = contents(symbolicPath(name));
        ASSERT_FALSE(svg.isEmpty());
        EXPECT_EQ(attributes(svg, QStringLiteral("stroke")), QStringList{});
        EXPECT_EQ(attributes(svg, QStringLiteral("fill")).size(), 1);
        EXPECT_EQ(attributes(svg, QStringLiteral("viewBox")), QStringList{QStringLiteral("0 0 16 16")});
        const QImage symbolic = drawn(svg, 96);
        EXPECT_LT(difference(symbolic, drawn(symbolFile(name), 96)), 0.01);
        for (const std::string& other : menuBarNames())
            if (other != name) { EXPECT_GT(difference(symbolic, drawn(symbolFile(other), 96)), 0.02) << other; }
    }
    EXPECT_EQ(QDir{dataFolder + QStringLiteral("/icons/hicolor/scalable/status")}.entryList(QDir::Files).size(),
              int(menuBarNames().size()));
}

TEST(SymbolFiles, theProgramsIconIsLegibleAtEverySize)
{
    const QByteArray svg = contents(dataFolder + QStringLiteral("/icons/quellon.svg"));
    for (const int size : {16, 22, 32, 48, 128, 512}) {
        SCOPED_TRACE(size);
        const QImage image = drawn(svg, size);
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "round corners";
        const QColor shield = image.pixelColor(size * 3 / 8, size / 2);
        const QColor ground = image.pixelColor(size / 8, size / 2);
        EXPECT_EQ(shield.alpha(), 255);
        EXPECT_EQ(ground.alpha(), 255);
        EXPECT_GT(shield.lightness() - ground.lightness(), 80);
    }
}

} // namespace quellon
