#include "QuellonUI/Settings/Form/ChoiceBox.h"

#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Theme.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace quellon {

namespace {

QString elided(const QComboBox& box, const QStyleOptionComboBox& option)
{
    const QRect area = box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
    return box.fontMetrics().elidedText(box.currentText(), Qt::ElideMiddle, area.width() - 2);
}

/// Whether the key is for a list: it moves in it, or it begins a title.
bool isOfList(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        break;
    }
    const bool isPlain = !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    return isPlain && !event.text().isEmpty() && event.text().at(0).isPrint();
}

} // namespace

ChoiceBox::ChoiceBox(QWidget* parent) : QComboBox(parent)
{
    setFont(Fonts::body());
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    view()->setTextElideMode(Qt::ElideMiddle);
    connect(this, &QComboBox::activated, this, &ChoiceBox::choose);
}

void ChoiceBox::setModel(const FormChoice& model)
{
    const QSignalBlocker quiet{this};
    if (model != model_) take(model);
    // The box has moved by itself when the user chose, and what was chosen may not have come about.
    const int selected = model_.selected ? static_cast<int>(*model_.selected) : -1;
    if (currentIndex() != selected) setCurrentIndex(selected);
}

void ChoiceBox::take(const FormChoice& model)
{
    const auto title = [](const FormChoice::Option& option) { return option.title; };
    const bool sameTitles = std::ranges::equal(model.options, model_.options, {}, title, title);
    model_ = model;
    const QString name = toQString(model_.accessibilityLabel);
    if (accessibleName() != name) setAccessibleName(name);
    if (!sameTitles) fill();
}

void ChoiceBox::fill()
{
    clear();
    for (const auto& option : model_.options) addItem(toQString(option.title));
    updateGeometry();
}

void ChoiceBox::choose(int index)
{
    const auto place = static_cast<std::size_t>(index);
    if (index < 0 || place >= model_.options.size() || place == model_.selected) return;
    const SettingsAction action = model_.options[place].action;
    Q_EMIT acted(action);
}

/// What the toolkit leaves out of account: the blank part of a character beside its ink, which in Chinese brackets is
/// half of it.
int ChoiceBox::blanks() const
{
    const QFontMetrics metrics = fontMetrics();
    int ink = 0;
    int whole = 0;
    for (const auto& option : model_.options) {
        const QString title = toQString(option.title);
        ink = std::max(ink, metrics.boundingRect(title).width());
        whole = std::max(whole, metrics.horizontalAdvance(title));
    }
    return std::max(0, whole - ink);
}

QSize ChoiceBox::sizeHint() const
{
    return QComboBox::sizeHint() + QSize{blanks(), 0};
}

QSize ChoiceBox::minimumSizeHint() const
{
    return QComboBox::minimumSizeHint() + QSize{blanks(), 0};
}

void ChoiceBox::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter{this};
    painter.setPen(palette().color(QPalette::Text));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    option.currentText = elided(*this, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void ChoiceBox::keyPressEvent(QKeyEvent* event)
{
    const bool opens = event->key() == Qt::Key_Space || event->key() == Qt::Key_F4;
    if (!isOfList(*event) || opens) {
        // The toolkit takes every other key that has a text for the beginning of a title.
        if (opens)
            QComboBox::keyPressEvent(event);
        else
            event->ignore();
        return;
    }
    showPopup();
    if (event->text().isEmpty()) return;
    const auto found =
        model()->match(view()->currentIndex(), Qt::DisplayRole, event->text(), 1, Qt::MatchStartsWith | Qt::MatchWrap);
    if (!found.isEmpty()) view()->setCurrentIndex(found.first());
}

void ChoiceBox::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

bool ChoiceBox::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QComboBox::event(event);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (elided(*this, option) != currentText()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(currentText()), this);
    }
    return true;
}

} // namespace quellon
