#include "KitTest.h"

#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Kit/TextRuns.h"

#include <QClipboard>
#include <QHelpEvent>
#include <QToolTip>
#include <QVBoxLayout>

namespace quellon {
namespace {

using TextTest = KitTest;

const Tint everyTint[] = {Tint::primary, Tint::secondary, Tint::green, Tint::yellow,
                          Tint::orange,  Tint::red,       Tint::blue};

/// How much of the light a colour gives, as the guidelines for legible text have it.
double luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const auto [dark, bright] = std::minmax({luminance(one), luminance(other)});
    return (bright + 0.05) / (dark + 0.05);
}

TEST_F(TextTest, everyTintCanBeReadOnEveryGround)
{
    constexpr double legible = 4.5; // of small text, by the same guidelines
    for (const Theme* const theme : {&Theme::light(), &Theme::dark()}) {
        for (const QColor& ground : {theme->background, theme->card}) {
            for (const Tint tint : everyTint) {
                EXPECT_GE(contrast(theme->textTint(tint), ground), legible)
                    << tints.label(tint) << " on " << ground.name().toStdString();
            }
        }
        EXPECT_GE(contrast(Qt::white, theme->accentFill), 4.0);
    }
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21.0, 0.01);
}

TEST_F(TextTest, tintsDiffer)
{
    for (const Theme* const theme : {&Theme::light(), &Theme::dark()}) {
        for (const Tint one : everyTint) {
            for (const Tint other : everyTint) {
                EXPECT_EQ(theme->tint(one) == theme->tint(other), one == other);
                EXPECT_EQ(theme->textTint(one) == theme->textTint(other), one == other);
            }
        }
    }
}

TEST_F(TextTest, aSelectableLabelIsCopiedWholeEvenWhereItIsCut)
{
    TextLabel label{Fonts::body()};
    label.setSelectable();
    label.setTint(Tint::red);
    const QString whole = QStringLiteral("an-application-with-a-name-that-does-not-fit");
    label.setText(whole);
    for (const int width : {label.sizeHint().width(), 120}) {
        SCOPED_TRACE(width);
        label.resize(width, label.sizeHint().height());
        label.show();
        EXPECT_EQ(label.shownText() == whole, width != 120);
        label.setSelection(0, 0);
        const QImage before = grabbed(label);
        EXPECT_GT(count(before, Theme::light().badText), 0) << "in its colour";
        EXPECT_EQ(count(before, Theme::light().accent), 0);
        sendMouse(label, QEvent::MouseButtonPress, {2, label.height() / 2});
        sendMouse(label, QEvent::MouseButtonRelease, {2, label.height() / 2});
        EXPECT_FALSE(label.hasSelectedText());
        label.setFocus(Qt::MouseFocusReason);
        QKeyEvent all{QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier};
        QApplication::sendEvent(&label, &all);
        EXPECT_EQ(label.selectedText(), whole);
        EXPECT_GT(count(grabbed(label), Theme::light().accent), width) << "the selection is seen";
        QKeyEvent copy{QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier};
        QApplication::sendEvent(&label, &copy);
        EXPECT_EQ(QApplication::clipboard()->text(), whole);
    }
    label.setSelection(0, 0);
    sendMouse(label, QEvent::MouseButtonPress, {2, label.height() / 2});
    sendMouse(label, QEvent::MouseMove, {60, label.height() / 2});
    sendMouse(label, QEvent::MouseButtonRelease, {60, label.height() / 2});
    EXPECT_EQ(label.selectedText(), whole) << "where it is cut there are no parts";
}

TEST_F(TextTest, labelsAreCutInTheMiddleAndTellTheWhole)
{
    TextLabel label{Fonts::body()};
    const QString whole = QStringLiteral("an-application-with-a-name-that-does-not-fit");
    label.setText(whole);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.shownText(), whole);
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
    label.resize(120, label.height());
    EXPECT_TRUE(label.shownText().startsWith(QStringLiteral("an-")));
    EXPECT_TRUE(label.shownText().endsWith(QStringLiteral("fit")));
    EXPECT_TRUE(label.shownText().contains(QChar{0x2026}));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&label)->text(QAccessible::Name), whole);
    label.show();
    QHelpEvent help{QEvent::ToolTip, QPoint{5, 5}, label.mapToGlobal(QPoint{5, 5})};
    QApplication::sendEvent(&label, &help);
    EXPECT_EQ(QToolTip::text(), whole);
    QToolTip::hideText();
    label.setElastic(false);
    EXPECT_GE(label.minimumSizeHint().width(), label.fontMetrics().horizontalAdvance(whole));
}

TEST_F(TextTest, paragraphsCanBeCopied)
{
    QWidget window;
    auto* const layout = new QVBoxLayout{&window};
    auto* const paragraph = new Paragraph{Fonts::caption()};
    layout->addWidget(paragraph);
    paragraph->setText(QStringLiteral("<b>one</b> two three four five six seven eight nine ten"));
    window.resize(120, 200);
    window.show();
    window.activateWindow();
    letItHappen();
    EXPECT_EQ(paragraph->textFormat(), Qt::PlainText);
    EXPECT_EQ(paragraph->focusPolicy(), Qt::ClickFocus) << "Tab passes it by";
    EXPECT_GT(paragraph->heightForWidth(80), 2 * paragraph->fontMetrics().height());
    const QMargins margins = layout->contentsMargins();
    EXPECT_LE(window.minimumSizeHint().width(), margins.left() + margins.right() + 1);
    sendMouse(*paragraph, QEvent::MouseButtonPress, QPoint{3, 3});
    sendMouse(*paragraph, QEvent::MouseButtonRelease, QPoint{3, 3});
    paragraph->setFocus(Qt::MouseFocusReason);
    for (const auto& [key, modifier] :
         {std::pair{Qt::Key_A, Qt::ControlModifier}, std::pair{Qt::Key_C, Qt::ControlModifier}}) {
        QKeyEvent event{QEvent::KeyPress, key, modifier};
        QApplication::sendEvent(paragraph, &event);
    }
    EXPECT_EQ(QApplication::clipboard()->text(), paragraph->text());
}

TEST_F(TextTest, paragraphsFollowThePalette)
{
    Paragraph paragraph{Fonts::caption()};
    paragraph.setTint(Tint::orange);
    const auto colour = [&paragraph] { return paragraph.palette().color(QPalette::WindowText); };
    EXPECT_EQ(colour(), Theme::light().warningText);
    Appearance::apply(true);
    letItHappen();
    EXPECT_EQ(colour(), Theme::dark().warningText);
    paragraph.setTint(Tint::primary);
    EXPECT_EQ(colour(), Theme::dark().text);
    Appearance::apply(false);
    letItHappen();
    EXPECT_EQ(colour(), Theme::light().text);
}

TEST_F(TextTest, runsGoOnInTheNextLine)
{
    TextRuns runs{Fonts::caption2()};
    runs.setRuns({{QStringLiteral("6.38 GB left"), Tint::secondary},
                  {QStringLiteral("·"), Tint::secondary},
                  {QStringLiteral("runs out Mar 20"), Tint::red}});
    EXPECT_EQ(runs.text(), QStringLiteral("6.38 GB left · runs out Mar 20"));
    EXPECT_EQ(runs.accessibleName(), runs.text());
    const QSize whole = runs.sizeHint();
    EXPECT_LE(whole.height(), runs.fontMetrics().height() + 1);
    EXPECT_EQ(runs.heightForWidth(whole.width() + 1), whole.height());
    EXPECT_GE(runs.heightForWidth(whole.width() / 2), 2 * runs.fontMetrics().height() - 2);
    runs.resize(whole.width() + 1, whole.height());
    const QImage image = grabbed(runs, 3.0);
    EXPECT_GT(count(image, Theme::light().badText), 10);
    EXPECT_GT(count(image, Theme::light().secondaryText), 10);
}

TEST_F(TextTest, fontsHaveLettersOfAllKinds)
{
    for (const QFont& font : {Fonts::body(), Fonts::title(), Fonts::callout(), Fonts::caption(), Fonts::caption2()}) {
        EXPECT_TRUE(font.families().contains(QStringLiteral("Noto Sans CJK SC")));
        EXPECT_EQ(font.families().back(), QStringLiteral("Noto Color Emoji"));
        EXPECT_NE(font.families().front(), QStringLiteral("Noto Color Emoji"));
    }
    EXPECT_LT(Fonts::caption2().pointSizeF(), Fonts::caption().pointSizeF());
    EXPECT_LT(Fonts::caption().pointSizeF(), Fonts::callout().pointSizeF());
    EXPECT_LT(Fonts::callout().pointSizeF(), Fonts::title().pointSizeF());
    EXPECT_EQ(Fonts::subheadline().weight(), QFont::Medium);
}

} // namespace
} // namespace quellon
