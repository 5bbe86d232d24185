#include "QuellonUI/Tray/BusMenu.h"

#include "../Desktop/SessionBus.h"
#include "TrayModels.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include <vector>

namespace quellon {
namespace {

using BusTypes::MenuEvent;
using BusTypes::MenuNode;
using BusTypes::MenuProperties;
using testing::BusClient;
using testing::guardingModel;
using testing::pausedModel;
using testing::SessionBus;
using testing::until;

const QString interface = QStringLiteral("com.canonical.dbusmenu");

/// Keeps what a menu tells of changes.
class MenuListener final : public QObject {
    Q_OBJECT
public:
    std::vector<int> changed;  ///< The ids of the entries.
    std::vector<uint> layouts; ///< The revisions.

public Q_SLOTS:
    void hear(const QDBusMessage& message)
    {
        if (message.member() == QLatin1String{"LayoutUpdated"}) layouts.push_back(message.arguments().at(0).toUInt());
        if (message.member() != QLatin1String{"ItemsPropertiesUpdated"}) return;
        for (const auto& each : qdbus_cast<QList<MenuProperties>>(message.arguments().at(0)))
            changed.push_back(each.id);
    }
};

class BusMenuTest : public ::testing::Test {
protected:
    SessionBus bus;
    BusClient host{bus};
    BusClient program{bus};
    BusMenu menu{program.bus()};
    MenuListener listener;
    std::vector<TrayCommand> commands;

    void SetUp() override
    {
        ASSERT_TRUE(bus.isRunning());
        ASSERT_TRUE(host.bus().connect(program.bus().baseService(), BusMenu::path, interface, QString{}, &listener,
                                       SLOT(hear(QDBusMessage))));
        QObject::connect(&menu, &BusMenu::chosen, &menu, [this](TrayCommand each) { commands.push_back(each); });
        menu.setItems(guardingModel().items);
        settle();
    }
    QDBusMessage call(const char* method, const QVariantList& arguments = {}, const QString& of = interface)
    {
        return host.call(program.bus().baseService(), BusMenu::path, of, QLatin1String{method}, arguments);
    }
    QString error(const char* method, const QVariantList& arguments) { return call(method, arguments).errorName(); }
    /// Until what was told has been heard, and what was clicked has been carried out.
    void settle() { call("Ping", {}, QStringLiteral("org.freedesktop.DBus.Peer")); }
    MenuNode layout(int parent = 0, int depth = -1, const QStringList& names = {})
    {
        return qdbus_cast<MenuNode>(call("GetLayout", {parent, depth, names}).arguments().value(1));
    }
    static QVariant click() { return QVariant::fromValue(QDBusVariant{0}); }
    static MenuEvent event(int id, const char* name = "clicked")
    {
        return {id, QLatin1String{name}, QDBusVariant{0}, 0};
    }
    QDBusMessage group(const QList<MenuEvent>& events) { return call("EventGroup", {QVariant::fromValue(events)}); }
};

TEST_F(BusMenuTest, layout)
{
    const MenuNode root = layout();
    EXPECT_EQ(root.id, 0);
    EXPECT_EQ(root.properties.value(QStringLiteral("children-display")), QStringLiteral("submenu"));
    ASSERT_EQ(root.children.size(), 8);
    const QStringList labels{QStringLiteral("Open Quellon"),
                             QString{},
                             QStringLiteral("Guarding · 43% of the plan used"),
                             QStringLiteral("Pause guarding"),
                             QStringLiteral("Resume all"),
                             QString{},
                             QStringLiteral("Settings…"),
                             QStringLiteral("Quit Quellon")};
    for (int i = 0; i < root.children.size(); ++i) {
        const MenuNode& entry = root.children[i];
        EXPECT_EQ(entry.id, i + 1);
        EXPECT_EQ(entry.properties.value(QStringLiteral("label")).toString(), labels[i]);
        EXPECT_EQ(entry.properties.value(QStringLiteral("type")).toString(),
                  labels[i].isEmpty() ? QStringLiteral("separator") : QString{});
        const bool isDisabled = i == 2 || i == 4;
        if (labels[i].isEmpty()) continue;
        EXPECT_EQ(entry.properties.value(QStringLiteral("enabled")), !isDisabled) << i;
    }
}

TEST_F(BusMenuTest, partsOfTheLayout)
{
    EXPECT_TRUE(layout(0, 0).children.isEmpty());
    EXPECT_EQ(layout(0, 1).children.size(), 8);
    EXPECT_EQ(layout(4).properties.value(QStringLiteral("label")), QStringLiteral("Pause guarding"));
    EXPECT_TRUE(layout(4).children.isEmpty());
    EXPECT_EQ(layout(4, -1, {QStringLiteral("enabled"), QStringLiteral("none")}).properties,
              (QVariantMap{{QStringLiteral("enabled"), true}}));
    for (const int unknown : {-1, 9, 1000}) {
        EXPECT_EQ(error("GetLayout", {unknown, -1, QStringList{}}),
                  QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    }
}

TEST_F(BusMenuTest, propertiesOfEntries)
{
    const auto reply = call("GetGroupProperties", {QVariant::fromValue(QList<int>{4, 99, 5}),
                                                   QStringList{QStringLiteral("label"), QStringLiteral("enabled")}});
    const auto entries = qdbus_cast<QList<MenuProperties>>(reply.arguments().value(0));
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[0].id, 4);
    EXPECT_EQ(entries[1].id, 5);
    EXPECT_EQ(entries[1].properties, (QVariantMap{{QStringLiteral("label"), QStringLiteral("Resume all")},
                                                  {QStringLiteral("enabled"), false}}));
    const auto all = call("GetGroupProperties", {QVariant::fromValue(QList<int>{}), QStringList{}});
    EXPECT_EQ(qdbus_cast<QList<MenuProperties>>(all.arguments().value(0)).size(), 9);
    EXPECT_EQ(call("GetProperty", {1, QStringLiteral("label")}).arguments().value(0).value<QDBusVariant>().variant(),
              QStringLiteral("Open Quellon"));
    EXPECT_NE(error("GetProperty", {1, QStringLiteral("icon-data")}), QString{});
    EXPECT_NE(error("GetProperty", {99, QStringLiteral("label")}), QString{});
}

TEST_F(BusMenuTest, propertiesOfTheMenu)
{
    const auto reply = call("GetAll", {interface}, QStringLiteral("org.freedesktop.DBus.Properties"));
    const auto all = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    EXPECT_EQ(all.value(QStringLiteral("Version")), uint{3});
    EXPECT_EQ(all.value(QStringLiteral("Status")), QStringLiteral("normal"));
    EXPECT_EQ(all.value(QStringLiteral("TextDirection")), QStringLiteral("ltr"));
}

TEST_F(BusMenuTest, aboutToShow)
{
    EXPECT_EQ(call("AboutToShow", {0}).arguments(), QVariantList{false});
    EXPECT_NE(error("AboutToShow", {99}), QString{});
    const auto reply = call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0})});
    EXPECT_EQ(reply.signature(), QStringLiteral("aiai"));
}

TEST_F(BusMenuTest, clicks)
{
    for (const int id : {1, 4, 7, 8}) {
        EXPECT_EQ(error("Event", {id, QStringLiteral("clicked"), click(), uint{0}}), QString{});
    }
    settle();
    EXPECT_EQ(commands, (std::vector<TrayCommand>{TrayCommand::open, TrayCommand::startOrStop, TrayCommand::settings,
                                                  TrayCommand::quit}));
}

TEST_F(BusMenuTest, whatCannotBeChosen)
{
    for (const int id : {0, 2, 3, 5, 6}) {
        EXPECT_EQ(error("Event", {id, QStringLiteral("clicked"), click(), uint{0}}), QString{}) << id;
    }
    EXPECT_EQ(error("Event", {1, QStringLiteral("hovered"), click(), uint{0}}), QString{});
    EXPECT_EQ(error("Event", {0, QStringLiteral("opened"), click(), uint{0}}), QString{});
    EXPECT_NE(error("Event", {99, QStringLiteral("clicked"), click(), uint{0}}), QString{});
    settle();
    EXPECT_EQ(commands, std::vector<TrayCommand>{});
    menu.setItems(pausedModel().items);
    call("Event", {5, QStringLiteral("clicked"), click(), uint{0}});
    settle();
    EXPECT_EQ(commands, std::vector<TrayCommand>{TrayCommand::resumeAll}) << "now there is something paused";
}

TEST_F(BusMenuTest, clicksInGroups)
{
    EXPECT_EQ(qdbus_cast<QList<int>>(group({event(0, "opened"), event(4), event(99)}).arguments().value(0)),
              QList<int>{99});
    EXPECT_EQ(group({}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(group({event(98), event(99)}).type(), QDBusMessage::ErrorMessage) << "none is known";
    settle();
    EXPECT_EQ(commands, std::vector<TrayCommand>{TrayCommand::startOrStop});
}

TEST_F(BusMenuTest, onlyWhatChangedIsTold)
{
    menu.setItems(guardingModel().items);
    settle();
    EXPECT_EQ(listener.changed, std::vector<int>{});
    menu.setItems(pausedModel().items);
    settle();
    EXPECT_EQ(listener.changed, (std::vector<int>{3, 5}));
    const auto before = listener.layouts;
    auto items = pausedModel().items;
    items.pop_back();
    menu.setItems(items);
    settle();
    EXPECT_EQ(listener.layouts.size(), before.size() + 1);
    EXPECT_EQ(call("GetLayout", {0, -1, QStringList{}}).arguments().value(0).toUInt(), listener.layouts.back());
    EXPECT_EQ(layout().children.size(), 7);
}

TEST_F(BusMenuTest, aLowLineIsNoShortCut)
{
    menu.setItems({{"Guarding · my_app 12.0 MB", {}, false}});
    EXPECT_EQ(layout().children.at(0).properties.value(QStringLiteral("label")),
              QStringLiteral("Guarding · my__app 12.0 MB"));
}

TEST_F(BusMenuTest, nonsense)
{
    EXPECT_NE(error("GetLayout", {}), QString{});
    EXPECT_NE(error("GetLayout", {QStringLiteral("0"), -1, QStringList{}}), QString{});
    EXPECT_NE(error("Event", {1, QStringLiteral("clicked")}), QString{});
    EXPECT_NE(error("EventGroup", {QStringList{}}), QString{});
    EXPECT_NE(error("Explode", {}), QString{});
    EXPECT_EQ(layout().children.size(), 8);
}

TEST_F(BusMenuTest, introspection)
{
    const auto reply = call("Introspect", {}, QStringLiteral("org.freedesktop.DBus.Introspectable"));
    QXmlStreamReader reader{reply.arguments().value(0).toString()};
    QStringList names;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            names.append(reader.attributes().value(QStringLiteral("name")).toString());
        }
    }
    EXPECT_FALSE(reader.hasError());
    for (const char* const name : {"com.canonical.dbusmenu", "GetLayout", "EventGroup", "LayoutUpdated", "Version"}) {
        EXPECT_TRUE(names.contains(QLatin1String{name})) << name;
    }
}

} // namespace
} // namespace quellon

#include "BusMenuTests.moc"
