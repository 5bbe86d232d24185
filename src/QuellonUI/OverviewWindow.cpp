#include "QuellonUI/OverviewWindow.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int margin = 16;
/// The lists are wider by this on each side, so that their texts stand below the headings.
constexpr int listInset = RowGeometry::inset;
constexpr int leastWidth = 300;
constexpr int usualWidth = 380;
constexpr int usualHeight = 600;

QString describeRow(const OverviewModel::Row& row)
{
    return QStringLiteral("%1: %2, %3, %4 %5")
        .arg(toQString(row.app), toQString(row.bytes), toQString(row.shareText),
             QString::fromUtf8(OverviewModel::lastMinuteHeading.data()), toQString(row.lastMinute));
}

QString describeLine(const OverviewModel::LogLine& line)
{
    const auto kind = guardEventKinds.label(line.kind);
    return QStringLiteral("%1 %2: %3")
        .arg(toQString(line.time), QString::fromUtf8(kind.data(), static_cast<qsizetype>(kind.size())),
             toQString(line.message));
}

QLabel* makeNotice(QWidget* parent)
{
    auto* const label = new QLabel{parent};
    label->setFont(Fonts::caption());
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QListView* makeList(QWidget* parent, QAbstractItemModel& model, QAbstractItemDelegate& delegate, const char* name)
{
    auto* const list = new QListView{parent};
    list->setModel(&model);
    list->setItemDelegate(&delegate);
    list->setAccessibleName(QString::fromUtf8(name));
    list->setFrameShape(QFrame::NoFrame);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setUniformItemSizes(true);
    list->setMouseTracking(true);
    list->viewport()->setAutoFillBackground(false);
    return list;
}

void setNotice(QLabel& label, const std::optional<std::string>& text)
{
    label.setText(toQString(text.value_or("")));
    label.setVisible(text.has_value());
}

Tint toneTint(MenuPresentation::Tone tone)
{
    if (tone == MenuPresentation::Tone::off) return Tint::secondary;
    return tone == MenuPresentation::Tone::standby ? Tint::orange : Tint::green;
}

void setColour(QWidget& widget, const QColor& colour)
{
    QPalette changed = widget.palette();
    changed.setColor(QPalette::WindowText, colour);
    widget.setPalette(changed);
}

} // namespace

OverviewWindow::OverviewWindow()
    : usageValues_(describeRow),
      activityValues_(describeLine),
      dot_(new StatusDot{this}),
      title_(new TextLabel{Fonts::title(), this}),
      detail_(new TextLabel{Fonts::caption(), this}),
      counterCard_(new Card{this}),
      interface_(new TextLabel{Fonts::body(), counterCard_}),
      counters_(new TextLabel{Fonts::body(), counterCard_}),
      warning_(makeNotice(this)),
      hint_(makeNotice(this)),
      question_(new NoticeCard{this}),
      note_(new NoticeCard{this}),
      paused_(new PausedList{this}),
      usageHeading_(new TextLabel{Fonts::section(), this}),
      windowHeading_(new TextLabel{Fonts::caption(), this}),
      empty_(makeNotice(this)),
      usageDelegate_(new UsageDelegate{usageValues_, this}),
      activityHeading_(new TextLabel{Fonts::section(), this}),
      activityDelegate_(new ActivityDelegate{activityValues_, this})
{
    usage_ = makeList(this, usageValues_, *usageDelegate_, "Usage");
    activity_ = makeList(this, activityValues_, *activityDelegate_, "Activity");
    usageHeading_->setText(QStringLiteral("Usage"));
    activityHeading_->setText(QStringLiteral("Activity"));
    setWindowTitle(QStringLiteral("Quellon"));
    setMinimumWidth(leastWidth);
    resize(usualWidth, usualHeight);
    for (const auto key : {Qt::CTRL | Qt::Key_Q, Qt::CTRL | Qt::Key_W}) {
        connect(new QShortcut{QKeySequence{key}, this}, &QShortcut::activated, this, &QWidget::close);
    }
    // Until the user goes there with Tab, no row is the current one.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();
    arrange();
    connectControls();
    applyTheme();
    showTexts();
}

void OverviewWindow::connectControls()
{
    connect(question_, &NoticeCard::answered, this, &OverviewWindow::answered);
    connect(question_, &NoticeCard::dismissed, this, [this] { Q_EMIT commanded(ControlCommand::dismiss); });
    connect(paused_, &PausedList::resumed, this, &OverviewWindow::resumed);
    connect(paused_, &PausedList::allResumed, this, [this] { Q_EMIT commanded(ControlCommand::resumeAll); });
}

void OverviewWindow::arrange()
{
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(margin - listInset, margin, margin - listInset, margin);
    layout->setSpacing(0);
    auto* const head = new QVBoxLayout;
    head->setContentsMargins(listInset, 0, listInset, 0);
    arrangeHead(*head);
    layout->addLayout(head);
    arrangeLists(*layout);
}

void OverviewWindow::arrangeHead(QVBoxLayout& layout)
{
    auto* const status = new QHBoxLayout;
    status->setSpacing(8);
    status->addWidget(dot_);
    status->addWidget(title_, 1);
    layout.addLayout(status);
    layout.addSpacing(2);
    layout.addWidget(detail_);
    layout.addSpacing(12);

    auto* const card = new QHBoxLayout{counterCard_};
    card->setContentsMargins(12, 10, 12, 10);
    card->addWidget(interface_, 1);
    card->addWidget(counters_);
    layout.addWidget(counterCard_);
    for (QLabel* const notice : {warning_, hint_}) {
        notice->setContentsMargins(0, 8, 0, 0);
        layout.addWidget(notice);
    }
    layout.addWidget(note_);
    layout.addWidget(question_);
    layout.addWidget(paused_);
}

void OverviewWindow::arrangeLists(QVBoxLayout& layout)
{
    auto* const heading = new QHBoxLayout;
    heading->setContentsMargins(listInset, 18, listInset, 4);
    heading->addWidget(usageHeading_, 1);
    heading->addWidget(windowHeading_);
    layout.addLayout(heading);
    empty_->setContentsMargins(listInset, 4, listInset, 0);
    empty_->setAlignment(Qt::AlignTop);
    layout.addWidget(empty_, 3);
    layout.addWidget(usage_, 3);
    auto* const activityHeading = new QHBoxLayout;
    activityHeading->setContentsMargins(listInset, 14, listInset, 4);
    activityHeading->addWidget(activityHeading_);
    layout.addLayout(activityHeading);
    layout.addWidget(activity_, 2);
}

void OverviewWindow::setModel(const OverviewModel& model)
{
    if (model == model_) return;
    model_ = model;
    usageValues_.setValues(model_.rows);
    activityValues_.setValues(model_.log);
    showTexts();
}

void OverviewWindow::setControls(const ControlsModel& controls)
{
    if (controls == controls_) return;
    const bool asks =
        controls.question && (!controls_.question || controls.question->serial != controls_.question->serial);
    const bool selects = controls.selectedRow && controls.selectedRow != controls_.selectedRow;
    controls_ = controls;
    note_->setNotice(controls_.note, {});
    question_->setNotice(controls_.question, controls_.questionPlace);
    question_->setHeld(controls_.held);
    paused_->setPaused(controls_.paused);
    if (selects) usage_->setCurrentIndex(usageValues_.index(static_cast<int>(*controls_.selectedRow), 0));
    if (asks) QApplication::alert(this);
}

void OverviewWindow::showTexts()
{
    dot_->setTint(toneTint(model_.tone));
    title_->setText(toQString(model_.title));
    detail_->setText(toQString(model_.detail));
    interface_->setText(toQString(model_.interface));
    counters_->setText(toQString(model_.counters.value_or("")));
    counterCard_->setVisible(model_.counters.has_value());
    setNotice(*warning_, model_.warning);
    setNotice(*hint_, model_.hint);
    windowHeading_->setText(toQString(model_.windowHeading));
    empty_->setText(toQString(model_.emptyText));
    empty_->setVisible(model_.rows.empty());
    usage_->setVisible(!model_.rows.empty());
}

void OverviewWindow::applyTheme()
{
    const Theme& theme = Theme::of(QApplication::palette());
    setPalette(theme.palette());
    for (NoticeCard* const card : {question_, note_}) card->setTheme(theme);
    paused_->setTheme(theme);
    usageDelegate_->setTheme(theme);
    activityDelegate_->setTheme(theme);
    title_->setTint(Tint::primary);
    interface_->setTint(Tint::secondary);
    counters_->setTint(Tint::primary);
    for (TextLabel* const label : {detail_, windowHeading_}) label->setTint(Tint::secondary);
    for (TextLabel* const label : {usageHeading_, activityHeading_}) label->setTint(Tint::secondary);
    setColour(*warning_, theme.warning);
    setColour(*hint_, theme.secondaryText);
    setColour(*empty_, theme.secondaryText);
}

bool OverviewWindow::event(QEvent* event)
{
    if (event->type() == QEvent::ApplicationPaletteChange) applyTheme();
    return QWidget::event(event);
}

} // namespace quellon
