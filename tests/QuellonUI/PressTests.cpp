#include "QuellonUI/NoticeCard.h"
#include "QuellonUI/PausedList.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& at)
{
    const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event{type, QPointF{at}, QPointF{widget.mapToGlobal(at)}, button, buttons, Qt::NoModifier};
    QApplication::sendEvent(&widget, &event);
}

void sendSpace(QWidget& widget, QEvent::Type type)
{
    QKeyEvent event{type, Qt::Key_Space, Qt::NoModifier};
    QApplication::sendEvent(&widget, &event);
}

/// The ways to press a button, each in two halves, between which something may happen.
struct Way {
    const char* name;
    void (*begin)(QWidget& button);
    void (*end)(QWidget& button);
};

const Way ways[] = {
    {"mouse", [](QWidget& button) { sendMouse(button, QEvent::MouseButtonPress, button.rect().center()); },
     [](QWidget& button) { sendMouse(button, QEvent::MouseButtonRelease, button.rect().center()); }},
    {"mouse that leaves and comes back",
     [](QWidget& button) {
         sendMouse(button, QEvent::MouseButtonPress, button.rect().center());
         sendMouse(button, QEvent::MouseMove, QPoint{-50, -50});
     },
     [](QWidget& button) {
         sendMouse(button, QEvent::MouseMove, button.rect().center());
         sendMouse(button, QEvent::MouseButtonRelease, button.rect().center());
     }},
    {"key", [](QWidget& button) { sendSpace(button, QEvent::KeyPress); },
     [](QWidget& button) { sendSpace(button, QEvent::KeyRelease); }},
};

/// The button of this text or accessible name that can be seen; null without one.
FlatButton* find(const QWidget& parent, const char* name)
{
    const auto wanted = QString::fromUtf8(name);
    for (FlatButton* const each : parent.findChildren<FlatButton*>()) {
        if (each->isVisibleTo(&parent) && (each->text() == wanted || each->accessibleName() == wanted)) return each;
    }
    return nullptr;
}

ControlsModel::Notice question(std::uint64_t serial, std::vector<Notice::Button> buttons)
{
    return {NotificationStyle::persistent, "Player was paused", {}, std::move(buttons), serial};
}

ControlsModel::Notice paused(std::uint64_t serial)
{
    return question(serial, {{"Resume"}, {"Resume + snooze"}});
}

class NoticeCardPress : public testing::Test {
protected:
    NoticeCard card;
    std::vector<std::string> reported;

    NoticeCardPress()
    {
        QObject::connect(&card, &NoticeCard::answered, &card,
                         [this](std::size_t button) { reported.push_back(fmt::format("answer {}", button)); });
        QObject::connect(&card, &NoticeCard::dismissed, &card, [this] { reported.emplace_back("dismiss"); });
    }

    void show(const std::optional<ControlsModel::Notice>& notice)
    {
        card.setNotice(notice, {});
        QApplication::sendPostedEvents();
    }
};

TEST_F(NoticeCardPress, answersTheQuestionThatStoodThereThroughout)
{
    struct Case {
        const char* name;
        std::vector<std::optional<ControlsModel::Notice>> then; ///< What is shown while the button is down.
        bool counts;
    };
    const auto deadly = question(2, {{"Stop it", true}, {"Allow until done"}});
    const Case cases[] = {
        {"nothing changes", {}, true},
        {"the same again", {paused(1)}, true},
        {"another question", {deadly}, false},
        {"an equal question", {paused(2)}, false},
        {"gone, and another one", {std::nullopt, deadly}, false},
        {"gone and back", {std::nullopt, paused(1)}, false},
    };
    for (const auto& c : cases) {
        for (const auto& way : ways) {
            SCOPED_TRACE(fmt::format("{}, {}", c.name, way.name));
            for (const auto& [name, report] : {std::pair{"Resume", "answer 0"}, std::pair{"Dismiss", "dismiss"}}) {
                show(paused(1));
                FlatButton* const button = find(card, name);
                ASSERT_NE(button, nullptr);
                way.begin(*button);
                for (const auto& each : c.then) show(each);
                way.end(*button);
                EXPECT_EQ(reported, c.counts ? std::vector<std::string>{report} : std::vector<std::string>{});
                reported.clear();
                button->click();
                EXPECT_THAT(reported, ElementsAre(report)) << "the next press counts";
                reported.clear();
            }
        }
    }
}

TEST_F(NoticeCardPress, nothingBegunWhileItIsHeldCounts)
{
    show(paused(1));
    FlatButton* const button = find(card, "Resume");
    ASSERT_NE(button, nullptr);
    for (const auto& way : ways) {
        SCOPED_TRACE(way.name);
        card.setHeld(true);
        way.begin(*button);
        card.setHeld(false);
        way.end(*button);
        EXPECT_THAT(reported, IsEmpty());
        way.begin(*button);
        way.end(*button);
        EXPECT_THAT(reported, ElementsAre("answer 0"));
        reported.clear();
    }
}

TEST_F(NoticeCardPress, whatIsHeldLooksSo)
{
    card.setTheme(Theme::of(QPalette{QColor{0xef, 0xef, 0xef}}));
    card.setHeld(true);
    show(paused(1)); // its buttons are made while it is held
    const auto picture = [this] { return card.grab().toImage(); };
    const QImage held = picture();
    card.setHeld(false);
    const QImage usual = picture();
    EXPECT_NE(usual, held);
    show(paused(2));
    EXPECT_EQ(picture(), usual);
    card.setHeld(true);
    EXPECT_EQ(picture(), held) << "an equal question is to be seen as a new one";
}

TEST(PausedListPress, resumesTheEntryWhoseRowItWasThroughout)
{
    const ControlsModel::Paused mail{"mail", "just now", false, "mail-1.0"};
    const ControlsModel::Paused radio{"radio", "just now", true, "radio-2.0"};
    const ControlsModel::Paused later{"radio", "1 min ago", false, "radio-2.0"};
    const ControlsModel::Paused again{"radio", "just now", true, "radio-9.0"};
    struct Case {
        const char* name;
        std::vector<std::vector<ControlsModel::Paused>> then; ///< What is paused while the first row's button is down.
        bool counts;
    };
    const Case cases[] = {
        {"nothing changes", {}, true},
        {"its text changes", {{later, mail}}, true},
        {"the row below goes", {{radio}}, true},
        {"another one moves up", {{mail}}, false},
        {"frozen again", {{again, mail}}, false},
        {"moved down", {{mail, radio}}, false},
        {"gone and back", {{}, {radio, mail}}, false},
    };
    PausedList list;
    std::vector<std::string> resumed;
    QObject::connect(&list, &PausedList::resumed, &list, [&](const std::string& id) { resumed.push_back(id); });
    for (const auto& c : cases) {
        for (const auto& way : ways) {
            SCOPED_TRACE(fmt::format("{}, {}", c.name, way.name));
            list.setPaused({radio, mail});
            FlatButton* const button = find(list, "Resume radio");
            ASSERT_NE(button, nullptr);
            way.begin(*button);
            for (const auto& each : c.then) list.setPaused(each);
            way.end(*button);
            EXPECT_EQ(resumed, c.counts ? std::vector<std::string>{"radio-2.0"} : std::vector<std::string>{});
            resumed.clear();
            list.setPaused({radio, mail});
            button->click();
            EXPECT_THAT(resumed, ElementsAre("radio-2.0")) << "the next press counts";
            resumed.clear();
        }
    }
}

} // namespace
} // namespace quellon
