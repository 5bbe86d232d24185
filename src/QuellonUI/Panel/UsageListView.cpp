#include "QuellonUI/Panel/UsageListView.h"

#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

UsageListView::UsageListView(QWidget* parent)
    : QWidget(parent),
      layout_(new QVBoxLayout{this}),
      title_(new TextLabel{Fonts::subheadline(), this}),
      limit_(new TextLabel{Fonts::caption(), this}),
      warning_(new QWidget{this}),
      warningText_(new Paragraph{Fonts::caption(), warning_}),
      empty_(new Paragraph{Fonts::caption(), this}),
      list_(new QWidget{this}),
      hidden_(new TextLabel{Fonts::caption(), this}),
      rows_(*makeList(), 0, [this] { return makeRow(); })
{
    limit_->setTint(MenuPanelModel::quietTint);
    limit_->setElastic(false);
    empty_->setTint(MenuPanelModel::quietTint);
    hidden_->setTint(MenuPanelModel::quietTint);
    arrangeWarning();
    auto* const heading = new QHBoxLayout;
    heading->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach, 0);
    heading->setSpacing(PanelLayout::rowSpacing);
    heading->addWidget(title_, 1);
    heading->addWidget(limit_);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(PanelLayout::rowSpacing);
    layout_->addLayout(heading);
    layout_->addWidget(warning_);
    layout_->addWidget(empty_);
    layout_->addWidget(list_);
    layout_->addWidget(hidden_);
    // The rows' ground reaches out, so that what stands in them is below the heading.
    for (QLabel* const label : {static_cast<QLabel*>(empty_), static_cast<QLabel*>(hidden_)}) {
        label->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach, 0);
    }
    for (QWidget* const part : {static_cast<QWidget*>(limit_), warning_, static_cast<QWidget*>(empty_), list_,
                                static_cast<QWidget*>(hidden_)}) {
        part->hide();
    }
}

QVBoxLayout* UsageListView::makeList()
{
    auto* const layout = new QVBoxLayout{list_};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

void UsageListView::arrangeWarning()
{
    constexpr int side = 14;
    auto* const symbol = new SymbolLabel{side, warning_};
    symbol->setSymbol(MenuPanelModel::warningSymbol, MenuPanelModel::warningTint);
    auto* const layout = new QHBoxLayout{warning_};
    layout->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach, 0);
    layout->setSpacing(PanelLayout::rowSpacing);
    layout->addWidget(symbol, 0, Qt::AlignTop);
    layout->addWidget(warningText_, 1);
}

UsageRowView* UsageListView::makeRow()
{
    auto* const row = new UsageRowView{list_};
    connect(row, &UsageRowView::acted, this, &UsageListView::acted);
    return row;
}

void UsageListView::setModel(const UsageListModel& model)
{
    if (model == model_) return;
    model_ = model;
    title_->setText(toQString(model.title));
    limit_->setText(toQString(model.limit.value_or("")));
    limit_->setVisible(model.limit.has_value());
    warningText_->setText(toQString(model.warning.value_or("")));
    warning_->setVisible(model.warning.has_value());
    empty_->setText(toQString(model.empty.value_or("")));
    empty_->setVisible(model.empty.has_value());
    rows_.setModels(model.rows,
                    [](const UsageRowModel& row) -> const std::string& { return row.toggle.action.target; });
    list_->setVisible(!model.rows.empty());
    hidden_->setText(toQString(model.hiddenUsage.value_or("")));
    hidden_->setVisible(model.hiddenUsage.has_value());
}

std::vector<QWidget*> UsageListView::stops() const
{
    std::vector<QWidget*> result;
    for (const UsageRowView* const row : rows_.shown()) {
        const auto stops = row->stops();
        result.insert(result.end(), stops.begin(), stops.end());
    }
    return result;
}

} // namespace quellon
