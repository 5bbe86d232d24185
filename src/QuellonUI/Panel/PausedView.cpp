#include "QuellonUI/Panel/PausedView.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/PanelLink.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

PausedRowView::PausedRowView(QWidget* parent)
    : QWidget(parent), name_(new TextLabel{Fonts::callout(), this}), resume_(new PanelLink{Fonts::caption(), this})
{
    constexpr int side = 16;
    auto* const symbol = new SymbolLabel{side, this};
    symbol->setSymbol(MenuPanelModel::pausedSymbol, MenuPanelModel::pausedTint);
    auto* const layout = new QHBoxLayout{this};
    layout->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach - LinkButton::sidePadding, 0);
    layout->setSpacing(PanelLayout::rowSpacing);
    layout->addWidget(symbol);
    layout->addWidget(name_, 1);
    layout->addWidget(resume_);
    connect(resume_, &PanelLink::acted, this, &PausedRowView::acted);
}

void PausedRowView::setModel(const MenuPanelModel::Paused& model)
{
    if (model == model_) return;
    model_ = model;
    name_->setText(toQString(model.name));
    resume_->setModel(model.resume);
    // The buttons of all rows say the same, so each says of whom.
    resume_->setAccessibleDescription(toQString(model.name));
}

QWidget* PausedRowView::stop() const
{
    return resume_;
}

PausedView::PausedView(QWidget* parent)
    : QWidget(parent),
      title_(new TextLabel{Fonts::subheadline(), this}),
      resumeAll_(new PanelLink{Fonts::caption(), this}),
      rows_(*makeLayout(), 1, [this] { return makeRow(); })
{
    title_->setText(toQString(MenuPanelModel::pausedTitle));
    connect(resumeAll_, &PanelLink::acted, this, &PausedView::acted);
}

QBoxLayout* PausedView::makeLayout()
{
    auto* const heading = new QHBoxLayout;
    heading->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach - LinkButton::sidePadding, 0);
    heading->addWidget(title_, 1);
    heading->addWidget(resumeAll_);
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(PanelLayout::rowSpacing);
    layout->addLayout(heading);
    return layout;
}

PausedRowView* PausedView::makeRow()
{
    auto* const row = new PausedRowView{this};
    connect(row, &PausedRowView::acted, this, &PausedView::acted);
    return row;
}

void PausedView::setModel(const PanelButton& resumeAll, const std::vector<MenuPanelModel::Paused>& paused)
{
    resumeAll_->setModel(resumeAll);
    if (paused == paused_) return;
    paused_ = paused;
    rows_.setModels(paused_,
                    [](const MenuPanelModel::Paused& row) -> const std::string& { return row.resume.action.target; });
}

std::vector<QWidget*> PausedView::stops() const
{
    std::vector<QWidget*> result{resumeAll_};
    for (const PausedRowView* const row : rows_.shown()) result.push_back(row->stop());
    return result;
}

} // namespace quellon
