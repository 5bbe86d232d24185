#include "QuellonUI/Panel/MenuContent.h"

#include "QuellonUI/Kit/Divider.h"
#include "QuellonUI/Panel/BudgetView.h"
#include "QuellonUI/Panel/FooterView.h"
#include "QuellonUI/Panel/HeaderView.h"
#include "QuellonUI/Panel/LivenessView.h"
#include "QuellonUI/Panel/NoticeRowView.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/PausedView.h"
#include "QuellonUI/Panel/UsageListView.h"
#include "QuellonUI/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <type_traits>

namespace quellon {

namespace {

/// From the innermost parts outwards, so that each one knows how large what is in it has become.
void layOut(const QWidget& widget)
{
    for (const QObject* const child : widget.children()) {
        if (!child->isWidgetType()) continue;
        const auto& each = *static_cast<const QWidget*>(child);
        if (!each.isHidden() && !each.isWindow()) layOut(each);
    }
    if (QLayout* const layout = widget.layout()) layout->activate();
}

} // namespace

MenuContent::MenuContent(QWidget* parent)
    : QWidget(parent),
      header_(new HeaderView),
      tetherHint_(new NoticeRowView),
      updateConsent_(new NoticeRowView),
      updateAvailable_(new NoticeRowView),
      budget_(new BudgetView),
      usage_(new UsageListView),
      paused_(new PausedView),
      liveness_(new LivenessView),
      footer_(new FooterView)
{
    setFixedWidth(PanelLayout::width);
    auto* const layout = new QVBoxLayout{this};
    constexpr int padding = PanelLayout::padding;
    constexpr int reach = PanelLayout::reach;
    layout->setContentsMargins(padding - reach, padding, padding - reach, padding);
    layout->setSpacing(PanelLayout::spacing);
    add(*layout, Section::header, *header_);
    add(*layout, Section::tetherHint, *tetherHint_);
    add(*layout, Section::updateConsent, *updateConsent_);
    add(*layout, Section::updateAvailable, *updateAvailable_);
    add(*layout, Section::budget, *budget_);
    add(*layout, Section::usage, *usage_);
    add(*layout, Section::paused, *paused_);
    add(*layout, Section::liveness, *liveness_);
    add(*layout, Section::footer, *footer_);
    layout->addStretch(1);
}

template <typename View>
void MenuContent::add(QVBoxLayout& layout, Section section, View& view)
{
    auto* const holder = new QWidget{this};
    auto* const inner = new QVBoxLayout{holder};
    inner->setContentsMargins(0, 0, 0, 0);
    inner->setSpacing(PanelLayout::spacing);
    if (!sections_.empty()) {
        auto* const line = new QHBoxLayout;
        line->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach, 0);
        line->addWidget(new Divider{holder});
        inner->addLayout(line);
    }
    inner->addWidget(&view);
    holder->setAccessibleName(toQString(MenuPanelModel::sectionTable.label(section)));
    holder->hide();
    layout.addWidget(holder);
    sections_[section] = holder;
    if constexpr (!std::is_same_v<View, LivenessView>) connect(&view, &View::acted, this, &MenuContent::acted);
}

void MenuContent::setModel(const MenuPanelModel& model)
{
    if (!isEmpty_ && model == model_) return;
    isEmpty_ = false;
    model_ = model;
    header_->setModel(model.header);
    tetherHint_->setModel(model.tetherHint);
    updateConsent_->setModel(model.updateConsent);
    updateAvailable_->setModel(model.updateAvailable);
    budget_->setModel(model.profiles, model.budget);
    usage_->setModel(model.usage);
    paused_->setModel(model.resumeAll, model.paused);
    liveness_->setModel(model.liveness);
    footer_->setModel(model.footer);
    showSections();
    orderStops();
}

void MenuContent::showSections()
{
    const auto shown = model_.sections();
    for (const auto& [section, holder] : sections_) {
        holder->setVisible(std::find(shown.begin(), shown.end(), section) != shown.end());
    }
}

std::vector<QWidget*> MenuContent::stops() const
{
    std::vector<QWidget*> result = header_->stops();
    const auto append = [&result](const std::vector<QWidget*>& more) {
        result.insert(result.end(), more.begin(), more.end());
    };
    for (const NoticeRowView* const notice : {tetherHint_, updateConsent_, updateAvailable_}) append(notice->stops());
    append(budget_->stops());
    append(usage_->stops());
    append(paused_->stops());
    append(footer_->stops());
    return result;
}

void MenuContent::orderStops()
{
    const auto wanted = stops();
    if (wanted == order_) return;
    order_ = wanted;
    for (std::size_t i = 1; i < order_.size(); ++i) QWidget::setTabOrder(order_[i - 1], order_[i]);
}

bool MenuContent::event(QEvent* event)
{
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) Q_EMIT laidOut();
    return result;
}

void MenuContent::layOut()
{
    quellon::layOut(static_cast<const QWidget&>(*this));
}

int MenuContent::contentHeight() const
{
    const int height = heightForWidth(PanelLayout::width);
    return height >= 0 ? height : sizeHint().height();
}

} // namespace quellon
