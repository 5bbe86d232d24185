#include "QuellonUI/Panel/BudgetView.h"

#include "QuellonUI/Kit/Bar.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Kit/TextRuns.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/ProfileMenu.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int rowSpacing = 5;

} // namespace

BudgetView::BudgetView(QWidget* parent)
    : QWidget(parent),
      profiles_(new ProfileMenu{this}),
      title_(new TextLabel{Fonts::subheadline(), this}),
      amounts_(new TextLabel{Fonts::caption(), this}),
      bar_(new Bar{this}),
      rest_(new TextRuns{Fonts::caption2(), this}),
      today_(new TextRuns{Fonts::caption2(), this}),
      gaps_(new TextRuns{Fonts::caption2(), this})
{
    title_->setText(toQString(BudgetPresentation::monthTitle));
    bar_->setAccessibleName(toQString(BudgetPresentation::monthTitle));
    amounts_->setElastic(false);
    constexpr int reach = PanelLayout::reach;
    auto* const switcher = new QHBoxLayout;
    // The switcher's symbol stands below what is above it.
    switcher->setContentsMargins(reach - ProfileMenu::sidePadding, 0, reach - ProfileMenu::sidePadding, 0);
    switcher->addWidget(profiles_);
    switcher->addStretch(1);
    auto* const heading = new QHBoxLayout;
    heading->setSpacing(PanelLayout::rowSpacing);
    heading->addWidget(title_, 1);
    heading->addWidget(amounts_);
    auto* const column = new QVBoxLayout;
    column->setContentsMargins(reach, 0, reach, 0);
    column->setSpacing(rowSpacing);
    column->addLayout(heading);
    column->addWidget(bar_);
    for (TextRuns* const line : {rest_, today_, gaps_}) column->addWidget(line);
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(rowSpacing);
    layout->addLayout(switcher);
    layout->addLayout(column);
    connect(profiles_, &ProfileMenu::acted, this, &BudgetView::acted);
}

void BudgetView::setModel(const std::optional<MenuPanelModel::ProfileSwitcher>& profiles,
                          const std::optional<BudgetPresentation::Row>& budget)
{
    profiles_->setModel(profiles);
    if (!budget || budget == model_) return;
    model_ = budget;
    showTexts();
}

void BudgetView::showTexts()
{
    const QString separator = toQString(BudgetPresentation::separator);
    amounts_->setText(toQString(model_->amounts));
    bar_->setValue(model_->fraction, model_->tint);
    std::vector<TextRuns::Run> rest{{toQString(model_->rest), MenuPanelModel::quietTint}};
    if (model_->runsOut) {
        rest.push_back({separator, MenuPanelModel::quietTint});
        rest.push_back({toQString(*model_->runsOut), BudgetPresentation::runsOutTint});
    }
    rest_->setRuns(rest);
    today_->setVisible(model_->today.has_value());
    if (const auto& today = model_->today) {
        std::vector<TextRuns::Run> runs{{toQString(BudgetPresentation::todayTitle), today->tint, true},
                                        {toQString(today->amounts), today->tint}};
        if (!today->rest.empty()) {
            runs.push_back({separator, today->tint});
            runs.push_back({toQString(today->rest), today->tint});
        }
        today_->setRuns(runs);
    }
    gaps_->setVisible(model_->gaps.has_value());
    if (model_->gaps) gaps_->setRuns({{toQString(*model_->gaps), BudgetPresentation::gapsTint}});
}

std::vector<QWidget*> BudgetView::stops() const
{
    return {profiles_};
}

} // namespace quellon
