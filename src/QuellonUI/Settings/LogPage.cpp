#include "QuellonUI/Settings/LogPage.h"

#include "QuellonCore/Presentation/SettingsTab.h"
#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QListView>
#include <QVBoxLayout>

#include <algorithm>

namespace quellon {

LogPage::LogPage(QWidget* parent)
    : QWidget(parent),
      delegate_(new LogDelegate{lines_, this}),
      empty_(new Paragraph{Fonts::body(), this}),
      card_(new Card{this}),
      list_(new QListView{card_})
{
    empty_->setText(toQString(LogTabModel::emptyText));
    empty_->setTint(Tint::secondary);
    empty_->setAlignment(Qt::AlignCenter);
    arrange();
    list_->setModel(&lines_);
    list_->setItemDelegate(delegate_);
    list_->setAccessibleName(toQString(settingsTabs.label(SettingsTab::log)));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    list_->setTabKeyNavigation(false);
    list_->viewport()->setAutoFillBackground(false);
    list_->installEventFilter(this);
    list_->viewport()->installEventFilter(this);
}

void LogPage::arrange()
{
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setPage(*column);
    column->addWidget(empty_, 1);
    column->addWidget(card_, 1);
    constexpr int end = 6;
    auto* const inside = new QVBoxLayout{card_};
    inside->setContentsMargins(1, end, 1, end);
    inside->addWidget(list_);
}

void LogPage::setModel(const LogTabModel& model)
{
    empty_->setVisible(model.rows.empty());
    card_->setVisible(!model.rows.empty());
    const bool hasLines = lines_.rowCount() > 0;
    lines_.setRows(model.rows);
    // The first line is where the keyboard begins.
    if (!hasLines && lines_.rowCount() > 0) list_->selectionModel()->setCurrentIndex(lines_.index(0), {});
}

bool LogPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == list_->viewport() && event->type() == QEvent::Resize) {
        if (delegate_->setWidth(list_->viewport()->width())) list_->doItemsLayout();
    }
    if (watched == list_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        copy();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void LogPage::copy() const
{
    QModelIndexList chosen = list_->selectionModel()->selectedIndexes();
    std::sort(chosen.begin(), chosen.end());
    QStringList lines;
    for (const QModelIndex& each : chosen) lines += each.data().toString();
    if (!lines.isEmpty()) QGuiApplication::clipboard()->setText(lines.join(QLatin1Char{'\n'}));
}

} // namespace quellon
