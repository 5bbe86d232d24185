#include "QuellonUI/PausedList.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace quellon {

PausedList::PausedList(QWidget* parent)
    : QWidget(parent),
      heading_(new TextLabel{Fonts::section(), this}),
      resumeAll_(new FlatButton{this}),
      more_(new TextLabel{Fonts::caption(), this})
{
    heading_->setText(QStringLiteral("Paused"));
    resumeAll_->setText(QStringLiteral("Resume all"));
    connect(resumeAll_, &FlatButton::chosen, this, &PausedList::allResumed);
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(0, 16, 0, 0);
    layout->setSpacing(4);
    auto* const head = new QHBoxLayout;
    head->addWidget(heading_, 1);
    head->addWidget(resumeAll_);
    layout->addLayout(head);
    for (std::size_t i = 0; i < mostLines; ++i) addRow(*layout);
    layout->addWidget(more_);
    hide();
}

void PausedList::addRow(QVBoxLayout& layout)
{
    auto* const line = new QWidget{this};
    const Row row{line, new TextLabel{Fonts::body(), line}, new TextLabel{Fonts::caption(), line},
                  new FlatButton{line}};
    row.resume->setText(QStringLiteral("Resume"));
    connect(row.resume, &FlatButton::chosen, this, [this, place = rows_.size()] {
        if (place < paused_.size()) Q_EMIT resumed(paused_[place].id);
    });
    auto* const inner = new QHBoxLayout{line};
    inner->setContentsMargins(0, 0, 0, 0);
    inner->setSpacing(8);
    inner->addWidget(row.app, 1);
    inner->addWidget(row.since);
    inner->addWidget(row.resume);
    layout.addWidget(line);
    rows_.push_back(row);
}

void PausedList::setPaused(const std::vector<ControlsModel::Paused>& paused)
{
    if (paused == paused_) return;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool stays = i < paused.size() && i < paused_.size() && paused[i].id == paused_[i].id;
        if (!stays) rows_[i].resume->lapse();
    }
    paused_ = paused;
    setVisible(!paused_.empty());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        rows_[i].line->setVisible(i < paused_.size());
        if (i >= paused_.size()) continue;
        rows_[i].app->setText(toQString(paused_[i].app));
        rows_[i].since->setText(toQString(paused_[i].since));
        rows_[i].resume->setAccessibleName(QStringLiteral("Resume %1").arg(toQString(paused_[i].app)));
    }
    const std::size_t missing = paused_.size() - std::min(paused_.size(), rows_.size());
    more_->setText(QStringLiteral("… %1 more").arg(missing));
    more_->setVisible(missing > 0);
}

void PausedList::setTheme(const Theme& theme)
{
    heading_->setTint(Tint::secondary);
    resumeAll_->setTheme(theme);
    more_->setTint(Tint::secondary);
    for (const Row& row : rows_) {
        row.app->setTint(Tint::primary);
        row.since->setTint(Tint::secondary);
        row.resume->setTheme(theme);
    }
}

} // namespace quellon
