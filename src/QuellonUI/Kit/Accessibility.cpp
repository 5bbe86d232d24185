#include "QuellonUI/Kit/Accessibility.h"

#include "QuellonUI/Kit/TextRuns.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QComboBox>
#include <QMenu>

namespace quellon::Accessibility {

namespace {

/// The toolkit's own gives what is chosen for the name, and so leaves no room for what the choice is for.
class ChoiceAccessible final : public QAccessibleWidget {
public:
    explicit ChoiceAccessible(QComboBox& box) : QAccessibleWidget(&box, QAccessible::ComboBox), box_(box)
    {
        QObject::connect(&box, &QComboBox::currentTextChanged, &box, [&box] {
            QAccessibleEvent event{&box, QAccessible::DescriptionChanged};
            QAccessible::updateAccessibility(&event);
        });
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        const QString own = QAccessibleWidget::text(kind);
        const bool tellsChoice = kind == QAccessible::Name || kind == QAccessible::Description;
        return kind == QAccessible::Value || (tellsChoice && own.isEmpty()) ? box_.currentText() : own;
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State result = QAccessibleWidget::state();
        result.expandable = true;
        result.expanded = box_.view()->isVisible();
        return result;
    }

    [[nodiscard]] int childCount() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override
    {
        return index == 0 ? QAccessible::queryAccessibleInterface(box_.view()) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override
    {
        return child->object() == box_.view() ? 0 : -1;
    }

    [[nodiscard]] QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString& name) override
    {
        if (!actionNames().contains(name)) return;
        if (box_.view()->isVisible())
            box_.hidePopup();
        else
            box_.showPopup();
    }

private:
    QComboBox& box_;
};

/// A window. The toolkit shows no menus that are open; here they come last.
class WindowAccessible final : public QAccessibleWidget {
public:
    explicit WindowAccessible(QWidget& window) : QAccessibleWidget(&window, QAccessible::Window) {}

    [[nodiscard]] int childCount() const override
    {
        return QAccessibleWidget::childCount() + (openMenu() == nullptr ? 0 : 1);
    }
    [[nodiscard]] QAccessibleInterface* child(int index) const override
    {
        if (index != QAccessibleWidget::childCount()) return QAccessibleWidget::child(index);
        return QAccessible::queryAccessibleInterface(openMenu());
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override
    {
        const auto* const menu = openMenu();
        if (menu != nullptr && child->object() == menu) return QAccessibleWidget::childCount();
        return QAccessibleWidget::indexOfChild(child);
    }

private:
    [[nodiscard]] QMenu* openMenu() const
    {
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        const auto* const owner = menu == nullptr ? nullptr : menu->parentWidget();
        return owner != nullptr && owner->window() == widget() ? menu : nullptr;
    }
};

/// A plain widget: a window, a part with a name, or one that only lays out others, which is left to the toolkit.
QAccessibleInterface* plainInterface(QWidget& widget)
{
    if (widget.isWindow()) return new WindowAccessible{widget};
    if (!widget.accessibleName().isEmpty()) return new QAccessibleWidget{&widget, QAccessible::Grouping};
    return nullptr;
}

/// Asked for each class that the object is of, its own first.
QAccessibleInterface* interfaceOf(const QString& className, QObject* object)
{
    auto* const widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr) return nullptr;
    if (auto* const box = qobject_cast<QComboBox*>(widget)) return new ChoiceAccessible{*box};
    if (qobject_cast<TextRuns*>(widget) != nullptr) return new QAccessibleWidget{widget, QAccessible::StaticText};
    // The toolkit's word for a mere frame means a window to others.
    if (className == QLatin1String{"QFrame"}) return new QAccessibleWidget{widget, QAccessible::Grouping};
    return className == QLatin1String{"QWidget"} ? plainInterface(*widget) : nullptr;
}

} // namespace

void install()
{
    static const bool installed = (QAccessible::installFactory(interfaceOf), true);
    static_cast<void>(installed);
}

} // namespace quellon::Accessibility
