#include "QuellonUI/Settings/Accessibility.h"

#include "QuellonUI/Settings/Sheet.h"
#include "QuellonUI/Settings/TabBar.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace quellon {

namespace {

class TabAccessible final : public QAccessibleWidget {
public:
    explicit TabAccessible(TabButton& button) : QAccessibleWidget(&button, QAccessible::PageTab), button_(button) {}

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State result = QAccessibleWidget::state();
        result.selectable = true;
        result.selected = button_.isChecked();
        return result;
    }
    [[nodiscard]] QStringList actionNames() const override
    {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override
    {
        if (name == pressAction())
            button_.click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    TabButton& button_;
};

QAccessibleInterface* interfaceOf(const QString& /*className*/, QObject* object)
{
    if (auto* const tab = qobject_cast<TabButton*>(object)) return new TabAccessible{*tab};
    if (auto* const bar = qobject_cast<TabBar*>(object)) return new QAccessibleWidget{bar, QAccessible::PageTabList};
    if (auto* const sheet = qobject_cast<Sheet*>(object)) return new QAccessibleWidget{sheet, QAccessible::Dialog};
    return nullptr;
}

} // namespace

void installSettingsAccessibility()
{
    static const bool installed = (QAccessible::installFactory(interfaceOf), true);
    static_cast<void>(installed);
}

} // namespace quellon
