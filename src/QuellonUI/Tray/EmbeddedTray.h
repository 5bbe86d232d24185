#pragma once

#include "QuellonCore/Presentation/TrayModel.h"
#include "QuellonUI/Tray/TrayPicture.h"

#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>
#include <vector>

namespace quellon {

/// The tray item where there is no host on the message bus: as the window system has it.
class EmbeddedTray : public QObject {
    Q_OBJECT
public:
    /// Whether there is a tray to be in. It may come later.
    [[nodiscard]] virtual bool isAvailable() const = 0;
    virtual void setModel(const TrayModel& model) = 0;

Q_SIGNALS:
    /// The user clicked; the item is there.
    void activated(QPoint anchor);
    void chosen(TrayCommand command);
};

/// The toolkit's item. Once for the life of the process the toolkit settles whether its items use the message bus; so
/// none must be made while there is a host on the bus.
class SystemTray final : public EmbeddedTray {
    Q_OBJECT
public:
    SystemTray();

    /// A new item; null where the window system has no tray of its own.
    [[nodiscard]] static std::unique_ptr<EmbeddedTray> make();

    [[nodiscard]] bool isAvailable() const override;
    void setModel(const TrayModel& model) override;

private:
    QMenu menu_;
    QSystemTrayIcon icon_;
    std::optional<TrayPicture> picture_;
    std::vector<TrayModel::Item> items_;

    void onActivated(QSystemTrayIcon::ActivationReason reason);
    void setPicture(const TrayPicture& picture);
    void setItems(const std::vector<TrayModel::Item>& items);
};

} // namespace quellon
