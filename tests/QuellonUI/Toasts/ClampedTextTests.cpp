#include "QuellonUI/Toasts/ClampedText.h"

#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Theme.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFontMetrics>

#include <string>
#include <vector>

namespace quellon {
namespace {

using ::testing::StartsWith;

TEST(ClampedText, shownLines)
{
    const QFont font = Fonts::body();
    const int ten = QFontMetrics{font}.horizontalAdvance(QStringLiteral("mmmmmmmmmm")) + 4;
    struct Case {
        const char* name;
        const char* text;
        std::vector<std::string> lines;
        bool isCut;
    };
    const Case cases[] = {
        {"nothing", "", {}, false},
        {"one line", "mmm", {"mmm"}, false},
        {"line ends stand", "m\nn", {"m", "n"}, false},
        {"words go on in the next line", "mmmmmm mmmmmm", {"mmmmmm ", "mmmmmm"}, false},
        {"a word that is too long", "mmmmmmmmmmmmm", {"mmmmmmmmmm", "mmm"}, false},
        {"too many words", "mmmmmm mmmmmm mmmmmm", {"mmmmmm ", "mmmmmm "}, true},
        {"too many lines", "m\nn\no", {"m", "n…"}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ClampedText label{font, ten, 2, Qt::ElideRight};
        label.setText(QString::fromUtf8(c.text));
        std::vector<std::string> lines;
        for (const QString& each : label.shownLines()) lines.push_back(each.toStdString());
        ASSERT_EQ(lines.size(), c.lines.size());
        for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_THAT(lines[i], StartsWith(c.lines[i]));
        EXPECT_EQ(!lines.empty() && lines.back().ends_with("…"), c.isCut);
        EXPECT_EQ(label.toolTip(), c.isCut ? QString::fromUtf8(c.text) : QString{});
        EXPECT_EQ(label.accessibleName(), QString::fromUtf8(c.text));
        EXPECT_EQ(label.height(), static_cast<int>(c.lines.size()) * label.fontMetrics().lineSpacing());
    }
}

TEST(ClampedText, itsToolTipIsNoMarkup)
{
    const QString text = QStringLiteral("<img src=x> and more than there is room for");
    ClampedText label{Fonts::body(), 60, 1, Qt::ElideRight};
    label.setText(text);
    EXPECT_EQ(label.toolTip(), toolTipOf(text));
    EXPECT_NE(label.toolTip(), text);
}

TEST(ClampedText, whatFollowsALongNameIsSeen)
{
    const QFont font = Fonts::body();
    ClampedText label{font, QFontMetrics{font}.horizontalAdvance(QStringLiteral("mmmmmmmmmmmmmmmmmmmm")), 2,
                      Qt::ElideMiddle};
    label.setText(QString{200, QLatin1Char{'m'}} + QStringLiteral(" was paused"));
    ASSERT_EQ(label.shownLines().size(), 2U);
    EXPECT_THAT(label.shownLines()[0].toStdString(), StartsWith("mmm"));
    EXPECT_THAT(label.shownLines()[1].toStdString(), ::testing::ContainsRegex("^m+….*paused$"));
}

} // namespace
} // namespace quellon
