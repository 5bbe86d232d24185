#pragma once

#include "QuellonCore/Presentation/TrayModel.h"
#include "QuellonUI/Tray/BusMenu.h"
#include "QuellonUI/Tray/EmbeddedTray.h"
#include "QuellonUI/Tray/StatusNotifierItem.h"
#include "QuellonUI/Tray/TrayHost.h"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace quellon {

/// The program's item in the tray: on the message bus where a host shows it, otherwise as the window system has it,
/// otherwise nowhere; whichever of them is there at the moment. Main thread only; waits for nobody.
class TrayItem final : public QObject {
    Q_OBJECT
public:
    enum class Availability {
        host,     ///< A host on the message bus shows the item.
        embedded, ///< The window system's tray shows it.
        none,     ///< Nobody shows it.
    };

    /// What it works with; the defaults are those of a desktop.
    struct Surroundings {
        QDBusConnection bus = QDBusConnection::sessionBus(); ///< May be unconnected.
        std::chrono::milliseconds limit{5000};               ///< For the answers of a host.
        /// Makes the item of the window system; null where it has none.
        std::function<std::unique_ptr<EmbeddedTray>()> embedded = SystemTray::make;
    };

    TrayItem();
    explicit TrayItem(Surroundings surroundings, QObject* parent = nullptr);

    /// Shows the model. Returns at once when it is what is shown.
    void setModel(const TrayModel& model);
    /// Where the item is shown; absent until that is known, soon after the start.
    [[nodiscard]] std::optional<Availability> availability() const { return availability_; }

Q_SIGNALS:
    /// The user clicked on the item; what it opens belongs there.
    void activated(QPoint anchor);
    /// The user chose this from the item's menu.
    void chosen(TrayCommand command);
    /// Also when it has become known.
    void availabilityChanged();

private:
    Surroundings surroundings_;
    TrayModel model_;
    StatusNotifierItem item_;
    BusMenu menu_;
    TrayHost host_;
    std::unique_ptr<EmbeddedTray> embedded_;
    std::optional<Availability> availability_;

    void onReported(QPoint reported);
    void update();
    void embed();
    [[nodiscard]] std::optional<Availability> found() const;
};

} // namespace quellon
