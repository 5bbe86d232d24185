#include "QuellonUI/Tray/EmbeddedTray.h"

#include "QuellonUI/Theme.h"
#include "QuellonUI/Tray/TrayText.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>

namespace quellon {

namespace {

/// An ampersand would mark the letter behind it as a short cut.
QString label(const std::string& title)
{
    return toQString(title).replace(QLatin1Char{'&'}, QStringLiteral("&&"));
}

} // namespace

std::unique_ptr<EmbeddedTray> SystemTray::make()
{
    const QString platform = QGuiApplication::platformName();
    if (platform != QLatin1String{"xcb"} && platform != QLatin1String{"cocoa"}) return nullptr;
    return std::make_unique<SystemTray>();
}

SystemTray::SystemTray()
{
    connect(&icon_, &QSystemTrayIcon::activated, this, &SystemTray::onActivated);
}

bool SystemTray::isAvailable() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void SystemTray::setModel(const TrayModel& model)
{
    setPicture(TrayPicture::of(model, true));
    QString toolTip = toolTipText(model.accessibleText);
    if (!model.toolTip.empty()) toolTip += QLatin1Char{'\n'} + toolTipText(model.toolTip);
    if (toolTip != icon_.toolTip()) icon_.setToolTip(toolTip);
    setItems(model.items);
    icon_.show();
}

void SystemTray::setPicture(const TrayPicture& picture)
{
    if (picture_ == picture) return;
    picture_ = picture;
    QIcon icon;
    for (const int size : TrayPicture::sizes) icon.addPixmap(QPixmap::fromImage(picture.image(size)));
    icon.setIsMask(true); // on macOS the menu bar gives it its colour
    icon_.setIcon(icon);
}

void SystemTray::setItems(const std::vector<TrayModel::Item>& items)
{
    if (items == items_) return;
    items_ = items;
    const auto count = static_cast<qsizetype>(items.size());
    while (menu_.actions().size() > count) delete menu_.actions().constLast();
    for (qsizetype i = menu_.actions().size(); i < count; ++i) {
        connect(menu_.addAction(QString{}), &QAction::triggered, this, [this, i] {
            if (const auto command = items_[static_cast<std::size_t>(i)].command) Q_EMIT chosen(*command);
        });
    }
    for (qsizetype i = 0; i < count; ++i) {
        const TrayModel::Item& item = items[static_cast<std::size_t>(i)];
        QAction* const action = menu_.actions().at(i);
        action->setSeparator(item.separator);
        action->setText(label(item.title));
        action->setEnabled(item.enabled);
    }
}

void SystemTray::onActivated(QSystemTrayIcon::ActivationReason reason)
{
    switch (reason) {
    case QSystemTrayIcon::Context:
        menu_.popup(QCursor::pos());
        return;
    case QSystemTrayIcon::Trigger:
    case QSystemTrayIcon::MiddleClick: {
        const QRect place = icon_.geometry();
        Q_EMIT activated(place.isValid() ? place.center() : QCursor::pos());
        return;
    }
    case QSystemTrayIcon::DoubleClick: // its first click was told already
    case QSystemTrayIcon::Unknown:
        return;
    }
}

} // namespace quellon
