#include "QuellonUI/Settings/QuestionCard.h"

#include "QuellonUI/Settings/Form/PageScroll.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QStringList>
#include <QVBoxLayout>

namespace quellon {

QuestionCard::QuestionCard(QWidget* parent)
    : FormView(parent),
      title_(new Paragraph{Fonts::title(), this}),
      changes_(new Paragraph{Fonts::body()}),
      scroll_(new PageScroll{*changes_, this}),
      keep_(new PushButton{Fonts::body(), this}),
      replace_(new PushButton{Fonts::body(), this})
{
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setSheet(*column);
    column->addWidget(title_);
    changes_->setAlignment(Qt::AlignTop);
    column->addWidget(scroll_, 1);
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(keep_.button);
    buttons->addWidget(replace_.button);
    column->addLayout(buttons);
    for (QWidget* const each : {keep_.button, replace_.button}) each->raise(); // They are read out last.
    relay(keep_.action);
    relay(replace_.action);
}

void QuestionCard::setModel(const PlanTabModel::Question& model)
{
    title_->setText(toQString(model.title));
    setWindowTitle(title_->text()); // The sheet's name.
    scroll_->takeKeyboard(title_->text());
    QStringList changes;
    for (const std::string& each : model.changes) changes += toQString(each);
    changes_->setText(changes.join(QLatin1Char{'\n'}));
    keep_.setModel(model.keep);
    replace_.setModel(model.replace);
}

QSize QuestionCard::sizeHint() const
{
    constexpr int width = 400;
    const QMargins margins = layout()->contentsMargins();
    const int inside = width - margins.left() - margins.right();
    const int texts = title_->heightForWidth(inside) + changes_->heightForWidth(inside);
    return {width,
            margins.top() + texts + keep_.button->sizeHint().height() + 2 * layout()->spacing() + margins.bottom()};
}

} // namespace quellon
