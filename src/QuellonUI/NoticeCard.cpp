#include "QuellonUI/NoticeCard.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int buttonsInARow = 2;

FlatButton::Kind kindOf(const Notice::Button& button, std::size_t place)
{
    if (button.destructive) return FlatButton::Kind::destructive;
    return place == 0 ? FlatButton::Kind::primary : FlatButton::Kind::plain;
}

/// Text in as many lines as it needs, which never makes the window wider.
QLabel* makeText(const QFont& font, QWidget* parent)
{
    auto* const label = new QLabel{parent};
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(1);
    return label;
}

QFont strongFont()
{
    QFont font = Fonts::body();
    font.setWeight(QFont::DemiBold);
    return font;
}

void setColour(QLabel& label, const QColor& colour)
{
    QPalette changed = label.palette();
    changed.setColor(QPalette::WindowText, colour);
    label.setPalette(changed);
}

} // namespace

NoticeCard::NoticeCard(QWidget* parent)
    : QWidget(parent),
      card_(new Card{this}),
      dot_(new StatusDot{card_}),
      title_(makeText(strongFont(), card_)),
      place_(new TextLabel{Fonts::caption(), card_}),
      dismiss_(new FlatButton{card_}),
      text_(makeText(Fonts::caption(), card_)),
      buttonLayout_(new QGridLayout)
{
    dismiss_->setText(QStringLiteral("✕"));
    dismiss_->setAccessibleName(QStringLiteral("Dismiss"));
    dismiss_->setToolTip(QStringLiteral("Dismiss"));
    connect(dismiss_, &FlatButton::chosen, this, &NoticeCard::dismissed);
    arrange();
    hide();
}

void NoticeCard::arrange()
{
    auto* const outer = new QVBoxLayout{this};
    outer->setContentsMargins(0, 12, 0, 0);
    outer->addWidget(card_);
    auto* const inner = new QVBoxLayout{card_};
    inner->setContentsMargins(12, 10, 12, 12);
    inner->setSpacing(8);
    auto* const head = new QHBoxLayout;
    head->setSpacing(8);
    head->addWidget(dot_);
    head->addWidget(title_, 1);
    head->addWidget(place_);
    head->addWidget(dismiss_, 0, Qt::AlignTop);
    inner->addLayout(head);
    inner->addWidget(text_);
    buttonLayout_->setSpacing(6);
    inner->addLayout(buttonLayout_);
}

void NoticeCard::setNotice(const std::optional<ControlsModel::Notice>& notice, const std::string& place)
{
    place_->setText(toQString(place));
    place_->setVisible(!place.empty());
    if (notice == notice_) return;
    const bool isAnother = !notice || !notice_ || notice->serial != notice_->serial;
    notice_ = notice;
    if (isAnother) lapse();
    setVisible(notice_.has_value());
    if (!notice_) return;
    title_->setText(toQString(notice_->title));
    QStringList lines;
    for (const std::string& each : notice_->text) lines.append(toQString(each));
    text_->setText(lines.join(QLatin1Char{'\n'}));
    text_->setVisible(!lines.isEmpty());
    // What is transient goes by itself.
    dismiss_->setVisible(notice_->style == NotificationStyle::persistent);
    showButtons();
    colour();
}

void NoticeCard::setHeld(bool held)
{
    held_ = held;
    dismiss_->setHeld(held);
    for (FlatButton* const each : buttons_) each->setHeld(held);
}

void NoticeCard::lapse()
{
    dismiss_->lapse();
    for (FlatButton* const each : buttons_) each->lapse();
}

void NoticeCard::showButtons()
{
    const auto& wanted = notice_->buttons;
    for (std::size_t i = buttons_.size(); i < wanted.size(); ++i) {
        auto* const button = new FlatButton{card_};
        button->setTheme(theme_);
        button->setHeld(held_);
        connect(button, &FlatButton::chosen, this, [this, i] { Q_EMIT answered(i); });
        const int place = static_cast<int>(i);
        buttonLayout_->addWidget(button, place / buttonsInARow, place % buttonsInARow);
        buttons_.push_back(button);
    }
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        buttons_[i]->setVisible(i < wanted.size());
        if (i >= wanted.size()) continue;
        const std::string_view title = wanted[i].title;
        buttons_[i]->setText(QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size())));
        buttons_[i]->setKind(kindOf(wanted[i], i));
    }
}

void NoticeCard::setTheme(const Theme& theme)
{
    theme_ = theme;
    setColour(*title_, theme.text);
    setColour(*text_, theme.secondaryText);
    place_->setTint(Tint::secondary);
    dismiss_->setTheme(theme);
    for (FlatButton* const each : buttons_) each->setTheme(theme);
    colour();
}

void NoticeCard::colour()
{
    const bool urgent = notice_ && notice_->style == NotificationStyle::persistent;
    dot_->setTint(urgent ? Tint::orange : Tint::secondary);
}

} // namespace quellon
