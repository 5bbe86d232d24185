#include "QuellonUI/Settings/Form/RemarkView.h"

#include "QuellonUI/Theme.h"

#include <QHBoxLayout>

namespace quellon {

RemarkView::RemarkView(Tint tint, QWidget* parent)
    : QWidget(parent), tint_(tint), symbol_(new SymbolLabel{16, this}), text_(new Paragraph{Fonts::caption(), this})
{
    constexpr int gap = 8;
    auto* const layout = new QHBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gap);
    layout->addWidget(symbol_, 0, Qt::AlignTop);
    layout->addWidget(text_, 1);
    hide();
}

void RemarkView::setModel(const std::optional<FormRemark>& model)
{
    if (model) {
        symbol_->setSymbol(model->symbol, tint_);
        text_->setTint(tint_);
        text_->setText(toQString(model->text));
    }
    setVisible(model.has_value());
}

} // namespace quellon
