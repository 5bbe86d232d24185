#include "QuellonUI/Settings/LookupSection.h"

#include "QuellonUI/Settings/Form/FormRow.h"
#include "QuellonUI/Settings/Spinner.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

LookupSection::LookupSection(QWidget* parent)
    : FormView(parent),
      text_(new Paragraph{Fonts::body(), this}),
      progress_(new QWidget{this}),
      spinner_(new Spinner{progress_}),
      lookingUp_(new Paragraph{Fonts::callout(), progress_}),
      consent_(new QWidget{this}),
      consentTitle_(new Paragraph{Fonts::subheadline(), consent_}),
      consentText_(new Paragraph{Fonts::caption(), consent_}),
      allow_(new LinkButton{Fonts::callout(), consent_}),
      decline_(new LinkButton{Fonts::callout(), consent_}),
      explain_(new LinkButton{Fonts::callout(), this}),
      failure_(new Paragraph{Fonts::caption(), this})
{
    auto* const column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(text_);
    column->addWidget(progress_);
    column->addWidget(consent_);
    auto* const explain = new QHBoxLayout;
    explain->addWidget(explain_.button);
    explain->addStretch(1);
    column->addLayout(explain);
    column->addWidget(failure_);
    failure_->setTint(Tint::orange);
    arrangeProgress();
    arrangeConsent();
    // The links have the room for their grounds to the left of it.
    for (Paragraph* const each : {text_, consentTitle_, consentText_, failure_}) {
        each->setContentsMargins(inset, 0, 0, 0);
    }
    for (const auto& each : {allow_, decline_, explain_}) relay(each.action);
}

void LookupSection::arrangeProgress()
{
    constexpr int gap = 8;
    auto* const line = new QHBoxLayout{progress_};
    line->setContentsMargins(inset, 0, 0, 0);
    line->setSpacing(gap);
    line->addWidget(spinner_);
    line->addWidget(lookingUp_, 1);
    lookingUp_->setTint(Tint::secondary);
}

void LookupSection::arrangeConsent()
{
    auto* const column = new QVBoxLayout{consent_};
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(consentTitle_);
    column->addWidget(consentText_);
    consentText_->setTint(Tint::secondary);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(allow_.button);
    buttons->addWidget(decline_.button);
    buttons->addStretch(1);
    column->addLayout(buttons);
}

void LookupSection::setModel(const AppDetailModel::Unknown& model)
{
    const bool hadFocus = isAncestorOf(window()->focusWidget());
    text_->setText(toQString(model.text));
    if (model.lookingUp) {
        lookingUp_->setText(toQString(*model.lookingUp));
        spinner_->setAccessibleName(toQString(*model.lookingUp));
    }
    progress_->setVisible(model.lookingUp.has_value());
    if (model.consent) showConsent(*model.consent);
    consent_->setVisible(model.consent.has_value());
    explain_.setModel(model.explain);
    setOptional(*failure_, model.failure);
    if (hadFocus && !isAncestorOf(window()->focusWidget())) takeFocus();
}

/// What was pressed has made room for something else: the keyboard goes on there, with what grants nothing.
void LookupSection::takeFocus()
{
    for (LinkButton* const each : {decline_.button, explain_.button}) {
        if (!each->isVisible()) continue;
        each->setFocus();
        return;
    }
}

void LookupSection::showConsent(const ExplainConsentRow& consent)
{
    consentTitle_->setText(toQString(consent.title));
    consentText_->setText(toQString(consent.text));
    allow_.setModel(consent.allow);
    decline_.setModel(consent.decline);
}

} // namespace quellon
