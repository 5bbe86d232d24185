#pragma once

#include "QuellonCore/Presentation/TrayModel.h"
#include "QuellonUI/Tray/BusTypes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <vector>

namespace quellon {

/// The menu of the tray item on the message bus (`com.canonical.dbusmenu`), where the tray's host draws it. The entries
/// have the ids 1, 2, … in their order; 0 is the menu itself.
class BusMenu final : public QDBusVirtualObject {
    Q_OBJECT
public:
    static const QString path;

    /// Is on the bus for as long as it lives. A bus that isn't there is no error.
    explicit BusMenu(QDBusConnection bus, QObject* parent = nullptr);
    ~BusMenu() override;
    BusMenu(const BusMenu&) = delete;
    BusMenu& operator=(const BusMenu&) = delete;

    /// Tells the host what changed; nothing when nothing did.
    void setItems(const std::vector<TrayModel::Item>& items);

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override;
    [[nodiscard]] QString introspect(const QString& path) const override;

Q_SIGNALS:
    /// After the call that told of it was answered.
    void chosen(TrayCommand command);

private:
    QDBusConnection bus_;
    std::vector<TrayModel::Item> items_;
    uint revision_ = 1;

    [[nodiscard]] bool has(int id) const;
    [[nodiscard]] QVariantMap properties(int id) const;
    [[nodiscard]] QDBusMessage reply(const QDBusMessage& call);
    [[nodiscard]] QDBusMessage layout(const QDBusMessage& call) const;
    [[nodiscard]] QDBusMessage groupProperties(const QDBusMessage& call) const;
    [[nodiscard]] QDBusMessage property(const QDBusMessage& call) const;
    [[nodiscard]] QDBusMessage eventGroup(const QDBusMessage& call);
    void happened(int id, const QString& event);
    void tell(const QString& signal, const QVariantList& arguments);
};

} // namespace quellon
