#include "QuellonUI/Tray/StatusNotifierItem.h"

#include "../Desktop/SessionBus.h"
#include "TrayModels.h"

#include <gtest/gtest.h>

#include <QDBusError>
#include <QXmlStreamReader>

#include <set>

namespace quellon {
namespace {

using BusTypes::Pixmap;
using BusTypes::ToolTip;
using testing::BusClient;
using testing::guardingModel;
using testing::pausedModel;
using testing::SessionBus;
using testing::until;

const QString interface = QStringLiteral("org.kde.StatusNotifierItem");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

/// Keeps the signals that come from an object.
class Listener final : public QObject {
    Q_OBJECT
public:
    QStringList heard; ///< Their names, with the arguments that are texts.

public Q_SLOTS:
    void hear(const QDBusMessage& message)
    {
        QString line = message.member();
        for (const QVariant& each : message.arguments()) line += QLatin1Char{' '} + each.toString();
        heard.append(line);
    }
};

class StatusNotifierItemTest : public ::testing::Test {
protected:
    SessionBus bus;
    BusClient host{bus};
    BusClient program{bus};
    StatusNotifierItem item{program.bus()};
    Listener listener;

    void SetUp() override
    {
        ASSERT_TRUE(bus.isRunning());
        ASSERT_TRUE(host.bus().connect(program.bus().baseService(), StatusNotifierItem::path, interface, QString{},
                                       &listener, SLOT(hear(QDBusMessage))));
        item.setModel(guardingModel());
        heard();
    }
    QDBusMessage call(const QString& ofInterface, const char* method, const QVariantList& arguments = {})
    {
        return host.call(program.bus().baseService(), StatusNotifierItem::path, ofInterface, QLatin1String{method},
                         arguments);
    }
    QVariantMap all() { return qdbus_cast<QVariantMap>(call(properties, "GetAll", {interface}).arguments().value(0)); }
    QVariant get(const char* name)
    {
        const auto reply = call(properties, "Get", {interface, QLatin1String{name}});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }
    QString error(const QString& ofInterface, const char* method, const QVariantList& arguments = {})
    {
        return call(ofInterface, method, arguments).errorName();
    }
    /// What was told since the last time.
    std::set<std::string> heard()
    {
        // The answer comes behind the signals.
        call(QStringLiteral("org.freedesktop.DBus.Peer"), "Ping");
        std::set<std::string> result;
        for (const QString& each : listener.heard) result.insert(each.toStdString());
        listener.heard.clear();
        return result;
    }
    QList<QImage> icons(const char* name = "IconPixmap")
    {
        QList<QImage> result;
        for (const Pixmap& each : qdbus_cast<QList<Pixmap>>(get(name))) result.append(each.image());
        return result;
    }
};

TEST_F(StatusNotifierItemTest, whatHostsRead)
{
    const QVariantMap read = all();
    EXPECT_EQ(read[QStringLiteral("Category")], QStringLiteral("ApplicationStatus"));
    EXPECT_EQ(read[QStringLiteral("Id")], QStringLiteral("quellon"));
    EXPECT_EQ(read[QStringLiteral("Title")].toString().toStdString(), guardingModel().accessibleText);
    EXPECT_EQ(read[QStringLiteral("Status")], QStringLiteral("Active"));
    EXPECT_EQ(read[QStringLiteral("WindowId")], 0);
    EXPECT_EQ(read[QStringLiteral("IconName")], QString{});
    EXPECT_EQ(read[QStringLiteral("ItemIsMenu")], false);
    EXPECT_EQ(read[QStringLiteral("Menu")].value<QDBusObjectPath>().path(), QStringLiteral("/MenuBar"));
    const auto toolTip = qdbus_cast<ToolTip>(read[QStringLiteral("ToolTip")]);
    EXPECT_EQ(toolTip.title.toStdString(), guardingModel().accessibleText);
    EXPECT_EQ(toolTip.text.toStdString(), guardingModel().toolTip);
    for (auto each = read.begin(); each != read.end(); ++each) {
        // Pictures are shared by reference, so each is read anew by name.
        EXPECT_EQ(call(properties, "Get", {interface, each.key()}).type(), QDBusMessage::ReplyMessage)
            << each.key().toStdString();
    }
    EXPECT_FALSE(read.contains(QStringLiteral("XAyatanaLabel")));
}

TEST_F(StatusNotifierItemTest, questionsThatHaveNoAnswer)
{
    EXPECT_EQ(error(properties, "Get", {interface, QStringLiteral("XAyatanaLabel")}),
              QStringLiteral("org.freedesktop.DBus.Error.UnknownProperty"));
    EXPECT_EQ(error(properties, "Get", {QStringLiteral("org.example"), QStringLiteral("Title")}),
              QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface"));
    EXPECT_EQ(error(properties, "Set",
                    {interface, QStringLiteral("Title"), QVariant::fromValue(QDBusVariant{QStringLiteral("x")})}),
              QStringLiteral("org.freedesktop.DBus.Error.PropertyReadOnly"));
    EXPECT_EQ(call(properties, "Get", {QString{}, QStringLiteral("Title")}).type(), QDBusMessage::ReplyMessage)
        << "any interface";
    for (const auto& wrong : {QVariantList{}, QVariantList{1}, QVariantList{QStringLiteral("x"), 2}}) {
        EXPECT_NE(error(interface, "Activate", wrong), QString{});
        EXPECT_NE(error(properties, "Get", wrong), QString{});
    }
    EXPECT_NE(error(interface, "Explode"), QString{});
    EXPECT_NE(error(QStringLiteral("org.example"), "Activate", {1, 2}), QString{});
}

TEST_F(StatusNotifierItemTest, onlyWhatChangedIsTold)
{
    struct Case {
        const char* name;
        std::function<void(TrayModel&)> change;
        std::set<std::string> told;
    };
    const std::set<std::string> icon{"NewIcon", "NewAttentionIcon"};
    const Case cases[] = {
        {"nothing", [](TrayModel&) {}, {}},
        {"the menu", [](TrayModel& model) { model.items.pop_back(); }, {}},
        {"the symbol", [](TrayModel& model) { model.menuBar.symbol = "shield"; }, icon},
        {"the tint", [](TrayModel& model) { model.tint = Tint::red; }, icon},
        {"the badge", [](TrayModel& model) { model.badge = "44%"; }, icon},
        {"the name", [](TrayModel& model) { model.accessibleText += "!"; }, {"NewTitle", "NewToolTip"}},
        {"the tool tip", [](TrayModel& model) { model.toolTip += "!"; }, {"NewToolTip"}},
        {"attention", [](TrayModel& model) { model.needsAttention = true; }, {"NewStatus NeedsAttention"}},
        {"a title that is not drawn", [](TrayModel& model) { model.menuBar.title = "Player 12.0 MB"; }, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        item.setModel(guardingModel());
        heard();
        TrayModel model = guardingModel();
        c.change(model);
        item.setModel(model);
        EXPECT_EQ(heard(), c.told);
        item.setModel(model);
        EXPECT_EQ(heard(), std::set<std::string>{});
    }
}

TEST_F(StatusNotifierItemTest, attention)
{
    TrayModel model = guardingModel();
    model.needsAttention = true;
    item.setModel(model);
    EXPECT_EQ(get("Status"), QStringLiteral("NeedsAttention"));
    EXPECT_EQ(icons("AttentionIconPixmap"), icons()) << "hosts show this one then";
    item.setModel(guardingModel());
    EXPECT_EQ(get("Status"), QStringLiteral("Active"));
    EXPECT_TRUE(heard().contains("NewStatus Active"));
}

TEST_F(StatusNotifierItemTest, aHostThatShowsLabels)
{
    const auto badged = icons();
    item.setLabelled(true);
    EXPECT_EQ(heard(), (std::set<std::string>{"NewIcon", "NewAttentionIcon", "XAyatanaNewLabel 43% 43%"}));
    EXPECT_EQ(get("XAyatanaLabel"), QStringLiteral("43%"));
    EXPECT_EQ(get("XAyatanaLabelGuide"), QStringLiteral("43%"));
    EXPECT_NE(icons(), badged) << "not twice";
    TrayModel model = guardingModel();
    model.menuBar.title = "Player 12.0 MB";
    model.badge.clear();
    item.setModel(model);
    EXPECT_EQ(heard(), (std::set<std::string>{"XAyatanaNewLabel Player 12.0 MB Player 12.0 MB"}));
    model.menuBar.title.clear();
    item.setModel(model);
    EXPECT_EQ(heard(), (std::set<std::string>{"XAyatanaNewLabel  "}));
    EXPECT_FALSE(all().contains(QStringLiteral("XAyatanaLabel"))) << "an empty one would be shown in the icon's place";
    item.setModel(guardingModel());
    item.setLabelled(false);
    EXPECT_FALSE(all().contains(QStringLiteral("XAyatanaLabel")));
    EXPECT_EQ(icons(), badged);
}

TEST_F(StatusNotifierItemTest, iconsInAllSizes)
{
    const auto guarding = icons();
    ASSERT_EQ(guarding.size(), qsizetype{TrayPicture::sizes.size()});
    for (qsizetype i = 0; i < guarding.size(); ++i) {
        EXPECT_EQ(guarding[i].size(), QSize(TrayPicture::sizes[static_cast<std::size_t>(i)],
                                            TrayPicture::sizes[static_cast<std::size_t>(i)]));
        QImage empty{guarding[i].size(), QImage::Format_ARGB32};
        empty.fill(Qt::transparent);
        EXPECT_NE(guarding[i], empty);
    }
    item.setModel(pausedModel());
    const auto paused = icons();
    ASSERT_EQ(paused.size(), guarding.size());
    for (qsizetype i = 0; i < guarding.size(); ++i) EXPECT_NE(paused[i], guarding[i]);
}

TEST_F(StatusNotifierItemTest, aToolTipReadsTheSameAsMarkupAndAsText)
{
    TrayModel model = guardingModel();
    model.accessibleText = "Quellon: A & B";
    model.toolTip = "Paused: <b>\nsecond";
    item.setModel(model);
    const auto toolTip = qdbus_cast<ToolTip>(get("ToolTip"));
    EXPECT_EQ(toolTip.title, QStringLiteral("Quellon: A + B"));
    EXPECT_EQ(toolTip.text, QStringLiteral("Paused: ‹b>\nsecond"));
    EXPECT_EQ(get("Title"), QStringLiteral("Quellon: A & B")) << "this one is never markup";
}

TEST_F(StatusNotifierItemTest, clicks)
{
    QList<QPoint> clicks;
    QObject::connect(&item, &StatusNotifierItem::activated, &item, [&](QPoint at) { clicks.append(at); });
    EXPECT_EQ(error(interface, "Activate", {1201, 14}), QString{});
    EXPECT_EQ(error(interface, "SecondaryActivate", {-3, 790}), QString{});
    EXPECT_TRUE(until([&] { return clicks.size() == 2; }));
    EXPECT_EQ(clicks, (QList<QPoint>{{1201, 14}, {-3, 790}}));
    EXPECT_EQ(error(QString{}, "Activate", {5, 6}), QString{}) << "a call may leave the interface out";
    EXPECT_TRUE(until([&] { return clicks.size() == 3; }));
    clicks.clear();
    EXPECT_EQ(error(interface, "ContextMenu", {1, 2}), QString{});
    EXPECT_EQ(error(interface, "Scroll", {120, QStringLiteral("vertical")}), QString{});
    EXPECT_EQ(error(interface, "ProvideXdgActivationToken", {QStringLiteral("token")}), QString{});
    EXPECT_EQ(error(interface, "XAyatanaSecondaryActivate", {uint{0}}), QString{});
    heard();
    EXPECT_TRUE(clicks.isEmpty());
}

TEST_F(StatusNotifierItemTest, introspection)
{
    const auto reply = call(QStringLiteral("org.freedesktop.DBus.Introspectable"), "Introspect");
    QXmlStreamReader reader{reply.arguments().value(0).toString()};
    std::set<QString> names;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            names.insert(reader.attributes().value(QStringLiteral("name")).toString());
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    for (const char* const name : {"org.kde.StatusNotifierItem", "Activate", "NewIcon", "IconPixmap", "ToolTip"}) {
        EXPECT_TRUE(names.contains(QLatin1String{name})) << name;
    }
}

TEST_F(StatusNotifierItemTest, withoutBus)
{
    StatusNotifierItem alone{QDBusConnection{QStringLiteral("none")}};
    alone.setModel(guardingModel());
    alone.setLabelled(true);
}

TEST(BusPixmap, networkByteOrder)
{
    QImage image{2, 1, QImage::Format_ARGB32};
    image.setPixel(0, 0, qRgba(0x11, 0x22, 0x33, 0xff));
    image.setPixel(1, 0, qRgba(0x44, 0x55, 0x66, 0x80));
    const Pixmap pixmap = Pixmap::of(image);
    EXPECT_EQ(pixmap.width, 2);
    EXPECT_EQ(pixmap.height, 1);
    EXPECT_EQ(pixmap.bytes.toHex(), QByteArray{"ff11223380445566"});
    EXPECT_EQ(pixmap.image(), image);
    EXPECT_TRUE((Pixmap{2, 2, pixmap.bytes}.image().isNull())) << "too few bytes";
    EXPECT_TRUE((Pixmap{-1, -2, pixmap.bytes}.image().isNull()));
}

} // namespace
} // namespace quellon

#include "StatusNotifierItemTests.moc"
