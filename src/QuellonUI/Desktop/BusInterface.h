#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace quellon {

/// What an object on the message bus offers under one name: for introspection, and to answer for its properties. All of
/// them are read-only.
struct BusInterface {
    /// A method or a signal, with the types of its arguments, each a complete D-Bus signature.
    struct Member {
        const char* name;
        QList<const char*> in; ///< Of a signal: what it carries.
        QList<const char*> out{};
    };
    const char* name;
    QList<Member> methods;
    QList<Member> notices; ///< Its signals.

    /// The interface in the language of introspection.
    [[nodiscard]] QString introspect(const QVariantMap& properties) const;
    /// Answers `Get`, `GetAll` and `Set` of the standard interface of properties. Returns false, and answers nothing,
    /// when the call is for something else.
    bool answer(const QDBusMessage& call, const QDBusConnection& bus, const QVariantMap& properties) const;
    /// Whether the call is for a member of this interface, or names no interface.
    [[nodiscard]] bool isMeant(const QDBusMessage& call) const;
};

/// The call's member and the types of its arguments: "Activate:ii". What tells calls apart that can be trusted to have
/// the arguments.
[[nodiscard]] QString busForm(const QDBusMessage& call);

} // namespace quellon
