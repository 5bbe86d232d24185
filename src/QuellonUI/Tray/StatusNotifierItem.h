#pragma once

#include "QuellonCore/Presentation/TrayModel.h"
#include "QuellonUI/Tray/BusTypes.h"
#include "QuellonUI/Tray/TrayPicture.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QPoint>

#include <optional>

namespace quellon {

/// The tray item as an object on the message bus (`org.kde.StatusNotifierItem`), which the tray's host reads and draws.
/// Making it known to a host is not its business.
class StatusNotifierItem final : public QDBusVirtualObject {
    Q_OBJECT
public:
    static const QString path;

    /// Is on the bus for as long as it lives. A bus that isn't there is no error.
    explicit StatusNotifierItem(QDBusConnection bus, QObject* parent = nullptr);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    /// Tells the host which of its parts changed; nothing when none did.
    void setModel(const TrayModel& model);
    /// Whether the host shows a text beside the icon. If not, it gets none, and what is short is drawn into the icon.
    void setLabelled(bool labelled);

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override;
    [[nodiscard]] QString introspect(const QString& path) const override;

Q_SIGNALS:
    /// The user clicked, where the host says. After the call that told of it was answered.
    void activated(QPoint reported);

private:
    QDBusConnection bus_;
    TrayModel model_;
    bool isLabelled_ = false;
    /// Drawn when first asked for.
    mutable std::optional<QList<BusTypes::Pixmap>> pixmaps_;

    void change(TrayModel model, bool labelled);
    [[nodiscard]] QVariantMap properties() const;
    [[nodiscard]] const QList<BusTypes::Pixmap>& pixmaps() const;
    void tell(const QString& signal, const QVariantList& arguments = {});
};

} // namespace quellon
