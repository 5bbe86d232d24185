#include "QuellonUI/Tray/StatusNotifierItem.h"

#include "QuellonUI/Desktop/BusInterface.h"
#include "QuellonUI/Theme.h"
#include "QuellonUI/Tray/BusMenu.h"
#include "QuellonUI/Tray/TrayText.h"

#include <QDBusObjectPath>

#include <utility>

namespace quellon {

namespace {

using BusTypes::Pixmap;
using BusTypes::ToolTip;

const BusInterface& interface()
{
    static const BusInterface result{
        "org.kde.StatusNotifierItem",
        {{"Activate", {"i", "i"}},
         {"SecondaryActivate", {"i", "i"}},
         {"ContextMenu", {"i", "i"}},
         {"Scroll", {"i", "s"}},
         {"ProvideXdgActivationToken", {"s"}},
         {"XAyatanaSecondaryActivate", {"u"}}},
        {{"NewTitle", {}},
         {"NewIcon", {}},
         {"NewAttentionIcon", {}},
         {"NewOverlayIcon", {}},
         {"NewToolTip", {}},
         {"NewStatus", {"s"}},
         {"XAyatanaNewLabel", {"s", "s"}}},
    };
    return result;
}

ToolTip toolTip(const TrayModel& model)
{
    return {{}, {}, toolTipText(model.accessibleText), toolTipText(model.toolTip)};
}

QString status(const TrayModel& model)
{
    return model.needsAttention ? QStringLiteral("NeedsAttention") : QStringLiteral("Active");
}

QString label(const TrayModel& model, bool labelled)
{
    return labelled ? toQString(model.menuBar.title) : QString{};
}

TrayPicture picture(const TrayModel& model, bool labelled)
{
    return TrayPicture::of(model, !labelled);
}

} // namespace

const QString StatusNotifierItem::path = QStringLiteral("/StatusNotifierItem");

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, QObject* parent)
    : QDBusVirtualObject(parent), bus_(std::move(bus))
{
    BusTypes::registerAll();
    if (bus_.isConnected()) bus_.registerVirtualObject(path, this);
}

StatusNotifierItem::~StatusNotifierItem()
{
    if (bus_.objectRegisteredAt(path) == this) bus_.unregisterObject(path);
}

void StatusNotifierItem::setModel(const TrayModel& model)
{
    if (model != model_) change(model, isLabelled_);
}

void StatusNotifierItem::setLabelled(bool labelled)
{
    if (labelled != isLabelled_) change(model_, labelled);
}

void StatusNotifierItem::change(TrayModel model, bool labelled)
{
    const TrayModel former = std::exchange(model_, std::move(model));
    const bool wasLabelled = std::exchange(isLabelled_, labelled);
    if (picture(former, wasLabelled) != picture(model_, labelled)) {
        pixmaps_.reset();
        tell(QStringLiteral("NewIcon"));
        tell(QStringLiteral("NewAttentionIcon"));
    }
    if (former.accessibleText != model_.accessibleText) tell(QStringLiteral("NewTitle"));
    if (toolTip(former) != toolTip(model_)) tell(QStringLiteral("NewToolTip"));
    if (status(former) != status(model_)) tell(QStringLiteral("NewStatus"), {status(model_)});
    const QString text = label(model_, labelled);
    if (label(former, wasLabelled) != text) tell(QStringLiteral("XAyatanaNewLabel"), {text, text});
}

const QList<Pixmap>& StatusNotifierItem::pixmaps() const
{
    if (!pixmaps_) {
        pixmaps_.emplace();
        const TrayPicture shown = picture(model_, isLabelled_);
        for (const int size : TrayPicture::sizes) pixmaps_->append(Pixmap::of(shown.image(size)));
    }
    return *pixmaps_;
}

QVariantMap StatusNotifierItem::properties() const
{
    QVariantMap result{
        {QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
        {QStringLiteral("Id"), QStringLiteral("quellon")},
        {QStringLiteral("Title"), toQString(model_.accessibleText)},
        {QStringLiteral("Status"), status(model_)},
        {QStringLiteral("WindowId"), 0},
        {QStringLiteral("IconThemePath"), QString{}},
        {QStringLiteral("IconName"), QString{}},
        {QStringLiteral("IconPixmap"), QVariant::fromValue(pixmaps())},
        {QStringLiteral("OverlayIconName"), QString{}},
        {QStringLiteral("OverlayIconPixmap"), QVariant::fromValue(QList<Pixmap>{})},
        {QStringLiteral("AttentionIconName"), QString{}},
        {QStringLiteral("AttentionIconPixmap"), QVariant::fromValue(pixmaps())},
        {QStringLiteral("AttentionMovieName"), QString{}},
        {QStringLiteral("ToolTip"), QVariant::fromValue(toolTip(model_))},
        {QStringLiteral("ItemIsMenu"), false},
        {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath{BusMenu::path})},
    };
    // Some hosts drop the icon as soon as there is a label, be it empty.
    if (const QString text = label(model_, isLabelled_); !text.isEmpty()) {
        result.insert(QStringLiteral("XAyatanaLabel"), text);
        result.insert(QStringLiteral("XAyatanaLabelGuide"), text);
    }
    return result;
}

bool StatusNotifierItem::handleMessage(const QDBusMessage& call, const QDBusConnection& bus)
{
    if (interface().answer(call, bus, properties())) return true;
    if (!interface().isMeant(call)) return false;
    const QString form = busForm(call);
    if (form == QLatin1String{"Activate:ii"} || form == QLatin1String{"SecondaryActivate:ii"}) {
        const QPoint reported{call.arguments().at(0).toInt(), call.arguments().at(1).toInt()};
        QMetaObject::invokeMethod(
            this, [this, reported] { Q_EMIT activated(reported); }, Qt::QueuedConnection);
        return bus.send(call.createReply());
    }
    // The host draws the menu itself, nothing can be scrolled, and no window needs a token.
    const bool isKnown = form == QLatin1String{"ContextMenu:ii"} || form == QLatin1String{"Scroll:is"} ||
                         form == QLatin1String{"ProvideXdgActivationToken:s"} ||
                         form == QLatin1String{"XAyatanaSecondaryActivate:u"};
    return isKnown && bus.send(call.createReply());
}

void StatusNotifierItem::tell(const QString& signal, const QVariantList& arguments)
{
    if (!bus_.isConnected()) return;
    QDBusMessage message = QDBusMessage::createSignal(path, QLatin1String{interface().name}, signal);
    message.setArguments(arguments);
    bus_.send(message);
}

QString StatusNotifierItem::introspect(const QString& asked) const
{
    return asked == path ? interface().introspect(properties()) : QString{};
}

} // namespace quellon
