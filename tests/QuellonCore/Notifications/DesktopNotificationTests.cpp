#include "QuellonCore/Notifications/DesktopNotification.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using Action = DesktopNotification::Action;
using Button = NotificationCategory::Button;

const std::vector<Button> asking{{"snooze", "Snooze 15 min"}, {"suspend", "Pause", true}, {"view", "Show details"}};
const std::vector<Button> resuming{{"resume", "Resume"}, {"resumeAndSnooze", "Resume + snooze"}};

NotificationServer server(std::vector<std::string> capabilities, std::string name = "some server")
{
    return {std::move(name), std::move(capabilities), false};
}

NotificationRequest request(std::string body)
{
    return {NotificationStyle::persistent, "title", "", std::move(body), "ql.view", {"app"}};
}

TEST(NotificationServer, showsAlerts)
{
    struct Case {
        const char* name;
        NotificationServer server;
        bool shows;
    };
    const Case cases[] = {
        {"with buttons", server({"body", "actions"}), true},
        {"without buttons", server({"body", "action-icons"}), false},
        {"that can do nothing", server({}), false},
        {"not to disturb", {"x", {"actions"}, true}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.server.showsAlerts(), c.shows);
    }
}

TEST(DesktopNotification, texts)
{
    struct Case {
        const char* name;
        const char* title;
        const char* subtitle;
        const char* body;
        const char* summary;
        const char* plain;
        const char* markup;
    };
    constexpr Case cases[] = {
        {"subtitle and body", "t", "one", "two", "t", "one\ntwo", "one\ntwo"},
        {"no subtitle", "t", "", "two", "t", "two", "two"},
        {"no body", "t", "one", "", "t", "one", "one"},
        {"neither", "t", "", "", "t", "", ""},
        {"empty lines are none", "t", "one\n", "\ntwo\n\nthree\n", "t", "one\ntwo\nthree", "one\ntwo\nthree"},
        {"markup", "a<b>&c", "<i>&amp;</i>", "\"x\" > 'y'", "a<b>&c", "<i>&amp;</i>\n\"x\" > 'y'",
         "&lt;i&gt;&amp;amp;&lt;/i&gt;\n\"x\" &gt; 'y'"},
        {"beyond ASCII", "云盘 🐌", "é", "≥", "云盘 🐌", "é\n≥", "é\n≥"},
        {"not UTF-8", "a\xFF", "b\xC3", "\xED\xA0\x80", "a�", "b�\n���", "b�\n���"},
        {"control characters", "a\tb\n", "c\x1B", "d\xE2\x80\xAE", "a�b�", "c�\nd�", "c�\nd�"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const NotificationRequest asked{NotificationStyle::transient, c.title, c.subtitle, c.body, "", {}};
        const auto plain = DesktopNotification::of(asked, {}, server({"body"}));
        EXPECT_EQ(plain.summary, c.summary);
        EXPECT_EQ(plain.body, c.plain);
        const auto markup = DesktopNotification::of(asked, {}, server({"body", "body-markup"}));
        EXPECT_EQ(markup.summary, c.summary) << "a summary is never markup";
        EXPECT_EQ(markup.body, c.markup);
    }
}

TEST(DesktopNotification, actions)
{
    const Action click{"default", "Show details"};
    struct Case {
        const char* name;
        std::vector<Button> buttons;
        NotificationServer server;
        std::vector<Action> actions;
    };
    const Case cases[] = {
        {"the click comes first",
         asking,
         server({"actions"}),
         {click, {"snooze", "Snooze 15 min"}, {"suspend", "Pause"}, {"view", "Show details"}}},
        {"no buttons, the click is there", {}, server({"actions"}), {click}},
        {"a server without buttons gets none", asking, server({"body"}), {}},
        {"Xfce draws the click: once is enough",
         asking,
         server({"actions"}, "Xfce Notify Daemon"),
         {{"snooze", "Snooze 15 min"}, {"suspend", "Pause"}, {"view", "Show details"}}},
        {"Xfce, no such button",
         resuming,
         server({"actions"}, "Xfce Notify Daemon"),
         {click, {"resume", "Resume"}, {"resumeAndSnooze", "Resume + snooze"}}},
        {"Xfce, no button", {}, server({"actions"}, "Xfce Notify Daemon"), {click}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(DesktopNotification::of(request("x"), c.buttons, c.server).actions, c.actions);
    }
}

TEST(DesktopNotification, style)
{
    auto asked = request("x");
    const auto persistent = DesktopNotification::of(asked, asking, server({"actions", "sound"}));
    EXPECT_EQ(persistent.urgency, DesktopNotification::Urgency::critical);
    EXPECT_EQ(persistent.expireTimeout, 0) << "never";
    EXPECT_EQ(persistent.soundName, "message-new-instant");
    EXPECT_FALSE(persistent.suppressSound);
    EXPECT_EQ(persistent.category, "ql.view");
    EXPECT_EQ(DesktopNotification::of(asked, asking, server({"actions"})).soundName, "") << "a server without sound";

    asked.style = NotificationStyle::transient;
    asked.category.clear();
    const auto transient = DesktopNotification::of(asked, {}, server({"actions", "sound"}));
    EXPECT_EQ(transient.urgency, DesktopNotification::Urgency::normal);
    EXPECT_EQ(transient.expireTimeout, -1) << "as the server chooses";
    EXPECT_EQ(transient.soundName, "");
    EXPECT_TRUE(transient.suppressSound);
    EXPECT_EQ(transient.category, "");
}

} // namespace
} // namespace quellon
