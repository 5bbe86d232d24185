#include "Canvas.h"
#include "Comparison.h"
#include "PanelWorlds.h"
#include "Picture.h"
#include "Studio.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

#include <set>

namespace quellon {

namespace {

const QString folder = QStringLiteral(TEST_DATA "/../golden");

/// The pictures that are kept, by the names of their files.
std::vector<std::pair<QString, QImage>> drawn()
{
    std::vector<std::pair<QString, QImage>> result;
    for (const bool dark : {false, true}) {
        Studio::light(dark);
        for (const Picture& picture : pictures())
            if (picture.isGolden) result.emplace_back(fileName(picture, dark, 1.0), picture.draw());
    }
    return result;
}

} // namespace

TEST(Studio, theFontsOfThePicturesAreInstalled)
{
    EXPECT_EQ(Studio::missingFonts().join(QStringLiteral(", ")).toStdString(), "") << "tools/install-packages test";
}

TEST(Golden, theViewsLookAsTheyDid)
{
    for (const auto& [name, image] : drawn()) {
        SCOPED_TRACE(name.toStdString());
        const QImage kept{QDir{folder}.filePath(name)};
        EXPECT_FALSE(kept.isNull()) << "make it: tools/make-pictures --renew-goldens";
        const auto result = Comparison::compare(kept, image);
        if (Comparison::isSame(result)) continue;
        image.save(name);
        ADD_FAILURE() << "now it looks as " << QDir::current().filePath(name).toStdString() << ": "
                      << (result.sameSize ? "" : "another size, ") << result.worst << " at " << result.where.x() << ", "
                      << result.where.y() << ". If it is meant to: tools/make-pictures --renew-goldens";
    }
}

TEST(Golden, nothingElseIsKept)
{
    std::set<QString> names;
    for (const auto& [name, image] : drawn()) names.insert(name);
    EXPECT_GE(names.size(), 6U);
    const QStringList files = QDir{folder}.entryList(QDir::Files);
    EXPECT_EQ((std::set<QString>{files.begin(), files.end()}), names);
}

TEST(Golden, drawnAgainTheyAreEqual)
{
    const auto first = drawn();
    const auto second = drawn();
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size(); ++i)
        EXPECT_EQ(first[i].second, second[i].second) << first[i].first.toStdString();
}

TEST(Golden, oneChangedTextIsSeen)
{
    Studio::light(false);
    const MenuPanelModel model = ordinaryWorld()->panel();
    const QImage plain = panelPicture(model);
    ASSERT_TRUE(Comparison::isSame(Comparison::compare(plain, panelPicture(model))));
    const auto differs = [&](const auto& change) {
        MenuPanelModel other = model;
        change(other);
        return !Comparison::isSame(Comparison::compare(plain, panelPicture(other)));
    };
    EXPECT_TRUE(differs([](MenuPanelModel& other) { other.usage.rows[1].amount = "28.0 MB"; })) << "a digit";
    EXPECT_TRUE(differs([](MenuPanelModel& other) { other.usage.rows[0].name = "firefax-esr"; })) << "a letter";
    EXPECT_TRUE(differs([](MenuPanelModel& other) { other.header.tint = Tint::orange; })) << "the dot";
    EXPECT_TRUE(differs([](MenuPanelModel& other) { other.usage.rows[1].barTint = Tint::yellow; })) << "a bar's tint";
    EXPECT_TRUE(differs([](MenuPanelModel& other) { other.usage.rows[0].fraction -= 0.1; })) << "a bar's length";
    EXPECT_TRUE(differs([](MenuPanelModel& other) { other.paused.pop_back(); })) << "a row less";
}

TEST(Pictures, eachNameOnce)
{
    std::set<QString> names;
    for (const Picture& picture : pictures())
        EXPECT_TRUE(names.insert(picture.name).second) << qPrintable(picture.name);
    EXPECT_GE(names.size(), 20U);
}

TEST(Pictures, thoseOfTheDocumentsAreKeptAndNoOthers)
{
    std::set<QString> names;
    for (const Picture& picture : readmePictures()) {
        SCOPED_TRACE(qPrintable(picture.name));
        names.insert(picture.name + QStringLiteral(".png"));
        const QImage drawn = picture.draw();
        const int half = drawn.width() / 2;
        EXPECT_GT(half, 300);
        EXPECT_FALSE(Comparison::isSame(
            Comparison::compare(drawn.copy(0, 0, half, drawn.height()), drawn.copy(half, 0, half, drawn.height()))));
    }
    const QStringList files = QDir{QStringLiteral(TEST_DATA "/../../docs/pictures")}.entryList(QDir::Files);
    EXPECT_EQ((std::set<QString>{files.begin(), files.end()}), names) << "tools/make-pictures --readme";
}

TEST(Pictures, lightAndDarkDiffer)
{
    for (const Picture& picture : pictures()) {
        if (!picture.isGolden) continue;
        Studio::light(false);
        const QImage light = picture.draw();
        Studio::light(true);
        EXPECT_FALSE(Comparison::isSame(Comparison::compare(light, picture.draw()))) << qPrintable(picture.name);
    }
}

} // namespace quellon
