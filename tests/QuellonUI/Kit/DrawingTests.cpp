#include "KitTest.h"

#include "QuellonUI/Kit/Bar.h"
#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Kit/Divider.h"
#include "QuellonUI/Kit/IconButton.h"
#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Kit/Style.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/WindowSystem.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>

namespace quellon {
namespace {

using DrawingTest = KitTest;

int painted(const QImage& image)
{
    int result = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) result += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
    }
    return result;
}

TEST_F(DrawingTest, symbolsAreDrawnInTheirColourAtEveryScale)
{
    const QColor colour{0xe5, 0x48, 0x4d};
    for (const double ratio : {1.0, 1.5, 2.0, 3.0}) {
        SCOPED_TRACE(ratio);
        const QPixmap pixmap = symbolPixmap("pause.circle.fill", 16, colour, ratio);
        EXPECT_EQ(pixmap.width(), static_cast<int>(std::lround(16 * ratio)));
        EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
        EXPECT_GT(count(pixmap.toImage(), colour), static_cast<int>(40 * ratio * ratio));
    }
    QColor faint = colour;
    faint.setAlphaF(0.5F);
    const QImage image = symbolPixmap("pause.circle.fill", 32, faint, 1.0).toImage();
    for (int x = 0; x < image.width(); ++x) EXPECT_LE(image.pixelColor(x, 16).alphaF(), 0.51F);
}

TEST_F(DrawingTest, withoutSuchASymbolNothingIsDrawn)
{
    EXPECT_EQ(painted(symbolPixmap("no.such.symbol", 16, Qt::black, 1.0).toImage()), 0);
    EXPECT_TRUE(symbolIcon("").isNull());
    SymbolLabel label{16};
    EXPECT_EQ(painted(grabbed(label)), 0);
}

TEST_F(DrawingTest, symbolsAreKeptButNotAllOfThem)
{
    const auto first = [] { return symbolPixmap("checkmark", 40, QColor{1, 2, 3}, 1.0).cacheKey(); };
    const auto key = first();
    EXPECT_EQ(first(), key);
    for (int i = 0; i < 500; ++i) static_cast<void>(symbolPixmap("checkmark", 40, QColor{i % 256, i / 256, 9}, 1.0));
    EXPECT_NE(first(), key);
}

TEST_F(DrawingTest, symbolLabelsAreAsFineAsTheDevice)
{
    SymbolLabel label{16};
    label.setSymbol("chevron.right", Tint::primary);
    EXPECT_GT(painted(grabbed(label)), 5);
    // A picture that was only enlarged would have the same colour in each square of 3 by 3 pixels.
    const QImage fine = grabbed(label, 3.0);
    int mixed = 0;
    for (int y = 0; y < fine.height(); y += 3) {
        for (int x = 0; x < fine.width(); x += 3) {
            for (int i = 1; i < 9; ++i) mixed += fine.pixel(x, y) != fine.pixel(x + i % 3, y + i / 3) ? 1 : 0;
        }
    }
    EXPECT_GT(mixed, 20);
}

TEST_F(DrawingTest, iconsFollowThePalette)
{
    const QIcon icon = symbolIcon("pause.circle.fill");
    const auto has = [&icon](const QColor& colour, QIcon::Mode mode = QIcon::Normal) {
        return count(icon.pixmap(QSize{32, 32}, 1.0, mode).toImage(), colour) > 50;
    };
    EXPECT_TRUE(has(Theme::light().text));
    EXPECT_TRUE(has(Qt::white, QIcon::Selected));
    EXPECT_FALSE(has(Theme::light().text, QIcon::Disabled));
    Appearance::apply(true);
    EXPECT_TRUE(has(Theme::dark().text));
    EXPECT_EQ(icon.pixmap(QSize{16, 16}, 2.0).size(), QSize(32, 32));
}

TEST_F(DrawingTest, barShowsItsFraction)
{
    struct Case {
        const char* name;
        double fraction;
        int least;
        int most;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, 0, 0},       {"a trace is seen", 0.0001, 3, 30}, {"half", 0.5, 230, 256},
        {"all of it", 1.0, 480, 500}, {"more than all", 2.5, 480, 500},
    };
    Bar bar;
    bar.resize(100, bar.sizeHint().height());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bar.setValue(c.fraction, Tint::orange);
        const int filled = count(grabbed(bar), Theme::light().warning);
        EXPECT_GE(filled, c.least);
        EXPECT_LE(filled, c.most);
        EXPECT_LE(bar.value(), bar.maximum());
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&bar)->role(), QAccessible::ProgressBar);
    bar.setValue(0.5, Tint::orange);
    bar.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(grabbed(bar).pixelColor(80, 2), Theme::light().warning);
    EXPECT_NE(grabbed(bar).pixelColor(20, 2), Theme::light().warning);
}

TEST_F(DrawingTest, everythingFollowsLightAndDark)
{
    Card card;
    card.resize(60, 40);
    StatusDot dot;
    dot.setTint(Tint::green);
    Divider divider;
    divider.resize(40, 1);
    for (const bool dark : {false, true}) {
        Appearance::apply(dark);
        letItHappen();
        const Theme& theme = dark ? Theme::dark() : Theme::light();
        EXPECT_EQ(grabbed(card).pixelColor(30, 20), theme.card);
        EXPECT_EQ(grabbed(card).pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(grabbed(dot).pixelColor(7, 7), theme.good);
        EXPECT_EQ(grabbed(divider).pixelColor(20, 0).alpha(), theme.separator.alpha());
        EXPECT_EQ(&Theme::of(card.palette()), &theme);
    }
}

TEST_F(DrawingTest, theAppearanceIsSetOnce)
{
    QStyle* const style = QApplication::style();
    ASSERT_NE(qobject_cast<Style*>(style), nullptr);
    const QFont font = QApplication::font();
    Appearance::apply(true);
    Appearance::apply(true);
    Appearance::apply(false);
    EXPECT_EQ(QApplication::style(), style);
    EXPECT_EQ(QApplication::font(), font);
    EXPECT_EQ(&Theme::of(QApplication::palette()), &Theme::light());
}

/// What a control draws, on the ground of a window.
QImage drawn(QWidget& widget)
{
    widget.ensurePolished();
    widget.resize(widget.sizeHint().expandedTo({80, 0}));
    QImage image{widget.size(), QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

TEST_F(DrawingTest, theToolkitsOwnControls)
{
    const Theme& theme = Theme::light();
    QPushButton plain{QStringLiteral("Plain")};
    QPushButton standard{QStringLiteral("Default")};
    standard.setDefault(true);
    QLineEdit field{QStringLiteral("Pixel 8")};
    QComboBox box;
    box.addItems({QStringLiteral("one"), QStringLiteral("two")});
    QCheckBox check{QStringLiteral("Check")};
    QRadioButton radio{QStringLiteral("Radio")};
    for (QWidget* const each : std::initializer_list<QWidget*>{&plain, &standard, &field, &box}) {
        const QImage image = drawn(*each);
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << each->metaObject()->className();
        EXPECT_EQ(each->sizeHint().height(), plain.sizeHint().height()) << each->metaObject()->className();
    }
    EXPECT_GT(count(drawn(standard), theme.accentFill), 500);
    EXPECT_EQ(count(drawn(plain), theme.accentFill), 0);
    for (QAbstractButton* const each : std::initializer_list<QAbstractButton*>{&check, &radio}) {
        EXPECT_EQ(count(drawn(*each), theme.accentFill), 0);
        each->setChecked(true);
        EXPECT_GT(count(drawn(*each), theme.accentFill), 60);
    }
}

TEST_F(DrawingTest, whatHasTheKeyboardHasARing)
{
    QWidget window;
    QLineEdit field{&window};
    QComboBox box{&window};
    field.move(0, 40);
    window.show();
    window.activateWindow();
    letItHappen();
    for (QWidget* const each : std::initializer_list<QWidget*>{&field, &box}) {
        each->setFocus(Qt::TabFocusReason);
        EXPECT_GT(count(drawn(*each), Theme::light().accent), 50) << each->metaObject()->className();
        each->clearFocus();
        EXPECT_EQ(count(drawn(*each), Theme::light().accent), 0) << each->metaObject()->className();
    }
}

TEST_F(DrawingTest, scrollBarsAreBareThumbs)
{
    QScrollBar bar{Qt::Vertical};
    bar.setRange(0, 300);
    bar.setPageStep(100);
    bar.resize(bar.sizeHint().width(), 200);
    EXPECT_EQ(bar.width(), 10);
    const auto thumb = [&bar] {
        const QImage image = grabbed(bar);
        int first = -1;
        int last = -1;
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(5, y).alpha() == 0) continue;
            if (first < 0) first = y;
            last = y;
        }
        return std::pair{first, last};
    };
    EXPECT_EQ(thumb(), (std::pair{2, 47}));
    bar.setValue(300);
    EXPECT_EQ(thumb(), (std::pair{152, 197}));
    // The thumb is where it is drawn: a drag moves it.
    bar.setValue(0);
    bar.show();
    sendMouse(bar, QEvent::MouseButtonPress, QPoint{5, 20});
    sendMouse(bar, QEvent::MouseMove, QPoint{5, 95});
    EXPECT_EQ(bar.value(), 150);
    sendMouse(bar, QEvent::MouseButtonRelease, QPoint{5, 95});
    bar.setRange(0, 0);
    EXPECT_EQ(thumb().first, -1) << "nothing to scroll";
}

TEST_F(DrawingTest, menus)
{
    QMenu menu;
    QAction* const one = menu.addAction(QStringLiteral("Pixel 8"));
    menu.addSeparator();
    menu.addAction(QStringLiteral("A much longer name of a plan"));
    one->setCheckable(true);
    one->setChecked(true);
    menu.popup({0, 0});
    menu.setActiveAction(one);
    letItHappen();
    const QImage image = menu.grab().toImage();
    EXPECT_GT(count(image, Theme::light().accentFill), 500);
    EXPECT_GT(count(image, Theme::light().card), 500);
    const int text = QFontMetrics{menu.font()}.horizontalAdvance(QStringLiteral("A much longer name of a plan"));
    EXPECT_GT(menu.width(), text + 40);
    menu.close();
}

TEST_F(DrawingTest, offscreenWindowsArePlacedAndComposed)
{
    EXPECT_TRUE(hasCompositor());
    EXPECT_TRUE(canPlaceWindows());
}

} // namespace
} // namespace quellon
