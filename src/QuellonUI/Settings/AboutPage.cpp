#include "QuellonUI/Settings/AboutPage.h"

#include "QuellonUI/Settings/ProgramIcon.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <chrono>

namespace quellon {

namespace {

constexpr int iconSize = 96;

} // namespace

AboutPage::AboutPage(QWidget* parent)
    : FormView(parent),
      name_(new Paragraph{Fonts::title(), this}),
      version_(new Paragraph{Fonts::callout(), this}),
      links_{new LinkButton{Fonts::body(), this}, new LinkButton{Fonts::body(), this}},
      copy_(new PushButton{Fonts::body(), this}),
      note_(new Paragraph{Fonts::caption(), this}),
      start_(new QWidget{this}),
      startTitle_(new TextLabel{Fonts::body(), start_}),
      startSwitch_(new Switch{start_}),
      startRefusal_(new Paragraph{Fonts::caption(), this}),
      copied_(new QTimer{this})
{
    arrange();
    for (std::size_t i = 0; i < links_.size(); ++i) {
        connect(links_[i], &Pressable::chosen, this,
                [this, i] { Q_EMIT openURL(QUrl{toQString(model_.links[i].url)}); });
    }
    relay(startSwitch_.action);
    connect(copy_.action, &ButtonAction::acted, this, &AboutPage::copy);
    version_->installEventFilter(this);
    copied_->setSingleShot(true);
    copied_->setInterval(std::chrono::duration_cast<std::chrono::milliseconds>(AboutModel::copiedTime));
    connect(copied_, &QTimer::timeout, this, [this] { Q_EMIT acted(SettingsActions::ShowCopied{false}); });
}

void AboutPage::arrange()
{
    constexpr int gap = 10;
    constexpr int widestNote = 380;
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setPage(*column);
    column->setSpacing(gap);
    column->addStretch(2);
    column->addWidget(new ProgramIcon{iconSize, this}, 0, Qt::AlignHCenter);
    column->addWidget(name_);
    column->addWidget(version_);
    auto* const links = new QHBoxLayout;
    links->setSpacing(gap);
    links->addStretch(1);
    for (LinkButton* const each : links_) links->addWidget(each);
    links->addStretch(1);
    column->addLayout(links);
    column->addSpacing(gap);
    column->addWidget(copy_.button, 0, Qt::AlignHCenter);
    auto* const note = new QHBoxLayout;
    note_->setMaximumWidth(widestNote);
    note->addWidget(note_);
    column->addLayout(note);
    column->addSpacing(gap);
    arrangeStart();
    column->addWidget(start_, 0, Qt::AlignHCenter);
    column->addWidget(startRefusal_);
    column->addStretch(3);
    for (Paragraph* const each : {name_, version_, note_, startRefusal_}) each->setAlignment(Qt::AlignHCenter);
    for (Paragraph* const each : {version_, note_}) each->setTint(Tint::secondary);
    startRefusal_->setTint(Tint::red);
}

void AboutPage::arrangeStart()
{
    constexpr int gap = 8;
    startTitle_->setText(toQString(AboutModel::startTitle));
    auto* const line = new QHBoxLayout{start_};
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(gap);
    line->addWidget(startTitle_);
    line->addWidget(startSwitch_.button);
}

void AboutPage::setModel(const AboutModel& model)
{
    model_ = model;
    name_->setText(toQString(model_.name));
    version_->setText(toQString(model_.version));
    for (std::size_t i = 0; i < links_.size(); ++i) links_[i]->setTitle(toQString(model_.links[i].title));
    copy_.setModel(model_.copy);
    note_->setText(toQString(model_.note));
    start_->setVisible(model_.startAtLogin.has_value());
    startRefusal_->setVisible(model_.startRefusal.has_value());
    startRefusal_->setText(toQString(model_.startRefusal.value_or("")));
    if (!model_.startAtLogin) return;
    startSwitch_.button->setTitle({}, toQString(model_.startAtLogin->accessibilityLabel));
    startSwitch_.button->setOn(model_.startAtLogin->on);
    startSwitch_.action->setAction(model_.startAtLogin->action);
}

bool AboutPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == version_ &&
        (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)) {
        Q_EMIT versionTapped();
    }
    return FormView::eventFilter(watched, event);
}

void AboutPage::copy(const SettingsAction& action)
{
    QGuiApplication::clipboard()->setText(toQString(model_.diagnostics));
    copied_->start();
    Q_EMIT acted(action);
}

} // namespace quellon
