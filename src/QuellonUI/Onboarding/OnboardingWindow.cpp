#include "QuellonUI/Onboarding/OnboardingWindow.h"

#include "QuellonCore/Presentation/FirstPlace.h"
#include "QuellonUI/Kit/Centre.h"
#include "QuellonUI/Onboarding/LimitRow.h"
#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Settings/Form/FormRow.h"
#include "QuellonUI/Settings/Form/PageScroll.h"
#include "QuellonUI/Settings/ProgramIcon.h"
#include "QuellonUI/Theme.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace quellon {

namespace {

constexpr int leastWidth = 500;
constexpr int widthInLetters = 64;
constexpr int margin = 24;
constexpr int gap = 14;

Paragraph* makeParagraph(const QFont& font, std::string_view text, QWidget* parent)
{
    auto* const paragraph = new Paragraph{font, parent};
    paragraph->setText(toQString(text));
    return paragraph;
}

} // namespace

OnboardingWindow::OnboardingWindow()
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowCloseButtonHint),
      content_(new QWidget),
      scroll_(new PageScroll{*content_, this}),
      sizeRow_(new FormRow),
      size_(new NumberEdit),
      dayRow_(new FormRow),
      day_(new NumberEdit),
      usageRow_(new FormRow),
      usage_(new ChoiceBox),
      budget_(new TextLabel{Fonts::subheadline()}),
      limitColumn_(new QVBoxLayout),
      start_(new PushButton{Fonts::body()})
{
    setWindowTitle(toQString(OnboardingModel::windowTitle));
    setFont(Fonts::body());
    arrange();
    for (NumberEdit* const each : {size_, day_}) connect(each, &NumberEdit::acted, this, &OnboardingWindow::forward);
    connect(usage_, &ChoiceBox::acted, this, &OnboardingWindow::forward);
    connect(start_.action, &ButtonAction::acted, this, &OnboardingWindow::forward);
    connect(new QShortcut{QKeySequence{QKeySequence::Close}, this}, &QShortcut::activated, this, &QWidget::close);
    setFixedWidth(std::max(leastWidth, widthInLetters * fontMetrics().averageCharWidth()));
    content_->installEventFilter(this);
    FocusOrder::follow(*this);
}

OnboardingWindow::~OnboardingWindow()
{
    // A field that goes with the focus in it would report that it was left.
    ends_ = true;
    if (QWidget* const focus = focusWidget()) focus->clearFocus();
}

void OnboardingWindow::arrange()
{
    auto* const column = new QVBoxLayout{content_};
    column->setContentsMargins(margin, margin, margin, gap);
    column->setSpacing(gap);
    arrangeHead(*column);
    arrangePlan(*column);
    arrangePreview(*column);
    auto* const note = makeParagraph(Fonts::caption(), OnboardingModel::note, content_);
    note->setTint(Tint::secondary);
    column->addWidget(note);
    column->addStretch(1);

    start_.button->setKind(PushButton::Kind::primary);
    auto* const buttons = new QHBoxLayout;
    buttons->setContentsMargins(margin, 0, margin, margin);
    buttons->addStretch(1);
    buttons->addWidget(start_.button);
    auto* const whole = new QVBoxLayout{this};
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(scroll_, 1);
    whole->addLayout(buttons);
}

void OnboardingWindow::arrangeHead(QVBoxLayout& column)
{
    constexpr int iconSize = 56;
    auto* const head = new QHBoxLayout;
    head->setSpacing(gap);
    head->addWidget(new ProgramIcon{iconSize, content_});
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch(1);
    texts->addWidget(makeParagraph(Fonts::title(), OnboardingModel::title, content_));
    auto* const text = makeParagraph(Fonts::body(), OnboardingModel::text, content_);
    text->setTint(Tint::secondary);
    texts->addWidget(text);
    texts->addStretch(1);
    head->addLayout(texts, 1);
    column.addLayout(head);
}

void OnboardingWindow::arrangePlan(QVBoxLayout& column)
{
    auto* const card = new FormCard{content_};
    sizeRow_->addControl(*size_);
    sizeRow_->addBelow(size_->refusal());
    dayRow_->addControl(*day_);
    dayRow_->addBelow(day_->refusal());
    usageRow_->addControl(*usage_);
    for (FormRow* const row : {sizeRow_, dayRow_, usageRow_}) card->addRow(*row);
    column.addWidget(card);
}

void OnboardingWindow::arrangePreview(QVBoxLayout& column)
{
    constexpr int padding = 10;
    auto* const card = new FormCard{content_};
    card->setHeading(toQString(OnboardingModel::previewHeading));
    auto* const inside = new QWidget;
    auto* const lines = new QVBoxLayout{inside};
    lines->setContentsMargins(0, padding, 0, padding);
    lines->addWidget(budget_);
    limitColumn_->setContentsMargins(0, 0, 0, 0);
    lines->addLayout(limitColumn_);
    card->addRow(*inside);
    column.addWidget(card);
}

void OnboardingWindow::setModel(const OnboardingModel& model)
{
    if (model == model_ && !expectsModel_) return;
    expectsModel_ = false;
    model_ = model;
    sizeRow_->setLabel(toQString(model_.planSize.label));
    size_->setModel(model_.planSize);
    dayRow_->setLabel(toQString(model_.startDay.label));
    day_->setModel(model_.startDay);
    usageRow_->setLabel(toQString(model_.usageProfile.label));
    usage_->setModel(model_.usageProfile);
    budget_->setText(toQString(model_.dailyBudget));
    showLimits(model_.limits);
    start_.setModel(model_.start);
}

void OnboardingWindow::showLimits(const std::vector<OnboardingModel::Limit>& limits)
{
    while (limits_.size() < limits.size()) {
        limits_.push_back(new LimitRow{budget_->parentWidget()});
        limitColumn_->addWidget(limits_.back());
    }
    for (std::size_t i = 0; i < limits_.size(); ++i) {
        if (i < limits.size()) limits_[i]->setModel(limits[i]);
        limits_[i]->setVisible(i < limits.size());
    }
}

void OnboardingWindow::forward(const SettingsAction& action)
{
    using namespace SettingsActions;
    if (ends_) return;
    const SettingsAction kept = action;
    if (!std::holds_alternative<EditNumber>(kept) && !std::holds_alternative<CommitNumber>(kept)) finishTyping();
    expectsModel_ = true;
    Q_EMIT acted(kept);
}

/// A press leaves the focus where it is: what is being typed there counts all the same.
void OnboardingWindow::finishTyping()
{
    if (auto* const field = qobject_cast<FieldEdit*>(focusWidget())) field->finish();
}

void OnboardingWindow::closeEvent(QCloseEvent* event)
{
    finishTyping();
    QWidget::closeEvent(event);
    if (event->isAccepted()) Q_EMIT closed();
}

void OnboardingWindow::keyPressEvent(QKeyEvent* event)
{
    // Enter where nothing else has taken it.
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !event->isAutoRepeat())
        start_.button->click();
    else
        QWidget::keyPressEvent(event);
}

void OnboardingWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (event->spontaneous()) return;
    fit();
    centre(*this, *screen());
    if (focusWidget() != nullptr) return;
    size_->edit().setFocus(Qt::OtherFocusReason);
    size_->edit().selectAll();
}

bool OnboardingWindow::eventFilter(QObject* watched, QEvent* event)
{
    // A word why a number is refused takes its room, too.
    if (watched == content_ && event->type() == QEvent::LayoutRequest) fit();
    return QWidget::eventFilter(watched, event);
}

void OnboardingWindow::fit()
{
    const int most = screen()->availableGeometry().height() - FirstPlace::titleHeight;
    const int bottom = start_.button->sizeHint().height() + margin;
    setFixedHeight(std::min(most, content_->layout()->heightForWidth(width()) + bottom));
}

} // namespace quellon
