#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace quellon {

/// Whether the desktop wants dark windows: what its settings portal says, and what the platform's palette was like
/// where that has no preference or isn't there. Follows changes. Waits for nobody.
class ColourScheme final : public QObject {
    Q_OBJECT
public:
    /// What the user asked for.
    enum class Preference { unknown, dark, light };

    /// To be made before anything sets the application's palette. A bus that isn't there is as one without a portal.
    explicit ColourScheme(QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

    [[nodiscard]] Preference preference() const { return preference_; }
    /// The preference, or else what the palette was like. Until the portal has answered, that too.
    [[nodiscard]] bool isDark() const;

Q_SIGNALS:
    /// `isDark` is different now.
    void changed(bool dark);

private Q_SLOTS:
    void onSettingChanged(const QDBusMessage& message);

private:
    Preference preference_ = Preference::unknown;
    bool isPaletteDark_;

    void ask(const QDBusConnection& bus);
    void setPreference(Preference preference);
};

} // namespace quellon
