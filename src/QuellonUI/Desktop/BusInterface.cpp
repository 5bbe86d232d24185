#include "QuellonUI/Desktop/BusInterface.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QXmlStreamWriter>

namespace quellon {

namespace {

constexpr QLatin1String nameKey{"name"};
constexpr QLatin1String typeKey{"type"};

void writeArguments(QXmlStreamWriter& writer, const QList<const char*>& types, QLatin1String direction)
{
    for (const char* const type : types) {
        writer.writeEmptyElement(QStringLiteral("arg"));
        writer.writeAttribute(typeKey, QLatin1String{type});
        if (!direction.isEmpty()) writer.writeAttribute(QStringLiteral("direction"), direction);
    }
}

void writeProperties(QXmlStreamWriter& writer, const QVariantMap& properties)
{
    for (auto each = properties.constBegin(); each != properties.constEnd(); ++each) {
        writer.writeEmptyElement(QStringLiteral("property"));
        writer.writeAttribute(nameKey, each.key());
        writer.writeAttribute(typeKey, QLatin1String{QDBusMetaType::typeToSignature(each.value().metaType())});
        writer.writeAttribute(QStringLiteral("access"), QStringLiteral("read"));
    }
}

QDBusMessage reply(const QDBusMessage& call, QLatin1String interface, const QVariantMap& properties)
{
    const QVariantList arguments = call.arguments();
    const QString asked = arguments.value(0).toString();
    if (!asked.isEmpty() && asked != interface) return call.createErrorReply(QDBusError::UnknownInterface, asked);
    if (call.member() == QLatin1String{"GetAll"}) return call.createReply(QVariant::fromValue(properties));
    const QString name = arguments.value(1).toString();
    const auto found = properties.constFind(name);
    if (found == properties.constEnd()) return call.createErrorReply(QDBusError::UnknownProperty, name);
    if (call.member() == QLatin1String{"Set"}) return call.createErrorReply(QDBusError::PropertyReadOnly, name);
    return call.createReply(QVariant::fromValue(QDBusVariant{*found}));
}

} // namespace

QString BusInterface::introspect(const QVariantMap& properties) const
{
    QString result;
    QXmlStreamWriter writer{&result};
    writer.writeStartElement(QStringLiteral("interface"));
    writer.writeAttribute(nameKey, QLatin1String{name});
    writeProperties(writer, properties);
    for (const Member& method : methods) {
        writer.writeStartElement(QStringLiteral("method"));
        writer.writeAttribute(nameKey, QLatin1String{method.name});
        writeArguments(writer, method.in, QLatin1String{"in"});
        writeArguments(writer, method.out, QLatin1String{"out"});
        writer.writeEndElement();
    }
    for (const Member& notice : notices) {
        writer.writeStartElement(QStringLiteral("signal"));
        writer.writeAttribute(nameKey, QLatin1String{notice.name});
        writeArguments(writer, notice.in, {});
        writer.writeEndElement();
    }
    writer.writeEndElement();
    return result;
}

bool BusInterface::answer(const QDBusMessage& call, const QDBusConnection& bus, const QVariantMap& properties) const
{
    if (call.interface() != QLatin1String{"org.freedesktop.DBus.Properties"}) return false;
    const QString form = busForm(call);
    if (form != QLatin1String{"Get:ss"} && form != QLatin1String{"GetAll:s"} && form != QLatin1String{"Set:ssv"}) {
        return false;
    }
    return bus.send(reply(call, QLatin1String{name}, properties));
}

bool BusInterface::isMeant(const QDBusMessage& call) const
{
    return call.interface().isEmpty() || call.interface() == QLatin1String{name};
}

QString busForm(const QDBusMessage& call)
{
    return call.member() + QLatin1Char{':'} + call.signature();
}

} // namespace quellon
