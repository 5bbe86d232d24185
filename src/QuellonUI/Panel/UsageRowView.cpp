#include "QuellonUI/Panel/UsageRowView.h"

#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonUI/Kit/Bar.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/PanelLink.h"
#include "QuellonUI/Symbols.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int topPadding = 4;
constexpr int barSpacing = 4;
constexpr int chevronSide = 10;
/// From the chevron's left edge to the name's, and so to all that stands below it.
constexpr int indent = 14;

} // namespace

UsageRowButton::UsageRowButton(QWidget* parent)
    : Pressable(parent),
      chevron_(new SymbolLabel{chevronSide, this}),
      name_(new TextLabel{Fonts::callout(), this}),
      badge_(new TextLabel{Fonts::caption(), this}),
      snooze_(new TextLabel{Fonts::caption2(), this}),
      amount_(new TextLabel{Fonts::caption(), this}),
      bar_(new Bar{this})
{
    for (TextLabel* const label : {badge_, snooze_, amount_}) label->setElastic(false);
    snooze_->setTint(MenuPanelModel::quietTint);
    arrange();
    // The row is pressed wherever it is hit, and tells what its parts have to say.
    for (QWidget* const child : findChildren<QWidget*>()) child->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void UsageRowButton::arrange()
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* const line = new QHBoxLayout;
    line->setSpacing(PanelLayout::rowSpacing);
    line->addWidget(chevron_);
    line->addSpacing(indent - chevronSide - PanelLayout::rowSpacing);
    // The name takes what it needs and what there is, and the rest goes between the small marks and the amount.
    line->addWidget(name_);
    line->addWidget(badge_);
    line->addWidget(snooze_);
    line->addStretch(1);
    line->addWidget(amount_);
    auto* const below = new QHBoxLayout;
    below->setContentsMargins(indent, 0, 0, 0);
    below->addWidget(bar_);
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(PanelLayout::reach, topPadding, PanelLayout::reach, topPadding + 1);
    layout->setSpacing(barSpacing);
    layout->addLayout(line);
    layout->addLayout(below);
}

void UsageRowButton::setModel(const UsageRowModel& model)
{
    setTitle({}, toQString(model.toggle.accessibilityLabel));
    chevron_->setSymbol(model.chevron, MenuPanelModel::quietTint);
    name_->setText(toQString(model.name));
    badge_->setText(withDrawableSymbols(toQString(model.chronicBadge), badge_->font()));
    badge_->setToolTip(toQString(model.chronicHelp));
    badge_->setAccessibleDescription(toQString(model.chronicHelp));
    badge_->setVisible(!model.chronicBadge.empty());
    snooze_->setText(toQString(model.snooze));
    snooze_->setVisible(!model.snooze.empty());
    amount_->setText(toQString(model.amount));
    amount_->setTint(model.amountTint);
    bar_->setAccessibleName(toQString(model.name));
    bar_->setValue(model.fraction, model.barTint);
}

QSize UsageRowButton::sizeHint() const
{
    return layout()->sizeHint();
}

bool UsageRowButton::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* const help = static_cast<QHelpEvent*>(event);
        if (showHelp(help->pos(), help->globalPos())) return true;
    }
    return Pressable::event(event);
}

bool UsageRowButton::showHelp(const QPoint& at, const QPoint& global)
{
    QString text;
    if (badge_->isVisible() && badge_->geometry().contains(at))
        text = badge_->toolTip();
    else if (name_->shownText() != name_->text())
        text = name_->text();
    if (text.isEmpty()) return false;
    QToolTip::showText(global, toolTipOf(text), this);
    return true;
}

void UsageRowButton::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double radius = 6.0;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    drawHover(painter, QRectF{rect()}, radius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius);
}

UsageRowView::UsageRowView(QWidget* parent) : QWidget(parent), button_(new UsageRowButton{this})
{
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(button_);
    connect(button_, &Pressable::chosen, this, [this] {
        const PanelAction action = model_.toggle.action;
        Q_EMIT acted(action);
    });
}

void UsageRowView::setModel(const UsageRowModel& model)
{
    if (model == model_) return;
    if (model.toggle.action != model_.toggle.action) button_->lapse();
    model_ = model;
    button_->setModel(model);
    showDetails();
}

void UsageRowView::makeDetails()
{
    constexpr int spacing = 3;
    constexpr int left = PanelLayout::reach + indent;
    details_ = new QWidget{this};
    whatItIs_ = new Paragraph{Fonts::caption(), details_};
    whatItIs_->setTint(MenuPanelModel::quietTint);
    actionLine_ = new Paragraph{Fonts::caption2(), details_};
    more_ = new PanelLink{Fonts::caption(), details_};
    connect(more_, &PanelLink::acted, this, &UsageRowView::acted);
    auto* const link = new QHBoxLayout;
    link->setContentsMargins(left - LinkButton::sidePadding, 0, PanelLayout::reach, 0);
    link->addWidget(more_);
    link->addStretch(1);
    auto* const layout = new QVBoxLayout{details_};
    layout->setContentsMargins(0, spacing, 0, spacing);
    layout->setSpacing(spacing);
    for (Paragraph* const text : {whatItIs_, actionLine_}) {
        text->setContentsMargins(left, 0, PanelLayout::reach, 0);
        layout->addWidget(text);
    }
    layout->addLayout(link);
    this->layout()->addWidget(details_);
}

void UsageRowView::showDetails()
{
    if (!model_.details) {
        if (details_ != nullptr) details_->hide();
        return;
    }
    if (details_ == nullptr) makeDetails();
    whatItIs_->setText(toQString(model_.details->whatItIs));
    actionLine_->setText(toQString(model_.details->actionLine.value_or("")));
    actionLine_->setVisible(model_.details->actionLine.has_value());
    more_->setModel(model_.details->button);
    details_->show();
}

std::vector<QWidget*> UsageRowView::stops() const
{
    if (more_ == nullptr) return {button_};
    return {button_, more_};
}

} // namespace quellon
