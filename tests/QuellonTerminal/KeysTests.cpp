#include "QuellonTerminal/Keys.h"

#include "QuellonCore/Engine/ActingWorld.h"
#include "QuellonCore/Presentation/Controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace quellon {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Key quit{.kind = Key::Kind::quit};
constexpr Key redraw{.kind = Key::Kind::redraw};

constexpr Key command(ControlCommand command)
{
    return {.kind = Key::Kind::command, .command = command};
}

constexpr Key answer(std::size_t button)
{
    return {.kind = Key::Kind::answer, .button = button};
}

constexpr Key up = command(ControlCommand::selectPrevious);
constexpr Key down = command(ControlCommand::selectNext);

TEST(KeyDecoder, keys)
{
    struct Case {
        const char* name;
        std::string_view bytes;
        std::vector<Key> keys;
    };
    const Case cases[] = {
        {"nothing", "", {}},
        {"quit", "q", {quit}},
        {"quit, shifted", "Q", {quit}},
        {"Ctrl-L", "\f", {redraw}},
        {"start or stop", "s", {command(ControlCommand::startOrStop)}},
        {"resume", "r", {command(ControlCommand::resume)}},
        {"resume all", "a", {command(ControlCommand::resumeAll)}},
        {"snooze", "z", {command(ControlCommand::snooze)}},
        {"dismiss", "d", {command(ControlCommand::dismiss)}},
        {"letters for up and down", "kj", {up, down}},
        {"answers", "14", {answer(0), answer(3)}},
        {"no answer", "0", {}},
        {"arrows", "\x1B[A\x1B[B", {up, down}},
        {"arrows of the other mode", "\x1BOA\x1BOB", {up, down}},
        {"an arrow with a modifier", "\x1B[1;5Bq", {down, quit}},
        {"other function keys", "\x1B[3~\x1B[15~\x1BOP\x1B[C\x1B[Hq", {quit}},
        {"escape before a letter", "\x1Bq", {quit}},
        {"two escapes", "\x1B\x1B[A", {up}},
        {"a sequence that is none", "\x1B[1\fq", {redraw, quit}},
        {"a sequence in a sequence", "\x1B[1\x1B[Aq", {up, quit}},
        {"unused letters", "xyz!R ", {command(ControlCommand::snooze)}},
        {"letters of other scripts", "жqя", {quit}},
        {"a null", "\0q"sv, {quit}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        KeyDecoder whole;
        EXPECT_EQ(whole.take(c.bytes), c.keys);
        KeyDecoder pieces;
        std::vector<Key> keys;
        for (const char byte : c.bytes) {
            for (const Key& key : pieces.take({&byte, 1})) keys.push_back(key);
        }
        EXPECT_EQ(keys, c.keys) << "byte by byte";
    }
}

TEST(KeyDecoder, theNamesAreThoseOfTheKeys)
{
    for (const ControlCommand each : {ControlCommand::startOrStop, ControlCommand::resume, ControlCommand::snooze,
                                      ControlCommand::resumeAll, ControlCommand::dismiss}) {
        EXPECT_THAT(KeyDecoder{}.take(KeyNames::of(each)), ElementsAre(command(each)));
    }
    EXPECT_THAT(KeyDecoder{}.take(KeyNames::quit), ElementsAre(quit));
}

/// From the bytes of the keyboard to what the guard does.
class KeyEffects : public testing::Test {
protected:
    ActingWorld world;
    NotificationFeed feed;
    KeyDecoder decoder;
    std::optional<Controls> controls;

    KeyEffects()
    {
        world.app("Mailer", {601});
        world.options.notifier = [this](const NotificationPlan& plan) { feed.deliver(plan); };
        world.begin();
        controls.emplace(*world.engine, feed, [] {});
        static_cast<void>(world.roundWith(501, 2 * mebibyte));
        static_cast<void>(world.roundWith(601, 2 * mebibyte));
    }

    ActingWorld::Lines type(std::string_view bytes)
    {
        for (const Key& key : decoder.take(bytes)) {
            if (key.kind == Key::Kind::command) controls->perform(key.command);
            if (key.kind == Key::Kind::answer) controls->answer(key.button);
        }
        return world.trace.take();
    }
};

TEST_F(KeyEffects, resume)
{
    EXPECT_TRUE(world.isStopped(501));
    EXPECT_THAT(type("r"), ElementsAre("CONT 501", "save suspended.json", "info: Resumed Player"));
    EXPECT_FALSE(world.isStopped(501));
    EXPECT_TRUE(world.isStopped(601));
}

TEST_F(KeyEffects, resumeTheSecond)
{
    EXPECT_THAT(type("\x1B[Br"), ElementsAre("CONT 601", "save suspended.json", "info: Resumed Mailer"));
}

TEST_F(KeyEffects, resumeAll)
{
    EXPECT_THAT(type("a"), ElementsAre("CONT 501", "CONT 601", "save suspended.json", "info: Resumed all (2)"));
}

TEST_F(KeyEffects, resumeAndSnooze)
{
    EXPECT_THAT(type("z"), ElementsAre("CONT 501", "save suspended.json", "info: Resumed Player · snoozed 15min"));
}

TEST_F(KeyEffects, answer)
{
    world.host.advance(1s);
    static_cast<void>(world.trace.take());
    EXPECT_THAT(type("11"), ElementsAre("CONT 501", "save suspended.json", "info: Resumed Player"))
        << "the oldest question; a second press does not answer the next one";
    world.host.advance(1s);
    EXPECT_THAT(type("1"), ElementsAre("CONT 601", "save suspended.json", "info: Resumed Mailer"));
    EXPECT_THAT(type("1"), IsEmpty());
}

TEST_F(KeyEffects, stopAndStart)
{
    EXPECT_THAT(withoutCadence(type("s")),
                ElementsAre("CONT 501", "CONT 601", "save suspended.json", "info: Guard stopped"));
    EXPECT_THAT(type("s"), ElementsAre("info: Quellon Pro started · 1 rules"));
}

} // namespace
} // namespace quellon
