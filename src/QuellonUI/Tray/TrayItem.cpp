#include "QuellonUI/Tray/TrayItem.h"

#include "QuellonUI/Kit/WindowSystem.h"
#include "QuellonUI/Tray/TrayAnchor.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <utility>

namespace quellon {

TrayItem::TrayItem() : TrayItem(Surroundings{}) {}

TrayItem::TrayItem(Surroundings surroundings, QObject* parent)
    : QObject(parent),
      surroundings_(std::move(surroundings)),
      item_(surroundings_.bus),
      menu_(surroundings_.bus),
      host_(surroundings_.bus, surroundings_.limit)
{
    connect(&item_, &StatusNotifierItem::activated, this, &TrayItem::onReported);
    connect(&menu_, &BusMenu::chosen, this, &TrayItem::chosen);
    connect(&host_, &TrayHost::changed, this, &TrayItem::update);
    // In a later turn, so that nobody misses what is told.
    QMetaObject::invokeMethod(this, &TrayItem::update, Qt::QueuedConnection);
}

void TrayItem::setModel(const TrayModel& model)
{
    if (model != model_) {
        model_ = model;
        item_.setModel(model_);
        menu_.setItems(model_.items);
        if (embedded_) embedded_->setModel(model_);
    }
    // The tray of the window system may have come or gone, which nobody tells.
    if (embedded_) update();
}

void TrayItem::onReported(QPoint reported)
{
    QList<QRect> screens;
    for (const QScreen* const screen : QGuiApplication::screens()) screens.append(screen->geometry());
    Q_EMIT activated(trayAnchor(reported, QCursor::pos(), seesPointerEverywhere(), screens));
}

void TrayItem::update()
{
    item_.setLabelled(host_.isLabelled());
    switch (host_.state()) {
    case TrayHost::State::unknown:
        break;
    case TrayHost::State::absent:
    case TrayHost::State::vacant:
        embed();
        break;
    case TrayHost::State::broken: // the toolkit would wait for what doesn't answer
    case TrayHost::State::shown:
        embedded_.reset();
        break;
    }
    const auto now = found();
    if (std::exchange(availability_, now) != now) Q_EMIT availabilityChanged();
}

void TrayItem::embed()
{
    if (embedded_) return;
    embedded_ = surroundings_.embedded();
    if (!embedded_) return;
    connect(embedded_.get(), &EmbeddedTray::activated, this, &TrayItem::activated);
    connect(embedded_.get(), &EmbeddedTray::chosen, this, &TrayItem::chosen);
    embedded_->setModel(model_);
}

std::optional<TrayItem::Availability> TrayItem::found() const
{
    if (host_.state() == TrayHost::State::unknown) return std::nullopt;
    if (host_.state() == TrayHost::State::shown) return Availability::host;
    return embedded_ && embedded_->isAvailable() ? Availability::embedded : Availability::none;
}

} // namespace quellon
