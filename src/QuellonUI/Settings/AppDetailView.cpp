#include "QuellonUI/Settings/AppDetailView.h"

#include "QuellonUI/Kit/Divider.h"
#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Settings/Form/FormRow.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int margin = 18;
constexpr int gap = 8;
constexpr int cardPadding = 14;

QVBoxLayout* makeColumn(Card& card)
{
    auto* const column = new QVBoxLayout{&card};
    column->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
    column->setSpacing(gap);
    return column;
}

void addHeading(Card& card, std::string_view text)
{
    auto* const heading = new TextLabel{Fonts::section(), &card};
    heading->setTint(Tint::secondary);
    heading->setText(toQString(text));
    card.layout()->addWidget(heading);
}

} // namespace

AppDetailView::AppDetailView(QWidget* parent)
    : FormView(parent),
      app_(new TextLabel{Fonts::title(), this}),
      subtitle_(new TextLabel{Fonts::caption(), this}),
      policy_(new ChoiceBox{this}),
      column_(new QWidget),
      scroll_(new PageScroll{*column_, this}),
      identity_(new Card{column_}),
      whatItIs_(new Paragraph{Fonts::body(), identity_}),
      whyTraffic_(new Paragraph{Fonts::body(), identity_}),
      dot_(new StatusDot{identity_}),
      advice_(new Paragraph{Fonts::subheadline(), identity_}),
      limitNote_(new Paragraph{Fonts::caption(), identity_}),
      provenance_(new Paragraph{Fonts::caption2(), identity_}),
      unknownCard_(new Card{column_}),
      unknown_(new LookupSection{unknownCard_}),
      usage_(new Card{column_}),
      lastHour_(new TextLabel{Fonts::body(), usage_}),
      lastHourBytes_(new TextLabel{Fonts::body(), usage_}),
      chronic_(new Paragraph{Fonts::body(), usage_}),
      actions_(new Card{column_}),
      bottom_(new QHBoxLayout),
      close_(new PushButton{Fonts::body(), this})
{
    arrange();
    relay(policy_);
    relay(unknown_);
    relay(close_.action);
}

void AppDetailView::arrange()
{
    auto* const column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    arrangeHeader(*column);
    column->addWidget(new Divider{this});
    arrangeSections();
    column->addWidget(scroll_, 1);
    column->addWidget(new Divider{this});
    bottom_->setContentsMargins(margin, cardPadding, margin, cardPadding);
    bottom_->setSpacing(gap);
    bottom_->addStretch(1);
    bottom_->addWidget(close_.button);
    column->addLayout(bottom_);
    close_.button->raise(); // It is the last that is read out.
}

void AppDetailView::arrangeHeader(QVBoxLayout& column)
{
    auto* const header = new QHBoxLayout;
    header->setContentsMargins(margin, cardPadding, margin, cardPadding);
    header->setSpacing(gap);
    auto* const names = new QVBoxLayout;
    names->setSpacing(1);
    names->addWidget(app_);
    names->addWidget(subtitle_);
    for (TextLabel* const each : {app_, subtitle_, lastHourBytes_}) each->setSelectable();
    subtitle_->setTint(Tint::secondary);
    header->addLayout(names, 1);
    header->addWidget(policy_);
    column.addLayout(header);
}

void AppDetailView::arrangeSections()
{
    arrangeIdentity();
    auto* const unknown = makeColumn(*unknownCard_);
    unknown->setContentsMargins(cardPadding - LookupSection::inset, cardPadding, cardPadding, cardPadding);
    unknown->addWidget(unknown_);
    auto* const usage = makeColumn(*usage_);
    addHeading(*usage_, AppDetailModel::usageHeading);
    auto* const stat = new QHBoxLayout;
    stat->addWidget(lastHour_, 1);
    stat->addWidget(lastHourBytes_);
    lastHourBytes_->setTint(Tint::secondary);
    usage->addLayout(stat);
    usage->addWidget(chronic_);
    makeColumn(*actions_);
    addHeading(*actions_, AppDetailModel::actionsHeading);

    auto* const column = new QVBoxLayout{column_};
    column->setContentsMargins(margin, cardPadding, margin, cardPadding);
    column->setSpacing(cardPadding);
    for (Card* const each : {identity_, unknownCard_, usage_, actions_}) column->addWidget(each);
    column->addStretch(1);
}

void AppDetailView::arrangeIdentity()
{
    auto* const identity = makeColumn(*identity_);
    identity->addWidget(whatItIs_);
    identity->addWidget(whyTraffic_);
    auto* const advice = new QHBoxLayout;
    advice->setSpacing(gap);
    advice->addWidget(dot_);
    advice->addWidget(advice_, 1);
    identity->addLayout(advice);
    identity->addWidget(limitNote_);
    identity->addWidget(provenance_);
    for (Paragraph* const each : {whyTraffic_, limitNote_, provenance_}) each->setTint(Tint::secondary);
}

void AppDetailView::setModel(const AppDetailModel& model)
{
    const bool isAnother = model.policy.accessibilityLabel != model_.policy.accessibilityLabel;
    model_ = model;
    app_->setText(toQString(model_.app));
    setWindowTitle(app_->text()); // The sheet's name.
    scroll_->takeKeyboard(app_->text());
    subtitle_->setText(toQString(model_.subtitle.value_or("")));
    subtitle_->setVisible(model_.subtitle.has_value());
    policy_->setModel(model_.policy);
    if (model_.identity) showIdentity(*model_.identity);
    identity_->setVisible(model_.identity.has_value());
    if (model_.unknown) unknown_->setModel(*model_.unknown);
    unknownCard_->setVisible(model_.unknown.has_value());
    lastHour_->setText(toQString(model_.lastHour.label));
    lastHourBytes_->setText(toQString(model_.lastHour.value));
    setOptional(*chronic_, model_.chronic);
    showLines(model_.actions);
    showPauseControls(model_.pauseControls);
    close_.setModel(model_.close);
    if (isAnother) scroll_->verticalScrollBar()->setValue(0);
}

void AppDetailView::showIdentity(const AppDetailModel::Identity& identity)
{
    whatItIs_->setText(toQString(identity.whatItIs));
    whyTraffic_->setText(toQString(identity.whyTraffic));
    dot_->setTint(identity.adviceTint);
    advice_->setText(toQString(identity.advice));
    setOptional(*limitNote_, identity.limitNote);
    provenance_->setText(toQString(identity.provenance));
}

void AppDetailView::showLines(const std::vector<std::string>& lines)
{
    while (lines_.size() < lines.size()) {
        lines_.push_back(new Paragraph{Fonts::body(), actions_});
        actions_->layout()->addWidget(lines_.back());
    }
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (i < lines.size()) lines_[i]->setText(toQString(lines[i]));
        lines_[i]->setVisible(i < lines.size());
    }
}

void AppDetailView::showPauseControls(const std::vector<FormButton>& controls)
{
    while (pauseControls_.size() < controls.size()) {
        const auto place = static_cast<int>(pauseControls_.size());
        const FormPress<PushButton> press{new PushButton{Fonts::body(), this}};
        bottom_->insertWidget(place, press.button);
        press.button->stackUnder(close_.button); // It is read out before.
        relay(press.action);
        pauseControls_.push_back(press);
        FocusOrder::follow(*window());
    }
    for (std::size_t i = 0; i < pauseControls_.size(); ++i) {
        if (i < controls.size()) pauseControls_[i].setModel(controls[i]);
        pauseControls_[i].button->setVisible(i < controls.size());
    }
}

QSize AppDetailView::sizeHint() const
{
    constexpr QSize usual{470, 520};
    return usual;
}

} // namespace quellon
