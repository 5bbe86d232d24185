#include "QuellonUI/Toasts/ToastView.h"

#include "QuellonUI/Kit/IconButton.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"
#include "QuellonUI/Toasts/ClampedText.h"
#include "QuellonUI/Toasts/ToastButton.h"

#include <QEvent>
#include <QGridLayout>
#include <QPainter>

#include <algorithm>

namespace quellon {

namespace {

constexpr int symbolSize = 20;
constexpr int closeSize = 12;
constexpr int closeRoom = 24; ///< From the title to the edge of the text below it.
constexpr int columnGap = 10;
constexpr int rowGap = 3;
constexpr int buttonGap = 6;
constexpr int aboveButtons = 10;
constexpr int mostTitleLines = 2;
constexpr int mostTextLines = 6;
constexpr int innerWidth = ToastModel::width - 2 * ToastModel::padding;
constexpr int textWidth = innerWidth - symbolSize - columnGap;

QFont titleFont()
{
    QFont font = Fonts::body();
    font.setWeight(QFont::DemiBold);
    return font;
}

} // namespace

ToastView::ToastView(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel{symbolSize, this}),
      title_(new ClampedText{titleFont(), textWidth - closeRoom, mostTitleLines, Qt::ElideMiddle, this}),
      text_(new ClampedText{Fonts::caption(), textWidth, mostTextLines, Qt::ElideRight, this}),
      buttonLayout_(new QGridLayout),
      close_(new IconButton{closeSize, this})
{
    close_->setSymbol(ToastModel::closeSymbol, Tint::secondary);
    close_->setLabel(toQString(ToastModel::closeAccessibilityLabel));
    connect(close_, &IconButton::chosen, this, &ToastView::closed);
    text_->setTint(Tint::secondary);
    arrange();
}

void ToastView::arrange()
{
    setFixedWidth(ToastModel::width);
    auto* const outer = new QVBoxLayout{this};
    constexpr int padding = ToastModel::padding;
    outer->setContentsMargins(padding, padding, padding, padding);
    outer->setSpacing(0);
    auto* const head = new QGridLayout;
    head->setHorizontalSpacing(columnGap);
    head->setVerticalSpacing(rowGap);
    head->addWidget(symbol_, 0, 0, 2, 1, Qt::AlignTop);
    head->addWidget(title_, 0, 1, Qt::AlignTop | Qt::AlignLeading);
    head->addWidget(text_, 1, 1, Qt::AlignTop | Qt::AlignLeading);
    head->setColumnStretch(1, 1);
    outer->addLayout(head);
    buttonLayout_->setContentsMargins(0, aboveButtons, 0, 0);
    buttonLayout_->setSpacing(buttonGap);
    outer->addLayout(buttonLayout_);
    // In the corner itself, where it is looked for; what is drawn of it stands off the edge by the padding.
    const QSize closeArea = close_->sizeHint();
    const int stand = padding - (closeArea.width() - closeSize) / 2;
    close_->setGeometry({{ToastModel::width - stand - closeArea.width(), stand}, closeArea});
}

void ToastView::setModel(const ToastModel& model)
{
    if (model == model_) return;
    model_ = model;
    symbol_->setSymbol(model.symbol, model.tint);
    title_->setText(toQString(model.notice.title));
    QStringList lines;
    for (const std::string& each : model.notice.text) lines.append(toQString(each));
    text_->setText(lines.join(QLatin1Char{'\n'}));
    text_->setVisible(!lines.isEmpty());
    showButtons();
    setFixedHeight(layout()->sizeHint().height());
}

void ToastView::setFillsCorners(bool fills)
{
    if (fills == fillsCorners_) return;
    fillsCorners_ = fills;
    update();
}

void ToastView::showButtons()
{
    const auto& wanted = model_->notice.buttons;
    while (buttons_.size() > wanted.size()) {
        delete buttons_.back();
        buttons_.pop_back();
    }
    while (buttons_.size() < wanted.size()) {
        auto* const button = new ToastButton{this};
        button->stackUnder(close_); // and before it, for those who go from one to the next
        connect(button, &ToastButton::chosen, this, [this, place = buttons_.size()] { Q_EMIT pressed(place); });
        button->setVisible(true);
        buttons_.push_back(button);
    }
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        buttons_[i]->setTitle(toQString(wanted[i].title));
        buttons_[i]->setStyleOf(model_->buttonStyles[i]);
    }
    arrangeButtons();
}

void ToastView::arrangeButtons()
{
    int widest = 0;
    int together = -buttonGap;
    for (const ToastButton* const each : buttons_) {
        buttonLayout_->removeWidget(const_cast<ToastButton*>(each));
        widest = std::max(widest, each->sizeHint().width());
        together += each->sizeHint().width() + buttonGap;
    }
    const int count = static_cast<int>(buttons_.size());
    const bool inOneRow = together <= innerWidth;
    const int columns = inOneRow ? count : 2 * widest + buttonGap <= innerWidth ? 2 : 1;
    for (int i = 0; i < count; ++i)
        buttonLayout_->addWidget(buttons_[static_cast<std::size_t>(i)], i / columns, i % columns);
    // In one row each is as wide as its text, otherwise all are equally wide.
    const int all = std::max(buttonLayout_->columnCount(), count + 1);
    for (int i = 0; i < all; ++i)
        buttonLayout_->setColumnStretch(i, inOneRow ? (i == count ? 1 : 0) : (i < columns ? 1 : 0));
    buttonLayout_->setContentsMargins(0, count == 0 ? 0 : aboveButtons, 0, 0);
}

void ToastView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
    if (!model_) return;
    arrangeButtons();
    setFixedHeight(layout()->sizeHint().height());
}

void ToastView::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double half = 0.5;
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    if (fillsCorners_) painter.fillRect(rect(), theme.background);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.border);
    painter.setBrush(theme.background);
    painter.drawRoundedRect(QRectF{rect()}.adjusted(half, half, -half, -half), radius, radius);
}

} // namespace quellon
