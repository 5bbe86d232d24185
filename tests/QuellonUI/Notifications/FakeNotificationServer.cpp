#include "FakeNotificationServer.h"

#include <QDBusVariant>

#include <algorithm>
#include <iterator>

namespace quellon::testing {

namespace {

QString freshName()
{
    static int last = 0;
    return QStringLiteral("fake-server-%1").arg(++last);
}

} // namespace

FakeNotificationServer::FakeNotificationServer(const QString& address)
    : name_{freshName()}, bus_{QDBusConnection::connectToBus(address, name_)}
{
    bus_.registerVirtualObject(QLatin1String{path}, this);
}

FakeNotificationServer::~FakeNotificationServer()
{
    bus_.unregisterObject(QLatin1String{path});
    QDBusConnection::disconnectFromBus(name_);
}

bool FakeNotificationServer::takeName()
{
    return bus_.registerService(QLatin1String{service});
}

void FakeNotificationServer::giveNameUp()
{
    bus_.unregisterService(QLatin1String{service});
}

std::vector<QDBusMessage> FakeNotificationServer::callsOf(const QString& method) const
{
    std::vector<QDBusMessage> result;
    std::ranges::copy_if(calls, std::back_inserter(result),
                         [&](const QDBusMessage& each) { return each.member() == method; });
    return result;
}

void FakeNotificationServer::emitSignal(const QString& name, const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createSignal(QLatin1String{path}, QLatin1String{service}, name);
    message.setArguments(arguments);
    bus_.send(message);
}

void FakeNotificationServer::setInhibited(bool is)
{
    inhibited = is;
    QDBusMessage message = QDBusMessage::createSignal(
        QLatin1String{path}, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    message.setArguments({QLatin1String{service}, QVariantMap{{QStringLiteral("Inhibited"), is}}, QStringList{}});
    bus_.send(message);
}

bool FakeNotificationServer::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    calls.push_back(message);
    if (silent.contains(message.member())) return true;
    const bool fails = failing.contains(message.member()) || (message.member() == QLatin1String{"Get"} && !inhibited);
    connection.send(fails ? message.createErrorReply(QDBusError::Failed, QStringLiteral("no"))
                          : message.createReply(result(message)));
    return true;
}

QVariantList FakeNotificationServer::result(const QDBusMessage& message)
{
    const QString method = message.member();
    if (method == QLatin1String{"GetCapabilities"}) return capabilities;
    if (method == QLatin1String{"GetServerInformation"}) return information;
    if (method == QLatin1String{"Get"}) return {QVariant::fromValue(QDBusVariant{*inhibited})};
    if (method != QLatin1String{"Notify"}) return {};
    const QVariant id = nextID;
    if (id.typeId() == QMetaType::UInt) nextID = id.toUInt() + 1;
    return {id};
}

} // namespace quellon::testing
