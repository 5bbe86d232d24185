#include "QuellonUI/Kit/Style.h"

#include "QuellonUI/Kit/StyleDrawing.h"

#include <QComboBox>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>

#include <algorithm>

namespace quellon {

namespace {

constexpr int fieldPadding = 6; ///< Above and below the text of a field or a button, with the line around it.
constexpr int sidePadding = 8;
constexpr int comboArrowWidth = 20;

/// The parts of a scroll bar: a groove from end to end, and the slider in it.
QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part, int least)
{
    const bool across = option.orientation == Qt::Horizontal;
    const QRect all = option.rect;
    const int length = across ? all.width() : all.height();
    const qint64 span = static_cast<qint64>(option.maximum) - option.minimum + option.pageStep;
    const bool fits = option.maximum <= option.minimum || span <= 0;
    const int share = fits ? length : static_cast<int>(static_cast<qint64>(option.pageStep) * length / span);
    const int slider = std::min(std::max(share, least), length);
    const int start = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                      length - slider, option.upsideDown);
    const auto cut = [&](int from, int to) {
        return across ? QRect{all.left() + from, all.top(), to - from, all.height()}
                      : QRect{all.left(), all.top() + from, all.width(), to - from};
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return all;
    case QStyle::SC_ScrollBarSlider:
        return cut(start, start + slider);
    case QStyle::SC_ScrollBarSubPage:
        return cut(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return cut(start + slider, length);
    default:
        return {};
    }
}

} // namespace

Style::Style() : QProxyStyle(QStringLiteral("Fusion")) {}

void Style::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    const bool hovers = qobject_cast<QScrollBar*>(widget) != nullptr || qobject_cast<QComboBox*>(widget) != nullptr;
    if (hovers) widget->setAttribute(Qt::WA_Hover);
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        if (const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            StyleDrawing::button(*button, *painter);
        }
        return;
    case PE_FrameLineEdit:
        return; // The panel has its line.
    case PE_PanelLineEdit:
        if (const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame->lineWidth > 0) {
            StyleDrawing::field(*option, *painter);
        }
        return;
    case PE_IndicatorCheckBox:
        return StyleDrawing::checkBox(*option, *painter);
    case PE_IndicatorRadioButton:
        return StyleDrawing::radioButton(*option, *painter);
    case PE_FrameFocusRect:
        return StyleDrawing::focus(*option, *painter);
    case PE_Frame:
        // A list that drops down is a window of its own.
        if (widget != nullptr && widget->isWindow()) return StyleDrawing::panel(*option, *painter);
        return StyleDrawing::frame(*option, *painter);
    case PE_PanelMenu:
    case PE_PanelTipLabel:
        return StyleDrawing::panel(*option, *painter);
    case PE_FrameMenu:
        return;
    case PE_PanelButtonTool:
        return StyleDrawing::hover(*option, *painter);
    case PE_PanelItemViewItem:
        return StyleDrawing::row(*option, *painter);
    case PE_IndicatorArrowDown:
        return StyleDrawing::arrow(*option, *painter);
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const
{
    if (const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        item != nullptr && element == CE_MenuItem) {
        StyleDrawing::menuItem(*item, *painter);
        return;
    }
    const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (button != nullptr && element == CE_PushButtonLabel) {
        QStyleOptionButton label = *button;
        if (label.features.testFlag(QStyleOptionButton::DefaultButton)) {
            label.palette.setColor(QPalette::ButtonText, Qt::white);
        }
        QProxyStyle::drawControl(element, &label, painter, widget);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const
{
    if (const auto* const combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        combo != nullptr && control == CC_ComboBox) {
        StyleDrawing::comboBox(*combo, subControlRect(control, option, SC_ComboBoxArrow, widget), *painter);
        return;
    }
    if (const auto* const slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
        slider != nullptr && control == CC_ScrollBar) {
        StyleDrawing::thumb(*slider, subControlRect(control, option, SC_ScrollBarSlider, widget), *painter);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                            const QWidget* widget) const
{
    if (const auto* const slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
        slider != nullptr && control == CC_ScrollBar) {
        const QRect area = scrollBarPart(*slider, part, pixelMetric(PM_ScrollBarSliderMin, option, widget));
        return visualRect(option->direction, option->rect, area);
    }
    if (control == CC_ComboBox && (part == SC_ComboBoxEditField || part == SC_ComboBoxArrow)) {
        const QRect all = option->rect;
        const QRect arrow{all.right() - comboArrowWidth, all.top(), comboArrowWidth, all.height()};
        const QRect field{all.left() + sidePadding, all.top(), all.width() - sidePadding - comboArrowWidth,
                          all.height()};
        return visualRect(option->direction, all, part == SC_ComboBoxArrow ? arrow : field);
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QRect Style::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const
{
    const QRect area = QProxyStyle::subElementRect(element, option, widget);
    const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element != SE_LineEditContents || frame == nullptr || frame->lineWidth <= 0) return area;
    // The field adds a little of its own.
    constexpr int inset = sidePadding - 4;
    return area.adjusted(inset, 0, -inset, 0);
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                              const QWidget* widget) const
{
    const int lineHeight = option != nullptr ? option->fontMetrics.height() : 0;
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    switch (type) {
    case CT_PushButton:
        size.setHeight(std::max(contents.height(), lineHeight) + 2 * fieldPadding);
        break;
    case CT_LineEdit:
        size = {size.width() + sidePadding, lineHeight + 2 * fieldPadding};
        break;
    case CT_ComboBox:
        size = {contents.width() + sidePadding + comboArrowWidth + 4, lineHeight + 2 * fieldPadding};
        break;
    case CT_MenuItem:
        if (const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            constexpr int shortcutGap = 24;
            const bool separator = item->menuItemType == QStyleOptionMenuItem::Separator;
            const int shortcut = item->text.contains(QLatin1Char{'\t'}) ? item->reservedShortcutWidth + shortcutGap : 0;
            const int width = contents.width() + StyleDrawing::menuTextLeft + StyleDrawing::menuTextRight + shortcut;
            size = separator ? QSize{0, fieldPadding + 1} : QSize{width, lineHeight + fieldPadding + 2};
        }
        break;
    default:
        break;
    }
    return size;
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return 10;
    case PM_ScrollBarSliderMin:
        return 28;
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuVMargin:
        return 4;
    case PM_MenuHMargin:
        return 0;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 16;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        return 8;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_MaximumDragDistance:
        return -1;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returned) const
{
    switch (hint) {
    case SH_Widget_Animation_Duration:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_UnderlineShortcut:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

} // namespace quellon
