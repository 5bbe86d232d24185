#include "QuellonUI/Tray/BusMenu.h"

#include "QuellonUI/Desktop/BusInterface.h"
#include "QuellonUI/Theme.h"

#include <QDBusError>
#include <QGuiApplication>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

using BusTypes::MenuEvent;
using BusTypes::MenuNode;
using BusTypes::MenuProperties;
using BusTypes::MenuRemovals;

const BusInterface& interface()
{
    static const BusInterface result{
        "com.canonical.dbusmenu",
        {{"GetLayout", {"i", "i", "as"}, {"u", "(ia{sv}av)"}},
         {"GetGroupProperties", {"ai", "as"}, {"a(ia{sv})"}},
         {"GetProperty", {"i", "s"}, {"v"}},
         {"Event", {"i", "s", "v", "u"}},
         {"EventGroup", {"a(isvu)"}, {"ai"}},
         {"AboutToShow", {"i"}, {"b"}},
         {"AboutToShowGroup", {"ai"}, {"ai", "ai"}}},
        {{"ItemsPropertiesUpdated", {"a(ia{sv})", "a(ias)"}}, {"LayoutUpdated", {"u", "i"}}},
    };
    return result;
}

/// A low line would mark the letter behind it as a short cut.
QString label(const std::string& title)
{
    return toQString(title).replace(QLatin1Char{'_'}, QStringLiteral("__"));
}

QVariantMap ownProperties()
{
    const bool toTheLeft = QGuiApplication::layoutDirection() == Qt::RightToLeft;
    return {
        {QStringLiteral("Version"), uint{3}},
        {QStringLiteral("TextDirection"), toTheLeft ? QStringLiteral("rtl") : QStringLiteral("ltr")},
        {QStringLiteral("Status"), QStringLiteral("normal")},
        {QStringLiteral("IconThemePath"), QStringList{}},
    };
}

/// Those of the properties that are asked for; all when none is named.
QVariantMap filtered(const QVariantMap& properties, const QStringList& names)
{
    if (names.isEmpty()) return properties;
    QVariantMap result;
    for (const QString& name : names) {
        if (properties.contains(name)) result.insert(name, properties.value(name));
    }
    return result;
}

QDBusMessage noSuchEntry(const QDBusMessage& call)
{
    return call.createErrorReply(QDBusError::InvalidArgs, QString{});
}

/// Whether the same commands stand in the same places, so that only properties can differ.
bool isSameLayout(const std::vector<TrayModel::Item>& some, const std::vector<TrayModel::Item>& others)
{
    return std::equal(some.begin(), some.end(), others.begin(), others.end(), [](const auto& one, const auto& other) {
        return one.command == other.command && one.separator == other.separator;
    });
}

} // namespace

const QString BusMenu::path = QStringLiteral("/MenuBar");

BusMenu::BusMenu(QDBusConnection bus, QObject* parent) : QDBusVirtualObject(parent), bus_(std::move(bus))
{
    BusTypes::registerAll();
    if (bus_.isConnected()) bus_.registerVirtualObject(path, this);
}

BusMenu::~BusMenu()
{
    if (bus_.objectRegisteredAt(path) == this) bus_.unregisterObject(path);
}

void BusMenu::setItems(const std::vector<TrayModel::Item>& items)
{
    if (items == items_) return;
    const auto former = std::exchange(items_, items);
    if (!isSameLayout(former, items_)) {
        ++revision_;
        tell(QStringLiteral("LayoutUpdated"), {revision_, 0});
        return;
    }
    QList<MenuProperties> changed;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const int id = static_cast<int>(i) + 1;
        if (items_[i] != former[i]) changed.append({id, properties(id)});
    }
    tell(QStringLiteral("ItemsPropertiesUpdated"),
         {QVariant::fromValue(changed), QVariant::fromValue(QList<MenuRemovals>{})});
}

bool BusMenu::has(int id) const
{
    return id >= 0 && static_cast<std::size_t>(id) <= items_.size();
}

QVariantMap BusMenu::properties(int id) const
{
    if (id == 0) return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    const TrayModel::Item& item = items_[static_cast<std::size_t>(id) - 1];
    if (item.separator) {
        return {{QStringLiteral("type"), QStringLiteral("separator")}, {QStringLiteral("visible"), true}};
    }
    return {{QStringLiteral("label"), label(item.title)},
            {QStringLiteral("enabled"), item.enabled},
            {QStringLiteral("visible"), true}};
}

bool BusMenu::handleMessage(const QDBusMessage& call, const QDBusConnection& bus)
{
    if (interface().answer(call, bus, ownProperties())) return true;
    if (!interface().isMeant(call)) return false;
    const QDBusMessage answer = reply(call);
    return answer.type() != QDBusMessage::InvalidMessage && bus.send(answer);
}

QDBusMessage BusMenu::reply(const QDBusMessage& call)
{
    const QVariantList arguments = call.arguments();
    const QString form = busForm(call);
    if (form == QLatin1String{"GetLayout:iias"}) return layout(call);
    if (form == QLatin1String{"GetGroupProperties:aias"}) return groupProperties(call);
    if (form == QLatin1String{"GetProperty:is"}) return property(call);
    if (form == QLatin1String{"AboutToShow:i"}) {
        return has(arguments[0].toInt()) ? call.createReply(false) : noSuchEntry(call);
    }
    if (form == QLatin1String{"AboutToShowGroup:ai"}) {
        const auto none = QVariant::fromValue(QList<int>{});
        return call.createReply({none, none});
    }
    if (form == QLatin1String{"Event:isvu"}) {
        if (!has(arguments[0].toInt())) return noSuchEntry(call);
        happened(arguments[0].toInt(), arguments[1].toString());
        return call.createReply();
    }
    if (form == QLatin1String{"EventGroup:a(isvu)"}) return eventGroup(call);
    return {};
}

QDBusMessage BusMenu::layout(const QDBusMessage& call) const
{
    const QVariantList arguments = call.arguments();
    const int parent = arguments[0].toInt();
    const int depth = arguments[1].toInt(); // -1 for all the way down
    const auto names = qdbus_cast<QStringList>(arguments[2]);
    if (!has(parent)) return noSuchEntry(call);
    MenuNode node{parent, filtered(properties(parent), names), {}};
    if (parent == 0 && depth != 0) {
        for (int id = 1; has(id); ++id) node.children.append({id, filtered(properties(id), names), {}});
    }
    return call.createReply({revision_, QVariant::fromValue(node)});
}

QDBusMessage BusMenu::groupProperties(const QDBusMessage& call) const
{
    auto ids = qdbus_cast<QList<int>>(call.arguments().at(0));
    const auto names = qdbus_cast<QStringList>(call.arguments().at(1));
    if (ids.isEmpty()) {
        for (int id = 0; has(id); ++id) ids.append(id);
    }
    QList<MenuProperties> result;
    for (const int id : ids) {
        if (has(id)) result.append({id, filtered(properties(id), names)});
    }
    return call.createReply(QVariant::fromValue(result));
}

QDBusMessage BusMenu::property(const QDBusMessage& call) const
{
    const int id = call.arguments().at(0).toInt();
    if (!has(id)) return noSuchEntry(call);
    const QVariant value = properties(id).value(call.arguments().at(1).toString());
    if (!value.isValid()) { return call.createErrorReply(QDBusError::InvalidArgs, QString{}); }
    return call.createReply(QVariant::fromValue(QDBusVariant{value}));
}

QDBusMessage BusMenu::eventGroup(const QDBusMessage& call)
{
    const auto events = qdbus_cast<QList<MenuEvent>>(call.arguments().at(0));
    QList<int> unknown;
    for (const MenuEvent& each : events) {
        if (has(each.id))
            happened(each.id, each.name);
        else
            unknown.append(each.id);
    }
    if (!events.isEmpty() && unknown.size() == events.size()) return noSuchEntry(call);
    return call.createReply(QVariant::fromValue(unknown));
}

void BusMenu::happened(int id, const QString& event)
{
    if (id == 0 || event != QLatin1String{"clicked"}) return;
    const TrayModel::Item& item = items_[static_cast<std::size_t>(id) - 1];
    if (!item.command || !item.enabled) return;
    QMetaObject::invokeMethod(
        this, [this, command = *item.command] { Q_EMIT chosen(command); }, Qt::QueuedConnection);
}

void BusMenu::tell(const QString& signal, const QVariantList& arguments)
{
    if (!bus_.isConnected()) return;
    QDBusMessage message = QDBusMessage::createSignal(path, QLatin1String{interface().name}, signal);
    message.setArguments(arguments);
    bus_.send(message);
}

QString BusMenu::introspect(const QString& asked) const
{
    return asked == path ? interface().introspect(ownProperties()) : QString{};
}

} // namespace quellon
